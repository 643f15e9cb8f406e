#include "hyperwin/Hyperwin.h"

#include "frontend/BlockListing.h"
#include "frontend/Words.h"
#include "model/Operations.h"
#include "model/Text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace zolex_sim::hyperwin {
namespace {

constexpr int refusedCode = 1;

// Status codes of the last line. Callers look for them anywhere in the output: no other line may
// hold such digits, so drives are listed without serial numbers and sizes.
constexpr std::string_view success = "0000";
constexpr std::string_view failure = "0001";
constexpr std::string_view notReady = "000a";

std::string banner() {
    return "HyperWin Command Line Utility 1.07\n";
}

std::string line(std::string_view key, std::string_view value) {
    constexpr std::size_t colon = 32;
    return keyLine(0, key, colon, value);
}

PlayResult ended(const std::string& text, std::string_view code, bool changed = false) {
    return {code == failure ? refusedCode : 0, banner() + text + line("Error Code (hex)", code),
            changed};
}

PlayResult refused(const std::string& reason) {
    return ended("Error: " + reason + "\n", failure);
}

/// One command line on its way.
struct Call {
    Server& server;
    Words words;
    Controller* controller = nullptr; ///< once it has been found
};

/// Finds the adapter once the whole command line has been read.
std::optional<PlayResult> findAdapter(Call& call) {
    if (!call.words.atEnd()) {
        return refused(call.words.complaint());
    }
    const std::vector<Controller*> adapters = call.server.adaptersOf("HYPERWIN");
    if (adapters.empty()) {
        return refused("There is no adapter.");
    }
    call.controller = adapters.front();
    return std::nullopt;
}

const Drive* driveOfStatus(const Controller& controller, DriveStatus status) {
    const auto found = std::find_if(controller.drives.begin(), controller.drives.end(),
                                    [&](const Drive& drive) { return drive.status == status; });
    return found == controller.drives.end() ? nullptr : &*found;
}

/// The lines about the only array. The total counts the spare too.
std::string arrayLines(const Controller& controller, bool withSpare) {
    const LogicalDrive& drive = controller.logicalDrives.front();
    const bool striped = drive.level == RaidLevel::raid0;
    const bool sound = controller.stateOf(drive) == LogicalDriveState::optimal;
    const std::size_t members = controller.arrays[drive.array].spans.front().size();
    const std::size_t total = members + (withSpare ? 1 : 0);
    return line("LOGICAL_ARRAY", std::to_string(drive.array)) +
           (sound ? "" : line("ARRAY_STATUS", logicalDriveStateText(controller, drive))) +
           (drive.writePolicy == WritePolicy::writeBack ? "+WRITE_CACHE\n" : "-WRITE_CACHE\n") +
           line("RAID_MODE", striped ? "STRIPE" : "MIRROR") +
           (striped ? line("STRIPE_SIZE", formatted("%dKB", drive.stripeKb)) : "") +
           line("TOTAL_PHYSICAL_DRIVES", std::to_string(total));
}

PlayResult listAdapter(const Controller& controller) {
    const Drive* spare = driveOfStatus(controller, DriveStatus::hotspare);
    const bool configured = !controller.logicalDrives.empty();
    return ended("Adapter 0\n" +
                     (configured ? arrayLines(controller, spare != nullptr) : std::string()) +
                     (spare == nullptr ? "" : line("SPARE", std::to_string(spare->location.slot))),
                 success);
}

PlayResult listDrive(const Controller& controller, int number) {
    const Drive* drive = controller.driveAt({1, number - 1});
    const bool answers = drive != nullptr && drive->status != DriveStatus::bad &&
                         drive->status != DriveStatus::failed;
    return ended(formatted("Adapter 0, drive %d\n", number), answers ? success : notReady);
}

/// "/D", a digit for the device (0 is the adapter itself) and a digit for the adapter.
PlayResult list(Call& call) {
    const std::string_view option = call.words.current();
    const bool understood = option.size() == 4 && startsWithIgnoringCase(option, "/D") &&
                            option[2] >= '0' && option[2] <= '9' && option[3] == '0';
    if (!understood) {
        return refused(call.words.complaint());
    }
    const int device = option[2] - '0';
    call.words.takeAny();
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    return device == 0 ? listAdapter(*call.controller) : listDrive(*call.controller, device);
}

/// Takes what follows an option's name, joined to it or apart.
std::string takeValue(Words& words, std::string_view option) {
    const std::string word = words.takeAny();
    return word.size() > option.size() ? word.substr(option.size()) : words.takeAny();
}

/// "M" for a mirror, or "S" and the stripe size in KB.
bool readMode(std::string_view mode, NewLogicalDrive& request) {
    if (equalsIgnoringCase(mode, "M")) {
        request.level = RaidLevel::raid1;
        return true;
    }
    const std::optional<std::int64_t> stripe =
        startsWithIgnoringCase(mode, "S") ? parseWhole(mode.substr(1)) : std::nullopt;
    request.level = RaidLevel::raid0;
    request.stripeKb = static_cast<int>(std::min<std::int64_t>(stripe.value_or(0), 1'000'000));
    return stripe.has_value();
}

std::vector<DriveLocation> freeDrives(const Controller& controller) {
    std::vector<DriveLocation> free;
    for (const Drive& drive : controller.drives) {
        if (drive.status == DriveStatus::good) {
            free.push_back(drive.location);
        }
    }
    std::sort(free.begin(), free.end());
    return free;
}

/// Builds the array of all drives, or of all but the last, which becomes the spare.
std::optional<std::string> build(Controller& controller, NewLogicalDrive request, bool spare) {
    if (!controller.logicalDrives.empty()) {
        return "There is a logical array already.";
    }
    Controller changed = controller;
    std::vector<DriveLocation> drives = freeDrives(controller);
    std::optional<Refusal> refusal;
    if (spare && !drives.empty()) {
        refusal = addSpares(changed, {drives.back()});
        drives.pop_back();
    }
    request.spans = {drives};
    if (!refusal) {
        refusal = createLogicalDrive(changed, request);
    }
    if (refusal) {
        return refusal->reason;
    }
    controller = std::move(changed);
    return std::nullopt;
}

PlayResult create(Call& call) {
    NewLogicalDrive request;
    const std::string mode = takeValue(call.words, "/A");
    if (!readMode(mode, request)) {
        return refused(mode.empty() ? call.words.complaint() : "Unexpected parameter: " + mode);
    }
    const bool spare = call.words.take("/!");
    if (!call.words.take("/S")) {
        return refused(call.words.atEnd() ? "The command must be confirmed by /S."
                                          : call.words.complaint());
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (const std::optional<std::string> reason = build(*call.controller, request, spare)) {
        return refused(*reason);
    }
    return ended("The logical array has been created.\n", success, true);
}

/// "W" turns the write cache on; "WR" turns it off.
PlayResult setWriteCache(Call& call) {
    const std::string mode = takeValue(call.words, "/O");
    const bool off = equalsIgnoringCase(mode, "WR");
    if (!off && !equalsIgnoringCase(mode, "W")) {
        return refused(mode.empty() ? call.words.complaint() : "Unexpected parameter: " + mode);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (call.controller->logicalDrives.empty()) {
        return refused("There is no logical array.");
    }
    call.controller->logicalDrives.front().writePolicy =
        off ? WritePolicy::writeThrough : WritePolicy::writeBack;
    return ended(off ? "The write cache is off.\n" : "The write cache is on.\n", success, true);
}

PlayResult deleteAll(Call& call) {
    if (!equalsIgnoringCase(takeValue(call.words, "/E"), "a")) {
        return refused("Unexpected parameter: only /Ea deletes arrays.");
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    clearConfiguration(*call.controller);
    return ended("All logical arrays have been deleted.\n", success, true);
}

} // namespace

PlayResult play(Server& server, const std::vector<std::string>& options) {
    Call call{server, Words(options)};
    if (call.words.take("/L")) {
        return list(call);
    }
    struct Command {
        std::string_view option; ///< what its first word begins with
        PlayResult (*run)(Call&);
    };
    constexpr std::array<Command, 3> commands = {
        {{"/A", create}, {"/O", setWriteCache}, {"/E", deleteAll}}};
    for (const Command& command : commands) {
        if (startsWithIgnoringCase(call.words.current(), command.option)) {
            return command.run(call);
        }
    }
    return refused(call.words.complaint());
}

} // namespace zolex_sim::hyperwin
