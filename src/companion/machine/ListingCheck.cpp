#include "companion/machine/ListingCheck.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

constexpr std::string_view blanks = " \t\r\n";
constexpr std::size_t longestQuotation = 200;

/// Takes the first line from the text, without the blanks around it.
std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return text::trim(line, blanks);
}

std::string quotation(std::string_view line) {
    return printable(line.substr(0, longestQuotation));
}

/// The first line that sounds like a failure; empty for none.
std::string_view failureLine(std::string_view output) {
    constexpr std::array<std::string_view, 8> words = {
        "error", "fail", "invalid", "not found", "unable", "cannot", "denied", "no controller"};
    while (!output.empty()) {
        const std::string_view line = takeLine(output);
        if (std::any_of(words.begin(), words.end(), [line](std::string_view word) {
                return text::containsNoCase(line, word);
            })) {
            return line;
        }
    }
    return {};
}

bool isUnderstood(const ListingReading& reading) {
    return reading.isListing && (reading.blocks > 0 || reading.keysUsed > 0);
}

void judge(std::size_t index, ControllerSnapshot& snapshot) {
    const std::string& listing = snapshot.listings[index];
    const CapturedListing& command = snapshot.commands[index];
    const std::string ended = " ended with exit code " + std::to_string(command.exitCode);
    const std::string shown(text::trim(command.command));
    const bool isKnown =
        index < snapshot.facts.listings.size() && isUnderstood(snapshot.facts.listings[index]);
    if (isKnown) {
        return;
    }
    if (text::trim(listing, blanks).empty()) {
        snapshot.findings.push_back(
            problemFinding(problem::notAListing, shown + ended + " and printed nothing"));
    } else if (const std::string_view line = failureLine(listing); !line.empty()) {
        snapshot.findings.push_back(problemFinding(
            problem::notAListing, shown + ended + ", but printed: " + quotation(line),
            firstLines(listing)));
    }
}

} // namespace

std::string firstLines(std::string_view output) {
    constexpr int most = 3;
    std::string lines;
    for (int i = 0; i < most && !output.empty();) {
        if (const std::string_view line = takeLine(output); !line.empty()) {
            lines.append(lines.empty() ? "" : "\n").append(quotation(line));
            ++i;
        }
    }
    return lines;
}

void judgeListings(const RAIDController& controller, ControllerSnapshot& snapshot) {
    const std::vector<ListingReading>& readings = snapshot.facts.listings;
    const bool tells = std::any_of(readings.begin(), readings.end(), isUnderstood) ||
                       controller.numberOfDrives() > 0 || controller.firmwareVersion() ||
                       controller.biosVersion();
    const std::size_t before = snapshot.findings.size();
    for (std::size_t i = 0; i < snapshot.listings.size(); ++i) {
        judge(i, snapshot);
    }
    snapshot.failed = !tells;
    if (!tells && snapshot.findings.size() == before && !snapshot.listings.empty()) {
        snapshot.findings.push_back(problemFinding(problem::notAListing,
                                                   "what the utility printed is no listing",
                                                   firstLines(snapshot.listings.front())));
    }
}

} // namespace zolex::companion
