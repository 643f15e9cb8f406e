#include "cfggen/Cfggen.h"

#include "cfggen/Listing.h"
#include "frontend/Words.h"
#include "model/Operations.h"
#include "model/Text.h"

#include <array>
#include <optional>
#include <string_view>

namespace zolex_sim::cfggen {
namespace {

constexpr int refusedCode = 1;

/// What tells the two utilities apart.
struct Form {
    std::string_view utility;
    std::string_view title;
    Bus bus;
};

constexpr Form sasForm = {"CFGGEN", "LSI Logic IR Configuration Utility 2.00.15\n", Bus::sas};
constexpr Form scsiForm = {"CFGGEN1.02.02", "LSI Logic IM Configuration Utility 1.02.02\n",
                           Bus::scsi};

/// One command line on its way.
struct Call {
    Server& server;
    const Form& form;
    Words words;
    std::string command;              ///< its word
    int adapter = 0;                  ///< as the command line names it
    Controller* controller = nullptr; ///< once it has been found
};

PlayResult refused(const Call& call, const std::string& reason) {
    return {refusedCode,
            std::string(call.form.title) + "ERROR: " + reason + "\nCommand " + call.command +
                " Failed.\n",
            false};
}

PlayResult invalid(const Call& call) {
    return {refusedCode, std::string(call.form.title) + "ERROR: " + call.words.complaint() + "\n",
            false};
}

PlayResult completed(const Call& call, const std::string& deed) {
    return {0,
            std::string(call.form.title) + deed + formatted(" on controller %d\n", call.adapter) +
                "Command " + call.command + " Completed Successfully.\n",
            true};
}

/// Finds the controller once the whole command line has been read.
std::optional<PlayResult> findAdapter(Call& call) {
    if (!call.words.atEnd()) {
        return invalid(call);
    }
    const std::vector<Controller*> adapters = call.server.adaptersOf(call.form.utility);
    if (static_cast<std::size_t>(call.adapter) >= adapters.size()) {
        return refused(call, formatted("There is no controller %d.", call.adapter));
    }
    call.controller = adapters[static_cast<std::size_t>(call.adapter)];
    return std::nullopt;
}

/// A drive as the utility names it: a target id, which is the id on the only channel, or an
/// enclosure and a slot.
std::optional<DriveLocation> takeDrive(Call& call) {
    if (call.form.bus == Bus::scsi) {
        const std::optional<std::int64_t> id = call.words.takeNumber(greatestPlaceNumber);
        return id ? std::optional(DriveLocation{1, static_cast<int>(*id)}) : std::nullopt;
    }
    const std::optional<DriveLocation> location = parseLocation(call.words.current());
    if (!location || !location->enclosure) {
        return std::nullopt;
    }
    call.words.takeAny();
    return location;
}

PlayResult display(Call& call) {
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    return {
        0,
        std::string(call.form.title) +
            formatted("Read configuration has been initiated for controller %d\n", call.adapter) +
            listing(*call.controller, call.form.bus),
        false};
}

/// The words of the levels: a striped, a mirrored and an enhanced mirrored volume.
bool takeLevel(Words& words, RaidLevel& level) {
    struct LevelWord {
        std::string_view word;
        RaidLevel level;
    };
    constexpr std::array<LevelWord, 3> levels = {
        {{"IS", RaidLevel::raid0}, {"IM", RaidLevel::raid1}, {"IME", RaidLevel::raid1E}}};
    for (const LevelWord& entry : levels) {
        if (words.take(entry.word)) {
            level = entry.level;
            return true;
        }
    }
    return false;
}

PlayResult create(Call& call) {
    NewLogicalDrive request;
    request.spans.emplace_back();
    if (!takeLevel(call.words, request.level) || !call.words.takeSize(request.sizeMb)) {
        return invalid(call);
    }
    while (const std::optional<DriveLocation> drive = takeDrive(call)) {
        request.spans.front().push_back(*drive);
    }
    call.words.take("qsync"); // how the members are made alike does not matter to the result
    if (request.spans.front().empty() || !call.words.take("NOPROMPT")) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (const std::optional<Refusal> refusal = createLogicalDrive(*call.controller, request)) {
        return refused(call, refusal->reason);
    }
    return completed(
        call, formatted("IR volume %zu has been created", call.controller->logicalDrives.size()));
}

PlayResult makeSpare(Call& call) {
    const std::string named(call.words.current());
    const std::optional<DriveLocation> drive = takeDrive(call);
    if (!drive) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    if (const std::optional<Refusal> refusal = addSpares(*call.controller, {*drive})) {
        return refused(call, refusal->reason);
    }
    return completed(call, "The drive " + named + " is a hot spare now");
}

PlayResult deleteAll(Call& call) {
    if (!call.words.take("NOPROMPT")) {
        return invalid(call);
    }
    if (std::optional<PlayResult> result = findAdapter(call)) {
        return *result;
    }
    clearConfiguration(*call.controller);
    return completed(call, "All volumes and hot spares have been deleted");
}

// clang-format off
constexpr std::array<Command<Call>, 4> commands = {{
    {"DISPLAY",  display},
    {"CREATE",   create},
    {"HOTSPARE", makeSpare},
    {"DELETE",   deleteAll},
}};
// clang-format on

PlayResult play(Server& server, const Form& form, const std::vector<std::string>& options) {
    Call call{server, form, Words(options), {}};
    const std::optional<std::int64_t> adapter = call.words.takeNumber(greatestPlaceNumber);
    if (!adapter) {
        return invalid(call);
    }
    call.adapter = static_cast<int>(*adapter);
    const Command<Call>* command = takeCommand(commands, call.words);
    if (command == nullptr) {
        return invalid(call);
    }
    call.command = command->word;
    return command->run(call);
}

} // namespace

PlayResult playSas(Server& server, const std::vector<std::string>& options) {
    return play(server, sasForm, options);
}

PlayResult playScsi(Server& server, const std::vector<std::string>& options) {
    return play(server, scsiForm, options);
}

} // namespace zolex_sim::cfggen
