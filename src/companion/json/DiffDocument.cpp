#include "companion/json/DiffDocument.h"

#include "companion/json/LayoutPieces.h"
#include "companion/json/MachinePieces.h"

namespace zolex::companion {

namespace {

void writeLayout(DocumentText& out, std::string_view name, const Layout& layout) {
    out.object(name);
    writeLayoutNames(out, layout);
    out.end();
}

void writeController(DocumentText& out, const ControllerDiff& controller) {
    using Result = ControllerDiff::Result;
    const bool isCompared =
        controller.result != Result::skipped && controller.result != Result::unknown;
    out.object();
    out.number("number", controller.number);
    out.textOrNull("model", controller.model);
    out.text("result", diffResultWord(controller.result));
    out.textOrNull("because", controller.because);
    out.textOrNull("policy", controller.policy);
    if (controller.policyLine == 0) {
        out.null("policy_line");
    } else {
        out.number("policy_line", controller.policyLine);
    }
    writeComparisonNames(out, controller.comparison);
    if (controller.result == Result::different && !controller.isRefused) {
        out.truth("adding_is_enough", controller.addingIsEnough);
    } else {
        out.null("adding_is_enough");
    }
    out.texts("takes_rebuild", controller.takesRebuild);
    out.texts("to_remove", controller.toRemove);
    if (isCompared) {
        writeLayout(out, "captured", controller.captured);
        writeLayout(out, "wanted", controller.wanted);
    } else {
        out.null("captured");
        out.null("wanted");
    }
    writeDiagnostics(out, "diagnostics", controller.diagnostics);
    out.end();
}

} // namespace

std::string diffDocument(const MachineDiff& diff, const DocumentHead& head) {
    DocumentText out("zolex-diff", head);
    if (diff.fingerprint.identity.empty()) {
        out.null("fingerprint");
    } else {
        writeFingerprint(out, diff.fingerprint);
    }
    out.object("wanted_by");
    out.textOrNull("file", diff.wantedBy);
    out.text("kind", diff.isByPlan ? "plan" : diff.isByCertificate ? "certificate" : "policies");
    out.end();
    out.text("result", diffResultWord(diff.result));
    out.list("controllers");
    for (const ControllerDiff& controller : diff.controllers) {
        writeController(out, controller);
    }
    out.end();
    writeDiagnostics(out, "diagnostics", diff.diagnostics);
    return out.finish();
}

std::string failedDiffDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    MachineDiff diff;
    diff.diagnostics = findings;
    return diffDocument(diff, head);
}

} // namespace zolex::companion
