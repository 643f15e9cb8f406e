#include "companion/families/storcli/Limits.h"
#include "companion/facts/Bytes.h"

#include <cstddef>
#include <cstdint>

namespace zolex::companion::storcli {

namespace {

constexpr std::size_t usualMostDrives = 32;
constexpr std::size_t usualMostSpans = 8;
constexpr std::size_t usualMostVolumesPerGroup = 16;
constexpr std::size_t mostVolumes = 240;
constexpr std::uint64_t usualLeastStrip = 8 * bytesOfKb;
constexpr std::uint64_t usualMostStrip = 1024 * bytesOfKb;

std::size_t orUsual(std::int32_t told, std::size_t usual) {
    return told > 0 ? static_cast<std::size_t>(told) : usual;
}

std::string stateOf(const DriveFacts& drive) {
    return drive.reportedState.empty() ? std::string("in no state that is known")
                                       : drive.reportedState;
}

} // namespace

FamilyLimits limits(const Facts& facts) {
    FamilyLimits limits;
    limits.raidTypes = facts.raidTypes;
    if (limits.raidTypes.empty()) {
        limits.raidTypes = {"RAID0", "RAID1", "RAID5", "RAID6", "RAID10", "RAID50", "RAID60"};
    }
    // What is told of a logical drive is the most that a span has, too.
    limits.mostDrivesPerSpan = orUsual(facts.abilities.mostDrives, usualMostDrives);
    limits.mostSpans = orUsual(facts.abilities.mostSpans, usualMostSpans);
    limits.mostDrives = limits.mostDrivesPerSpan * limits.mostSpans;
    limits.mostVolumes = mostVolumes;
    limits.mostVolumesPerGroup =
        orUsual(facts.abilities.mostVolumesPerArray, usualMostVolumesPerGroup);
    limits.leastStripBytes = facts.minStripSizeBytes.value_or(usualLeastStrip);
    limits.mostStripBytes = facts.maxStripSizeBytes.value_or(usualMostStrip);
    limits.mixesProtocols = facts.abilities.mixesProtocols.value_or(false);
    limits.mixesNvme = false; // what is told of SAS and SATA says nothing of it
    limits.mixesMedia = facts.abilities.mixesMedia.value_or(false);
    limits.setsCaches = true;
    limits.hasGlobalSpares = true;
    limits.hasDedicatedSpares = true;
    return limits;
}

std::string whyNotUsable(const DriveFacts& drive) {
    if (!drive.barred.empty()) {
        return drive.barred;
    }
    switch (drive.state) {
    case DriveState::free:
    case DriveState::member:
    case DriveState::hotspare:
        break;
    case DriveState::foreign:
        return "it carries an array of another controller";
    case DriveState::jbod:
        return "it is a JBOD drive: the system has it as it is";
    case DriveState::rebuilding:
        return "it is being rebuilt";
    case DriveState::failed:
        return "it is " + stateOf(drive) + ", which is no good drive";
    case DriveState::missing:
        return "it is missing";
    case DriveState::unknown:
        return "its state is not known: " + stateOf(drive);
    }
    if (drive.isForeign) {
        return "it carries an array of another controller";
    }
    if (drive.health == Health::critical) {
        return "it is " + stateOf(drive) + ", which is no good drive";
    }
    return drive.capacityBytes.value_or(0) == 0 ? "its size is not told" : "";
}

} // namespace zolex::companion::storcli
