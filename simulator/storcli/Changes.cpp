#include "storcli/Changes.h"

#include "model/Text.h"
#include "storcli/Create.h"
#include "storcli/Targets.h"

#include <algorithm>
#include <string_view>

namespace zolex_sim::storcli {
namespace {

constexpr std::int64_t mostSpares = 256;

Refusal stateRefusal() {
    return {wrongState, "device state doesn't support requested command"};
}

bool has(const Words& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// The value of "name=value"; nothing where the word is missing.
std::optional<std::string> valueOf(const Words& words, std::string_view name) {
    for (const std::string& word : words) {
        if (word.size() > name.size() && word[name.size()] == '=' && word.starts_with(name)) {
            return word.substr(name.size() + 1);
        }
    }
    return std::nullopt;
}

/// The groups of "dgs=0,1". False when one of them does not exist.
bool readGroups(const Controller& controller, const std::string& text,
                std::vector<std::size_t>& groups) {
    for (const int number : parseNumbers(text).value_or(std::vector<int>{-1})) {
        if (number < 0 || static_cast<std::size_t>(number) >= controller.groups.size()) {
            return false;
        }
        groups.push_back(static_cast<std::size_t>(number));
    }
    return true;
}

std::optional<Refusal> addSpare(Controller& controller, Drive& drive, const Words& words) {
    std::vector<std::size_t> groups;
    const std::optional<std::string> list = valueOf(words, "dgs");
    if (list && !readGroups(controller, *list, groups)) {
        return Refusal{ownRefusal, "Invalid drive group number"};
    }
    if (drive.state == DriveState::foreign) {
        return Refusal{ownRefusal, "Operation not allowed."};
    }
    if (drive.state != DriveState::good) {
        return stateRefusal();
    }
    const auto spares =
        std::count_if(controller.drives.begin(), controller.drives.end(), [](const Drive& other) {
            return other.state == DriveState::globalSpare ||
                   other.state == DriveState::dedicatedSpare;
        });
    if (spares >= mostSpares) {
        return Refusal{tooManySpares, "too many hot spares"};
    }
    for (const std::size_t group : groups) {
        for (const DriveLocation& place : controller.groups[group].spans.front()) {
            if (drive.blocks() < controller.driveAt(place)->blocks()) {
                return Refusal{driveTooSmall, "disk doesn't have enough capacity"};
            }
        }
    }
    drive.state = groups.empty() ? DriveState::globalSpare : DriveState::dedicatedSpare;
    drive.groups = groups;
    return std::nullopt;
}

std::optional<Refusal> deleteSpare(Controller& /*controller*/, Drive& drive,
                                   const Words& /*words*/) {
    if (drive.state != DriveState::globalSpare && drive.state != DriveState::dedicatedSpare) {
        return stateRefusal();
    }
    drive.state = DriveState::good;
    drive.groups.clear();
    return std::nullopt;
}

std::optional<Refusal> setGood(Controller& /*controller*/, Drive& drive, const Words& words) {
    if (drive.state == DriveState::jbod && !has(words, "force")) {
        return Refusal{ownRefusal, "Operation not allowed: the drive may hold data, use force."};
    }
    if (drive.state == DriveState::foreign) {
        return Refusal{ownRefusal, "Operation not allowed."};
    }
    if (drive.state != DriveState::jbod && drive.state != DriveState::bad) {
        return stateRefusal();
    }
    drive.state = DriveState::good;
    return std::nullopt;
}

std::optional<Refusal> setJbod(Controller& controller, Drive& drive, const Words& /*words*/) {
    if (!controller.jbodOn || drive.state == DriveState::foreign) {
        return Refusal{ownRefusal, "Operation not allowed."};
    }
    if (drive.state != DriveState::good) {
        return stateRefusal();
    }
    drive.state = DriveState::jbod;
    return std::nullopt;
}

std::optional<Refusal> deleteJbod(Controller& controller, Drive& drive, const Words& words) {
    return drive.state == DriveState::jbod ? setGood(controller, drive, words)
                                           : std::optional(stateRefusal());
}

std::optional<Refusal> startLocate(Controller& /*controller*/, Drive& drive,
                                   const Words& /*words*/) {
    drive.locating = true;
    return std::nullopt;
}

std::optional<Refusal> stopLocate(Controller& /*controller*/, Drive& drive,
                                  const Words& /*words*/) {
    drive.locating = false;
    return std::nullopt;
}

Volume& volumeOf(Controller& controller, int number) {
    return *std::find_if(controller.volumes.begin(), controller.volumes.end(),
                         [&](const Volume& volume) { return volume.number == number; });
}

std::optional<Refusal> deleteVolume(Controller& controller, int number, const Words& words) {
    if (controller.volumeNumbered(number)->hasSystem && !has(words, "force")) {
        return Refusal{ownRefusal, "VD has OS/FS, use force to delete it."};
    }
    controller.remove(number);
    return std::nullopt;
}

std::optional<Refusal> setWriteCache(Controller& controller, int number, const Words& words) {
    const std::string word = valueOf(words, "wrcache").value_or("");
    const std::optional<Cache> cache =
        equalsIgnoringCase(word, "fwb") ? std::optional(Cache::alwaysWriteBack) : cacheNamed(word);
    if (!cache) {
        return Refusal{ownRefusal, "syntax error, unexpected " + word};
    }
    volumeOf(controller, number).cache = *cache;
    return std::nullopt;
}

/// Sets a property that has two words.
std::optional<Refusal> setEither(bool& property, const std::string& word, std::string_view on,
                                 std::string_view off) {
    if (!equalsIgnoringCase(word, on) && !equalsIgnoringCase(word, off)) {
        return Refusal{ownRefusal, "syntax error, unexpected " + word};
    }
    property = equalsIgnoringCase(word, on);
    return std::nullopt;
}

std::optional<Refusal> setReadCache(Controller& controller, int number, const Words& words) {
    return setEither(volumeOf(controller, number).readAhead, valueOf(words, "rdcache").value_or(""),
                     "ra", "nora");
}

std::optional<Refusal> setIoPolicy(Controller& controller, int number, const Words& words) {
    return setEither(volumeOf(controller, number).cachedIo, valueOf(words, "iopolicy").value_or(""),
                     "cached", "direct");
}

std::optional<Refusal> setName(Controller& controller, int number, const Words& words) {
    const std::string name = valueOf(words, "name").value_or("");
    if (name.size() > 15) {
        return Refusal{ownRefusal, "VD name is longer than 15 characters."};
    }
    volumeOf(controller, number).name = name;
    return std::nullopt;
}

std::optional<Refusal> initialiseVolume(Controller& controller, int number, const Words& words) {
    Volume& volume = volumeOf(controller, number);
    if (volume.hasSystem && !has(words, "force")) {
        return Refusal{ownRefusal, "VD has OS/FS, use force to initialise it."};
    }
    volume.consistent = true;
    return std::nullopt;
}

std::optional<Refusal> stopInitialising(Controller& /*controller*/, int /*number*/,
                                        const Words& /*words*/) {
    return Refusal{ownRefusal, "Init is not in progress."};
}

std::optional<Refusal> createVolumes(Controller& controller, const Words& words) {
    return addVolumes(controller, {words.begin() + 2, words.end()});
}

std::optional<Refusal> deleteConfiguration(Controller& controller, const Words& words) {
    const bool force = has(words, "force");
    if (!force && std::any_of(controller.volumes.begin(), controller.volumes.end(),
                              [](const Volume& volume) { return volume.hasSystem; })) {
        return Refusal{ownRefusal, "VD has OS/FS, use force to delete it."};
    }
    while (!controller.volumes.empty()) {
        controller.remove(controller.volumes.back().number);
    }
    return std::nullopt;
}

std::optional<Refusal> setJbodMode(Controller& controller, const Words& words) {
    if (!controller.supportsJbod) {
        return Refusal{ownRefusal, "Operation not allowed."};
    }
    const std::string word = valueOf(words, "jbod").value_or("");
    const bool inUse =
        std::any_of(controller.drives.begin(), controller.drives.end(),
                    [](const Drive& drive) { return drive.state == DriveState::jbod; });
    if (equalsIgnoringCase(word, "off") && inUse && !has(words, "force")) {
        return Refusal{ownRefusal, "Operation not allowed: there are JBOD drives, use force."};
    }
    std::optional<Refusal> refusal = setEither(controller.jbodOn, word, "on", "off");
    if (!refusal && !controller.jbodOn) {
        for (Drive& drive : controller.drives) {
            drive.state = drive.state == DriveState::jbod ? DriveState::good : drive.state;
        }
    }
    return refusal;
}

std::optional<Refusal> setRebuildRate(Controller& controller, const Words& words) {
    const std::optional<std::int64_t> rate = parseWhole(valueOf(words, "rebuildrate").value_or(""));
    if (!rate || *rate > 100) {
        return Refusal{ownRefusal, "Invalid rate, it must be from 0 to 100."};
    }
    controller.rebuildRate = static_cast<int>(*rate);
    return std::nullopt;
}

std::optional<Refusal> setFactoryDefaults(Controller& controller, const Words& /*words*/) {
    controller.rebuildRate = 30;
    return std::nullopt;
}

} // namespace

std::optional<Refusal> clearForeign(Controller& controller) {
    if (foreignSets(controller).empty()) {
        return Refusal{wrongState, "No foreign configuration"};
    }
    for (Drive& drive : controller.drives) {
        drive.state = drive.state == DriveState::foreign ? DriveState::good : drive.state;
    }
    return std::nullopt;
}

const std::vector<Verb<DriveChange>>& driveVerbs() {
    static const std::vector<Verb<DriveChange>> verbs = {
        {"add hotsparedrive", addSpare, "Add Hot Spare Succeeded.", "Add Hot Spare Failed."},
        {"delete hotsparedrive", deleteSpare, "Delete Hot Spare Succeeded.",
         "Delete Hot Spare Failed."},
        {"set good", setGood, "Set Drive Good Succeeded.", "Set Drive Good Failed."},
        {"set jbod", setJbod, "Set Drive JBOD Succeeded.", "Set Drive JBOD Failed."},
        {"delete jbod", deleteJbod, "Delete Drive JBOD Succeeded.", "Delete Drive JBOD Failed."},
        {"start locate", startLocate, "Start Drive Locate Succeeded.",
         "Start Drive Locate Failed."},
        {"stop locate", stopLocate, "Stop Drive Locate Succeeded.", "Stop Drive Locate Failed."},
    };
    return verbs;
}

const std::vector<Verb<VolumeChange>>& volumeVerbs() {
    static const std::vector<Verb<VolumeChange>> verbs = {
        {"delete", deleteVolume, "Delete VD Succeeded.", "Delete VD failed."},
        {"set wrcache", setWriteCache, "None", "Set VD failed."},
        {"set rdcache", setReadCache, "None", "Set VD failed."},
        {"set iopolicy", setIoPolicy, "None", "Set VD failed."},
        {"set name", setName, "None", "Set VD failed."},
        {"start init", initialiseVolume, "Start INIT Operation Success",
         "Start VD Operation Failed"},
        {"stop init", stopInitialising, "Stop INIT Operation Success", "Stop VD Operation Failed"},
    };
    return verbs;
}

const std::vector<Verb<ControllerChange>>& controllerVerbs() {
    static const std::vector<Verb<ControllerChange>> verbs = {
        {"add vd", createVolumes, "Add VD Succeeded.", ""},
        {"delete config", deleteConfiguration, "Delete Config Succeeded.", ""},
        {"set jbod", setJbodMode, "None", ""},
        {"set rebuildrate", setRebuildRate, "None", ""},
        {"set factory defaults", setFactoryDefaults, "Set Factory Defaults Succeeded.", ""},
    };
    return verbs;
}

} // namespace zolex_sim::storcli
