#include "engine/PlanController.h"
#include "properties/Generators.h"
#include "properties/Limits.h"
#include "properties/Property.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace zolex::properties {
namespace {

/// A controller, the policy that is planned for it, and what came of it.
struct Planned {
    ControllerSpec spec;
    Policy policy;
    std::unique_ptr<RAIDController> controller;
    bool done = false;

    [[nodiscard]] const RAIDConfiguration* plan() const { return controller->captured(); }
};

std::vector<std::string> positionsOf(const ControllerSpec& spec) {
    std::vector<std::pair<int, int>> places;
    for (const DriveSpec& drive : spec.drives) {
        if (drive.channel > 0 && drive.sizeMb > 0) {
            places.emplace_back(drive.channel, drive.id);
        }
    }
    std::sort(places.begin(), places.end());
    std::vector<std::string> texts;
    for (const auto& [channel, id] : places) {
        texts.push_back(std::to_string(channel) + ":" + std::to_string(id));
    }
    return texts;
}

enum class Mode { automatic, any };

PolicyContext contextFor(const ControllerSpec& spec, Mode mode) {
    PolicyContext context;
    context.drives = spec.numberedDrives();
    context.positions = positionsOf(spec);
    context.custom = mode == Mode::any;
    context.wild = oneIn(2);
    context.several = true;
    for (const DriveSpec& drive : spec.drives) {
        // What the rest of an array comes to on one, two or four of them.
        if (drive.sizeMb > 0 && drive.sizeMb < 1'000'000 && context.nearMb.size() < 12) {
            context.nearMb.insert(context.nearMb.end(),
                                  {drive.sizeMb, 2 * drive.sizeMb, 4 * drive.sizeMb});
        }
    }
    context.levels = {"0", "1", "5", "10"};
    context.stripes = {"64", "32", "16", "128", "4096"};
    if (oneIn(8)) {
        context.name = "Policy.AUTO-x";
    }
    return context;
}

Planned planAny(Mode mode) {
    Planned planned;
    planned.spec = *controllers();
    planned.policy = parsePolicies(*policyTexts(contextFor(planned.spec, mode))).front();
    planned.controller = planned.spec.make();
    Planner planner;
    planned.done = planner.plan(*planned.controller, planned.policy);
    return planned;
}

/// Counts what the case is like; whether there is a plan to look at.
bool tallyPlan(Tally& tally, const Planned& planned) {
    tally.count(!planned.done ? "refused" : planned.plan() == nullptr ? "skipped" : "planned");
    if (planned.plan() == nullptr) {
        return false;
    }
    if (planned.plan()->arrays().size() > 1) {
        tally.count("several arrays");
    }
    if (!planned.plan()->hotspares().empty()) {
        tally.count("hot spares");
    }
    return true;
}

TEST(PlanProperties, NoDriveIsTakenTwiceByAnAutomaticPlan) {
    checkProperty({{"planned", 25}, {"several arrays", 10}, {"hot spares", 8}}, [](Tally& tally) {
        const Planned planned = planAny(Mode::automatic);
        if (!tallyPlan(tally, planned)) {
            return;
        }
        std::set<std::pair<int, int>> taken;
        for (const Hotspare& hotspare : planned.plan()->hotspares()) {
            RC_ASSERT(taken.insert({hotspare.channelNumber, hotspare.id}).second);
        }
        for (const RaidArray& array : planned.plan()->arrays()) {
            for (const DrivePosition& drive : array.drives()) {
                RC_ASSERT(taken.insert({drive.channel, drive.id}).second);
            }
        }
        // Nor is one taken that is used already, has no size or stands on channel 0.
        for (const DriveSpec& drive : planned.spec.drives) {
            if (drive.used || drive.sizeMb <= 0 || drive.channel == 0) {
                RC_ASSERT(taken.count({drive.channel, drive.id}) == 0U);
            }
            taken.erase({drive.channel, drive.id});
        }
        RC_ASSERT(taken.empty()); // and all of them exist
    });
}

// What the classes allow, written down a second time. Columns: type; subtype (-1: every other);
// levels that it has; greatest array where the policy names no level; whether there is one array
// only; least and greatest stripe-size code.
struct ClassLimits {
    std::int32_t type;
    std::int32_t subtype;
    std::set<std::int32_t> levels;
    std::size_t drives;
    bool oneArray;
    std::int32_t leastStripe;
    std::int32_t greatestStripe;
};

const ClassLimits& limitsOf(const ControllerSpec& spec) {
    // clang-format off
    static const std::vector<ClassLimits> rows = {
        {1,  -1, {0, 1, 2, 3, 4, 5},               16, false, 0, 3},
        {2,  -1, {0, 1, 3, 7, 10},                  4, false, 0, 3},
        {3,  -1, {0, 1},                            2, true,  1, 3},
        {4,  -1, {0, 1, 7},                         4, true,  1, 3},
        {5,  -1, {1},                               2, true,  0, 10},
        {6,  -1, {0, 1},                            2, true,  2, 9},
        {7,  -1, {0, 1, 2, 3, 5, 6, 7, 8, 9, 10},  16, false, 1, 7},
        {8,  -1, {0, 1, 7},                         4, true,  1, 3},
        {9,  -1, {0, 1, 7, 10, 13},                 2, true,  1, 3},
        {10,  1, {0, 1},                            2, true,  0, 10},
        {10, -1, {0, 1, 2},                         6, true,  0, 10},
        {11,  1, {0, 1, 7, 10},                    16, false, 1, 7},
        {11,  2, {0, 1, 2, 3, 6, 7, 10},           16, false, 1, 7},
        {11, -1, {},                               16, false, 1, 7},
        {12,  8, {0, 1, 7},                        32, false, 0, 4},
        {12,  1, {0, 1, 3, 7, 8},                  32, false, 0, 4},
        {12,  9, {0, 1, 3, 7, 8},                  32, false, 0, 4},
        {12, 11, {0, 1, 3, 7, 8},                  32, false, 0, 4},
        {12, -1, {0, 1, 3, 6, 7, 8, 9},            32, false, 0, 4},
    };
    // clang-format on
    return *std::find_if(rows.begin(), rows.end(), [&spec](const ClassLimits& row) {
        return row.type == spec.type && (row.subtype == spec.subtype || row.subtype == -1);
    });
}

/// Most drives of an automatic array.
std::size_t mostDrives(const Planned& planned) {
    const std::int32_t asked =
        planned.policy.logicalDefaults ? planned.policy.logicalDefaults->raidLevel : 12;
    switch (asked) {
    case 12:
        return limitsOf(planned.spec).drives;
    case 0:
        return planned.spec.type == 10 ? 10 : 16;
    case 2:
        return planned.spec.type == 10 ? 6 : 16;
    case 1:
    case 13:
        return 2;
    default:
        return 16;
    }
}

/// Whether a level takes this number of drives.
bool takes(std::int32_t level, std::int32_t type, std::size_t drives) {
    switch (level) {
    case 0:
        return type == 3    ? drives >= 2
               : type == 4  ? drives <= 4
               : type == 10 ? drives <= 10
                            : drives >= 1;
    case 1:
        return drives == 2;
    case 2:
    case 3:
        return drives >= 3;
    case 4:
    case 5:
    case 6:
    case 7:
        return drives >= 4;
    case 8:
        return drives >= 6 && drives % 2 == 0;
    case 9:
        return drives >= 8 && drives % 2 == 0;
    default:
        return level == 10 && drives >= 1;
    }
}

TEST(PlanProperties, AnAutomaticPlanKeepsToTheLimitsOfItsClass) {
    checkProperty({{"planned", 25}, {"level of the class", 15}, {"level of the policy", 3}},
                  [](Tally& tally) {
                      const Planned planned = planAny(Mode::automatic);
                      if (!tallyPlan(tally, planned)) {
                          return;
                      }
                      const ClassLimits& limits = limitsOf(planned.spec);
                      const RAIDConfiguration& plan = *planned.plan();
                      RC_ASSERT(plan.arrays().size() <= (limits.oneArray ? 1U : 16U));
                      RC_ASSERT(plan.hotspares().size() <= 8U);
                      RC_ASSERT(plan.logicalDrives().size() <= 8U);
                      RC_ASSERT(plan.logicalDrives().size() == plan.arrays().size());
                      RC_ASSERT(plan.stripeSize >= limits.leastStripe &&
                                plan.stripeSize <= limits.greatestStripe);
                      const std::int32_t asked = planned.policy.arrayDefaults.hotspareCount;
                      const std::size_t made = plan.hotspares().size();
                      if (asked == notGiven) {
                          RC_ASSERT(made <= 1U);
                      } else {
                          RC_ASSERT(made == static_cast<std::size_t>(asked));
                      }
                      for (const RaidArray& array : plan.arrays()) {
                          RC_ASSERT(!array.drives().empty());
                          RC_ASSERT(array.drives().size() <= mostDrives(planned));
                      }
                      const auto& defaults = planned.policy.logicalDefaults;
                      const bool classLevel = !defaults || defaults->raidLevel == 12;
                      for (const LogicalDrive& drive : plan.logicalDrives()) {
                          const RaidArray& array =
                              plan.arrays().at(static_cast<std::size_t>(drive.arrayIndex));
                          RC_ASSERT(
                              takes(drive.raidLevel, planned.spec.type, array.drives().size()));
                          // A level that the policy names is planned as it is, and left to the
                          // utility. Other subtypes of type 11 have no level at all.
                          if (classLevel && !limits.levels.empty()) {
                              tally.count("level of the class");
                              RC_ASSERT(limits.levels.count(drive.raidLevel) == 1U);
                          } else if (!classLevel) {
                              tally.count("level of the policy");
                              RC_ASSERT(drive.raidLevel == defaults->raidLevel);
                          }
                      }
                  });
}

/// Raw room in MB that a logical drive takes of its array: its size by the part of the array that
/// the level keeps.
double rawRoom(const LogicalDrive& drive, double drives) {
    double part = 1.0;
    switch (drive.raidLevel) {
    case 1:
    case 2:
    case 7:
        part = 0.5;
        break;
    case 3:
        part = (drives - 1) / drives;
        break;
    case 4:
    case 5:
    case 6:
    case 8:
        part = (drives - 2) / drives;
        break;
    case 9:
        part = (drives - 4) / drives;
        break;
    default:
        break;
    }
    return drive.sizeMb / part;
}

/// What the policy asks of one array: whether it can be had. Percentages up to 100 in all, or below
/// 100 and FILL as the last.
struct Asked {
    int percent = 0;
    bool numbers = false;
    bool afterFill = false;
    bool fill = false;

    void add(const DriveSize& size) {
        afterFill = afterFill || fill;
        fill = fill || size.kind == DriveSize::Kind::rest;
        numbers = numbers || size.kind == DriveSize::Kind::mb;
        percent += size.kind == DriveSize::Kind::percent ? size.value : 0;
    }
    [[nodiscard]] bool fits() const {
        return percent <= (fill ? 99 : 100) && !numbers && !afterFill;
    }
};

std::vector<Asked> askedOf(const Planned& planned) {
    std::vector<Asked> asked(planned.plan()->arrays().size());
    const Policy& policy = planned.policy;
    if (policy.customLogicalDrives) {
        for (const LogicalSpecification& drive : policy.logicalDrives) {
            asked.at(static_cast<std::size_t>(drive.arrayIndex)).add(drive.size);
        }
    } else {
        for (Asked& array : asked) {
            array.add(policy.logicalDefaults ? policy.logicalDefaults->size : DriveSize());
        }
    }
    return asked;
}

/// Sizes are rounded to whole MB with a fraction of single precision.
void checkFit(const RaidArray& array, const std::vector<LogicalDrive>& drives, Tally& tally) {
    // On an array so small that 139 MB are more than 1 % of it, several can come to the rest of it.
    constexpr std::int64_t largeMb = 60'000;
    const auto capacity = static_cast<double>(array.capacityMb);
    double taken = 0;
    for (std::size_t i = 0; i < drives.size(); ++i) {
        const LogicalDrive& drive = drives[i];
        if (drive.sizeMb == sizeFill) {
            RC_ASSERT(i + 1 == drives.size() || array.capacityMb < largeMb);
            continue;
        }
        tally.count("percentage");
        RC_ASSERT(drive.sizeMb > 0);
        taken += rawRoom(drive, static_cast<double>(array.drives().size()));
    }
    if (drives.size() > 1) {
        tally.count("several on an array");
    }
    RC_ASSERT(taken <= capacity * (1 + 1e-6) + 4.0 * static_cast<double>(drives.size()));
}

TEST(PlanProperties, LogicalDrivesFitTheirArrays) {
    checkProperty(
        {{"planned", 20}, {"percentage", 3}, {"several on an array", 0.5}}, [](Tally& tally) {
            const Planned planned = planAny(Mode::any);
            if (!tallyPlan(tally, planned)) {
                return;
            }
            const RAIDConfiguration& plan = *planned.plan();
            const std::vector<Asked> asked = askedOf(planned);
            for (std::size_t i = 0; i < plan.arrays().size(); ++i) {
                const RaidArray& array = plan.arrays()[i];
                std::int64_t smallest = RAIDController::noDrive;
                for (const DrivePosition& drive : array.drives()) {
                    const std::int64_t size = planned.controller->size(drive.channel, drive.id);
                    smallest = smallest < 0 ? size : std::min(smallest, size);
                }
                RC_ASSERT(array.capacityMb ==
                          smallest * static_cast<std::int64_t>(array.drives().size()));
                std::vector<LogicalDrive> onArray;
                for (const LogicalDrive& drive : plan.logicalDrives()) {
                    if (static_cast<std::size_t>(drive.arrayIndex) == i) {
                        onArray.push_back(drive);
                    }
                }
                // A number of MB that the array does not have, more than 100 % of it, or anything
                // after FILL is planned as the policy says, and refused by the utility.
                if (asked[i].fits()) {
                    checkFit(array, onArray, tally);
                }
            }
        });
}

TEST(PlanProperties, ANumberOfMbThatFitsStaysAndNoneIsPlannedThatTheRestEquals) {
    checkProperty({{"planned", 10}, {"number of MB", 5}}, [](Tally& tally) {
        const Planned planned = planAny(Mode::automatic);
        const auto& defaults = planned.policy.logicalDefaults;
        if (!tallyPlan(tally, planned) || !defaults || defaults->size.kind != DriveSize::Kind::mb) {
            return;
        }
        for (const LogicalDrive& drive : planned.plan()->logicalDrives()) {
            tally.count("number of MB");
            const RaidArray& array =
                planned.plan()->arrays().at(static_cast<std::size_t>(drive.arrayIndex));
            LogicalDrive one = drive;
            one.sizeMb = 1'000'000;
            const double usable = static_cast<double>(array.capacityMb) * 1'000'000 /
                                  rawRoom(one, static_cast<double>(array.drives().size()));
            const double rest = usable - defaults->size.value;
            const double precision = 1 + usable * 1e-6;
            if (std::abs(std::abs(rest) - 139) <= precision) {
                continue; // on the border, where single precision decides
            }
            RC_ASSERT(drive.sizeMb == (std::abs(rest) < 139 ? sizeFill : defaults->size.value));
        }
    });
}

/// What the policy asks of the array, in the order in which it is planned.
std::vector<DriveSize> sizesAsked(const Policy& policy, std::size_t array) {
    std::vector<DriveSize> sizes;
    if (!policy.customLogicalDrives) {
        return {policy.logicalDefaults ? policy.logicalDefaults->size : DriveSize()};
    }
    for (const LogicalSpecification& drive : policy.logicalDrives) {
        if (static_cast<std::size_t>(drive.arrayIndex) == array) {
            sizes.push_back(drive.size);
        }
    }
    return sizes;
}

/// The room of an array by the drives that it is made of.
double roomOf(const ControllerSpec& spec, const RaidArray& array) {
    double smallest = 0;
    for (const DrivePosition& member : array.drives()) {
        for (const DriveSpec& drive : spec.drives) {
            if (drive.channel == member.channel && drive.id == member.id) {
                smallest = smallest == 0 ? drive.sizeMb : std::min<double>(smallest, drive.sizeMb);
            }
        }
    }
    return smallest * static_cast<double>(array.drives().size());
}

TEST(PlanProperties, EachSizeIsThatOfThePolicyOrTheRestOfItsArray) {
    checkProperty(
        {{"planned", 20}, {"percentage", 4}, {"number of MB", 4}, {"rest", 15}}, [](Tally& tally) {
            constexpr double closeMb = 139;
            const Planned planned = planAny(Mode::any);
            if (!tallyPlan(tally, planned)) {
                return;
            }
            const RAIDConfiguration& plan = *planned.plan();
            for (std::size_t i = 0; i < plan.arrays().size(); ++i) {
                const RaidArray& array = plan.arrays()[i];
                const std::vector<DriveSize> asked = sizesAsked(planned.policy, i);
                double left = roomOf(planned.spec, array);
                std::size_t k = 0;
                for (const LogicalDrive& drive : plan.logicalDrives()) {
                    if (static_cast<std::size_t>(drive.arrayIndex) != i) {
                        continue;
                    }
                    const auto part =
                        static_cast<double>(partOf(drive.raidLevel, array.drives().size()));
                    const DriveSize& entry = asked.at(k++);
                    const bool isMb = entry.kind == DriveSize::Kind::mb;
                    const double size =
                        isMb ? entry.value : roomOf(planned.spec, array) * part * entry.value / 100;
                    const double rest = std::abs(left * part - size);
                    const double precision = 1 + size * 1e-6;
                    if (entry.kind == DriveSize::Kind::rest) {
                        tally.count("rest");
                        RC_ASSERT(drive.sizeMb == sizeFill);
                    } else if (rest > closeMb + precision && size < 2e9) {
                        tally.count(isMb ? "number of MB" : "percentage");
                        RC_ASSERT(std::abs(drive.sizeMb - size) <= precision);
                    } else if (rest < closeMb - precision) {
                        tally.count("close to the rest");
                        RC_ASSERT(drive.sizeMb == sizeFill);
                    }
                    left = drive.sizeMb == sizeFill ? 0 : left - drive.sizeMb / part;
                }
                RC_ASSERT(k == asked.size());
            }
        });
}

TEST(PlanProperties, PlanningTwiceGivesTheSamePlan) {
    checkProperty({{"planned", 20}, {"refused", 10}, {"custom", 10}}, [](Tally& tally) {
        const Planned planned = planAny(Mode::any);
        if (tallyPlan(tally, planned) && planned.policy.customArrays) {
            tally.count("custom");
        }
        // Another record of the same controller.
        const auto again = planned.spec.make();
        Planner planner;
        RC_ASSERT(planner.plan(*again, planned.policy) == planned.done);
        RC_ASSERT(describe(again->captured()) == describe(planned.plan()));
        for (const DriveSpec& drive : planned.spec.drives) {
            RC_ASSERT(again->isUsed(drive.channel, drive.id) ==
                      planned.controller->isUsed(drive.channel, drive.id));
        }
    });
}

TEST(PlanProperties, PlanningReadsOnly) {
    checkProperty({{"planned", 15}, {"refused", 5}, {"no policy", 5}}, [](Tally& tally) {
        const ControllerSpec spec = *controllers();
        std::string text;
        for (int i = 1; i <= 2; ++i) {
            PolicyContext context = contextFor(spec, Mode::any);
            context.name += std::to_string(i);
            context.appliesTo = oneOf<std::string>({"ALL", "c:2", "d:4", "m:8837,o:1", "s:other"});
            text += *policyTexts(context);
        }
        PolicyList policies;
        for (Policy& policy : parsePolicies(text)) {
            policies.add(std::move(policy));
        }
        const Machine machine{"8837", "KQ12345"};
        const auto controller = spec.make();
        const RAIDController before = *controller;
        SilentReport report;
        const ControllerPlan plan = planController(*controller, 1, policies, machine, report);
        RC_ASSERT(planController(*controller, 1, policies, machine, report) == plan);
        RC_ASSERT(*controller == before);
        RC_ASSERT(machine == (Machine{"8837", "KQ12345"}));
        switch (plan.outcome) {
        case Outcome::noPolicy:
            tally.count("no policy");
            break;
        case Outcome::tooFewDrives:
            tally.count("too few drives");
            break;
        case Outcome::refused:
            tally.count("refused");
            break;
        case Outcome::planned:
            tally.count("planned");
            break;
        }
        RC_ASSERT(plan.layout.has_value() == (plan.outcome == Outcome::planned));
        RC_ASSERT(plan.fault.has_value() == (plan.outcome == Outcome::refused));
        // Whatever is kept of a plan, the next one is the same.
        const auto kept = spec.make();
        kept->setCaptured(RAIDConfiguration());
        kept->setMember(1, 0);
        RC_ASSERT(planController(*kept, 1, policies, machine, report) == plan);
    });
}

} // namespace
} // namespace zolex::properties
