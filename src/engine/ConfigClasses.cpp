#include "engine/ConfigClasses.h"

#include "engine/Planning.h"
#include "model/Codes.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

using namespace controller_type;
using namespace raid_level;
using enum ConfigClass;

constexpr std::int32_t autoCache = write_cache::notGiven; // the controller keeps its own setting

constexpr std::int32_t noFit = raid_level::none; // no level fits

constexpr HotspareRule never{0, false};
constexpr HotspareRule from(std::int32_t drives) {
    return {drives, false};
}
constexpr HotspareRule oddFrom(std::int32_t drives) {
    return {drives, true};
}

constexpr CodeSet noLevels{};
constexpr CodeSet mirrorLevels{raid0, raid1};
constexpr CodeSet megaLevels{raid0, raid1, raid10};

// Columns: class; type; subtype (anyCode: every other); when a hot spare is the default; write
// cache; read-ahead; stripe size. Second line: least number of drives on the controller; most
// drives of an array without a given RAID level; whether there is one automatic array only; whether
// an automatic array keeps to one channel; supported stripe sizes. Third line: supported RAID
// levels. Last line: default RAID levels by the number of drives in the array, 0, 1, 2, 3, 4, any
// greater even number, any greater odd number (noFit: no level fits). The first row of a type whose
// subtype fits counts. RAID 1 for an odd number of drives is the product's rule for SATAConfig and
// SCSIConfig.
// clang-format off
constexpr std::array<ConfigDefaults, 19> rules{{
    {KXConfig, family, anyCode, from(4), autoCache, read_ahead::adaptive, stripe::kb8,
     1, 16, false, false, CodeSet::range(stripe::kb8, stripe::kb64),
     {raid0, raid1, raid1E, raid5, raid5E, raid5EE},
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {KXTConfig, arcconf2, anyCode, never, autoCache, read_ahead::on, stripe::kb64,
     1, 4, false, false, CodeSet::range(stripe::kb8, stripe::kb64),
     {raid0, raid1, raid5, raid10, volume},
     {noFit, volume, raid1, raid5, raid10, raid5, raid5}},
    {KXTConfig, arcconf7, anyCode, from(4), autoCache, read_ahead::on, stripe::kb256,
     1, 16, false, false, CodeSet::range(stripe::kb16, stripe::kb1024),
     {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume},
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
    {KXTConfig, arcconf11, 2, from(4), autoCache, read_ahead::on, stripe::kb256,
     1, 16, false, false, CodeSet::range(stripe::kb16, stripe::kb1024),
     {raid0, raid1, raid1E, raid5, raid6, raid10, volume},
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
    {KXTConfig, arcconf11, 1, oddFrom(3), autoCache, read_ahead::on, stripe::kb256,
     1, 16, false, false, CodeSet::range(stripe::kb16, stripe::kb1024),
     {raid0, raid1, raid10, volume},
     {noFit, volume, raid1, volume, raid10, raid10, volume}},
    {KXTConfig, arcconf11, anyCode, never, autoCache, read_ahead::on, stripe::kb256,
     1, 16, false, false, CodeSet::range(stripe::kb16, stripe::kb1024),
     noLevels,
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
    {SATAConfig, hrconf8, anyCode, oddFrom(3), autoCache, read_ahead::adaptive, stripe::kb64,
     2, 4, true, false, CodeSet::range(stripe::kb16, stripe::kb64),
     mirrorLevels.with(raid10),
     {noFit, noFit, raid1, raid1, raid10, raid10, raid1}},
    {SATAConfig, hrconf9, anyCode, from(3), autoCache, read_ahead::adaptive, stripe::kb64,
     1, 2, true, false, CodeSet::range(stripe::kb16, stripe::kb64),
     mirrorLevels.with(raid10).with(volume).with(simpleVolume),
     {noFit, volume, raid1, raid1, raid10, raid10, raid1}},
    {SATAConfig, hrconf3, anyCode, never, autoCache, read_ahead::adaptive, stripe::kb64,
     2, 2, true, false, CodeSet::range(stripe::kb16, stripe::kb64),
     mirrorLevels,
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
    {SCSIConfig, hrconf4, anyCode, oddFrom(3), autoCache, read_ahead::on, stripe::kb64,
     2, 4, true, true, CodeSet::range(stripe::kb16, stripe::kb64),
     mirrorLevels.with(raid10),
     {noFit, noFit, raid1, raid1, raid10, raid10, raid1}},
    {LSIConfig, lsiScsi, anyCode, from(3), autoCache, read_ahead::adaptive, stripe::none,
     2, 2, true, false, CodeSet::every(),
     {raid1},
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
    {LSIConfig, lsiSas, 1, from(3), autoCache, read_ahead::adaptive, stripe::none,
     2, 2, true, false, CodeSet::every(),
     mirrorLevels,
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
    {LSIConfig, lsiSas, anyCode, from(4), autoCache, read_ahead::adaptive, stripe::none,
     2, 6, true, false, CodeSet::every(),
     mirrorLevels.with(raid1E),
     {noFit, noFit, raid1, raid1E, raid1E, raid1E, raid1E}},
    {IDEConfig, lsiIde, anyCode, never, autoCache, read_ahead::adaptive, stripe::kb64,
     1, 2, true, false, CodeSet::range(stripe::kb32, stripe::kb4096),
     mirrorLevels,
     {raid0, raid0, raid1, raid0, raid0, raid0, raid0}},
    {MEGAConfig, megaRaid, 8, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64,
     1, 32, false, false, CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels,
     {noFit, raid0, raid1, raid0, raid10, raid10, raid10}},
    {MEGAConfig, megaRaid, 1, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64,
     1, 32, false, false, CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {MEGAConfig, megaRaid, 9, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64,
     1, 32, false, false, CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {MEGAConfig, megaRaid, 11, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64,
     1, 32, false, false, CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {MEGAConfig, megaRaid, anyCode, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64,
     1, 32, false, false, CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels.with(raid5).with(raid50).with(raid6).with(raid60),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
}};
// clang-format on

/// The last row of each type stands for every other subtype, and no row after it is of the type.
constexpr bool isComplete() {
    for (std::int32_t type = first; type <= last; ++type) {
        std::int32_t open = anyCode + 1;
        for (const ConfigDefaults& row : rules) {
            if (row.type == type && open == anyCode) {
                return false;
            }
            open = row.type == type ? row.subtype : open;
        }
        if (open != anyCode) {
            return false;
        }
    }
    return true;
}
static_assert(isComplete(), "every controller type has rules for each of its subtypes");

} // namespace

const char* creationTrace(ConfigClass configClass) {
    switch (configClass) {
    case ConfigClass::KXConfig:
        return "Creating KXConfig\n";
    case ConfigClass::KXTConfig:
        return "Creating KXTConfig\n";
    case ConfigClass::SATAConfig:
        return "Creating SATAConfig\n";
    case ConfigClass::SCSIConfig:
        return "Creating SCSIConfig\n";
    case ConfigClass::LSIConfig:
        return "Creating LSIConfig\n";
    case ConfigClass::IDEConfig:
        break;
    case ConfigClass::MEGAConfig:
        return "Creating MEGAConfig\n";
    }
    return "";
}

std::int32_t ConfigDefaults::defaultHotspareCount(std::int32_t drives) const {
    const bool enough = hotspares.fromDrives > 0 && drives >= hotspares.fromDrives;
    return enough && (!hotspares.oddOnly || drives % 2 != 0) ? 1 : 0;
}

std::int32_t ConfigDefaults::defaultRAIDLevel(std::size_t drives) const {
    constexpr std::size_t greaterEven = 5;
    constexpr std::size_t greaterOdd = 6;
    const std::size_t column = drives < greaterEven ? drives
                               : drives % 2 == 0    ? greaterEven
                                                    : greaterOdd;
    return levels.at(column);
}

const ConfigDefaults* rulesFor(std::int32_t type, std::int32_t subtype) {
    const auto* const found =
        std::find_if(rules.begin(), rules.end(), [&](const ConfigDefaults& row) {
            return row.type == type && (row.subtype == anyCode || row.subtype == subtype);
        });
    return found == rules.end() ? nullptr : found;
}

} // namespace zolex
