#include "companion/commands/Timings.h"

#include "companion/commands/MachineAccess.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <cstddef>
#include <variant>

namespace zolex::companion {

namespace {

/// "MEGACLI" of "UTIL.BAT MEGACLI -pdList -a0"; empty for what is no call of a utility.
std::string utilityOfCommand(const std::string& command) {
    const std::vector<std::string> words = splitCommandLine(command);
    return words.size() > 1 && words.front() == "UTIL.BAT" ? words[1] : std::string();
}

std::chrono::milliseconds median(std::vector<std::chrono::milliseconds> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>((times.size() - 1) / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

} // namespace

std::optional<UsualTimes> usualTimes(Context& context, const std::vector<std::string>& files) {
    std::map<std::string, std::vector<std::chrono::milliseconds>> all;
    for (const std::string& file : files) {
        const std::optional<Recording> recording = loadRecording(context, file);
        if (!recording) {
            return std::nullopt;
        }
        for (const RecordedCall& recorded : recording->calls) {
            const auto* const child = std::get_if<ChildCall>(&recorded.call);
            // One that did not end took as long as it was given.
            if (child == nullptr || (child->result.outcome != ChildOutcome::ended &&
                                     child->result.outcome != ChildOutcome::notClosed)) {
                continue;
            }
            if (std::string utility = utilityOfCommand(child->command); !utility.empty()) {
                all[std::move(utility)].push_back(child->duration);
            }
        }
    }
    UsualTimes usual;
    for (auto& [utility, times] : all) {
        usual.emplace(utility, median(std::move(times)));
    }
    return usual;
}

} // namespace zolex::companion
