#include "model/Operations.h"

#include "model/Text.h"

#include <algorithm>
#include <initializer_list>
#include <set>

namespace zolex_sim {
namespace {

Refusal refusal(RefusalKind kind, std::string reason) {
    return {kind, std::move(reason)};
}

/// The drives that a command names must all be there, be named once and have one of these statuses;
/// otherwise it is refused with the kind, as they are not what the command needs.
std::optional<Refusal> checkDrives(const Controller& controller,
                                   const std::vector<std::vector<DriveLocation>>& groups,
                                   std::initializer_list<DriveStatus> statuses, RefusalKind kind,
                                   std::string_view needed) {
    std::set<DriveLocation> named;
    for (const std::vector<DriveLocation>& group : groups) {
        for (const DriveLocation& location : group) {
            const Drive* drive = controller.driveAt(location);
            if (drive == nullptr) {
                return refusal(RefusalKind::driveNotFound,
                               "There is no physical disk at " + toText(location) + ".");
            }
            if (!named.insert(location).second) {
                return refusal(RefusalKind::driveNamedTwice,
                               "The physical disk at " + toText(location) + " is named twice.");
            }
            if (std::find(statuses.begin(), statuses.end(), drive->status) == statuses.end()) {
                return refusal(kind, "The physical disk at " + toText(location) + " is " +
                                         std::string(needed) + ": it is " +
                                         std::string(statusWord(drive->status)) + ".");
            }
        }
    }
    return std::nullopt;
}

std::optional<Refusal> checkFree(const Controller& controller,
                                 const std::vector<std::vector<DriveLocation>>& groups) {
    return checkDrives(controller, groups, {DriveStatus::good}, RefusalKind::driveNotFree,
                       "not free");
}

std::optional<Refusal> checkSpanCount(const Controller& controller, const LevelRules& rules,
                                      std::size_t spans) {
    const std::size_t most =
        rules.spanned ? static_cast<std::size_t>(controller.identity.maxSpans) : 1;
    const std::size_t least = rules.spanned ? 2 : 1;
    if (spans < least || spans > most) {
        return refusal(RefusalKind::wrongDriveCount,
                       formatted("%s takes %zu to %zu spans, not %zu.",
                                 std::string(rules.name).c_str(), least, most, spans));
    }
    return std::nullopt;
}

} // namespace

std::optional<Refusal> checkShape(const Controller& controller, RaidLevel level,
                                  const std::vector<std::vector<DriveLocation>>& spans) {
    const LevelRules& rules = rulesOf(level);
    const std::string name(rules.name);
    if (!controller.supports(level)) {
        return refusal(RefusalKind::levelUnsupported,
                       name + " is not supported by this controller.");
    }
    if (std::optional<Refusal> refused = checkSpanCount(controller, rules, spans.size())) {
        return refused;
    }
    const int most = rules.maxDrives > 0 ? rules.maxDrives : controller.identity.maxDrivesPerSpan;
    for (const std::vector<DriveLocation>& span : spans) {
        if (span.size() < static_cast<std::size_t>(rules.minDrives) ||
            span.size() > static_cast<std::size_t>(most)) {
            return refusal(RefusalKind::wrongDriveCount,
                           formatted("%s takes %d to %d physical disks in a span, not %zu.",
                                     name.c_str(), rules.minDrives, most, span.size()));
        }
        if (span.size() != spans.front().size()) {
            return refusal(RefusalKind::wrongDriveCount,
                           "All spans must hold the same number of physical disks.");
        }
    }
    return std::nullopt;
}

std::optional<Refusal> checkStripe(const Controller& controller, int stripeKb) {
    const ControllerIdentity& identity = controller.identity;
    const bool powerOfTwo = stripeKb > 0 && (stripeKb & (stripeKb - 1)) == 0;
    if (!powerOfTwo || stripeKb < identity.minStripeKb || stripeKb > identity.maxStripeKb) {
        return refusal(RefusalKind::badStripe,
                       formatted("A stripe size of %d kB is not supported.", stripeKb));
    }
    return std::nullopt;
}

namespace {

/// The checks of a new logical drive's settings; `room` is what its array has for it, in MB.
std::optional<Refusal> checkSettings(const Controller& controller, const NewLogicalDrive& request,
                                     std::int64_t room) {
    const ControllerIdentity& identity = controller.identity;
    if (std::optional<Refusal> refused =
            checkStripe(controller, request.stripeKb.value_or(identity.defaultStripeKb))) {
        return refused;
    }
    const std::int64_t sizeMb = request.sizeMb.value_or(room);
    if (sizeMb < 1 || sizeMb > room) {
        return refusal(RefusalKind::badSize,
                       formatted("A size of %lld MB does not fit: the array has room for %lld MB.",
                                 static_cast<long long>(sizeMb), static_cast<long long>(room)));
    }
    if (controller.logicalDrives.size() >= static_cast<std::size_t>(identity.maxLogicalDrives)) {
        return refusal(RefusalKind::tooMany, formatted("The controller takes no more than %d "
                                                       "virtual disks.",
                                                       identity.maxLogicalDrives));
    }
    return std::nullopt;
}

/// The logical drive that the request describes, as large as `room` when it asks for no size.
LogicalDrive newLogicalDrive(const ControllerIdentity& identity, const NewLogicalDrive& request,
                             std::size_t array, std::int64_t room) {
    const WritePolicy writePolicy = request.writePolicy.value_or(identity.defaultWritePolicy);
    const bool protectedByDefault = !request.writePolicy && identity.defaultBatteryProtected;
    return {array,
            request.level,
            request.sizeMb.value_or(room),
            request.stripeKb.value_or(identity.defaultStripeKb),
            writePolicy,
            request.readPolicy.value_or(identity.defaultReadPolicy),
            request.name,
            request.batteryProtected.value_or(protectedByDefault) &&
                writePolicy == WritePolicy::writeBack,
            request.partitioned,
            std::nullopt};
}

/// Writes down the numbers of the logical drives, as their places are about to change.
void keepNumbers(Controller& controller) {
    for (std::size_t place = 0; place < controller.logicalDrives.size(); ++place) {
        controller.logicalDrives[place].number = controller.numberOf(place);
    }
}

/// Puts the logical drive among the others, with the lowest free number.
void insertLogicalDrive(Controller& controller, LogicalDrive drive) {
    const std::size_t number = controller.nextNumber();
    keepNumbers(controller);
    drive.number = number;
    const auto behind =
        std::find_if(controller.logicalDrives.begin(), controller.logicalDrives.end(),
                     [&](const LogicalDrive& other) { return other.number > number; });
    controller.logicalDrives.insert(behind, std::move(drive));
}

bool isSpare(const Drive& drive) {
    return drive.status == DriveStatus::hotspare || drive.status == DriveStatus::dedicated;
}

/// A member or a spare is free again, unless it has failed.
void release(Drive& drive) {
    if (drive.status == DriveStatus::online || drive.status == DriveStatus::rebuild ||
        isSpare(drive)) {
        drive.status = DriveStatus::good;
    }
}

/// Takes the array away; those behind it move up.
void removeArray(Controller& controller, std::size_t array) {
    for (const std::vector<DriveLocation>& span : controller.arrays[array].spans) {
        for (const DriveLocation& location : span) {
            release(*controller.driveAt(location));
        }
    }
    controller.arrays.erase(controller.arrays.begin() + static_cast<std::ptrdiff_t>(array));
    for (LogicalDrive& drive : controller.logicalDrives) {
        drive.array -= drive.array > array ? 1 : 0;
    }
}

void removeEmptyArrays(Controller& controller) {
    for (std::size_t array = controller.arrays.size(); array-- > 0;) {
        if (std::none_of(controller.logicalDrives.begin(), controller.logicalDrives.end(),
                         [&](const LogicalDrive& drive) { return drive.array == array; })) {
            removeArray(controller, array);
        }
    }
}

} // namespace

std::optional<Refusal> createLogicalDrive(Controller& controller, const NewLogicalDrive& request) {
    if (std::optional<Refusal> refused = checkFree(controller, request.spans)) {
        return refused;
    }
    if (std::optional<Refusal> refused = checkShape(controller, request.level, request.spans)) {
        return refused;
    }
    const std::int64_t capacity = controller.capacity(request.level, request.spans);
    if (std::optional<Refusal> refused = checkSettings(controller, request, capacity)) {
        return refused;
    }
    for (const std::vector<DriveLocation>& span : request.spans) {
        for (const DriveLocation& location : span) {
            controller.driveAt(location)->status = DriveStatus::online;
        }
    }
    insertLogicalDrive(controller, newLogicalDrive(controller.identity, request,
                                                   controller.arrays.size(), capacity));
    controller.arrays.push_back({request.spans});
    return std::nullopt;
}

std::optional<Refusal> addLogicalDrive(Controller& controller, std::size_t array,
                                       const NewLogicalDrive& request) {
    if (array >= controller.arrays.size()) {
        return refusal(RefusalKind::driveNotFound, "There is no such array.");
    }
    if (std::optional<Refusal> refused =
            checkShape(controller, request.level, controller.arrays[array].spans)) {
        return refused;
    }
    for (const LogicalDrive& drive : controller.logicalDrives) {
        const LevelRules& alone = rulesOf(rulesOf(drive.level).alone ? drive.level : request.level);
        if (drive.array == array && alone.alone) {
            return refusal(RefusalKind::tooMany,
                           std::string(alone.name) + " takes an array to itself.");
        }
    }
    const std::int64_t room = controller.roomLeft(array, request.level);
    if (std::optional<Refusal> refused = checkSettings(controller, request, room)) {
        return refused;
    }
    insertLogicalDrive(controller, newLogicalDrive(controller.identity, request, array, room));
    return std::nullopt;
}

std::optional<Refusal> addSpares(Controller& controller,
                                 const std::vector<DriveLocation>& locations) {
    if (std::optional<Refusal> refused = checkFree(controller, {locations})) {
        return refused;
    }
    const auto spares = static_cast<std::size_t>(
        std::count_if(controller.drives.begin(), controller.drives.end(), isSpare));
    if (spares + locations.size() > static_cast<std::size_t>(controller.identity.maxHotSpares)) {
        return refusal(RefusalKind::tooMany,
                       formatted("The controller takes no more than %d hot spares.",
                                 controller.identity.maxHotSpares));
    }
    for (const DriveLocation& location : locations) {
        controller.driveAt(location)->status = DriveStatus::hotspare;
    }
    return std::nullopt;
}

std::optional<Refusal> removeLogicalDrives(Controller& controller,
                                           const std::vector<std::size_t>& numbers) {
    std::set<std::size_t> named;
    for (const std::size_t number : numbers) {
        if (!controller.placeNumbered(number)) {
            return refusal(RefusalKind::noLogicalDrive,
                           formatted("There is no virtual disk %zu.", number));
        }
        if (!named.insert(number).second) {
            return refusal(RefusalKind::driveNamedTwice,
                           formatted("The virtual disk %zu is named twice.", number));
        }
    }
    keepNumbers(controller);
    std::erase_if(controller.logicalDrives, [&](const LogicalDrive& drive) {
        return named.count(drive.number.value_or(0)) > 0;
    });
    removeEmptyArrays(controller);
    return std::nullopt;
}

std::optional<Refusal> removeSpares(Controller& controller,
                                    const std::vector<DriveLocation>& locations) {
    if (std::optional<Refusal> refused =
            checkDrives(controller, {locations}, {DriveStatus::hotspare, DriveStatus::dedicated},
                        RefusalKind::notHotSpare, "no hot spare")) {
        return refused;
    }
    for (const DriveLocation& location : locations) {
        release(*controller.driveAt(location));
    }
    return std::nullopt;
}

void clearConfiguration(Controller& controller) {
    controller.logicalDrives.clear();
    controller.arrays.clear();
    for (Drive& drive : controller.drives) {
        release(drive);
    }
}

void clearForeign(Controller& controller) {
    for (Drive& drive : controller.drives) {
        if (drive.status == DriveStatus::foreign) {
            drive.status = DriveStatus::good;
            drive.foreignConfiguration.reset();
        }
    }
}

} // namespace zolex_sim
