#include "companion/commands/UnaskedFamilies.h"

#include "companion/commands/MachineAccess.h"
#include "companion/execution/Guard.h"
#include "companion/families/Family.h"
#include "companion/lint/PolicyView.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/System.h"
#include "foundation/Text.h"

#include <algorithm>

namespace zolex::companion {

namespace {

constexpr std::string_view lookedAt =
    "the arrays of Linux itself are looked at only where --family md asks for them";

bool isAsked(const Context& context, std::string_view family) {
    const std::vector<std::string>& asked = context.machine.families;
    return std::find(asked.begin(), asked.end(), family) != asked.end();
}

/// Whether a "t:" is for arrays of Linux.
bool isForLinux(std::string_view type) {
    return text::equalsNoCase(type, "MD") || text::equalsNoCase(type, "LINUX-MD");
}

} // namespace

std::optional<Finding> familyNotAsked(const Context& context, const std::string& file,
                                      const std::string& text, const std::string& command) {
    if (isAsked(context, "MD")) {
        return std::nullopt;
    }
    const PolicyDocument document = scanPolicies(file, text);
    for (const PolicyView& view : viewPolicies(document)) {
        for (const EntryView& entry : view.entries) {
            for (const SpecifierView& specifier : entry.specifiers) {
                if (specifier.letter != 't' || !isForLinux(specifier.value.text)) {
                    continue;
                }
                Finding finding = problemFinding(problem::familyNotAsked,
                                                 view.name() + " is for " + specifier.whole.text +
                                                     ", and " + std::string(lookedAt));
                finding.file = file;
                finding.start = specifier.whole.start;
                finding.end = specifier.whole.end;
                finding.help = {command + " --family md"};
                return finding;
            }
        }
    }
    return std::nullopt;
}

std::string whyPlanNotSeen(const Context& context, const MachinePlan& plan) {
    for (const ControllerPlanning* const planning :
         controllersAskedFor(plan, context.machine.controllers)) {
        const Family* const family = findFamily(planning->controller.utility);
        if (family != nullptr && family->isOptIn() && !isAsked(context, family->name())) {
            return "controller " + std::to_string(planning->controller.number) +
                   " of the plan: " + std::string(lookedAt);
        }
    }
    return {};
}

std::string whyFamilyNotHere(const Context& context) {
    return system::isWindows && isAsked(context, "MD")
               ? "--family md: md is a part of Linux, and this is Windows"
               : "";
}

int failWithoutController(Context& context, const std::optional<Finding>& notAsked) {
    if (!notAsked) {
        return failWith(context, "no supported RAID controller was found",
                        "zolexctl doctor tells what is there");
    }
    return failWith(context, "no supported RAID controller was found; " + notAsked->summary,
                    notAsked->help.front());
}

void tellNotAsked(Context& context, const Finding& finding) {
    context.platform.console().writeError(
        findingLine(finding, context.errorStyle) + "  " +
        emphasized("help:", Emphasis::heading, context.errorStyle) + " " + finding.help.front() +
        "\n");
}

} // namespace zolex::companion
