#include "engine/ConfigClasses.h"

#include "engine/Planning.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

using namespace controller_type;
using namespace raid_level;

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

// The rows of each class. Columns: type; subtype; when a hot spare is the default; write cache;
// read-ahead; stripe size; least number of drives; supported stripe sizes; supported RAID levels.
// The second line of a row: default RAID levels by the number of drives in the array, 0, 1, 2, 3,
// 4, any greater even number, any greater odd number (noFit: no level fits). Within a class the
// order of the rows counts, the last row stands for every other controller.

// clang-format off
constexpr std::array<ConfigDefaults, 1> kxRows{{
    {family, anyCode, from(4), autoCache, read_ahead::adaptive, stripe::kb8, 1,
     CodeSet::range(stripe::kb8, stripe::kb64), {raid0, raid1, raid1E, raid5, raid5E, raid5EE},
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
}};

constexpr std::array<ConfigDefaults, 5> kxtRows{{
    {arcconf2, anyCode, never, autoCache, read_ahead::on, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb64), {raid0, raid1, raid5, raid10, volume},
     {noFit, volume, raid1, raid5, raid10, raid5, raid5}},
    {arcconf7, anyCode, from(4), autoCache, read_ahead::on, stripe::kb256, 1,
     CodeSet::range(stripe::kb16, stripe::kb1024),
     {raid0, raid1, raid1E, raid5, raid5EE, raid6, raid10, raid50, raid60, volume},
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
    {arcconf11, 2, from(4), autoCache, read_ahead::on, stripe::kb256, 1,
     CodeSet::range(stripe::kb16, stripe::kb1024),
     {raid0, raid1, raid1E, raid5, raid6, raid10, volume},
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
    {arcconf11, 1, oddFrom(3), autoCache, read_ahead::on, stripe::kb256, 1,
     CodeSet::range(stripe::kb16, stripe::kb1024), {raid0, raid1, raid10, volume},
     {noFit, volume, raid1, volume, raid10, raid10, volume}},
    {arcconf11, anyCode, never, autoCache, read_ahead::on, stripe::kb256, 1,
     CodeSet::range(stripe::kb16, stripe::kb1024), noLevels,
     {noFit, volume, raid1, raid5, raid5, raid5, raid5}},
}};

// RAID 1 for an odd number of drives is the product's rule here and for SCSI.
constexpr std::array<ConfigDefaults, 3> sataRows{{
    {hrconf8, anyCode, oddFrom(3), autoCache, read_ahead::adaptive, stripe::kb64, 2,
     CodeSet::range(stripe::kb16, stripe::kb64), mirrorLevels.with(raid10),
     {noFit, noFit, raid1, raid1, raid10, raid10, raid1}},
    {hrconf9, anyCode, from(3), autoCache, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb16, stripe::kb64),
     mirrorLevels.with(raid10).with(volume).with(simpleVolume),
     {noFit, volume, raid1, raid1, raid10, raid10, raid1}},
    {hrconf3, anyCode, never, autoCache, read_ahead::adaptive, stripe::kb64, 2,
     CodeSet::range(stripe::kb16, stripe::kb64), mirrorLevels,
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
}};

constexpr std::array<ConfigDefaults, 1> scsiRows{{
    {hrconf4, anyCode, oddFrom(3), autoCache, read_ahead::on, stripe::kb64, 2,
     CodeSet::range(stripe::kb16, stripe::kb64), mirrorLevels.with(raid10),
     {noFit, noFit, raid1, raid1, raid10, raid10, raid1}},
}};

constexpr std::array<ConfigDefaults, 3> lsiRows{{
    {lsiScsi, anyCode, from(3), autoCache, read_ahead::adaptive, stripe::none, 2,
     CodeSet::every(), {raid1},
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
    {lsiSas, 1, from(3), autoCache, read_ahead::adaptive, stripe::none, 2,
     CodeSet::every(), mirrorLevels,
     {noFit, noFit, raid1, raid1, raid1, raid1, raid1}},
    {lsiSas, anyCode, from(4), autoCache, read_ahead::adaptive, stripe::none, 2,
     CodeSet::every(), mirrorLevels.with(raid1E),
     {noFit, noFit, raid1, raid1E, raid1E, raid1E, raid1E}},
}};

constexpr std::array<ConfigDefaults, 1> ideRows{{
    {lsiIde, anyCode, never, autoCache, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb32, stripe::kb4096), mirrorLevels,
     {raid0, raid0, raid1, raid0, raid0, raid0, raid0}},
}};

constexpr std::array<ConfigDefaults, 5> megaRows{{
    {megaRaid, 8, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb128), megaLevels,
     {noFit, raid0, raid1, raid0, raid10, raid10, raid10}},
    {megaRaid, 1, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb128), megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {megaRaid, 9, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb128), megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {megaRaid, 11, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb128), megaLevels.with(raid5).with(raid50),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
    {megaRaid, anyCode, from(4), write_cache::on, read_ahead::adaptive, stripe::kb64, 1,
     CodeSet::range(stripe::kb8, stripe::kb128),
     megaLevels.with(raid5).with(raid50).with(raid6).with(raid60),
     {noFit, raid0, raid1, raid5, raid5, raid5, raid5}},
}};
// clang-format on

template <typename ConfigClass>
std::unique_ptr<RAIDConfigCreator> create(Application& application) {
    return std::make_unique<ConfigClass>(application);
}

// Columns: controller type; trace of the creation (empty: none); class. One row for each type.
// clang-format off
constexpr std::array<ConfigClassEntry, controller_type::last> configClasses{{
    {family,    "Creating KXConfig\n",   create<KXConfig>},
    {arcconf2,  "Creating KXTConfig\n",  create<KXTConfig>},
    {hrconf3,   "Creating SATAConfig\n", create<SATAConfig>},
    {hrconf4,   "Creating SCSIConfig\n", create<SCSIConfig>},
    {lsiScsi,   "Creating LSIConfig\n",  create<LSIConfig>},
    {lsiIde,    "",                      create<IDEConfig>},
    {arcconf7,  "Creating KXTConfig\n",  create<KXTConfig>},
    {hrconf8,   "Creating SATAConfig\n", create<SATAConfig>},
    {hrconf9,   "Creating SATAConfig\n", create<SATAConfig>},
    {lsiSas,    "Creating LSIConfig\n",  create<LSIConfig>},
    {arcconf11, "Creating KXTConfig\n",  create<KXTConfig>},
    {megaRaid,  "Creating MEGAConfig\n", create<MEGAConfig>},
}};
// clang-format on

} // namespace

KXConfig::KXConfig(Application& application) : TabledConfig(application, kxRows) {}
KXTConfig::KXTConfig(Application& application) : TabledConfig(application, kxtRows) {}
SATAConfig::SATAConfig(Application& application) : TabledConfig(application, sataRows) {}
SCSIConfig::SCSIConfig(Application& application) : TabledConfig(application, scsiRows) {}
LSIConfig::LSIConfig(Application& application) : TabledConfig(application, lsiRows) {}
IDEConfig::IDEConfig(Application& application) : TabledConfig(application, ideRows) {}
MEGAConfig::MEGAConfig(Application& application) : TabledConfig(application, megaRows) {}

const ConfigClassEntry* findConfigClass(std::int32_t controllerType) {
    const auto isType = [controllerType](const ConfigClassEntry& entry) {
        return entry.controllerType == controllerType;
    };
    const auto found = std::find_if(configClasses.begin(), configClasses.end(), isType);
    return found == configClasses.end() ? nullptr : &*found;
}

} // namespace zolex
