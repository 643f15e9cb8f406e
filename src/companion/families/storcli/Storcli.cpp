#include "companion/families/storcli/Storcli.h"

#include "companion/families/FamilyCodes.h"
#include "companion/families/storcli/Commands.h"
#include "companion/families/storcli/Errors.h"
#include "companion/families/storcli/Limits.h"
#include "companion/families/storcli/StorcliDecode.h"
#include "companion/families/storcli/StorcliWords.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::array<std::string_view, 4> programNames = {"storcli64", "storcli", "perccli64",
                                                          "perccli"};

// What may stand behind the program, "#" being digits, with "nolog" at the end or without.
constexpr std::array<std::string_view, 8> readingLines = {"show J",
                                                          "show all J",
                                                          "/c# show all J",
                                                          "/c#/eall/sall show all J",
                                                          "/c#/sall show all J",
                                                          "/c#/vall show all J",
                                                          "/c#/fall show J",
                                                          "/c#/dall show all J"};

constexpr std::string_view noLog = " nolog";

std::string_view withoutEnd(std::string_view line) {
    return line.substr(0, line.find_last_not_of(" \t\r\n") + 1);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Whether a line is of the form.
bool fits(std::string_view line, std::string_view form) {
    std::size_t at = 0;
    constexpr std::size_t mostDigits = 4;
    for (const char c : form) {
        if (c != '#') {
            if (at >= line.size() || line[at] != c) {
                return false;
            }
            ++at;
            continue;
        }
        std::size_t digits = 0;
        while (at < line.size() && isDigit(line[at]) && digits < mostDigits) {
            ++at;
            ++digits;
        }
        if (digits == 0) {
            return false;
        }
    }
    return at == line.size();
}

bool hasEnded(const FamilyListing& listing) {
    return listing.outcome == ChildOutcome::ended || listing.outcome == ChildOutcome::notClosed;
}

class Asker {
  public:
    Asker(Platform& platform, const FamilyRequest& request)
        : platform_(platform), request_(request) {}

    FamilyCapture run() {
        const FamilyListing overview = ask("show J");
        if (!hasEnded(overview)) {
            capture_.findings.push_back(notEnded(overview));
            return std::move(capture_);
        }
        const StorcliAnswer answer = storcliAnswer(overview.output);
        const auto list = storcliControllers(overview.output);
        if (answer.isOfGeneration8()) {
            capture_.findings.push_back(storcliOfGeneration8(answer));
            return std::move(capture_);
        }
        if (!list) {
            // A utility that finds no controller says so as a failure.
            if (!text::containsNoCase(answer.description, "no controller")) {
                capture_.findings.push_back(storcliNoAnswer(overview, answer));
            }
            return std::move(capture_);
        }
        if (list->counted > list->listed && list->listed > 0) {
            capture_.findings.push_back(
                {std::string(family_code::notWhole),
                 overview.command + " counts " + std::to_string(list->counted) +
                     " controllers and lists " + std::to_string(list->listed),
                 {},
                 {}});
        }
        for (const StorcliListed& each : list->controllers) {
            captureController(each);
        }
        return std::move(capture_);
    }

  private:
    void captureController(const StorcliListed& listed) {
        FamilyController controller;
        controller.adapter = listed.number;
        controller.model = storcliModel(listed.model);
        controller.program = request_.program;
        const std::string path = "/c" + std::to_string(listed.number);
        if (take(controller, path + " show all J")) {
            const StorcliPlaces places = storcliPlaces(controller.listings.front().output);
            if (places.inEnclosures || !places.outside) {
                take(controller, path + "/eall/sall show all J");
            }
            if (places.outside) {
                take(controller, path + "/sall show all J");
            }
            take(controller, path + "/vall show all J");
            take(controller, path + "/fall show J");
        }
        decodeStorcli(controller);
        if (controller.facts.productName.empty()) {
            controller.facts.productName = listed.model;
        }
        capture_.controllers.push_back(std::move(controller));
    }

    /// False when the call did not end.
    bool take(FamilyController& controller, const std::string& words) {
        FamilyListing listing = ask(words);
        const bool ended = hasEnded(listing);
        if (!ended) {
            controller.failed = true;
            controller.findings.push_back(notEnded(listing));
        }
        controller.listings.push_back(std::move(listing));
        return ended;
    }

    [[nodiscard]] FamilyFinding notEnded(const FamilyListing& listing) const {
        if (listing.outcome != ChildOutcome::stillRunning) {
            return {std::string(family_code::cannotStart),
                    listing.command + " cannot be started",
                    {},
                    {}};
        }
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(request_.limit);
        return {std::string(family_code::utilityRuns),
                listing.command + " did not end within " + std::to_string(seconds.count()) + " s",
                {},
                {}};
    }

    /// Without "nolog" where the utility refuses that.
    FamilyListing ask(const std::string& words) {
        FamilyListing listing = run("STORCLI " + words + (keepsLog_ ? "" : std::string(noLog)));
        if (!keepsLog_ && hasEnded(listing) && refusesNoLog(listing)) {
            FamilyListing second = run("STORCLI " + words);
            if (hasEnded(second) && !refusesNoLog(second)) {
                keepsLog_ = true;
                return second;
            }
        }
        return listing;
    }

    static bool refusesNoLog(const FamilyListing& listing) {
        const StorcliAnswer answer = storcliAnswer(listing.output);
        return answer.isFailure() && (text::containsNoCase(answer.description, "un-supported") ||
                                      text::containsNoCase(answer.description, "unsupported") ||
                                      text::containsNoCase(answer.description, "nolog"));
    }

    FamilyListing run(std::string command) {
        if (request_.progress) {
            request_.progress(command);
        }
        FamilyListing listing;
        listing.command = std::move(command);
        const auto now = [this] {
            return request_.elapsed ? request_.elapsed() : std::chrono::milliseconds(0);
        };
        const std::chrono::milliseconds begin = now();
        ChildResult result = platform_.runChild(listing.command, true, request_.limit);
        listing.duration = now() - begin;
        listing.outcome = result.outcome;
        listing.exitCode = result.exitCode;
        listing.output = std::move(result.output);
        return listing;
    }

    Platform& platform_;
    const FamilyRequest& request_;
    FamilyCapture capture_;
    bool keepsLog_ = false; ///< it refuses "nolog"
};

} // namespace

std::span<const std::string_view> Storcli::programs() const {
    return programNames;
}

bool Storcli::isReading(std::string_view commandLine) const {
    std::string_view line = withoutEnd(commandLine);
    const std::string word = std::string(name()) + " ";
    if (!line.starts_with(word)) {
        return false;
    }
    line.remove_prefix(word.size());
    if (line.ends_with(noLog)) {
        line.remove_suffix(noLog.size());
    }
    return std::any_of(readingLines.begin(), readingLines.end(),
                       [line](std::string_view form) { return fits(line, form); });
}

bool Storcli::leavesFiles(std::string_view commandLine) const {
    return !withoutEnd(commandLine).ends_with(noLog);
}

FamilyCapture Storcli::capture(Platform& platform, const FamilyRequest& request) const {
    return Asker(platform, request).run();
}

FamilyLimits Storcli::limits(const Facts& facts) const {
    return storcli::limits(facts);
}

std::string Storcli::whyNotUsable(const DriveFacts& drive) const {
    return storcli::whyNotUsable(drive);
}

std::string Storcli::makeGood(std::int32_t adapter, const DriveFacts& drive) const {
    return storcli::drivePath(adapter, drive.location) + " set good force";
}

std::string Storcli::createVolume(std::int32_t adapter, const VolumeWish& wish) const {
    return storcli::createVolume(adapter, wish);
}

std::string Storcli::deleteVolume(std::int32_t adapter, const LogicalDriveFacts& volume) const {
    return storcli::deleteVolume(adapter, volume);
}

std::string Storcli::addSpare(std::int32_t adapter, const std::string& location,
                              const std::vector<std::string>& arrays) const {
    return storcli::addSpare(adapter, location, arrays);
}

std::string Storcli::removeSpare(std::int32_t adapter, const std::string& location,
                                 const std::vector<std::string>& /*arrays*/) const {
    return storcli::removeSpare(adapter, location);
}

std::string Storcli::clearForeign(std::int32_t adapter) const {
    return storcli::clearForeign(adapter);
}

std::string Storcli::setCache(std::int32_t adapter, const LogicalDriveFacts& volume,
                              std::string_view attribute, std::string_view value) const {
    return storcli::setCache(adapter, volume, attribute, value);
}

std::string Storcli::setRebuildRate(std::int32_t adapter, std::string_view rate) const {
    return storcli::setRebuildRate(adapter, rate);
}

FamilyVerdict Storcli::judge(std::string_view commandLine, std::uint32_t exitCode,
                             std::string_view output) const {
    return storcli::judge(commandLine, exitCode, output);
}

} // namespace zolex::companion
