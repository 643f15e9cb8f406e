#include "companion/commands/GuardTrial.h"

#include "companion/commands/GuardCodes.h"
#include "companion/layout/Compare.h"
#include "companion/picture/Changes.h"
#include "companion/rehearsal/VirtualPlatform.h"
#include "companion/text/Terminal.h"
#include "driver/ZOLEX.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::size_t mostLines = 12;

/// The last lines that were printed, each behind "| ".
std::string lastLines(std::string_view printed) {
    std::vector<std::string> lines;
    while (!printed.empty()) {
        const std::size_t end = std::min(printed.find('\n'), printed.size());
        const std::string_view line = text::trim(printed.substr(0, end), " \t\r");
        if (!line.empty()) {
            lines.push_back("| " + printable(line));
        }
        printed.remove_prefix(std::min(end + 1, printed.size()));
    }
    std::string result;
    for (std::size_t i = lines.size() - std::min(lines.size(), mostLines); i < lines.size(); ++i) {
        result += (result.empty() ? "" : "\n") + lines[i];
    }
    return result;
}

std::string differenceText(const Difference& difference) {
    const std::string what = !difference.location.empty()       ? difference.location
                             : !difference.logicalDrive.empty() ? "LD " + difference.logicalDrive
                                                                : "";
    return what + (what.empty() ? "" : ", ") + attributeText(difference.attribute) + ": would be " +
           (difference.found.empty() ? "none" : difference.found) + "; wanted is " +
           (difference.wanted.empty() ? "none" : difference.wanted);
}

/// How a controller of the copy ends otherwise than it should.
void compareEnd(const ControllerSnapshot& controller, const Facts& facts, const Layout& wanted,
                std::vector<Finding>& findings) {
    const Comparison comparison =
        compareLayouts(facts, capturedLayout(facts), wanted, {controller.utility});
    if (comparison.result != Sameness::different) {
        return;
    }
    Finding finding =
        guardFinding(guard_problem::endsElsewhere, "zolex would end with 0, and controller " +
                                                       std::to_string(controller.number) +
                                                       " would not stand as the policies say");
    for (std::size_t i = 0; i < std::min(mostLines, comparison.differences.size()); ++i) {
        finding.detail += (i == 0 ? "" : "\n") + differenceText(comparison.differences[i]);
    }
    findings.push_back(std::move(finding));
}

} // namespace

std::vector<Finding> tryRun(Platform& machine, const Snapshot& snapshot, const GuardedRun& run,
                            const GuardPlan& plan, const GuardTerms& terms) {
    std::vector<Finding> findings;
    VirtualMachine copy(snapshot);
    if (!copy.notCopied().empty()) {
        for (const std::string& because : copy.notCopied()) {
            findings.push_back(guardFinding(guard_problem::notPlayed,
                                            "not played on a copy: " + printable(because)));
        }
        return findings;
    }
    if (run.captures) {
        return findings; // policies would be written
    }
    VirtualPlatform platform(machine, copy);
    std::vector<const char*> arguments{"zolex"};
    for (const std::string& word : terms.zolexWords) {
        arguments.push_back(word.c_str());
    }
    const int code = ZOLEX::run(static_cast<int>(arguments.size()), arguments.data(), platform);
    if (code != 0) {
        Finding finding = guardFinding(guard_problem::wouldFail,
                                       "zolex would end with exit code " + std::to_string(code));
        finding.detail = lastLines(platform.printed());
        findings.push_back(std::move(finding));
        return findings;
    }
    for (const ControllerSnapshot& controller : snapshot.details) {
        const auto end = plan.ends.find(controller.number);
        if (end != plan.ends.end()) {
            compareEnd(controller, copy.capture(controller.number), end->second, findings);
        }
    }
    return findings;
}

} // namespace zolex::companion
