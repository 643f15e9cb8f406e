#include "companion/lint/Models.h"

#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"
#include "policies/Policy.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::int32_t driveMb = 100000;
constexpr std::int32_t lastSubtype = 14;

Kind makeKind(std::int32_t type, std::int32_t subtype) {
    return {type, subtype, rulesFor(type, subtype)};
}

/// Whether two kinds of a type are planned and commanded alike. ARCCONF alone has words that go by
/// the subtype, and those are for the same modes.
bool isAlike(const Kind& one, const Kind& other) {
    return one.type == other.type && one.rules == other.rules;
}

void addNew(std::vector<Kind>& kinds, const Kind& kind) {
    const auto same = [&kind](const Kind& each) { return isAlike(each, kind); };
    if (std::none_of(kinds.begin(), kinds.end(), same)) {
        kinds.push_back(kind);
    }
}

/// A kind, and what its model is called.
struct NamedKind {
    CString name;
    Kind kind;
};

/// A controller with `drives` equal drives, channel by channel.
RAIDController controllerOf(const Kind& kind, std::size_t drives) {
    RAIDController controller;
    controller.setType(kind.type);
    controller.setSubtype(kind.subtype);
    controller.setScanOrder(1);
    for (std::size_t i = 0; i < drives; ++i) {
        const auto number = static_cast<std::int32_t>(i);
        controller.setSizeAndTarget(RAIDController::firstChannel + number / RAIDController::ids,
                                    number % RAIDController::ids, driveMb, number);
    }
    return controller;
}

RaidArray arrayOf(std::size_t drives, std::int32_t firstId = 0) {
    RaidArray array;
    for (std::size_t id = 0; id < drives; ++id) {
        array.addDrive({RAIDController::firstChannel, firstId + static_cast<std::int32_t>(id)});
    }
    array.capacityMb = static_cast<std::int64_t>(drives) * driveMb;
    return array;
}

CommandLines linesOf(const Kind& kind, const RAIDConfiguration& layout) {
    SilentReport silent;
    return commandLines(controllerOf(kind, RAIDController::ids), 1, layout, {}, silent);
}

LogicalDrive logicalDriveOf(std::int32_t level) {
    LogicalDrive drive;
    drive.arrayIndex = 0;
    drive.raidLevel = level;
    return drive;
}

LogicalSpecification specificationOf(std::int32_t level) {
    LogicalSpecification specification;
    specification.raidLevel = level;
    return specification;
}

std::size_t askForAll(const Kind& kind, std::int32_t level, std::size_t drives) {
    Policy policy;
    policy.name = "Policy.question";
    policy.customArrays = true;
    policy.arrays.emplace_back().allRemaining = true;
    policy.hotspares = RaidArray();
    policy.logicalDefaults = specificationOf(level);
    SilentReport silent;
    const ControllerPlan plan =
        planByPolicy(controllerOf(kind, drives), 1, policy, {.reasons = true}, silent);
    return static_cast<std::size_t>(
        std::count_if(plan.reasons.begin(), plan.reasons.end(), [](const Reason& reason) {
            return reason.kind == Reason::Kind::allRemaining;
        }));
}

CommandLines makeLines(const Kind& kind, std::int32_t level, std::size_t drives,
                       const LineSettings& settings) {
    RAIDConfiguration layout;
    layout.stripeSize = settings.stripeSize;
    layout.readAhead = settings.readAhead;
    layout.rebuildRate = settings.rebuildRate;
    layout.init = settings.init;
    layout.addArray(arrayOf(drives));
    LogicalDrive drive = logicalDriveOf(level);
    drive.sizeMb = settings.sizeMb;
    drive.writeCache = settings.writeCache;
    layout.addLogicalDrive(drive);
    return linesOf(kind, layout);
}

FurtherDrives askForFurther(const Kind& kind) {
    constexpr std::int32_t someMb = 1000;
    RAIDConfiguration layout;
    layout.addArray(arrayOf(2));
    LogicalDrive drive = logicalDriveOf(raid_level::raid1);
    drive.sizeMb = someMb;
    layout.addLogicalDrive(drive);
    const CommandLines one = linesOf(kind, layout);
    layout.addLogicalDrive(drive);
    const CommandLines two = linesOf(kind, layout);
    if (two.fault) {
        return FurtherDrives::refused;
    }
    return two.lines.size() > one.lines.size() ? FurtherDrives::made : FurtherDrives::leftOut;
}

bool areDrivesNamed(const Kind& kind) {
    const auto linesWith = [&kind](std::int32_t id) {
        RAIDConfiguration layout;
        layout.addArray(arrayOf(1, id));
        layout.addLogicalDrive(logicalDriveOf(raid_level::raid0));
        return linesOf(kind, layout).lines;
    };
    return linesWith(0) != linesWith(1);
}

bool isHotspareTaken(const Kind& kind, std::int32_t level, std::size_t drives) {
    RAIDConfiguration layout;
    layout.addArray(arrayOf(drives));
    layout.addLogicalDrive(logicalDriveOf(level));
    Hotspare spare;
    spare.channelNumber = RAIDController::firstChannel;
    spare.id = static_cast<std::int32_t>(drives);
    layout.addHotspare(spare);
    return !linesOf(kind, layout).fault;
}

std::optional<LevelRefusal> askPlanner(const Kind& kind, std::int32_t level, std::size_t drives) {
    Policy policy;
    policy.name = "Policy.question";
    policy.customArrays = true;
    policy.arrays.push_back(arrayOf(drives));
    policy.hotspares = RaidArray();
    policy.logicalDefaults = specificationOf(level);
    SilentReport silent;
    const ControllerPlan plan = planByPolicy(controllerOf(kind, RAIDController::ids), 1, policy,
                                             {.reasons = false}, silent);
    if (!plan.fault || plan.fault->kind != FaultKind::planRaidLevelDriveCount) {
        return std::nullopt;
    }
    return LevelRefusal{Models::levelOf(kind, level, drives), plan.fault->possible.c_str()};
}

} // namespace

std::vector<Kind> kindsOf(std::string_view model) {
    static const std::vector<NamedKind> named = [] {
        std::vector<NamedKind> rows;
        for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
            for (std::int32_t subtype = subtypeNotSet; subtype <= lastSubtype; ++subtype) {
                rows.push_back({ControllerCatalogue::getControllerName(type, subtype),
                                makeKind(type, subtype)});
            }
        }
        return rows;
    }();
    std::vector<Kind> kinds;
    for (const NamedKind& row : named) {
        if (text::equalsNoCase(row.name.view(), model)) {
            addNew(kinds, row.kind);
        }
    }
    return kinds;
}

const std::vector<Kind>& allKinds() {
    static const std::vector<Kind> kinds = [] {
        std::vector<Kind> found;
        for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
            for (std::int32_t subtype = subtypeNotSet; subtype <= lastSubtype; ++subtype) {
                addNew(found, makeKind(type, subtype));
            }
        }
        return found;
    }();
    return kinds;
}

std::string utilityOf(std::int32_t controllerType) {
    const std::string_view command = traitsOf(controllerType).utilityCommand;
    const std::size_t blank = command.find(' ');
    return std::string(blank == std::string_view::npos ? command : command.substr(blank + 1));
}

const std::optional<LevelRefusal>& Models::refusal(const Kind& kind, std::int32_t level,
                                                   std::size_t drives) {
    const auto [place, isNew] =
        refusals_.try_emplace(Question{{kind.type, kind.subtype}, level, drives});
    if (isNew && drives >= 1 && drives <= RaidArray::maxDrives) {
        place->second = askPlanner(kind, level, drives);
    }
    return place->second;
}

std::int32_t Models::levelOf(const Kind& kind, std::int32_t level, std::size_t drives) {
    return level == raid_level::notGiven ? kind.rules->defaultRAIDLevel(drives) : level;
}

const CommandLines& Models::lines(const Kind& kind, std::int32_t level, std::size_t drives,
                                  const LineSettings& settings) {
    const auto [place, isNew] =
        lines_.try_emplace({Question{{kind.type, kind.subtype}, level, drives}, settings});
    if (isNew) {
        place->second = makeLines(kind, level, drives, settings);
    }
    return place->second;
}

bool Models::hasCommand(const Kind& kind, std::int32_t level) {
    const std::size_t drives = std::max<std::size_t>(leastDrives(kind, level), 1);
    const CommandLines& made = lines(kind, level, drives, {});
    // A generator writes this word for a level that its utility has no word for.
    return std::none_of(made.lines.begin(), made.lines.end(),
                        [](const CString& line) { return text::contains(line.view(), "ERROR"); });
}

std::size_t Models::leastDrives(const Kind& kind, std::int32_t level) {
    for (std::size_t drives = 1; drives <= RaidArray::maxDrives; ++drives) {
        if (!refusal(kind, level, drives)) {
            return drives;
        }
    }
    return 0;
}

std::size_t Models::takenOfAll(const Kind& kind, std::int32_t level, std::size_t drives) {
    const auto [place, isNew] =
        takenOfAll_.try_emplace(Question{{kind.type, kind.subtype}, level, drives});
    if (isNew) {
        place->second = askForAll(kind, level, drives);
    }
    return place->second;
}

FurtherDrives Models::furtherDrives(const Kind& kind) {
    const auto [place, isNew] = furtherDrives_.try_emplace({kind.type, kind.subtype});
    if (isNew) {
        place->second = askForFurther(kind);
    }
    return place->second;
}

bool Models::namesDrives(const Kind& kind) {
    const auto [place, isNew] = namesDrives_.try_emplace({kind.type, kind.subtype});
    if (isNew) {
        place->second = areDrivesNamed(kind);
    }
    return place->second;
}

bool Models::takesHotspare(const Kind& kind, std::int32_t level) {
    const auto [place, isNew] = takesHotspare_.try_emplace({{kind.type, kind.subtype}, level});
    if (isNew) {
        place->second =
            isHotspareTaken(kind, level, std::max<std::size_t>(leastDrives(kind, level), 1));
    }
    return place->second;
}

} // namespace zolex::companion
