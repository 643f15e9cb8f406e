#include "model/Utility.h"

#include "model/Text.h"

#include <array>

namespace zolex_sim {
namespace {

// clang-format off
constexpr std::array megacliLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid5, RaidLevel::raid6, RaidLevel::raid10,
    RaidLevel::raid50, RaidLevel::raid60,
};
constexpr std::array arcconfLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid1E, RaidLevel::raid5, RaidLevel::raid5EE,
    RaidLevel::raid6, RaidLevel::raid10, RaidLevel::raid50, RaidLevel::raid60, RaidLevel::volume,
};
constexpr std::array hrconfLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid10, RaidLevel::volume,
};

constexpr std::array qtcsendLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid1E, RaidLevel::raid5, RaidLevel::raid5E,
    RaidLevel::raid5EE,
};
constexpr std::array cfggenLevels = {RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid1E};
constexpr std::array mirrorLevel = {RaidLevel::raid1};
constexpr std::array hyperwinLevels = {RaidLevel::raid0, RaidLevel::raid1};

// Columns: name, places of drives, number of the first channel, whether failed drives are counted,
// levels; stripe size in KB, write and read policy; limits; drives; whether listings tell a
// BlockIdentity; the controller's own number among the drives.
constexpr std::array<UtilityTraits, 7> utilities = {{
    {"MEGACLI", Addressing::enclosures, -1, false, megacliLevels,  64, WritePolicy::writeThrough, ReadPolicy::none},
    {"ARCCONF", Addressing::channels,   0, true,  arcconfLevels, 256, WritePolicy::writeBack,    ReadPolicy::ahead},
    {"HRCONF",  Addressing::channels,   0, true,  hrconfLevels,   64, WritePolicy::writeBack,    ReadPolicy::ahead},
    {"QTCSEND", Addressing::ids,        1, true,  qtcsendLevels,  16, WritePolicy::writeThrough, ReadPolicy::adaptive,
     {.maxStripeKb = 64, .drivesPerSpan = 16, .logicalDrives = 8, .hotSpares = 8},
     {.interface = "SCSI", .reservedMb = 0, .numbersBad = false, .takesInitiator = false, .lastChannel = 4, .lastId = 15},
     true, 7},
    {"CFGGEN1.02.02", Addressing::ids,  1, true,  mirrorLevel,    64, WritePolicy::writeThrough, ReadPolicy::none,
     {.drivesPerSpan = 10, .logicalDrives = 2, .hotSpares = 2},
     {.interface = "SCSI", .reservedMb = 0, .numbersBad = false, .takesInitiator = false, .lastChannel = 1, .lastId = 15},
     true, 7},
    {"CFGGEN",  Addressing::enclosures, 1, true,  cfggenLevels,   64, WritePolicy::writeThrough, ReadPolicy::none,
     {.drivesPerSpan = 10, .logicalDrives = 2, .hotSpares = 2},
     {.reservedMb = 0, .numbersBad = false, .enclosure = 1},
     true, 112},
    {"HYPERWIN", Addressing::ids,       1, false, hyperwinLevels, 64, WritePolicy::writeThrough, ReadPolicy::none,
     {.minStripeKb = 32, .maxStripeKb = 4096, .drivesPerSpan = 2, .logicalDrives = 1, .hotSpares = 1},
     {.interface = "IDE", .reservedMb = 0, .numbersBad = false, .lastChannel = 1, .lastId = 1}},
}};
// clang-format on

} // namespace

const UtilityTraits* utilityNamed(std::string_view name) {
    for (const UtilityTraits& utility : utilities) {
        if (equalsIgnoringCase(utility.name, name)) {
            return &utility;
        }
    }
    return nullptr;
}

} // namespace zolex_sim
