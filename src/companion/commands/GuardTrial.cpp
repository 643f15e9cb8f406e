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
#include <optional>
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

std::string differenceText(const Difference& difference, std::string_view tense) {
    const std::string what = !difference.location.empty()       ? difference.location
                             : !difference.logicalDrive.empty() ? "LD " + difference.logicalDrive
                                                                : "";
    return what + (what.empty() ? "" : ", ") + attributeText(difference.attribute) + ": " +
           std::string(tense) + " " + (difference.found.empty() ? "none" : difference.found) +
           "; wanted is " + (difference.wanted.empty() ? "none" : difference.wanted);
}

/// How a controller ends otherwise than it should; nothing when it does not.
std::optional<Finding> otherEnd(const ControllerSnapshot& controller, const Facts& facts,
                                const GuardPlan& plan, std::string_view code,
                                std::string_view tense) {
    const auto wanted = plan.ends.find(controller.number);
    if (wanted == plan.ends.end()) {
        return std::nullopt;
    }
    const Comparison comparison =
        compareLayouts(facts, capturedLayout(facts), wanted->second, {controller.utility});
    if (comparison.result != Sameness::different) {
        return std::nullopt;
    }
    const bool isOver = code == guard_problem::endedElsewhere;
    const std::string name = "controller " + std::to_string(controller.number);
    Finding finding = guardFinding(
        code, isOver ? "zolex ended with 0, and " + name + " does not stand as it should"
                     : "zolex would end with 0, and " + name + " would not stand as it should");
    for (std::size_t i = 0; i < std::min(mostLines, comparison.differences.size()); ++i) {
        finding.detail += (i == 0 ? "" : "\n") + differenceText(comparison.differences[i], tense);
    }
    return finding;
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
    arguments.reserve(terms.zolexWords.size() + 1);
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
        if (auto other = otherEnd(controller, copy.capture(controller.number), plan,
                                  guard_problem::endsElsewhere, "would be")) {
            findings.push_back(*std::move(other));
        }
    }
    return findings;
}

std::vector<Finding> compareEnds(const Snapshot& now, const GuardPlan& plan) {
    std::vector<Finding> findings;
    for (const ControllerSnapshot& controller : now.details) {
        if (controller.failed) {
            continue;
        }
        if (auto other =
                otherEnd(controller, controller.facts, plan, guard_problem::endedElsewhere, "is")) {
            findings.push_back(*std::move(other));
        }
    }
    return findings;
}

} // namespace zolex::companion
