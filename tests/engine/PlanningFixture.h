#pragma once

#include "driver/Application.h"
#include "engine/ConfigClasses.h"
#include "engine/RAIDConfigCreator.h"
#include "model/RAIDController.h"
#include "policies/Policy.h"
#include "support/DriveSizes.h"
#include "support/FakePlatform.h"

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::test {

/// An application whose output is kept. The verbosity is 3 unless a test sets it.
struct Bench {
    Bench() { application.printer().setVerbosity(level::progress); }

    std::string takeOutput() { return platform.consoleFake.takeOutput(); }

    FakePlatform platform;
    Application application{platform};
};

struct DriveAt {
    std::int32_t channel;
    std::int32_t id;
    std::int32_t sizeMb;
};

inline std::unique_ptr<RAIDController> makeController(std::int32_t type, std::int32_t subtype,
                                                      const std::vector<DriveAt>& drives = {}) {
    auto controller = std::make_unique<RAIDController>();
    controller->setType(type);
    controller->setSubtype(subtype);
    for (const DriveAt& drive : drives) {
        controller->addDrive(drive.channel, drive.id, drive.sizeMb, "SAS");
    }
    return controller;
}

/// `count` drives of `sizeMb` from channel 1, id 0 on.
inline std::vector<DriveAt> equalDrives(std::int32_t count, std::int32_t sizeMb = 70000) {
    std::vector<DriveAt> drives;
    for (std::int32_t i = 0; i < count; ++i) {
        drives.push_back({1 + i / RAIDController::ids, i % RAIDController::ids, sizeMb});
    }
    return drives;
}

/// Drives of the sizes given, from channel 1, id 0 on.
inline std::vector<DriveAt> drivesOfSizes(const std::vector<std::int32_t>& sizes) {
    std::vector<DriveAt> drives = equalDrives(static_cast<std::int32_t>(sizes.size()));
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        drives[i].sizeMb = sizes[i];
    }
    return drives;
}

inline Policy makePolicy(const char* name = "Policy.test") {
    Policy policy;
    policy.name = name;
    return policy;
}

inline RaidArray arrayOfNumbers(const std::vector<std::int32_t>& numbers) {
    RaidArray array;
    for (const std::int32_t number : numbers) {
        array.addDriveNumber(number);
    }
    return array;
}

inline RaidArray arrayOfPositions(const std::vector<DrivePosition>& positions) {
    RaidArray array;
    for (const DrivePosition& position : positions) {
        array.addDrive(position);
    }
    return array;
}

/// "ALL".
inline RaidArray arrayOfAll() {
    RaidArray array;
    array.allRemaining = true;
    array.text = "ALL";
    return array;
}

inline Policy policyWithArrays(std::vector<RaidArray> arrays) {
    Policy policy = makePolicy();
    policy.customArrays = true;
    policy.arrays = std::move(arrays);
    return policy;
}

/// The numbers 1 to `count`.
inline std::vector<std::int32_t> numbersTo(std::int32_t count) {
    std::vector<std::int32_t> numbers;
    for (std::int32_t number = 1; number <= count; ++number) {
        numbers.push_back(number);
    }
    return numbers;
}

/// The plan of `controller` by the rules of its type.
inline ControllerPlan planOf(Bench& bench, const RAIDController& controller, const Policy& policy) {
    return RAIDConfigCreator(controller, 1, *rulesFor(controller.type(), controller.subtype()),
                             policy, true, bench.application.report())
        .plan();
}

/// Keeps a plan in the record as if its layout had been captured, and as used the drives that the
/// plan says it took.
inline void keepPlan(RAIDController& controller, const ControllerPlan& plan) {
    controller.setCaptured(plan.layout);
    for (const Reason& reason : plan.reasons) {
        if (reason.drive != DrivePosition()) {
            controller.setUsed(reason.drive.channel, reason.drive.id);
        }
    }
}

/// Plans `controller` and keeps the plan in it.
inline bool plan(Bench& bench, RAIDController& controller, const Policy& policy) {
    const ControllerPlan made = planOf(bench, controller, policy);
    keepPlan(controller, made);
    if (made.fault) {
        bench.application.returnCode = planningCodeOf(made.fault->kind);
    }
    return made.outcome != Outcome::refused;
}

inline std::string positionText(std::int32_t channel, std::int32_t id) {
    return std::to_string(channel) + ":" + std::to_string(id);
}

/// The plan in one line: hot spares, arrays with their capacity, logical drives with array letter,
/// RAID level word, size and write-cache code; "no plan" when there is none.
inline std::string describe(const RAIDController& controller) {
    const RAIDConfiguration* plan = controller.captured();
    if (plan == nullptr) {
        return "no plan";
    }
    std::string text;
    for (const Hotspare& hotspare : plan->hotspares()) {
        text += "H " + positionText(hotspare.channelNumber, hotspare.id) + "; ";
    }
    for (const RaidArray& array : plan->arrays()) {
        text += "A";
        for (const DrivePosition& drive : array.drives()) {
            text += " " + positionText(drive.channel, drive.id);
        }
        text += " =" + std::to_string(array.capacityMb) + "; ";
    }
    for (const LogicalDrive& drive : plan->logicalDrives()) {
        text += std::string("L ") + static_cast<char>('A' + drive.arrayIndex) + " " +
                raidLevelWord(drive.raidLevel) + " " +
                (drive.sizeMb == sizeFill ? "FILL" : std::to_string(drive.sizeMb)) + " " +
                std::to_string(drive.writeCache) + "; ";
    }
    return text;
}

/// The positions marked as used, in scan order, channel 0 included.
inline std::string describeUsed(const RAIDController& controller) {
    std::string text;
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            if (controller.isUsed(channel, id)) {
                text += positionText(channel, id) + " ";
            }
        }
    }
    return text;
}

inline PolicyList listOf(std::vector<Policy> policies) {
    PolicyList list;
    for (Policy& policy : policies) {
        list.add(std::move(policy));
    }
    return list;
}

} // namespace zolex::test
