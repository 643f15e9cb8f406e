#include "conf/Create.h"
#include "conf/Dialect.h"
#include "conf/Session.h"
#include "model/Operations.h"
#include "model/Text.h"

#include <array>
#include <optional>

namespace zolex_sim::conf {
namespace {

PlayResult list(Call& call) {
    if (!call.words.take("AL") || !call.words.atEnd()) {
        return misunderstood(call);
    }
    return completed(call, call.dialect.listing(*call.controller, call.number), false);
}

// Words for the cache modes of a logical drive.
struct CacheMode {
    std::string_view word;
    const char* about;
    std::optional<ReadPolicy> read;
    std::optional<WritePolicy> write;
    bool batteryProtected;
};
// clang-format off
constexpr std::array<CacheMode, 5> cacheModes = {{
    {"ron",  "Read-cache mode: Enabled",                                             ReadPolicy::ahead, std::nullopt,              false},
    {"roff", "Read-cache mode: Disabled",                                            ReadPolicy::none,  std::nullopt,              false},
    {"wb",   "Write-cache mode: Enabled (write-back)",                               std::nullopt,      WritePolicy::writeBack,    false},
    {"wbb",  "Write-cache mode: Enabled (write-back) when protected by battery",     std::nullopt,      WritePolicy::writeBack,    true},
    {"wt",   "Write-cache mode: Disabled (write-through)",                           std::nullopt,      WritePolicy::writeThrough, false},
}};
// clang-format on

const CacheMode* takeCacheMode(Words& words) {
    for (const CacheMode& mode : cacheModes) {
        if (words.take(mode.word)) {
            return &mode;
        }
    }
    return nullptr;
}

void apply(const CacheMode& mode, LogicalDrive& drive) {
    if (mode.read) {
        drive.readPolicy = *mode.read;
    }
    if (mode.write) {
        drive.writePolicy = *mode.write;
        drive.batteryProtected = mode.batteryProtected;
    }
}

PlayResult setCache(Call& call) {
    if (!call.words.take("LOGICALDRIVE")) {
        return misunderstood(call);
    }
    const std::string name(call.words.current());
    const std::optional<std::int64_t> number = call.words.takeNumber(greatestPlaceNumber);
    if (!number) {
        return misunderstood(call);
    }
    const CacheMode* mode = takeCacheMode(call.words);
    if (mode == nullptr) {
        return misunderstood(call);
    }
    if (std::optional<PlayResult> unconfirmed = takeConfirmation(call)) {
        return *unconfirmed;
    }
    std::vector<LogicalDrive>& drives = call.controller->logicalDrives;
    if (*number < 1 || static_cast<std::size_t>(*number) > drives.size()) {
        return refused(call, "Logical drive " + name + " does not exist.");
    }
    apply(*mode, drives[static_cast<std::size_t>(*number) - 1]);
    return completed(call, "Logical drive " + name + ", " + mode->about + "\n", true);
}

PlayResult setState(Call& call) {
    std::optional<DriveLocation> drive;
    if (!call.words.take("DEVICE") || !(drive = call.words.takePlace()) ||
        !call.words.take("HSP")) {
        return misunderstood(call);
    }
    call.words.take("NOPROMPT");
    if (!call.words.atEnd()) {
        return misunderstood(call);
    }
    if (const std::optional<Refusal> refusal = addSpares(*call.controller, {*drive})) {
        return refused(call, refusal->reason);
    }
    return completed(call,
                     formatted("Channel %d, device %d is a hot spare.\n",
                               drive->enclosure.value_or(0), drive->slot),
                     true);
}

PlayResult setConfig(Call& call) {
    if (!call.words.take("DEFAULT")) {
        return misunderstood(call);
    }
    if (std::optional<PlayResult> unconfirmed = takeConfirmation(call)) {
        return *unconfirmed;
    }
    clearConfiguration(*call.controller);
    return completed(call, "All logical drives and hot spares are deleted.\n", true);
}

// clang-format off
constexpr std::array<Command<Call>, 5> commands = {{
    {"GETCONFIG", list},
    {"CREATE",    createFromWords},
    {"SETCACHE",  setCache},
    {"SETSTATE",  setState},
    {"SETCONFIG", setConfig},
}};
// clang-format on

} // namespace

PlayResult playConf(const Dialect& dialect, Server& server,
                    const std::vector<std::string>& options) {
    const std::vector<Controller*> controllers = server.adaptersOf(dialect.utility);
    Call call{dialect, Words(options), controllers.size()};
    const Command<Call>* command = takeCommand(commands, call.words);
    if (command == nullptr) {
        return misunderstood(call);
    }
    const std::optional<std::int64_t> number = call.words.takeNumber(greatestPlaceNumber);
    if (!number) {
        return misunderstood(call);
    }
    if (*number < 1 || static_cast<std::size_t>(*number) > controllers.size()) {
        return refused(
            call, formatted("Controller %lld does not exist.", static_cast<long long>(*number)));
    }
    call.number = static_cast<std::size_t>(*number);
    call.controller = controllers[call.number - 1];
    return command->run(call);
}

} // namespace zolex_sim::conf
