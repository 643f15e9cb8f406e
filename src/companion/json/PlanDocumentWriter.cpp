#include "companion/json/LayoutPieces.h"
#include "companion/json/MachinePieces.h"
#include "companion/json/PlanDocument.h"
#include "companion/json/PlanPieces.h"
#include "companion/json/RecordingLines.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Sha256.h"

#include <algorithm>

namespace zolex::companion {

namespace {

void writeLine(DocumentText& out, std::string_view name, std::int32_t line) {
    if (line == 0) {
        out.null(name);
    } else {
        out.number(name, line);
    }
}

void writeReason(DocumentText& out, std::string_view name, const PlanReason& reason) {
    out.object(name);
    out.text("code", reason.code);
    out.textOrNull("keyword", reason.keyword);
    writeLine(out, "line", reason.line);
    out.textOrNull("as", reason.as);
    out.end();
}

// Policies

void writeEntry(DocumentText& out, const EntryMatch& entry) {
    out.object();
    out.text("keyword", entry.keyword);
    writeLine(out, "line", entry.line);
    out.truth("matched", entry.matched);
    out.list("specifiers");
    for (const SpecifierMatch& specifier : entry.specifiers) {
        out.object();
        out.text("specifier", specifier.specifier);
        out.truth("holds", specifier.holds);
        out.text("actual", specifier.actual);
        out.end();
    }
    out.end();
    out.end();
}

void writePolicy(DocumentText& out, const ControllerPlanning& planning) {
    out.object("policy");
    out.textOrNull("name", planning.policy);
    writeLine(out, "line", planning.policyLine);
    out.textOrNull("matched_by", planning.matchedBy);
    out.list("considered");
    for (const PolicyMatch& policy : planning.considered) {
        out.object();
        out.text("name", policy.name);
        writeLine(out, "line", policy.line);
        if (policy.matched) {
            out.truth("matched", *policy.matched);
        } else {
            out.null("matched");
        }
        out.list("entries");
        for (const EntryMatch& entry : policy.entries) {
            writeEntry(out, entry);
        }
        out.end();
        out.end();
    }
    out.end();
    out.end();
}

void writeBindings(DocumentText& out, const std::vector<Binding>& bindings) {
    out.list("bindings");
    for (const Binding& binding : bindings) {
        out.object();
        out.text("keyword", binding.keyword);
        writeLine(out, "line", binding.line);
        out.text("value", binding.value);
        out.textOrNull("becomes", binding.becomes);
        out.list("drives");
        for (const BoundDrive& drive : binding.drives) {
            out.object();
            out.text("location", drive.location);
            out.text("code", drive.code);
            out.textOrNull("why", drive.why);
            out.end();
        }
        out.end();
        out.textOrNull("why", binding.why);
        out.end();
    }
    out.end();
}

// What is wanted

void writeArray(DocumentText& out, const PlannedArray& array) {
    out.object();
    out.text("id", array.id);
    out.size("capacity_bytes", array.capacityBytes);
    if (array.drivesPerSpan > 0) {
        out.size("drives_per_span", array.drivesPerSpan);
    }
    out.list("drives");
    for (const PlannedDrive& drive : array.drives) {
        out.object();
        out.text("location", drive.location);
        writeReason(out, "reason", drive.reason);
        out.end();
    }
    out.end();
    out.end();
}

void writeVolume(DocumentText& out, const PlannedVolume& volume) {
    out.object();
    out.text("id", volume.id);
    out.text("array", volume.array);
    out.textOrNull("raid_type", volume.raidType);
    out.object("size");
    out.textOrNull("policy", volume.sizePolicy);
    out.truth("fills", volume.fills);
    out.end();
    out.size("capacity_bytes", volume.capacityBytes);
    out.size("capacity_tolerance_bytes", volume.toleranceBytes);
    out.numberOrNull("strip_size_bytes", volume.stripSizeBytes);
    out.textOrNull("write_cache_policy", volume.writeCache);
    out.textOrNull("read_cache_policy", volume.readCache);
    out.object("reasons");
    for (const auto& [attribute, reason] : volume.reasons) {
        writeReason(out, attribute, reason);
    }
    out.end();
    out.end();
}

/// What all volumes have in common; an empty value where they differ.
template <typename Value>
Value common(const std::vector<PlannedVolume>& volumes, Value PlannedVolume::*attribute) {
    const bool isCommon =
        !volumes.empty() &&
        std::all_of(volumes.begin(), volumes.end(), [&](const PlannedVolume& volume) {
            return volume.*attribute == volumes.front().*attribute;
        });
    return isCommon ? volumes.front().*attribute : Value();
}

void writeAfter(DocumentText& out, const ControllerPlanning& planning) {
    out.object("after");
    out.textOrNull("rebuild_rate", planning.rebuildRate);
    out.textOrNull("initialize_type", planning.initializeType);
    out.numberOrNull("strip_size_bytes", common(planning.volumes, &PlannedVolume::stripSizeBytes));
    out.textOrNull("read_cache_policy", common(planning.volumes, &PlannedVolume::readCache));
    out.list("arrays");
    for (const PlannedArray& array : planning.arrays) {
        writeArray(out, array);
    }
    out.end();
    out.list("logical_drives");
    for (const PlannedVolume& volume : planning.volumes) {
        writeVolume(out, volume);
    }
    out.end();
    out.list("hotspares");
    for (const PlannedSpare& spare : planning.spares) {
        out.object();
        out.text("location", spare.location);
        out.text("hotspare_type", spare.isDedicated ? "Dedicated" : "Global");
        out.texts("covers", spare.covers);
        writeReason(out, "reason", spare.reason);
        out.end();
    }
    out.end();
    out.end();
}

bool hasAfter(const ControllerPlanning& planning) {
    return planning.disposition == Disposition::planned ||
           planning.disposition == Disposition::already || !planning.arrays.empty() ||
           !planning.volumes.empty() || !planning.spares.empty();
}

// The controller

void writeBefore(DocumentText& out, const ControllerPlanning& planning) {
    if (planning.controller.failed) {
        out.null("before");
        return;
    }
    out.object("before");
    writeLayoutNames(out, planning.before);
    out.text("layout_sha256", planning.beforeHash.empty() ? layoutHash(planning.controller.facts)
                                                          : planning.beforeHash);
    out.end();
}

void writeComparison(DocumentText& out, const ControllerPlanning& planning) {
    if (!hasAfter(planning)) {
        out.null("comparison");
        return;
    }
    out.object("comparison");
    out.text("result", samenessWord(planning.comparison.result));
    writeComparisonNames(out, planning.comparison);
    out.end();
}

void writeStrategy(DocumentText& out, const ControllerPlanning& planning) {
    out.object("strategy");
    out.text("name", strategyWord(planning.strategy));
    out.list("because");
    for (const StrategyReason& reason : planning.strategyBecause) {
        out.object();
        out.text("code", reason.code);
        out.textOrNull("text", reason.text);
        out.textOrNull("logical_drive", reason.logicalDrive);
        out.texts("drives", reason.drives);
        out.end();
    }
    out.end();
    out.end();
}

void writeController(DocumentText& out, const ControllerPlanning& planning) {
    const ControllerSnapshot& controller = planning.controller;
    out.object();
    out.number("number", controller.number);
    out.truth("captured", !controller.failed);
    out.textOrNull("model", controller.model);
    out.text("utility", controller.utility);
    out.number("adapter", controller.adapter);
    out.textOrNull("pci", controller.pci);
    out.textOrNull("pci_ids", controller.pciIds);
    out.textOrNull("product_name", controller.facts.productName);
    out.textOrNull("serial_number", controller.facts.serialNumber);
    out.textOrNull("firmware_version", controller.facts.firmwareVersion);
    writeSupported(out, controller.facts);
    out.text("outcome", dispositionWord(planning.disposition));
    out.textOrNull("outcome_reason", planning.because);
    writePolicy(out, planning);
    writeBindings(out, planning.bindings);
    out.list("drives");
    for (const MachineDrive& drive : controller.drives) {
        writeDrive(out, drive);
    }
    out.end();
    writeBefore(out, planning);
    if (hasAfter(planning)) {
        writeAfter(out, planning);
    } else {
        out.null("after");
    }
    writeComparison(out, planning);
    writeStrategy(out, planning);
    out.object("old_command");
    out.texts("differences", planning.oldDifferences);
    out.end();
    writeDiagnostics(out, "warnings", planning.warnings);
    writeDiagnostics(out, "diagnostics", planning.diagnostics);
    out.end();
}

// The whole plan

void writeDestroys(DocumentText& out, const MachinePlan& plan) {
    out.object("destroys");
    out.textOrNull("consent", plan.consent);
    out.size("capacity_bytes", plan.lostBytes());
    out.list("items");
    for (const Loss& loss : plan.losses()) {
        out.object();
        out.number("controller", loss.controller);
        out.text("kind", loss.kind);
        out.text("id", loss.id);
        out.textOrNull("raid_type", loss.raidType);
        out.texts("drives", loss.drives);
        out.size("capacity_bytes", loss.capacityBytes);
        out.textOrNull("status", loss.status);
        writeIfTold(out, "name", loss.name);
        writeIfTold(out, "device", loss.device);
        writeIfTold(out, "unique_id", loss.uniqueId);
        out.null("built_by");
        out.end();
    }
    out.end();
    out.end();
}

void writeActions(DocumentText& out, const PlanStep& step) {
    const bool creates = step.action.starts_with("create");
    out.list("actions");
    if (step.deletes) {
        out.text("delete");
    }
    if (creates) {
        out.text("create");
    }
    if (!step.deletes && !creates) {
        out.text("update");
    }
    out.end();
}

void writeStep(DocumentText& out, const PlanStep& step) {
    out.object();
    out.number("step", step.step);
    out.number("controller", step.controller);
    out.text("action", step.action);
    writeActions(out, step);
    out.texts("creates", step.creates);
    out.texts("destroys", step.destroys);
    out.textOrNull("summary", step.summary);
    out.text("command", step.command);
    out.texts("argv", step.argv);
    out.json("accepted_exit_codes", Json(step.acceptedExitCodes));
    out.number("pause_before_seconds", step.pauseBeforeSeconds);
    out.truth("repeatable", step.isRepeatable);
    out.textOrNull("differs_from_zolex", step.differsFromZolex);
    out.object("expected_after");
    out.textOrNull("layout_sha256", step.expectedAfter);
    out.end();
    out.end();
}

void writeRehearsal(DocumentText& out, const Rehearsal& rehearsal) {
    out.object("rehearsal");
    out.truth("done", rehearsal.done);
    out.truth("ends_as_planned", rehearsal.endsAsPlanned);
    out.number("duration_ms", rehearsal.durationMs);
    out.number("faults_tried", rehearsal.faultsTried);
    out.number("resumes_as_planned", rehearsal.resumesAsPlanned);
    out.texts("not_done_because", rehearsal.notDoneBecause);
    out.object("layouts");
    for (const auto& [hash, lines] : rehearsal.layouts) {
        out.texts(hash, lines);
    }
    out.end();
    out.end();
}

void writePolicies(DocumentText& out, const MachinePlan& plan) {
    out.object("policies");
    out.textOrNull("file", plan.policiesFile);
    out.textOrNull("sha256", plan.policiesHash);
    out.number("count", plan.policiesCount);
    writeDiagnostics(out, "diagnostics", plan.policiesFindings);
    out.end();
}

/// Those of the machine; and when that is why there are no steps, each fault of the policies and of
/// the controllers, these with their number.
void writeAllDiagnostics(DocumentText& out, const MachinePlan& plan, bool isApplicable) {
    out.list("diagnostics");
    for (const Finding& finding : plan.diagnostics) {
        out.json(diagnosticOf(finding));
    }
    const auto repeat = [&](const Finding& finding, const Json& controller) {
        if (finding.severity == Severity::error) {
            Json diagnostic = diagnosticOf(finding);
            diagnostic[repeatedFrom] = controller;
            out.json(diagnostic);
        }
    };
    for (const Finding& finding : plan.policiesFindings) {
        const auto& told = plan.diagnostics;
        if (!isApplicable && std::find(told.begin(), told.end(), finding) == told.end()) {
            repeat(finding, nullptr);
        }
    }
    for (const ControllerPlanning& planning : plan.controllers) {
        if (planning.disposition == Disposition::refused) {
            for (const Finding& finding : planning.diagnostics) {
                repeat(finding, planning.controller.number);
            }
        }
    }
    out.end();
}

} // namespace

std::string planDocument(const MachinePlan& plan, const DocumentHead& head) {
    const bool isOfMachine = !plan.fingerprint.identity.empty();
    const bool isApplicable = plan.isApplicable();
    DocumentText out("zolex-plan", head);
    if (plan.id.empty() && !isOfMachine) {
        out.null("plan_id");
    } else {
        out.text("plan_id", plan.id.empty() ? planIdOf(plan, head.madeAt) : plan.id);
    }
    if (isOfMachine) {
        writeFingerprint(out, plan.fingerprint);
    } else {
        out.null("fingerprint");
    }
    out.textOrNull("machine_source", plan.machineSource);
    writePolicies(out, plan);
    out.list("controllers");
    for (const ControllerPlanning& planning : plan.controllers) {
        writeController(out, planning);
    }
    out.end();
    writeDestroys(out, plan);
    if (isApplicable) {
        out.list("steps");
        for (const PlanStep& step : plan.steps()) {
            writeStep(out, step);
        }
        out.end();
    }
    writeRehearsal(out, plan.rehearsal);
    out.object("old_command");
    out.texts("would_run", plan.oldCommand.wouldRun);
    out.texts("differences", plan.oldCommand.differences);
    out.end();
    out.texts("accepted", plan.accepted);
    out.texts("core_messages", plan.coreMessages);
    writeAllDiagnostics(out, plan, isApplicable);
    return out.finish();
}

std::string failedPlanDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    MachinePlan plan;
    plan.diagnostics = findings;
    return planDocument(plan, head);
}

std::string planIdOf(const MachinePlan& plan, std::string_view madeAt) {
    constexpr std::size_t digits = 12;
    constexpr std::string_view end("\0", 1);
    Sha256 hash;
    const auto add = [&](std::string_view part) {
        hash.add(part);
        hash.add(end);
    };
    add(plan.fingerprint.identity);
    add(plan.fingerprint.state);
    add(plan.policiesHash);
    add(madeAt);
    for (const PlanStep& step : plan.steps()) {
        add(std::to_string(step.controller));
        for (const std::string& argument : step.argv) {
            add(argument);
        }
        add("");
    }
    return "p-" + hexDigits(hash.finish()).substr(0, digits);
}

} // namespace zolex::companion
