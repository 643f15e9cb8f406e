#pragma once

#include "companion/support/StorcliServer.h"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace zolex::companion::test {

inline std::size_t anyBelow(std::mt19937& random, std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
}

inline std::string placesOf(const zolex_sim::storcli::Controller& controller, std::mt19937& random,
                            std::size_t count) {
    std::vector<std::string> free;
    for (const zolex_sim::storcli::Drive& drive : controller.drives) {
        if (drive.state == zolex_sim::storcli::DriveState::good) {
            free.push_back(toText(drive.place));
        }
    }
    if (free.size() < count) {
        return {};
    }
    const std::size_t first = anyBelow(random, free.size() - count + 1);
    std::string text;
    for (std::size_t i = first; i < first + count; ++i) {
        text += (text.empty() ? "" : ",") + free[i];
    }
    return text;
}

/// "/c0/e252/s3" of "252:3".
inline std::string drivePathOf(const zolex_sim::DriveLocation& place) {
    return "/c0" + (place.enclosure ? "/e" + std::to_string(*place.enclosure) : std::string()) +
           "/s" + std::to_string(place.slot);
}

/// A command that changes something of the controller, or that is refused.
inline std::string randomStorcliLine(const zolex_sim::storcli::Controller& controller,
                                     std::mt19937& random) {
    struct Shape {
        const char* level;
        std::size_t drives;
        const char* spans;
    };
    constexpr std::array<Shape, 11> shapes = {{{"r0", 1, ""},
                                               {"r0", 3, ""},
                                               {"r1", 2, ""},
                                               {"r1", 4, ""},
                                               {"r5", 3, ""},
                                               {"r6", 4, ""},
                                               {"r10", 4, " PDperArray=2"},
                                               {"r10", 8, " PDperArray=4"},
                                               {"r50", 6, " PDperArray=3"},
                                               {"r60", 8, " PDperArray=4"},
                                               {"r00", 4, " PDperArray=2"}}};
    const auto anyDrive = [&] {
        return controller.drives.empty()
                   ? std::string("/c0/e252/s0")
                   : drivePathOf(
                         controller.drives[anyBelow(random, controller.drives.size())].place);
    };
    switch (anyBelow(random, 9)) {
    case 0:
        return anyDrive() + " add hotsparedrive";
    case 1:
        return anyDrive() + " add hotsparedrive DGs=" + std::to_string(anyBelow(random, 3));
    case 2:
        return anyDrive() + " delete hotsparedrive";
    case 3: {
        if (controller.volumes.empty()) {
            return "/c0/v7 del";
        }
        const auto& volume = controller.volumes[anyBelow(random, controller.volumes.size())];
        return "/c0/v" + std::to_string(volume.number) +
               (anyBelow(random, 2) == 0 ? " del" : " set wrcache=WT");
    }
    case 4: {
        // One more on a group that has room.
        if (controller.groups.empty()) {
            return "/c0/fall del";
        }
        const std::size_t group = anyBelow(random, controller.groups.size());
        std::string drives;
        for (const auto& span : controller.groups[group].spans) {
            for (const zolex_sim::DriveLocation& place : span) {
                drives += (drives.empty() ? "" : ",") + toText(place);
            }
        }
        const auto level = controller.levelOf(group);
        return "/c0 add vd type=" + std::string(zolex_sim::storcli::rulesOf(level).name) +
               " drives=" + drives +
               " PDperArray=" + std::to_string(controller.groups[group].spans.front().size());
    }
    default: {
        const Shape& shape = shapes[anyBelow(random, shapes.size())];
        const std::string drives = placesOf(controller, random, shape.drives);
        const bool isPart = anyBelow(random, 2) == 0;
        std::string line = "/c0 add vd " + std::string(shape.level) + (isPart ? " Size=900MB" : "");
        line += anyBelow(random, 3) == 0 ? " name=data_1" : "";
        line += " drives=" + drives + shape.spans;
        line += std::array{"", " WT", " WB", " AWB"}[anyBelow(random, 4)];
        line += std::array{"", " ra", " nora"}[anyBelow(random, 3)];
        line += std::array{"", " Strip=64", " Strip=1024"}[anyBelow(random, 3)];
        return line;
    }
    }
}

/// Puts a random controller, with what may stand on one, in the place of the server's.
inline void makeRandom(StorcliServer& server, std::mt19937& random) {
    namespace sim = zolex_sim::storcli;
    zolex_sim::Server& all = server.platform.server;
    sim::Controller& controller = all.storcliControllers.front();
    constexpr std::array versions = {sim::Version::first, sim::Version::v1017, sim::Version::v1616,
                                     sim::Version::v2507, sim::Version::v3703};
    controller.version = versions[anyBelow(random, versions.size())];
    controller.branding = static_cast<sim::Branding>(anyBelow(random, 3));
    controller.numbersUp = anyBelow(random, 2) == 0;
    controller.rebuildRate = static_cast<int>(anyBelow(random, 101));
    controller.refusesNolog = anyBelow(random, 8) == 0;
    controller.defaultReadAhead = anyBelow(random, 2) == 0;
    controller.mixesSasSataDisks = anyBelow(random, 2) == 0;
    controller.mixesMedia = anyBelow(random, 2) == 0;
    controller.maxArms = anyBelow(random, 2) == 0 ? 32 : 16;
    controller.battery = static_cast<sim::Battery>(anyBelow(random, 3));
    controller.groups.clear();
    controller.volumes.clear();
    controller.drives.clear();
    controller.enclosures.clear();
    controller.foreignSets.clear();
    const std::size_t shape = anyBelow(random, 4); // of the places
    const std::size_t count = anyBelow(random, 36);
    for (std::size_t i = 0; i < count; ++i) {
        sim::Drive drive;
        const auto slot = static_cast<int>(i);
        drive.place = shape == 0   ? zolex_sim::DriveLocation{std::nullopt, slot}
                      : shape == 1 ? zolex_sim::DriveLocation{252, slot}
                      : shape == 2 ? zolex_sim::DriveLocation{slot % 2 == 0 ? 64 : 320, slot / 2}
                      : slot < 4   ? zolex_sim::DriveLocation{std::nullopt, slot}
                                   : zolex_sim::DriveLocation{69, slot - 4};
        drive.deviceId = slot + 3;
        const bool isLarge = shape == 2 && slot % 4 == 1;
        drive.sectorBytes = isLarge ? 4096 : 512;
        drive.sectors = (isLarge ? 5242880 : 41943040) + static_cast<int>(anyBelow(random, 3)) * 64;
        drive.rawSectors = drive.sectors + 1048576;
        drive.interface = anyBelow(random, 4) == 0 ? "SATA" : "SAS";
        drive.medium =
            anyBelow(random, 6) == 0 ? zolex_sim::Medium::solidState : zolex_sim::Medium::disk;
        drive.vendor = "NORVIK";
        drive.model = "NV20";
        drive.revision = "N1";
        drive.serial = "S" + std::to_string(1000 + i);
        drive.wwn = 0x500aaa0000004200U + i;
        drive.mediaErrors = static_cast<int>(anyBelow(random, 3));
        drive.predictiveFailures = static_cast<int>(anyBelow(random, 2));
        drive.smartAlert = drive.predictiveFailures > 0;
        drive.temperature = 20 + slot;
        controller.drives.push_back(std::move(drive));
    }
    for (std::size_t i = anyBelow(random, 16); i > 0; --i) {
        server.platform.play("STORCLI " + randomStorcliLine(controller, random) + " J");
    }
    sim::ForeignSet foreign;
    foreign.blocks = 40960;
    foreign.missing = anyBelow(random, 3) == 0 ? 1 : 0;
    const bool hasForeign = anyBelow(random, 3) == 0;
    for (sim::Drive& drive : controller.drives) {
        const std::size_t chance = anyBelow(random, 30);
        if (drive.state == sim::DriveState::good) {
            drive.state = chance == 0                ? sim::DriveState::bad
                          : chance == 1              ? sim::DriveState::jbod
                          : chance == 2              ? sim::DriveState::failed
                          : chance < 6 && hasForeign ? sim::DriveState::foreign
                                                     : drive.state;
        } else if (drive.state == sim::DriveState::online && chance < 5) {
            drive.state = static_cast<sim::DriveState>(
                static_cast<std::size_t>(sim::DriveState::rebuild) + chance % 4);
        } else if (drive.state == sim::DriveState::online && chance == 5) {
            drive.state = sim::DriveState::missing;
            const zolex_sim::DriveLocation gone{70500, drive.place.slot};
            for (sim::Group& group : controller.groups) {
                for (auto& span : group.spans) {
                    std::replace(span.begin(), span.end(), drive.place, gone);
                }
            }
            drive.place = gone;
        }
        if (drive.state == sim::DriveState::foreign) {
            foreign.drives.push_back(drive.place);
        }
    }
    if (!foreign.drives.empty()) {
        controller.foreignSets.push_back(std::move(foreign));
    }
}

} // namespace zolex::companion::test
