#include "companion/binding/ConvertPolicies.h"
#include "companion/binding/MovedTypes.h"
#include "companion/commands/Commands.h"
#include "companion/commands/ConvertIronic.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Terminal.h"

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

/// Errors of the text that its source has not.
std::vector<Finding> newErrorsOf(const PoliciesText& source, const std::string& text) {
    const std::vector<Finding> old = lint(scanPolicies(source.name, source.text), {});
    std::vector<Finding> findings = lint(scanPolicies(source.name, text), {});
    std::erase_if(findings, [&old](const Finding& finding) {
        return finding.severity != Severity::error ||
               std::any_of(old.begin(), old.end(), [&finding](const Finding& other) {
                   return other.severity == Severity::error && other.code == finding.code &&
                          other.start.line == finding.start.line;
               });
    });
    return findings;
}

/// Policies for another type of controllers.
int convertType(Context& context, const ConvertOptions& options, const PoliciesText& read) {
    const MovedPolicies moved = moveTypes(read.text, options.fromType, options.toType);
    const auto refuse = [&](std::vector<Finding> findings, const std::string& text) {
        tellConverted(context, std::move(findings), {read.name, text});
        return refuseConversion(context, read.name);
    };
    if (moved.entries == 0) {
        Finding none = problemFinding(problem::convertNoType,
                                      "no policy is for t:" + printable(options.fromType));
        none.severity = Severity::error;
        none.file = read.name;
        return refuse({std::move(none)}, read.text);
    }
    std::vector<Finding> faults = newErrorsOf(read, moved.text);
    if (!faults.empty()) {
        return refuse(std::move(faults), moved.text);
    }
    if (!moved.placesIn.empty()) {
        Finding places = problemFinding(problem::convertPlaces,
                                        moved.placesIn + " names drives by channel and id, which " +
                                            printable(options.toType) + " may count otherwise");
        places.severity = Severity::note;
        places.file = read.name;
        tellConverted(context, {std::move(places)}, {read.name, read.text});
    }
    return deliver(context, moved.text) ? exit_code::done : exit_code::notPossible;
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
    if (!options.fromType.empty()) {
        return convertType(context, options, read);
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
