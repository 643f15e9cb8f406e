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

/// A logical drive as a command line names it: by its number, counted from 1.
struct NamedLogicalDrive {
    std::string name;
    std::size_t number; ///< from 1; 0 is none
    /// Its place among the logical drives of the controller.
    [[nodiscard]] std::optional<std::size_t> placeIn(const Controller& controller) const {
        return number == 0 ? std::nullopt : controller.placeNumbered(number - 1);
    }
};

std::optional<NamedLogicalDrive> takeLogicalDrive(Words& words) {
    const std::string name(words.take("LOGICALDRIVE") ? words.current() : "");
    const std::optional<std::int64_t> number =
        name.empty() ? std::nullopt : words.takeNumber(greatestPlaceNumber);
    return number ? std::optional(NamedLogicalDrive{name, static_cast<std::size_t>(*number)})
                  : std::nullopt;
}

PlayResult doesNotExist(const Call& call, const NamedLogicalDrive& named) {
    return refused(call, "Logical drive " + named.name + " does not exist.");
}

PlayResult setCache(Call& call) {
    const std::optional<NamedLogicalDrive> named = takeLogicalDrive(call.words);
    if (!named) {
        return misunderstood(call);
    }
    const CacheMode* mode = takeCacheMode(call.words);
    if (mode == nullptr) {
        return misunderstood(call);
    }
    if (std::optional<PlayResult> unconfirmed = takeConfirmation(call)) {
        return *unconfirmed;
    }
    const std::optional<std::size_t> place = named->placeIn(*call.controller);
    if (!place) {
        return doesNotExist(call, *named);
    }
    apply(*mode, call.controller->logicalDrives[*place]);
    return completed(call, "Logical drive " + named->name + ", " + mode->about + "\n", true);
}

PlayResult deleteLogicalDrive(Call& call) {
    const std::optional<NamedLogicalDrive> named = takeLogicalDrive(call.words);
    if (!named) {
        return misunderstood(call);
    }
    if (std::optional<PlayResult> unconfirmed = takeConfirmation(call)) {
        return *unconfirmed;
    }
    const std::optional<std::size_t> place = named->placeIn(*call.controller);
    if (!place) {
        return doesNotExist(call, *named);
    }
    if (const std::optional<Refusal> refusal =
            removeLogicalDrives(*call.controller, {call.controller->numberOf(*place)})) {
        return refused(call, refusal->reason);
    }
    return completed(call, "Logical drive " + named->name + " is deleted.\n", true);
}

PlayResult setState(Call& call) {
    const std::optional<DriveLocation> drive =
        call.words.take("DEVICE") ? call.words.takePlace() : std::nullopt;
    const bool ready = drive && call.dialect.removals && call.words.take("RDY");
    if (!drive || (!ready && !call.words.take("HSP"))) {
        return misunderstood(call);
    }
    call.words.take("NOPROMPT");
    if (!call.words.atEnd()) {
        return misunderstood(call);
    }
    if (const std::optional<Refusal> refusal = ready ? removeSpares(*call.controller, {*drive})
                                                     : addSpares(*call.controller, {*drive})) {
        return refused(call, refusal->reason);
    }
    return completed(call,
                     formatted("Channel %d, device %d is %s.\n", drive->enclosure.value_or(0),
                               drive->slot, ready ? "ready" : "a hot spare"),
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
constexpr std::array<Command<Call>, 1> removals = {{
    {"DELETE", deleteLogicalDrive},
}};
// clang-format on

} // namespace

PlayResult playConf(const Dialect& dialect, Server& server,
                    const std::vector<std::string>& options) {
    const std::vector<Controller*> controllers = server.adaptersOf(dialect.utility);
    Call call{dialect, Words(options), controllers.size()};
    const Command<Call>* command = takeCommand(commands, call.words);
    if (command == nullptr && dialect.removals) {
        command = takeCommand(removals, call.words);
    }
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
