#pragma once

#include "inventory/ControllerList.h"
#include "policies/PolicyGenerator.h"
#include "policies/PolicyTestSupport.h"

#include <memory>
#include <string>
#include <utility>

namespace zolex::test {

/// A controller with an empty configuration.
inline std::unique_ptr<RAIDController> makeController(std::int32_t type, std::int32_t subtype) {
    auto controller = std::make_unique<RAIDController>();
    controller->setType(type);
    controller->setSubtype(subtype);
    controller->setScanOrder(3);
    controller->setCaptured(RAIDConfiguration());
    return controller;
}

inline RaidArray makeArray(std::initializer_list<DrivePosition> drives) {
    RaidArray array;
    for (const DrivePosition& drive : drives) {
        array.addDrive(drive);
    }
    return array;
}

inline LogicalDrive makeLogicalDrive(std::int32_t array, std::int32_t sizeMb, std::int32_t level,
                                     std::int32_t writeCache) {
    LogicalDrive drive;
    drive.arrayIndex = array;
    drive.sizeMb = sizeMb;
    drive.raidLevel = level;
    drive.writeCache = writeCache;
    return drive;
}

inline Hotspare makeHotspare(std::int32_t channel, std::int32_t id) {
    Hotspare hotspare;
    hotspare.channelNumber = channel;
    hotspare.id = id;
    hotspare.diskNumber = id;
    return hotspare;
}

/// Two arrays, two logical drives and a hot spare in two enclosures (ids 252 and 8).
inline void fillMegaRaid(RAIDController& controller) {
    for (std::int32_t id = 0; id < 4; ++id) {
        controller.setSizeAndTarget(1, id, 69472, 252);
    }
    controller.setSizeAndTarget(2, 3, 69472, 8);
    controller.setSizeAndTarget(2, 7, 69472, 8);
    RAIDConfiguration& configuration = *controller.captured();
    configuration.stripeSize = stripe::kb64;
    configuration.readAhead = read_ahead::on;
    configuration.addArray(makeArray({{1, 0}, {1, 1}, {1, 3}}));
    configuration.addArray(makeArray({{2, 3}, {1, 2}}));
    configuration.addLogicalDrive(makeLogicalDrive(0, 138944, raid_level::raid5, write_cache::on));
    configuration.addLogicalDrive(
        makeLogicalDrive(1, sizeFill, raid_level::raid1, write_cache::off));
    configuration.addHotspare(makeHotspare(8, 7));
}

/// The generator of an application.
inline PolicyGenerator makeGenerator(Application& application) {
    return {application.platform(), application.catalogue(), appending(application.settings),
            captureOptions(application), application.report()};
}

/// A capture run up to its generator.
struct Generation {
    Generation() {
        application.settings.policiesFile = "p.ini";
        application.settings.tempDirectory = "tmp\\";
        application.settings.capture = true;
        application.machine->machineType = "8840-4AU";
        application.machine->serialNumber = "KQ1234";
        application.printer().setVerbosity(level::progress);
    }

    RAIDController& add(std::int32_t type, std::int32_t subtype) {
        return *controllers.add(*makeController(type, subtype));
    }
    bool run() {
        PolicyGenerator generator = makeGenerator(application);
        const bool done = generator.generatePolicies(controllers);
        wrote = generator.wrotePolicies();
        return done;
    }
    std::string output() { return platform.consoleFake.takeOutput(); }
    [[nodiscard]] std::string file() { return platform.fileFake.files["p.ini"]; }

    FakePlatform platform;
    Application application{platform};
    ControllerList controllers;
    bool wrote = false;
};

inline const char* const temporaryFile = "tmp\\ZOLEXM~~.TMP";
inline const char* const checkingLine = "Checking syntax of current policies file: p.ini ...\n";
inline const char* const generatingLine = "Generating policies from captured configurations ...\n";
inline const char* const noPoliciesLine = "\tNo policies found.  Generating new policies file.\n";

} // namespace zolex::test
