#include "companion/commands/ConvertIronic.h"

#include "companion/commands/FileKind.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/exchange/IronicToPolicies.h"
#include "companion/exchange/PoliciesToIronic.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/Sha256.h"
#include "companion/planning/Plan.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

void nameFiles(std::vector<Finding>& findings, const std::string& file,
               const ConvertOptions& options) {
    for (Finding& finding : findings) {
        nameInHelp(finding, "POLICIES", file == "<stdin>" ? "-" : file);
        if (!options.machine.empty()) {
            nameInHelp(finding, "RECORDING", options.machine);
        }
    }
}

/// What was written, for people, when it went to a file.
void tellWritten(Context& context, const std::string& what) {
    if (!context.quiet && !context.outputFile.empty() && context.outputFile != "-") {
        context.platform.console().writeError(printable(context.outputFile) + ": " + what + "\n");
    }
}

/// A plan that was kept; nothing, after a message, when it is none of these policies.
std::optional<MachinePlan> loadPlan(Context& context, const ConvertOptions& options,
                                    const SourceFile& source) {
    PlanReading reading = readPlanFile(context.platform.files(), options.machine);
    if (!reading.plan) {
        tellConverted(context, std::move(reading.findings), source);
        refuseConversion(context, source.name);
        return std::nullopt;
    }
    if (reading.plan->policiesHash != sha256(source.text)) {
        failWith(context,
                 printable(options.machine) + " is no plan of " + printable(source.name) +
                     " as it is now",
                 "zolexctl plan " + (source.name == "<stdin>" ? "-" : printable(source.name)) +
                     " -o " + printable(options.machine));
        return std::nullopt;
    }
    reading.plan->policiesFile = source.name;
    return std::move(reading.plan);
}

std::optional<MachinePlan> makePlan(Context& context, const ConvertOptions& options,
                                    const SourceFile& source) {
    if (fileKindOf(context.platform, options.machine) == FileKind::plan) {
        return loadPlan(context, options, source);
    }
    const std::optional<RecordedMachine> machine = loadMachine(context, options.machine, source);
    if (!machine) {
        return std::nullopt;
    }
    PlanRequest request;
    request.policiesFile = source.name;
    request.policiesText = source.text;
    return planMachine(machine->snapshot, request);
}

/// Why the plan cannot be carried out.
std::vector<Finding> faultsOf(const MachinePlan& plan) {
    std::vector<Finding> faults;
    const auto add = [&faults](const std::vector<Finding>& findings) {
        std::copy_if(findings.begin(), findings.end(), std::back_inserter(faults),
                     [](const Finding& finding) { return finding.severity == Severity::error; });
    };
    add(plan.policiesFindings);
    add(plan.diagnostics);
    for (const ControllerPlanning& planning : plan.controllers) {
        add(planning.diagnostics);
    }
    return faults;
}

} // namespace

void tellConverted(Context& context, std::vector<Finding> findings, const SourceFile& source) {
    if (context.quiet) {
        std::erase_if(findings,
                      [](const Finding& finding) { return finding.severity == Severity::note; });
    }
    if (!findings.empty()) {
        context.platform.console().writeError(
            diagnosticsText(findings, {&source, 1}, context.errorStyle));
    }
}

int refuseConversion(Context& context, const std::string& name) {
    return failWith(context, printable(name) + ": nothing was written",
                    "mend what is told above, and convert again");
}

std::optional<RecordedMachine> loadMachine(Context& context, const std::string& path,
                                           const SourceFile& source) {
    RecordedMachines loaded = loadMachines(context, {path});
    if (!loaded.faults.empty()) {
        tellConverted(context, std::move(loaded.faults), source);
        refuseConversion(context, source.name);
        return std::nullopt;
    }
    if (loaded.machines.size() != 1) {
        failWith(context,
                 printable(path) + " has recordings of " + std::to_string(loaded.machines.size()) +
                     " machines, and drives are told for one",
                 "name the recording: --machine server.zrec");
        return std::nullopt;
    }
    return std::move(loaded.machines.front());
}

int convertFromIronic(Context& context, const ConvertOptions& options) {
    const PoliciesText read = readPoliciesText(context.platform, options.file);
    if (read.fault) {
        return failWith(context, printable(read.name) + ": " + printable(read.fault->summary),
                        "give the name of a RAID configuration, or - for standard input");
    }
    const SourceFile source{read.name, read.text};
    IronicRequest request;
    request.file = read.name;
    request.model = options.model;
    request.version = ZOLEX_VERSION;
    std::optional<RecordedMachine> machine;
    if (!options.machine.empty()) {
        machine = loadMachine(context, options.machine, source);
        if (!machine) {
            return exit_code::notPossible;
        }
        request.machine = &machine->snapshot;
    }
    IronicPolicies made = policiesOf(read.text, request);
    nameFiles(made.findings, read.name, options);
    tellConverted(context, std::move(made.findings), source);
    if (made.text.empty()) {
        return refuseConversion(context, read.name);
    }
    if (!deliver(context, made.text)) {
        return exit_code::notPossible;
    }
    tellWritten(context, countText(made.policies, "policy", "policies") + ", " +
                             countText(made.arrays, "array", "arrays") + ", " +
                             countText(made.logicalDrives, "logical drive", "logical drives") +
                             "; spares: none (Ironic has none)");
    return exit_code::done;
}

int convertToIronic(Context& context, const ConvertOptions& options) {
    const PoliciesText read = readPoliciesText(context.platform, options.file);
    if (read.fault) {
        return failWith(context, printable(read.name) + ": " + printable(read.fault->summary),
                        read.fault->help.front());
    }
    const SourceFile source{read.name, read.text};
    const std::optional<MachinePlan> plan = makePlan(context, options, source);
    if (!plan) {
        return exit_code::notPossible;
    }
    std::vector<Finding> faults = faultsOf(*plan);
    if (!faults.empty()) {
        tellConverted(context, std::move(faults), source);
        return refuseConversion(context, read.name);
    }
    IronicDraft draft = ironicOf(*plan, read.text);
    nameFiles(draft.findings, read.name, options);
    tellConverted(context, std::move(draft.findings), source);
    if (draft.text.empty()) {
        return refuseConversion(context, read.name);
    }
    if (!deliver(context, draft.text)) {
        return exit_code::notPossible;
    }
    tellWritten(context, countText(draft.logicalDisks, "logical disk", "logical disks") +
                             "; the names of drives are those of zolexctl show");
    return exit_code::done;
}

} // namespace zolex::companion
