#include "companion/binding/ConvertPolicies.h"
#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Diagnostics.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// The faults for which no program takes the file.
std::vector<Finding> faultsOf(const PolicyDocument& document) {
    std::vector<Finding> findings = lint(document, {});
    std::erase_if(findings, [](const Finding& finding) {
        return finding.severity != Severity::error || finding.refusedBy != RefusedBy::zolex;
    });
    return findings;
}

void tell(Context& context, std::vector<Finding> findings, const SourceFile& source) {
    if (context.quiet) {
        std::erase_if(findings,
                      [](const Finding& finding) { return finding.severity == Severity::note; });
    }
    if (!findings.empty()) {
        context.platform.console().writeError(
            diagnosticsText(findings, {&source, 1}, context.errorStyle));
    }
}

int refuse(Context& context, const std::string& name) {
    return failWith(context, printable(name) + ": nothing was written",
                    "mend what is told above, and convert again");
}

} // namespace

int convert(Context& context, const ConvertOptions& options) {
    const PoliciesText read = readPoliciesText(context.platform, options.file);
    if (read.fault) {
        return failWith(context, printable(read.name) + ": " + printable(read.fault->summary),
                        read.fault->help.front());
    }
    const SourceFile source{read.name, read.text};
    std::vector<Finding> faults = faultsOf(scanPolicies(read.name, read.text));
    if (!faults.empty()) {
        tell(context, std::move(faults), source);
        return refuse(context, read.name);
    }
    RecordedMachines loaded = loadMachines(context, {options.machine});
    if (!loaded.faults.empty()) {
        tell(context, std::move(loaded.faults), source);
        return refuse(context, read.name);
    }
    const std::vector<RecordedMachine>& machines = loaded.machines;
    if (machines.size() != 1) {
        return failWith(context,
                        printable(options.machine) + " has recordings of " +
                            std::to_string(machines.size()) +
                            " machines, and drives are told for one",
                        "name the recording: --machine server.zrec");
    }
    ConvertedPolicies converted = convertToPolicies(
        machines.front().snapshot, {read.name, read.text, std::string(ZOLEX_VERSION)});
    for (Finding& finding : converted.findings) {
        nameInHelp(finding, "POLICIES", read.name == "<stdin>" ? "-" : read.name);
        nameInHelp(finding, "RECORDING", options.machine);
    }
    const bool isPossible = converted.isPossible();
    tell(context, std::move(converted.findings), source);
    if (!isPossible) {
        return refuse(context, read.name);
    }
    return deliver(context, converted.text) ? exit_code::done : exit_code::notPossible;
}

} // namespace zolex::companion
