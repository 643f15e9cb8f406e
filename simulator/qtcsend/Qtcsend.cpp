#include "qtcsend/Qtcsend.h"

#include "frontend/Words.h"
#include "model/Operations.h"
#include "model/Text.h"
#include "qtcsend/Listing.h"

#include <array>
#include <optional>
#include <string_view>

namespace zolex_sim::qtcsend {
namespace {

constexpr int refusedCode = 1;

/// One command line on its way.
struct Call {
    Server& server;
    Words words;
    std::int64_t number = 0;          ///< of the controller, as the command line names it
    Controller* controller = nullptr; ///< once it has been found
};

std::string banner() {
    return "Norvik Kestrix Send Utility 7.12.02\n";
}

PlayResult completed(const std::string& text, bool changed) {
    return {0, banner() + text + "\nCommand completed successfully.\n", changed};
}

PlayResult refused(const std::string& reason) {
    return {refusedCode, banner() + "Error: " + reason + "\n\nCommand failed.\n", false};
}

/// Finds the controller once the whole command line has been read.
std::optional<PlayResult> findController(Call& call) {
    if (!call.words.atEnd()) {
        return refused(call.words.complaint());
    }
    const std::vector<Controller*> controllers = call.server.adaptersOf("QTCSEND");
    if (call.number < 1 || static_cast<std::size_t>(call.number) > controllers.size()) {
        return refused(
            formatted("There is no controller %lld.", static_cast<long long>(call.number)));
    }
    call.controller = controllers[static_cast<std::size_t>(call.number) - 1];
    return std::nullopt;
}

PlayResult getConfig(Call& call) {
    if (!call.words.take("AL")) {
        return refused(call.words.complaint());
    }
    if (std::optional<PlayResult> result = findController(call)) {
        return *result;
    }
    return completed(formatted("Read configuration has been initiated for controller %lld\n",
                               static_cast<long long>(call.number)) +
                         listing(*call.controller),
                     false);
}

PlayResult created(const Controller& controller) {
    return completed(formatted("Logical drive %zu has been created on array %s.\n",
                               controller.logicalDrives.size(),
                               arrayName(controller.logicalDrives.back().array).c_str()),
                     true);
}

std::optional<std::size_t> takeArray(Words& words) {
    for (std::size_t array = 0; array < maxArrays; ++array) {
        if (words.take(arrayName(array))) {
            return array;
        }
    }
    return std::nullopt;
}

PlayResult create(Call& call) {
    if (!call.words.take("LOGICALDRIVE")) {
        return refused(call.words.complaint());
    }
    const bool isNew = call.words.take("NEWARRAY");
    const std::optional<std::size_t> array = isNew ? std::nullopt : takeArray(call.words);
    NewLogicalDrive request;
    std::optional<RaidLevel> level;
    if ((!isNew && !array) || !call.words.takeSize(request.sizeMb) ||
        !(level = call.words.takeLevel())) {
        return refused(call.words.complaint());
    }
    request.level = *level;
    if (isNew && !call.words.takePlaces("NOPROMPT", request.spans.emplace_back())) {
        return refused(call.words.complaint());
    }
    if (!call.words.take("NOPROMPT")) {
        return refused(call.words.complaint());
    }
    if (std::optional<PlayResult> result = findController(call)) {
        return *result;
    }
    Controller& controller = *call.controller;
    if (isNew && controller.arrays.size() >= maxArrays) {
        return refused(formatted("The controller takes no more than %zu arrays.", maxArrays));
    }
    if (const std::optional<Refusal> refusal = isNew
                                                   ? createLogicalDrive(controller, request)
                                                   : addLogicalDrive(controller, *array, request)) {
        return refused(refusal->reason);
    }
    return created(controller);
}

PlayResult setState(Call& call) {
    const std::optional<DriveLocation> drive = call.words.takePlace();
    if (!drive || !call.words.take("HSP")) {
        return refused(call.words.complaint());
    }
    if (std::optional<PlayResult> result = findController(call)) {
        return *result;
    }
    if (const std::optional<Refusal> refusal = addSpares(*call.controller, {*drive})) {
        return refused(refusal->reason);
    }
    return completed(formatted("The drive at channel %d, SCSI ID %d is a hot spare now.\n",
                               drive->enclosure.value_or(0), drive->slot),
                     true);
}

PlayResult setConfig(Call& call) {
    if (!call.words.take("DEFAULT") || !call.words.take("NOPROMPT")) {
        return refused(call.words.complaint());
    }
    if (std::optional<PlayResult> result = findController(call)) {
        return *result;
    }
    clearConfiguration(*call.controller);
    return completed("All arrays, logical drives and hot spares have been deleted.\n", true);
}

// clang-format off
constexpr std::array<Command<Call>, 4> commands = {{
    {"GETCONFIG", getConfig},
    {"CREATE",    create},
    {"SETSTATE",  setState},
    {"SETCONFIG", setConfig},
}};
// clang-format on

} // namespace

PlayResult play(Server& server, const std::vector<std::string>& options) {
    Call call{server, Words(options)};
    const Command<Call>* command = takeCommand(commands, call.words);
    const std::optional<std::int64_t> number =
        command != nullptr ? call.words.takeNumber(greatestPlaceNumber) : std::nullopt;
    if (!number) {
        return refused(call.words.complaint());
    }
    call.number = *number;
    return command->run(call);
}

} // namespace zolex_sim::qtcsend
