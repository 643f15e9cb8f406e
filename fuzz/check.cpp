#include "support/Check.h"
#include "companion/json/CheckDocument.h"
#include "companion/lint/Fix.h"
#include "companion/lint/Lint.h"
#include "companion/lint/Parity.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/text/Diagnostics.h"
#include "policies/PolicyFile.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace zolex::fuzz {
namespace {

using namespace companion;

void checkPlaces(const PolicyDocument& document, const Finding& finding) {
    const auto isSound = [&document](const TextPlace& place) {
        const auto byte = static_cast<std::size_t>(place.byte);
        return place.byte >= 0 && byte <= document.text.size() && place.line > 0 &&
               place.column > 0 && place.column - 1 <= place.byte;
    };
    check(isSound(finding.start) && isSound(finding.end), "place of a finding");
    check(finding.start.byte <= finding.end.byte, "a finding ends behind its begin");
    check(finding.otherStart.line == 0 ||
              (isSound(finding.otherStart) && isSound(finding.otherEnd)),
          "second place of a finding");
}

/// Each form is made; none of them steers a terminal.
void checkForms(const PolicyDocument& document, const std::vector<Finding>& findings) {
    const SourceFile source{document.file, document.text};
    const std::string text =
        diagnosticsText(findings, {&source, 1}, {}) + conciseDiagnostics(findings, {});
    for (const char c : text + githubDiagnostics(findings)) {
        check(c == '\n' || static_cast<unsigned char>(c) >= 0x20, "no control character");
    }
    check(checkDocument(findings, {}).ends_with("}\n"), "a document");
    check(sarifDocument(findings, {&source, 1}).ends_with("}\n"), "a SARIF document");
}

/// To zolex a mended file is what it was, and nothing more is to be mended.
void checkFix(const std::string& text, const std::vector<Finding>& findings) {
    const FixedText fixed = fixPolicies(text, findings);
    SilentReport silent;
    check(readPolicies(text, ControllerCatalogue(), {}, silent).policies ==
              readPolicies(fixed.text, ControllerCatalogue(), {}, silent).policies,
          "the same policies when it is mended");
    const PolicyDocument again = scanPolicies("p.ini", fixed.text);
    check(!fixPolicies(fixed.text, lint(again, {})).isChanged(), "mended once and for all");
}

/// The input is a policies file.
void checkPolicies(const std::string& text) {
    const std::string wrong = test::disagreement(text);
    check(wrong.empty(), wrong);
    const PolicyDocument document = scanPolicies("p.ini", text);
    const std::vector<Finding> findings = lint(document, {});
    for (const Finding& finding : findings) {
        checkPlaces(document, finding);
    }
    checkForms(document, findings);
    checkFix(text, findings);
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::checkPolicies(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
