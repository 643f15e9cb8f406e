#include "companion/rehearsal/VirtualMachine.h"

#include "companion/facts/FactsReader.h"
#include "companion/rehearsal/CopyMaker.h"
#include "foundation/Text.h"
#include "platform/CommandLineSplit.h"
#include "roles/Roles.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

namespace zolex::companion {

namespace {

/// Number of adapters before it among those of its utility.
std::size_t placeOf(const ControllerSnapshot& original) {
    const bool fromZero = original.utility == "MEGACLI" || original.utility.starts_with("CFGGEN");
    const std::int32_t place = original.utility == "HYPERWIN" ? 0
                               : fromZero                     ? original.adapter
                                                              : original.adapter - 1;
    return static_cast<std::size_t>(std::max(place, 0));
}

/// The words behind UTIL.BAT; nothing for another program.
std::optional<std::vector<std::string>> utilityWords(std::string_view commandLine) {
    std::vector<std::string> words = splitCommandLine(commandLine);
    if (words.empty()) {
        return std::nullopt;
    }
    const std::string_view path = words.front();
    if (!text::equalsNoCase(path.substr(path.find_last_of("/\\") + 1), wrapperName)) {
        return std::nullopt;
    }
    words.erase(words.begin());
    return words;
}

} // namespace

struct VirtualMachine::Parts {
    struct Original {
        std::int32_t number = 0;
        std::int32_t type = 0;
        std::vector<std::vector<std::string>> listings; ///< words of the listing commands
        VirtualCopy copy;                               ///< as it was captured
    };

    mutable zolex_sim::Server server;
    std::vector<Original> originals;
    std::vector<std::string> notCopied;
};

VirtualMachine::VirtualMachine(const Snapshot& snapshot) : parts_(std::make_unique<Parts>()) {
    std::map<std::string, std::map<std::size_t, zolex_sim::Controller>> byUtility;
    for (const ControllerSnapshot& detail : snapshot.details) {
        const RAIDController* const record = snapshot.controllers.controller(detail.index);
        MadeCopy made;
        if (record == nullptr || detail.failed) {
            made.because = "it was not captured";
        } else if (byUtility[detail.utility].contains(placeOf(detail))) {
            made.because = detail.utility + " has one controller of this number alone";
        } else {
            made = copyController(detail, record->type());
        }
        if (!made.copy) {
            parts_->notCopied.push_back("controller " + std::to_string(detail.number) + ": " +
                                        made.because);
            continue;
        }
        byUtility[detail.utility].emplace(placeOf(detail), made.copy->controller());
        std::vector<std::vector<std::string>> listings;
        for (const CapturedListing& listing : detail.commands) {
            listings.push_back(utilityWords(listing.command).value_or(std::vector<std::string>()));
        }
        parts_->originals.push_back(
            {detail.number, record->type(), std::move(listings), *std::move(made.copy)});
    }
    for (auto& [utility, controllers] : byUtility) {
        std::size_t place = 0;
        for (auto& [wanted, controller] : controllers) {
            if (wanted != place++) {
                parts_->notCopied.push_back("the numbers of the controllers of " + utility +
                                            " have a gap");
            }
            parts_->server.controllers.push_back(std::move(controller));
        }
    }
}

VirtualMachine::~VirtualMachine() = default;

const std::vector<std::string>& VirtualMachine::notCopied() const {
    return parts_->notCopied;
}

std::optional<VirtualMachine::Answer> VirtualMachine::run(std::string_view commandLine) {
    const auto words = utilityWords(commandLine);
    if (!words) {
        return std::nullopt;
    }
    zolex_sim::PlayResult result = zolex_sim::playUtility(parts_->server, *words);
    return Answer{static_cast<std::uint32_t>(result.exitCode), std::move(result.output)};
}

Facts VirtualMachine::capture(std::int32_t number) const {
    for (const Parts::Original& original : parts_->originals) {
        if (original.number != number) {
            continue;
        }
        std::vector<std::string> texts;
        for (const std::vector<std::string>& words : original.listings) {
            texts.push_back(std::move(zolex_sim::playUtility(parts_->server, words).output));
        }
        return original.copy.inPlaceOfOriginal(readFacts(original.type, texts));
    }
    return {};
}

} // namespace zolex::companion
