#include "companion/binding/ConvertPolicies.h"
#include "companion/commands/Commands.h"
#include "companion/commands/ConvertIronic.h"
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

} // namespace

int convert(Context& context, const ConvertOptions& options) {
    if (!options.from.empty()) {
        return convertFromIronic(context, options);
    }
    if (options.to == "ironic") {
        return convertToIronic(context, options);
    }
    const PoliciesText read = readPoliciesText(context.platform, options.file);
    if (read.fault) {
        return failWith(context, printable(read.name) + ": " + printable(read.fault->summary),
                        read.fault->help.front());
    }
    const SourceFile source{read.name, read.text};
    std::vector<Finding> faults = faultsOf(scanPolicies(read.name, read.text));
    if (!faults.empty()) {
        tellConverted(context, std::move(faults), source);
        return refuseConversion(context, read.name);
    }
    const auto machine = loadMachine(context, options.machine, source);
    if (!machine) {
        return exit_code::notPossible;
    }
    ConvertedPolicies converted =
        convertToPolicies(machine->snapshot, {read.name, read.text, std::string(ZOLEX_VERSION)});
    for (Finding& finding : converted.findings) {
        nameInHelp(finding, "POLICIES", read.name == "<stdin>" ? "-" : read.name);
        nameInHelp(finding, "RECORDING", options.machine);
    }
    const bool isPossible = converted.isPossible();
    tellConverted(context, std::move(converted.findings), source);
    if (!isPossible) {
        return refuseConversion(context, read.name);
    }
    return deliver(context, converted.text) ? exit_code::done : exit_code::notPossible;
}

} // namespace zolex::companion
