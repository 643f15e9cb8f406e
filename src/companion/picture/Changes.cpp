#include "companion/picture/Changes.h"

#include "companion/picture/Roles.h"
#include "companion/planning/OldCommand.h"
#include "companion/planning/PlanFaults.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"
#include "companion/text/TypedWord.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

struct ReasonWords {
    std::string_view code;
    std::string_view text;    ///< before the keyword
    bool hasKeyword;          ///< the keyword follows
    std::string_view without; ///< what is said without a keyword
};

constexpr std::array<ReasonWords, 16> reasonWords{{
    {"listed", "listed in ", true, "listed"},
    {"all-remaining", "all that remain, in ", true, "all that remain"},
    {"like-first", "as large as the first drive, in ", true, "as large as the first drive"},
    {"first-free", "the first free drive, for ", true, "the first free drive"},
    {"largest-last", "the last of the largest free drives, for ", true,
     "the last of the largest free drives"},
    {"class-default", "", false, "the default of its class"},
    {"policy-default", "", false, "the default of policies"},
    {"given", "given in ", true, "given"},
    {"captured-policy", "", false, "as it was captured"},
    {"left-to-controller", "", false, "left to the controller"},
    {"by-slot", "named by its slot in ", true, "named by its slot"},
    {"by-serial", "named by its serial number in ", true, "named by its serial number"},
    {"by-kind", "of the kind that is asked for in ", true, "of the kind that is asked for"},
    {"rest", "of the rest, in ", true, "of the rest"},
    {"spare", "chosen by ", true, "chosen as a spare"},
    {"level", "chosen by ", true, "chosen by the number of drives"},
}};

std::string smallLetters(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

/// The captured controller with small letters; without what no picture shows.
ControllerSnapshot withSmallLetters(const ControllerSnapshot& controller) {
    ControllerSnapshot now = controller;
    now.listings.clear();
    now.facts.drives.clear();
    for (MachineDrive& drive : now.drives) {
        drive.array = smallLetters(drive.array);
    }
    for (MachineArray& array : now.arrays) {
        array.letter = smallLetters(array.letter);
    }
    return now;
}

/// Puts the groups and spares of a layout on the drives of a controller that has lost its own.
class Arranger {
  public:
    explicit Arranger(ControllerSnapshot& controller) : controller_(controller) {
        for (std::size_t i = 0; i < controller_.drives.size(); ++i) {
            places_.emplace(controller_.drives[i].facts.location, i);
        }
        controller_.arrays.clear();
        controller_.facts.logicalDrives.clear();
        controller_.facts.foreignConfigurations.clear();
        for (MachineDrive& drive : controller_.drives) {
            const Role role = roleOf(drive);
            drive.array.clear();
            drive.facts.hotspare = HotspareKind::none;
            if (role == Role::member || role == Role::hotspare) {
                drive.facts.state = DriveState::free;
            }
        }
    }

    void group(const LayoutGroup& group, const std::string& letter) {
        MachineArray array;
        array.letter = letter;
        array.id = group.id;
        array.drives = group.drives();
        for (const std::string& location : array.drives) {
            if (MachineDrive* const drive = find(location)) {
                drive->array = letter;
                const bool failed = roleOf(*drive) == Role::failed;
                drive->facts.state = failed ? drive->facts.state : DriveState::member;
            }
        }
        for (const LayoutVolume& volume : group.volumes) {
            LogicalDriveFacts logicalDrive;
            logicalDrive.id = volume.id;
            logicalDrive.array = group.id;
            logicalDrive.raidType = volume.raidType;
            logicalDrive.spans = group.spans;
            if (volume.capacityBytes.value_or(0) > 0) {
                logicalDrive.capacityBytes = volume.capacityBytes;
            }
            logicalDrive.stripSizeBytes = volume.stripSizeBytes;
            logicalDrive.writeCache = volume.writeCache;
            logicalDrive.readCache = volume.readCache;
            logicalDrive.reportedState = volume.reportedState;
            logicalDrive.health = volume.health;
            array.logicalDrives.push_back(controller_.facts.logicalDrives.size());
            controller_.facts.logicalDrives.push_back(std::move(logicalDrive));
        }
        controller_.arrays.push_back(std::move(array));
    }

    void spare(const LayoutSpare& spare) {
        if (MachineDrive* const drive = find(spare.location)) {
            drive->facts.state = DriveState::hotspare;
            drive->facts.hotspare =
                spare.isDedicated ? HotspareKind::dedicated : HotspareKind::global;
        }
    }

    void clearForeign(const std::string& location) {
        MachineDrive* const drive = find(location);
        if (drive != nullptr && drive->facts.state == DriveState::foreign) {
            drive->facts.state = DriveState::free;
        }
    }

    /// Whether some drive of these has a job already.
    [[nodiscard]] bool isTaken(const std::vector<std::string>& locations) {
        return std::any_of(locations.begin(), locations.end(), [this](const std::string& place) {
            const MachineDrive* const drive = find(place);
            return drive != nullptr &&
                   (!drive->array.empty() || drive->facts.state == DriveState::hotspare);
        });
    }

  private:
    MachineDrive* find(const std::string& location) {
        const auto place = places_.find(location);
        return place == places_.end() ? nullptr : &controller_.drives[place->second];
    }

    ControllerSnapshot& controller_;
    std::map<std::string, std::size_t> places_;
};

std::string letterOf(const LayoutGroup& group, std::size_t index) {
    const bool isLetter =
        !group.id.empty() &&
        std::all_of(group.id.begin(), group.id.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    if (isLetter) {
        return group.id;
    }
    std::string letter(1, static_cast<char>('A' + index % 26));
    return index < 26 ? letter : static_cast<char>('A' + index / 26 % 26 - 1) + letter;
}

/// An array that stands on the same drives before and after has one colour; what goes has colours
/// of its own.
void chooseColours(ControllerChange& change) {
    std::map<std::vector<std::string>, std::size_t> byDrives;
    std::size_t next = 0;
    for (const MachineArray& array : change.after.arrays) {
        std::vector<std::string> drives = array.drives;
        std::sort(drives.begin(), drives.end());
        byDrives.emplace(std::move(drives), next);
        change.afterColours.emplace(array.letter, next++);
    }
    for (const MachineArray& array : change.now.arrays) {
        std::vector<std::string> drives = array.drives;
        std::sort(drives.begin(), drives.end());
        const auto same = byDrives.find(drives);
        change.nowColours.emplace(array.letter, same == byDrives.end() ? next++ : same->second);
    }
}

std::map<std::string, std::size_t> placesOf(const ControllerSnapshot& controller) {
    std::map<std::string, std::size_t> places;
    for (std::size_t i = 0; i < controller.drives.size(); ++i) {
        places.emplace(controller.drives[i].facts.location, i);
    }
    return places;
}

void markDrives(ControllerChange& change, const std::map<std::string, std::size_t>& places,
                const std::vector<std::string>& locations, bool DriveChange::*mark) {
    for (const std::string& location : locations) {
        const auto place = places.find(location);
        if (place != places.end()) {
            change.drives[place->second].*mark = true;
        }
    }
}

bool losesForeign(const std::vector<Loss>& losses, const std::string& location) {
    return std::any_of(losses.begin(), losses.end(), [&](const Loss& loss) {
        return loss.kind == "foreign" &&
               (loss.id == location ||
                std::find(loss.drives.begin(), loss.drives.end(), location) != loss.drives.end());
    });
}

/// Groups and spares that stand and that no step deletes, and that the plan does not name, stay.
void keepWhatStays(const ControllerPlanning& planning, const ControllerChange& change,
                   Arranger& arranger) {
    for (const LayoutGroup& group : planning.before.groups) {
        const bool goes =
            std::any_of(group.volumes.begin(), group.volumes.end(), [&](const LayoutVolume& row) {
                return change.lostLogicalDrives.find(row.id) != change.lostLogicalDrives.end();
            });
        if (!goes && !arranger.isTaken(group.drives())) {
            const std::vector<std::string> drives = group.drives();
            const auto standing = std::find_if(
                change.now.drives.begin(), change.now.drives.end(), [&](const MachineDrive& drive) {
                    return !drives.empty() && drive.facts.location == drives.front();
                });
            const bool known = standing != change.now.drives.end() && !standing->array.empty();
            arranger.group(group, known ? standing->array : smallLetters(letterOf(group, 0)));
        }
    }
    for (const LayoutSpare& spare : planning.before.spares) {
        const bool goes =
            std::any_of(planning.losses.begin(), planning.losses.end(), [&](const Loss& loss) {
                return loss.kind == "hotspare" && loss.id == spare.location;
            });
        if (!goes && !arranger.isTaken({spare.location})) {
            arranger.spare(spare);
        }
    }
}

void noteReasons(const ControllerPlanning& planning, ControllerChange& change,
                 const std::map<std::string, std::size_t>& places) {
    const auto note = [&](const std::string& location, const PlanReason& reason) {
        const auto place = places.find(location);
        if (place != places.end()) {
            change.drives[place->second].reason = reasonText(reason);
        }
    };
    for (const PlannedArray& array : planning.arrays) {
        for (const PlannedDrive& drive : array.drives) {
            note(drive.location, drive.reason);
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        note(spare.location, spare.reason);
    }
}

/// What the steps create: arrays, logical drives, and the drives that get a job by it.
void noteCreated(const ControllerPlanning& planning, ControllerChange& change,
                 const std::map<std::string, std::size_t>& places) {
    std::set<std::string> created;
    for (const PlanStep& step : planning.steps) {
        created.insert(step.creates.begin(), step.creates.end());
    }
    std::map<std::string, std::vector<std::string>> volumes;
    for (const PlannedVolume& volume : planning.volumes) {
        volumes[volume.array].push_back(volume.id);
    }
    for (const PlannedArray& array : planning.arrays) {
        std::vector<std::string> drives;
        for (const PlannedDrive& drive : array.drives) {
            drives.push_back(drive.location);
        }
        const bool isNew = created.count(array.id) > 0;
        bool named = false;
        for (const std::string& volume : volumes[array.id]) {
            if (created.count(volume) > 0) {
                change.newLogicalDrives.insert(volume);
                named = true;
            }
        }
        if (isNew) {
            change.newArrays.insert(array.id);
            markDrives(change, places, drives, &DriveChange::isNew);
            if (!named) { // the line of the array makes what is on it
                change.newLogicalDrives.insert(volumes[array.id].begin(), volumes[array.id].end());
            }
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        if (created.count(spare.location) > 0) {
            markDrives(change, places, {spare.location}, &DriveChange::isNew);
        }
    }
}

std::string specifierFault(const SpecifierMatch& match) {
    const std::string specifier = printable(match.specifier);
    const std::string actual = match.actual.empty() ? "not known" : printable(match.actual);
    const char kind = match.specifier.empty() ? ' ' : match.specifier[0];
    switch (kind) {
    case 'd':
        return specifier + ", this controller has " + actual +
               (actual == "1" ? " drive" : " drives");
    case 't':
        return specifier + ", this controller is " + actual;
    case 'c':
        return specifier + ", this is controller " + actual;
    case 'o':
        return specifier + ", this is number " + actual + " of its utility";
    case 'm':
        return specifier + ", the type of this machine is " + actual;
    case 's':
        return specifier + ", the serial number of this machine is " + actual;
    default:
        return specifier + ", and it is " + actual;
    }
}

std::string controllersText(const std::vector<std::int32_t>& numbers) {
    std::string text = numbers.size() == 1 ? "controller " : "controllers ";
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        text += i == 0 ? "" : i + 1 == numbers.size() ? " and " : ", ";
        text += std::to_string(numbers[i]);
    }
    return text;
}

/// How long the location is that begins there; 0: none does.
std::size_t locationSize(std::string_view text, std::size_t at) {
    const std::size_t end = std::min(text.find_first_not_of("0123456789:", at), text.size());
    const std::string_view word = text.substr(at, end - at);
    const std::size_t colon = word.find(':');
    const bool isLocation = colon != std::string_view::npos && colon > 0 &&
                            colon + 1 < word.size() && word.find(':', colon + 1) == word.npos;
    return isLocation ? word.size() : 0;
}

/// What separates two locations there.
std::string_view separatorAt(std::string_view text, std::size_t at) {
    for (const std::string_view separator : {std::string_view(", "), std::string_view(" ")}) {
        if (text.substr(at, separator.size()) == separator) {
            return separator;
        }
    }
    return {};
}

/// Whether something stands on the server that the plan does not delete.
bool leavesSomething(const MachinePlan& plan) {
    const auto stays = [](const ControllerPlanning& planning, std::string_view kind,
                          const std::string& id) {
        return std::none_of(planning.losses.begin(), planning.losses.end(), [&](const Loss& loss) {
            return loss.kind == kind &&
                   (loss.id == id ||
                    std::find(loss.drives.begin(), loss.drives.end(), id) != loss.drives.end());
        });
    };
    for (const ControllerPlanning& planning : plan.controllers) {
        for (const LogicalDriveFacts& row : planning.controller.facts.logicalDrives) {
            if (stays(planning, "logical_drive", row.id)) {
                return true;
            }
        }
        for (const LayoutSpare& spare : planning.before.spares) {
            if (stays(planning, "hotspare", spare.location)) {
                return true;
            }
        }
        for (const std::string& location : planning.before.foreignDrives) {
            if (stays(planning, "foreign", location)) {
                return true;
            }
        }
    }
    return reachesOtherControllers(plan.oldCommand);
}

} // namespace

ControllerChange changeOf(const ControllerPlanning& planning) {
    ControllerChange change;
    change.now = withSmallLetters(planning.controller);
    change.drives.resize(change.now.drives.size());
    const std::map<std::string, std::size_t> places = placesOf(change.now);
    for (const Loss& loss : planning.losses) {
        if (loss.kind == "logical_drive") {
            change.lostLogicalDrives.insert(loss.id);
        } else {
            markDrives(change, places, {loss.id}, &DriveChange::isLost);
        }
        markDrives(change, places, loss.drives, &DriveChange::isLost);
    }
    noteReasons(planning, change, places);
    noteCreated(planning, change, places);
    change.hasAfter = planning.disposition == Disposition::planned ||
                      (planning.disposition == Disposition::refused &&
                       (!planning.after.groups.empty() || !planning.after.spares.empty()));
    if (change.hasAfter) {
        change.after = change.now;
        Arranger arranger(change.after);
        for (std::size_t i = 0; i < planning.after.groups.size(); ++i) {
            arranger.group(planning.after.groups[i], letterOf(planning.after.groups[i], i));
        }
        for (const LayoutSpare& spare : planning.after.spares) {
            arranger.spare(spare);
        }
        for (const MachineDrive& drive : change.now.drives) {
            if (losesForeign(planning.losses, drive.facts.location)) {
                arranger.clearForeign(drive.facts.location);
            }
        }
        if (planning.disposition == Disposition::planned) {
            keepWhatStays(planning, change, arranger);
        }
    }
    chooseColours(change);
    return change;
}

ControllerChange changeOf(const ControllerDiff& diff, const ControllerSnapshot& controller) {
    ControllerChange change;
    change.now = withSmallLetters(controller);
    change.drives.resize(change.now.drives.size());
    change.hasAfter = diff.result == ControllerDiff::Result::different;
    if (change.hasAfter) {
        const std::map<std::string, std::size_t> places = placesOf(change.now);
        const Comparison& comparison = diff.comparison;
        for (const std::size_t index : comparison.groupsInTheWay) {
            if (index < diff.captured.groups.size()) {
                const LayoutGroup& group = diff.captured.groups[index];
                markDrives(change, places, group.drives(), &DriveChange::isLost);
                for (const LayoutVolume& volume : group.volumes) {
                    change.lostLogicalDrives.insert(volume.id);
                }
            }
        }
        markDrives(change, places, comparison.sparesInTheWay, &DriveChange::isLost);
        change.after = change.now;
        Arranger arranger(change.after);
        for (std::size_t i = 0; i < diff.wanted.groups.size(); ++i) {
            const LayoutGroup& group = diff.wanted.groups[i];
            arranger.group(group, letterOf(group, i));
            const std::size_t stand =
                i < comparison.groups.size() ? comparison.groups[i].volumesThatStand : 0;
            for (std::size_t j = stand; j < group.volumes.size(); ++j) {
                change.newLogicalDrives.insert(group.volumes[j].id);
            }
            if (stand == 0) {
                change.newArrays.insert(letterOf(group, i));
                markDrives(change, places, group.drives(), &DriveChange::isNew);
            }
        }
        for (std::size_t i = 0; i < diff.wanted.spares.size(); ++i) {
            arranger.spare(diff.wanted.spares[i]);
            if (i >= comparison.spares.size() || comparison.spares[i].empty()) {
                markDrives(change, places, {diff.wanted.spares[i].location}, &DriveChange::isNew);
            }
        }
    }
    chooseColours(change);
    return change;
}

std::string reasonText(const PlanReason& reason) {
    const auto words =
        std::find_if(reasonWords.begin(), reasonWords.end(),
                     [&](const ReasonWords& row) { return row.code == reason.code; });
    if (words == reasonWords.end()) {
        return printable(reason.code);
    }
    std::string text = words->hasKeyword && !reason.keyword.empty()
                           ? std::string(words->text) + printable(reason.keyword)
                           : std::string(words->without);
    const bool tellsMore = reason.code.substr(0, 3) == "by-" || reason.code == "rest" ||
                           reason.code == "spare" || reason.code == "level";
    return tellsMore && !reason.as.empty() ? text + " (" + printable(reason.as) + ")" : text;
}

std::string settingsText(const std::string& writeCache, const std::string& readCache,
                         const std::optional<std::uint64_t>& stripSizeBytes) {
    std::string text;
    const auto add = [&text](const std::string& word) {
        text += (text.empty() || word.empty() ? "" : ", ") + word;
    };
    LogicalDriveFacts facts;
    facts.writeCache = writeCache;
    add(cacheOf(facts));
    add(readCache == "Off"                 ? "no read-ahead"
        : readCache == "ReadAhead"         ? "read-ahead"
        : readCache == "AdaptiveReadAhead" ? "adaptive read-ahead"
                                           : "");
    add(stripSizeBytes ? "strip " + sizeText(*stripSizeBytes) : "");
    return text;
}

std::string attributeText(std::string_view attribute) {
    constexpr std::pair<std::string_view, std::string_view> words[] = {
        {"raid_type", "level"},
        {"capacity_bytes", "size"},
        {"strip_size_bytes", "strip size"},
        {"write_cache_policy", "write cache"},
        {"read_cache_policy", "read cache"},
        {"hotspare_type", "spare"},
    };
    for (const auto& [name, word] : words) {
        if (name == attribute) {
            return std::string(word);
        }
    }
    return printable(attribute);
}

std::string lossesText(const std::vector<Loss>& losses) {
    std::size_t logicalDrives = 0;
    std::size_t spares = 0;
    std::size_t foreign = 0;
    std::uint64_t bytes = 0;
    for (const Loss& loss : losses) {
        const bool isLogicalDrive = loss.kind == "logical_drive";
        logicalDrives += isLogicalDrive ? 1 : 0;
        bytes += isLogicalDrive ? loss.capacityBytes : 0;
        spares += loss.kind == "hotspare" ? 1 : 0;
        foreign += loss.kind == "foreign" ? 1 : 0;
    }
    std::vector<std::string> pieces;
    if (logicalDrives > 0) {
        pieces.push_back(countText(logicalDrives, "logical drive", "logical drives") +
                         (bytes > 0 ? " (" + sizeText(bytes) + ")" : ""));
    }
    if (spares > 0) {
        pieces.push_back(countText(spares, "hot spare", "hot spares"));
    }
    if (foreign > 0) {
        pieces.push_back(countText(foreign, "foreign drive", "foreign drives"));
    }
    std::string text;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        text += i == 0 ? "" : i + 1 == pieces.size() ? " and " : ", ";
        text += pieces[i];
    }
    return text;
}

std::string matchText(const PolicyMatch& match) {
    if (!match.matched) {
        return "not asked: an earlier policy matched";
    }
    std::string text;
    for (const EntryMatch& entry : match.entries) {
        if (*match.matched) {
            if (!entry.matched) {
                continue;
            }
            for (const SpecifierMatch& specifier : entry.specifiers) {
                text += (text.empty() ? "" : ",") + printable(specifier.specifier);
            }
            return text.empty() ? "because " + printable(entry.keyword) + " holds"
                                : "because " + text + " holds";
        }
        const auto failing = std::find_if(entry.specifiers.begin(), entry.specifiers.end(),
                                          [](const SpecifierMatch& row) { return !row.holds; });
        if (failing != entry.specifiers.end()) {
            text += (text.empty() ? "" : "; ") + specifierFault(*failing);
        }
    }
    if (*match.matched) {
        return "matched";
    }
    return text.empty() ? "no: it does not say what it applies to" : "no: " + text;
}

std::string dispositionText(const ControllerPlanning& planning) {
    const std::string because = printable(planning.because);
    switch (planning.disposition) {
    case Disposition::already: {
        constexpr std::string_view text = "as the policy says";
        return because.substr(0, text.size()) == text || because.empty()
                   ? std::string(text) + because.substr(std::min(text.size(), because.size()))
                   : std::string(text) + " (" + because + ")";
    }
    case Disposition::skipped:
        return "skipped" + (because.empty() ? "" : ": " + because);
    case Disposition::refused:
        return "refused" + (because.empty() ? "" : ": " + because);
    case Disposition::planned:
        break;
    }
    return {};
}

std::string faultsText(const MachinePlan& plan) {
    std::size_t errors = 0;
    std::vector<std::int32_t> numbers;
    const auto count = [](const std::vector<Finding>& findings) {
        return static_cast<std::size_t>(
            std::count_if(findings.begin(), findings.end(), [](const Finding& finding) {
                return finding.severity == Severity::error;
            }));
    };
    errors += count(plan.diagnostics) + count(plan.policiesFindings);
    for (const ControllerPlanning& planning : plan.controllers) {
        if (planning.disposition == Disposition::refused) {
            const std::size_t own = count(planning.diagnostics);
            errors += own;
            // Where the policies are at fault the controllers are not.
            if (own > 0) {
                numbers.push_back(planning.controller.number);
            }
        }
    }
    const std::string text = countText(errors, "error", "errors");
    return numbers.empty() ? text : text + ", on " + controllersText(numbers);
}

std::string withRanges(const std::string& text) {
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        std::vector<std::string> locations;
        std::string_view separator;
        for (std::size_t size = locationSize(text, at); size > 0;) {
            locations.push_back(text.substr(at, size));
            at += size;
            separator = locations.size() > 1 ? separator : separatorAt(text, at);
            const bool goesOn = !separator.empty() && separatorAt(text, at) == separator;
            size = goesOn ? locationSize(text, at + separator.size()) : 0;
            at += size > 0 ? separator.size() : 0;
        }
        std::string ranges;
        for (const std::string& range : locationRanges(locations)) {
            ranges += (ranges.empty() ? "" : std::string(separator)) + range;
        }
        result += ranges;
        // The rest up to where the next location can begin.
        const std::size_t next = std::min(text.find_first_of(" (", at), text.size());
        const std::size_t end = std::min(next + 1, text.size());
        result += text.substr(at, end - at);
        at = end;
    }
    return result;
}

CarryOut carryOutOf(const MachinePlan& plan, const std::string& savedTo) {
    const bool isLosing = !plan.losses().empty();
    CarryOut way;
    way.sentence = isLosing ? "To agree to exactly this, and carry it out:" : "To carry it out:";
    const std::string file = savedTo.empty() ? "plan.json" : savedTo;
    if (savedTo.empty()) {
        const std::string command = plan.command.empty()
                                        ? "zolexctl plan " + policiesArgument(plan.policiesFile)
                                        : plan.command;
        way.commands.push_back(command + " -o " + file);
    }
    const bool hasSkipped = std::any_of(
        plan.controllers.begin(), plan.controllers.end(),
        [](const ControllerPlanning& each) { return each.disposition == Disposition::skipped; });
    way.commands.push_back("zolexctl apply " + typedWord(file) +
                           (isLosing ? " --destroy " + plan.consent : "") +
                           (hasSkipped ? " --allow-skipped" : ""));
    return way;
}

std::string oldWarning(const MachinePlan& plan) {
    const std::vector<std::string>& commands = plan.oldCommand.wouldRun;
    const bool erases =
        std::any_of(commands.begin(), commands.end(), [](const std::string& command) {
            return command.find(" /r ") != std::string::npos;
        });
    return erases && leavesSomething(plan)
               ? "With /r zolex first erases everything on all controllers of the server, also "
                 "what stays in this plan."
               : "";
}

std::string rebuildText(const ControllerDiff& diff) {
    const auto listed = [](std::string_view one, std::string_view many,
                           const std::vector<std::string>& things) {
        std::string text;
        for (const std::string& thing : things) {
            text += (text.empty() ? std::string(things.size() == 1 ? one : many) + ": " : ", ") +
                    printable(thing);
        }
        return text.empty() ? text : text + ".";
    };
    const std::string rebuilt =
        listed("This takes a rebuild", "These take a rebuild", diff.takesRebuild);
    const std::string removed = listed("To be removed", "To be removed", diff.toRemove);
    return rebuilt + (rebuilt.empty() || removed.empty() ? "" : " ") + removed;
}

std::string planRefusedText(const MachineDiff& diff) {
    return "The plan is refused: zolexctl plan " + printable(policiesArgument(diff.wantedBy)) +
           " says why.";
}

std::vector<RehearsalSentence> rehearsalSentences(const MachinePlan& plan) {
    const Rehearsal& rehearsal = plan.rehearsal;
    std::vector<RehearsalSentence> sentences;
    if (plan.isApplicable() && !plan.changesSomething()) {
        return sentences;
    }
    for (const std::string& reason : rehearsal.notDoneBecause) {
        const std::string text = printable(reason);
        constexpr std::string_view begin = "not rehearsed";
        const bool isWhole = text.substr(0, begin.size()) == begin;
        sentences.push_back({isWhole ? "N" + text.substr(1) : "Not rehearsed: " + text, true});
    }
    if (!rehearsal.done) {
        if (sentences.empty() && plan.changesSomething()) {
            sentences.push_back({"Not rehearsed.", true});
        }
        return sentences;
    }
    std::string text = "Rehearsed on a virtual copy of this machine";
    text += rehearsal.durationMs > 0 ? " in " + std::to_string(rehearsal.durationMs) + " ms" : "";
    if (!plan.isApplicable()) {
        sentences.push_back({text + ": refused.", true});
        return sentences;
    }
    if (!rehearsal.endsAsPlanned) {
        sentences.push_back({text + ": it does not end as planned.", true});
        return sentences;
    }
    text += ": ends as planned";
    if (rehearsal.faultsTried == 0) {
        sentences.push_back({text + ".", false});
        return sentences;
    }
    const std::string tried = std::to_string(rehearsal.faultsTried);
    text += rehearsal.faultsTried == 1
                ? "; the command was also made to fail"
                : "; each of the " + tried + " commands was also made to fail";
    if (rehearsal.resumesAsPlanned == rehearsal.faultsTried) {
        text += rehearsal.faultsTried == 1 ? ", and resuming ended as planned."
                                           : ", and resuming ended as planned each time.";
        sentences.push_back({text, false});
        return sentences;
    }
    text += ", and resuming ended as planned " + std::to_string(rehearsal.resumesAsPlanned) +
            " of " + tried + " times.";
    sentences.push_back({text, true});
    return sentences;
}

} // namespace zolex::companion
