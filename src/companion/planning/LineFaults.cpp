#include "companion/planning/LineFaults.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/planning/Strategy.h"
#include "foundation/Text.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

/// Faults of generators, the codes that tell them, and what to do.
struct FaultCode {
    FaultKind kind;
    std::string_view code;
    std::string_view help;
};
// clang-format off
constexpr std::array<FaultCode, 8> faultCodes = {{
    {FaultKind::layoutWithoutArray,       "ZX308", "add an array: Array.A = ALL"},
    {FaultKind::arrayWithoutLogicalDrive, "ZX308", "add a logical drive of the array: Logical.1 = A:FILL:AUTO"},
    {FaultKind::secondLogicalDrive,       "ZX405", "give each array one logical drive: Logical.1 = A:FILL:AUTO"},
    {FaultKind::oneLogicalDriveOnly,      "ZX405", "give the controller one logical drive: Logical.1 = A:FILL:AUTO"},
    {FaultKind::fillOnly,                 "ZX408", "let it fill the array: Logical.1 = A:FILL:AUTO"},
    {FaultKind::hotspareBesideMirror,     "ZX504", "leave the spare out: Array_Defaults = 0%:0"},
    {FaultKind::oneHotspareOnly,          "ZX503", "name one spare: Hotspares = 2"},
    {FaultKind::hotspareOutsidePositions, "ZX303", "name drives that are there: zolexctl show"},
}};
// clang-format on

std::string textOfFault(const Fault& fault) {
    const std::vector<FaultText> texts = show::faultTexts(fault);
    if (texts.empty()) {
        return "the command line cannot be made";
    }
    std::string text(text::trim(texts.front().text));
    std::replace(text.begin(), text.end(), '\n', ' ');
    while (!text.empty() && text.back() == '.') {
        text.pop_back();
    }
    return text;
}

Finding errorOf(std::string_view code, std::string summary, RefusedBy refusedBy) {
    Finding finding;
    finding.code = code;
    finding.summary = std::move(summary);
    finding.refusedBy = refusedBy;
    return finding;
}

/// The places between brackets.
std::vector<std::string> bracketed(const std::string& command) {
    std::vector<std::string> places;
    std::size_t at = 0;
    while ((at = command.find('[', at)) != std::string::npos) {
        const std::size_t close = std::min(command.find(']', at), command.size());
        const std::string_view list = std::string_view(command).substr(at + 1, close - at - 1);
        std::size_t begin = 0;
        while (begin <= list.size()) {
            const std::size_t end = std::min(list.find(',', begin), list.size());
            places.emplace_back(text::trim(list.substr(begin, end - begin)));
            begin = end + 1;
        }
        at = close;
    }
    return places;
}

/// The words by which a line names a drive.
std::vector<std::string> wordsOf(Dialect dialect, const std::string& location) {
    const std::size_t colon = location.find(':');
    if (dialect == Dialect::conf && colon != std::string::npos) {
        return {location.substr(0, colon), location.substr(colon + 1)};
    }
    return {location};
}

bool isPlace(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789:") == std::string::npos;
}

} // namespace

Finding lineFault(const Fault& fault) {
    const auto* const row =
        std::find_if(faultCodes.begin(), faultCodes.end(),
                     [&](const FaultCode& each) { return each.kind == fault.kind; });
    if (row == faultCodes.end()) {
        Finding finding = problemFinding(problem::lineNotMade, textOfFault(fault));
        finding.refusedBy = RefusedBy::plan;
        return finding;
    }
    Finding finding = errorOf(row->code, textOfFault(fault), RefusedBy::plan);
    finding.help.emplace_back(row->help);
    return finding;
}

std::optional<Finding> unmadeLine(const PlanStep& step, const PlannedVolume& volume) {
    const bool hasNoLevel =
        std::find(step.argv.begin(), step.argv.end(), "ERROR") != step.argv.end();
    // HYPERWIN's line has the mode in one word with its option.
    const bool hasNoMode = std::find(step.argv.begin(), step.argv.end(), "/A") != step.argv.end();
    if (hasNoLevel || hasNoMode) {
        Finding finding = errorOf(
            "ZX407", "the utility has no command for " + volume.raidType + " (" + volume.id + ")",
            RefusedBy::utility);
        finding.help.emplace_back("let the level fit the drives: Logical_Defaults = FILL:AUTO");
        return finding;
    }
    if (std::any_of(step.argv.begin(), step.argv.end(), [](const std::string& word) {
            return word.find("ERROR") != std::string::npos;
        })) {
        Finding finding =
            errorOf("ZX403", "the utility has no such strip size", RefusedBy::utility);
        finding.help.emplace_back("take one that every utility has: StripeSize = 64");
        return finding;
    }
    return std::nullopt;
}

bool namesItsDrives(Dialect dialect, const PlanStep& step, const std::vector<std::string>& drives) {
    if (dialect == Dialect::megaCli) {
        const std::vector<std::string> named = bracketed(step.command);
        const bool isSpanned = step.command.find("-Array") != std::string::npos;
        return !named.empty() && named.size() <= drives.size() &&
               (isSpanned || named.size() == drives.size()) &&
               std::equal(named.begin(), named.end(), drives.begin());
    }
    std::vector<std::string> words;
    for (const std::string& drive : drives) {
        const std::vector<std::string> of = wordsOf(dialect, drive);
        words.insert(words.end(), of.begin(), of.end());
    }
    const auto found = std::search(step.argv.begin(), step.argv.end(), words.begin(), words.end());
    // The drives stand together, and nothing that could be another one follows them.
    const auto last = std::find_end(step.argv.begin(), step.argv.end(), words.begin(), words.end());
    if (words.empty() || found == step.argv.end()) {
        return false;
    }
    const auto behind = last + static_cast<std::ptrdiff_t>(words.size());
    return behind == step.argv.end() || !isPlace(*behind);
}

Finding misnamed(const PlanStep& step, const std::vector<std::string>& drives) {
    Finding finding =
        errorOf("ZX711", "the command line does not name " + driveList(drives), RefusedBy::utility);
    finding.detail = step.command;
    finding.help.emplace_back("see how each drive is called: zolexctl show");
    return finding;
}

} // namespace zolex::companion
