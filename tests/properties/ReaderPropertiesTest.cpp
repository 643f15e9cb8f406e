#include "engine/PlanController.h"
#include "properties/Generators.h"
#include "properties/Property.h"
#include "properties/VirtualMachine.h"
#include "show/Dumps.h"

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace zolex::properties {
namespace {

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        lines.push_back(text.substr(start, end - start));
        start = end;
    }
    return lines;
}

std::size_t anyIndex(std::size_t size) {
    return static_cast<std::size_t>(*number(0, static_cast<int>(size) - 1));
}

/// Puts another number in the place of one of the line.
void exchangeNumber(std::string& line) {
    constexpr const char* digits = "0123456789";
    std::vector<std::size_t> starts;
    for (std::size_t at = line.find_first_of(digits); at != std::string::npos;
         at = line.find_first_of(digits, line.find_first_not_of(digits, at))) {
        starts.push_back(at);
    }
    if (!starts.empty()) {
        const std::size_t at = starts[anyIndex(starts.size())];
        const std::size_t end = std::min(line.find_first_not_of(digits, at), line.size());
        line.replace(at, end - at,
                     oneOf<std::string>({"-1", "4", "5", "36", "40", "255", "99999999999"}));
    }
}

/// Puts a number, a piece of another line or any byte somewhere into the line.
void spoil(std::string& line, const std::vector<std::string>& lines) {
    const std::size_t at = anyIndex(line.size());
    switch (*number(0, 4)) {
    case 0:
        line.insert(at, oneOf<std::string>({"-1", "99999999999", "255", "36", "4096", "0"}));
        break;
    case 1:
        line.erase(at, static_cast<std::size_t>(*number(1, 20)));
        break;
    case 2:
        line.insert(at, lines[anyIndex(lines.size())]);
        break;
    case 3:
        line[at] = static_cast<char>(*number(0, 255));
        break;
    default:
        line.insert(at, std::string(static_cast<std::size_t>(*number(150, 400)), line[at]));
    }
}

/// A listing with lines dropped, doubled, moved and changed; or text of any bytes.
std::string spoilt(const std::string& listing) {
    std::vector<std::string> lines = linesOf(listing);
    if (lines.empty() || oneIn(12)) {
        return *rc::gen::arbitrary<std::string>();
    }
    for (int n = *number(0, 12); n > 0 && !lines.empty(); --n) {
        const std::size_t at = anyIndex(lines.size());
        const auto place = lines.begin() + static_cast<std::ptrdiff_t>(at);
        switch (*number(0, 5)) {
        case 0:
            lines.erase(place);
            break;
        case 1:
            lines.insert(place, lines[anyIndex(lines.size())]);
            break;
        case 2:
            std::swap(lines[at], lines[anyIndex(lines.size())]);
            break;
        case 3:
            lines.insert(lines.end(), 20, lines[at]);
            break;
        case 4:
            exchangeNumber(lines[at]);
            break;
        default:
            spoil(lines[at], lines);
        }
    }
    std::string text;
    for (const std::string& line : lines) {
        text += line;
    }
    return oneIn(8) ? text.substr(0, anyIndex(text.size() + 1)) : text;
}

void checkRange(const RAIDController& controller) {
    RC_ASSERT(controller.numberOfDrives() <= 4 * RAIDController::ids);
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            RC_ASSERT(controller.size(channel, id) >= RAIDController::noDrive);
        }
    }
    const RAIDConfiguration* configuration = controller.captured();
    if (configuration == nullptr) {
        return;
    }
    RC_ASSERT(configuration->arrays().size() <= RAIDConfiguration::maxArrays);
    RC_ASSERT(configuration->logicalDrives().size() <= RAIDConfiguration::maxLogicalDrives);
    RC_ASSERT(configuration->hotspares().size() <= RAIDConfiguration::maxHotspares);
    for (const RaidArray& array : configuration->arrays()) {
        RC_ASSERT(array.drives().size() <= RaidArray::maxDrives);
        RC_ASSERT(array.driveNumbers().size() <= RaidArray::maxDrives);
        for (const DrivePosition& drive : array.drives()) {
            RC_ASSERT(RAIDController::isPosition(drive.channel, drive.id));
        }
    }
    for (const LogicalDrive& drive : configuration->logicalDrives()) {
        // Whatever byte a listing has in the place of the letter; a policy then says "ERROR".
        RC_ASSERT(drive.arrayIndex >= std::numeric_limits<char>::min() - 'A');
        RC_ASSERT(drive.arrayIndex <= std::numeric_limits<char>::max() - 'A');
        RC_ASSERT(drive.raidLevel >= raid_level::none);
        RC_ASSERT(drive.raidLevel <= raid_level::simpleVolume);
        RC_ASSERT(drive.writeCache >= write_cache::off);
        RC_ASSERT(drive.writeCache <= write_cache::notGiven);
    }
}

TEST(ReaderProperties, WhateverAListingSaysTheModelStaysInRange) {
    checkProperty({{"read", 30}, {"configuration read", 10}}, [](Tally& tally) {
        VirtualMachine machine(*virtualServers());
        // A layout that the listings can tell of; whether every command of it succeeds is no
        // matter.
        static_cast<void>(machine.deploy("[Policy.x]\nAppliesTo.1 = ALL\n"
                                         "Array_Defaults = 100%:1\n"));
        machine.platform.respond = [&machine,
                                    listings = machine.platform.respond](const std::string& line) {
            ChildResult result = listings(line);
            // A copy: the search for a smaller case asks again when this is long over.
            result.output = *rc::gen::exec([listing = result.output] { return spoilt(listing); });
            return result;
        };
        const unsigned result = machine.capture(true);
        RC_ASSERT(result == 0 || result == 8);
        for (std::size_t i = 0; i < machine.controllers.count(); ++i) {
            RAIDController& controller = *machine.controllers.controller(i);
            checkRange(controller);
            if (controller.numberOfDrives() > 0) {
                tally.count("read");
            }
            if (controller.captured() != nullptr) {
                tally.count("configuration read");
            }
            // What was read can be planned on and written as a policy.
            RC_ASSERT(!show::dumpText(controller, true).isEmpty());
            Planner planner;
            static_cast<void>(
                planner.plan(controller, parsePolicies("[Policy.x]\nAppliesTo.1 = ALL\n").front()));
        }
    });
}

TEST(ReaderProperties, TheLayoutThatWasReadDoesNotMatterToThePlans) {
    checkProperty({{"planned", 30}, {"configuration read", 30}}, [](Tally& tally) {
        VirtualMachine machine(*virtualServers());
        static_cast<void>(machine.deploy("[Policy.x]\nAppliesTo.1 = ALL\n"
                                         "Array_Defaults = 100%:1\n"));
        PolicyList policies = makeDefaultPolicyList();
        SilentReport report;
        RC_ASSERT(machine.capture(false) == 0U);
        const std::vector<ControllerPlan> wanted =
            planControllers(machine.controllers, policies, Machine(), report);
        RC_ASSERT(machine.capture(true) == 0U);
        const std::vector<ControllerPlan> plans =
            planControllers(machine.controllers, policies, Machine(), report);
        for (std::size_t i = 0; i < machine.controllers.count(); ++i) {
            const RAIDController& controller = *machine.controllers.controller(i);
            if (controller.captured() == nullptr) {
                continue;
            }
            tally.count("configuration read");
            RC_ASSERT(plans.at(i) == wanted.at(i));
            if (plans[i].layout) {
                tally.count("planned");
            }
        }
    });
}

} // namespace
} // namespace zolex::properties
