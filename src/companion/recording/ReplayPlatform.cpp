#include "companion/recording/ReplayPlatform.h"

#include "companion/families/Family.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace zolex::companion {

namespace {

/// What stands in the place of the command line in the key of a call that has none; a NUL begins no
/// command line.
struct KeyOf {
    std::string operator()(const PciCall& /*call*/) const { return {'\0', 'p'}; }
    std::string operator()(const ChildCall& call) const { return callKey(call.command); }
    std::string operator()(const PauseCall& /*call*/) const { return {'\0', 's'}; }
    std::string operator()(const LocalTimeCall& /*call*/) const { return {'\0', 't'}; }
    std::string operator()(const FirmwareCall& /*call*/) const { return {'\0', 'f'}; }
    std::string operator()(const UtilitiesCall& /*call*/) const { return {'\0', 'u'}; }
};

std::string keyOf(const CallKind& call) {
    return std::visit(KeyOf{}, call);
}

/// The number at `position` of a text, 0 when there is none.
int numberAt(std::string_view text, std::size_t position, std::size_t digits) {
    int number = 0;
    if (position + digits <= text.size()) {
        const char* const begin = text.data() + position;
        std::from_chars(begin, begin + digits, number);
    }
    return number;
}

} // namespace

/// A list whose every collection is answered by the recording.
class ReplayPlatform::Devices : public OrderedPciDeviceList {
  public:
    explicit Devices(ReplayPlatform& platform)
        : OrderedPciDeviceList(platform.console()), platform_(platform) {}

    std::size_t count() override { return count_; }

  protected:
    std::vector<PciDevice> enumerate() override {
        const auto& call = std::get<PciCall>(platform_.answerTo(PciCall{}));
        count_ = call.count;
        return call.devices;
    }

  private:
    ReplayPlatform& platform_;
    std::size_t count_ = 0;
};

ReplayPlatform::ReplayPlatform(const Recording& recording, Platform& system, ReplayMode mode)
    : recording_(recording), system_(system), mode_(mode) {
    for (std::size_t i = 0; i < recording.calls.size(); ++i) {
        answers_[keyOf(recording.calls[i].call)].calls.push_back(i);
    }
}

std::string ReplayPlatform::fileName() const {
    return recording_.file.empty() ? "the recording" : recording_.file;
}

const CallKind& ReplayPlatform::answerTo(const CallKind& wanted) {
    if (mode_ == ReplayMode::strict) {
        return nextAnswer(wanted);
    }
    const auto found = answers_.find(keyOf(wanted));
    if (found == answers_.end()) {
        throw LackingCall(fileName() + " does not hold the call " + callName(wanted));
    }
    Answers& answers = found->second;
    const std::size_t index = std::min(answers.used, answers.calls.size() - 1);
    ++answers.used;
    return recording_.calls[answers.calls[index]].call;
}

const CallKind& ReplayPlatform::nextAnswer(const CallKind& wanted) {
    // What was found when the recording began is no call of the run.
    while (next_ < recording_.calls.size() &&
           std::holds_alternative<UtilitiesCall>(recording_.calls[next_].call)) {
        ++next_;
    }
    if (next_ == recording_.calls.size()) {
        throw LackingCall(fileName() + " ends before the call " + callName(wanted));
    }
    const RecordedCall& recorded = recording_.calls[next_];
    if (keyOf(recorded.call) != keyOf(wanted)) {
        std::string place = fileName();
        if (recorded.line > 0) {
            place += ":" + std::to_string(recorded.line);
        }
        throw LackingCall(place + " holds the call " + callName(recorded.call) +
                          " in the place of " + callName(wanted));
    }
    ++next_;
    return recorded.call;
}

ChildResult ReplayPlatform::runChild(std::string_view commandLine, bool capture,
                                     std::chrono::milliseconds /*limit*/) {
    ChildCall wanted;
    wanted.command = recordedCommand(commandLine);
    if (isOfAbsentFamily(commandLine)) {
        return {};
    }
    const auto& answer = std::get<ChildCall>(answerTo(wanted));
    if (capture && !answer.capture) {
        throw LackingCall(fileName() + " does not hold the output of " + wanted.command);
    }
    ChildResult result = answer.result;
    if (!capture) {
        result.output.clear();
    }
    return result;
}

bool ReplayPlatform::isOfAbsentFamily(std::string_view commandLine) const {
    const Family* const family = findFamily(commandLine);
    return family != nullptr &&
           std::none_of(recording_.calls.begin(), recording_.calls.end(),
                        [family](const RecordedCall& recorded) {
                            const auto* const child = std::get_if<ChildCall>(&recorded.call);
                            return child != nullptr && findFamily(child->command) == family;
                        });
}

std::unique_ptr<PCI_DevList_VC> ReplayPlatform::pciDevices() {
    return std::make_unique<Devices>(*this);
}

void ReplayPlatform::pauseOneSecond() {
    if (mode_ == ReplayMode::strict) {
        nextAnswer(PauseCall{});
    }
}

LocalTime ReplayPlatform::localTime() {
    if (mode_ == ReplayMode::keyed && answers_.count(keyOf(LocalTimeCall{})) == 0) {
        return timeOfStamp(recording_.header.madeAt);
    }
    return std::get<LocalTimeCall>(answerTo(LocalTimeCall{})).time;
}

FirmwareNames ReplayPlatform::firmware() {
    return std::get<FirmwareCall>(answerTo(FirmwareCall{})).names;
}

Utilities ReplayPlatform::utilities() const {
    const auto found = answers_.find(keyOf(UtilitiesCall{}));
    if (found == answers_.end()) {
        return {};
    }
    return std::get<UtilitiesCall>(recording_.calls[found->second.calls.back()].call).found;
}

LocalTime timeOfStamp(std::string_view stamp) {
    LocalTime time;
    // "2026-11-21T21:05:00+01:00"
    if (stamp.size() < 19) {
        return time;
    }
    time.year = numberAt(stamp, 0, 4);
    time.month = std::clamp(numberAt(stamp, 5, 2), 1, 12);
    time.day = std::clamp(numberAt(stamp, 8, 2), 1, 31);
    time.hour = std::clamp(numberAt(stamp, 11, 2), 0, 23);
    time.minute = std::clamp(numberAt(stamp, 14, 2), 0, 59);
    time.second = std::clamp(numberAt(stamp, 17, 2), 0, 59);
    const int offset = numberAt(stamp, 20, 2) * 60 + numberAt(stamp, 23, 2);
    time.offsetMinutes = stamp.substr(19).starts_with('-') ? -offset : offset;
    return time;
}

} // namespace zolex::companion
