#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a utility's listings say of one controller: all of it, read apart from the readers that the
/// planner uses, so that the two can be held against each other.
namespace zolex::companion {

enum class Health { unknown, ok, warning, critical };

/// What a drive does, whatever word its utility has for it.
enum class DriveState {
    unknown,
    free,   ///< good, and in no array
    member, ///< of an array, and good
    hotspare,
    rebuilding,
    failed,  ///< failed, defunct, offline, unconfigured bad
    missing, ///< named, but not there
    foreign, ///< carries a layout of another controller
    jbod,    ///< shown to the system as it is
};

enum class HotspareKind { none, global, dedicated };

/// What a mirror of more than two drives is where it has one span.
enum class DeepMirrors {
    asRaid10, ///< mirrored pairs: RAID 10 under another name
    ofPairs,  ///< mirrored pairs, and a level of its own beside RAID 10, which has spans
    ofAll,    ///< every drive holds all data
};

/// Where a record begins in the listings.
struct ListingPlace {
    std::size_t listing = 0; ///< index, from 0
    std::int32_t line = 0;   ///< from 1
    friend bool operator==(const ListingPlace&, const ListingPlace&) = default;
};

/// One physical drive. What its utility does not tell is empty.
struct DriveFacts {
    /// As the utility's commands name it. MEGACLI: "32:4", ":3" for a drive in no enclosure.
    /// CFGGEN: enclosure and slot, "1:0". CFGGEN1.02.02: the SCSI id, "3". ARCCONF, HRCONF and
    /// QTCSEND: channel and device, "0:1". HYPERWIN: the number of the drive, "1" or "2".
    std::string location;
    std::optional<std::int32_t> enclosure; ///< the utility's own id
    std::optional<std::int32_t> slot;
    std::optional<std::int32_t> channel; ///< as the utility numbers it
    std::optional<std::int32_t> id;      ///< SCSI id, or device
    std::optional<std::int32_t> number;  ///< the utility's own running number, device or target id
    std::string serialNumber;
    std::string manufacturer;
    std::string model;
    std::string revision;
    std::string inquiry;   ///< the raw text that the four above come from, blanks trimmed
    std::string protocol;  ///< "SAS", "SATA", "SCSI", "PATA" or empty
    std::string mediaType; ///< "HDD", "SSD" or empty
    /// What arrays are built from.
    std::optional<std::uint64_t> capacityBytes;
    /// One of the last digit of the listed size, in bytes: how far it may be off. 0: exact.
    std::uint64_t capacityTolerance = 0;
    std::string reportedState; ///< the utility's own word
    DriveState state = DriveState::unknown;
    Health health = Health::unknown;
    std::optional<std::uint64_t> mediaErrorCount;
    std::optional<std::uint64_t> otherErrorCount;
    /// 1 where the utility says no more than that the drive is about to fail.
    std::optional<std::uint64_t> predictedFailureCount;
    std::optional<std::int32_t> temperatureCelsius;
    bool isForeign = false;
    HotspareKind hotspare = HotspareKind::none;
    std::vector<std::string> covers; ///< of a dedicated spare: ids of its arrays
    /// Of one logical block; nothing: not told. Drives of different ones do not go together.
    std::optional<std::uint32_t> blockSizeBytes;
    /// What its label says, of which arrays get less; nothing: not told.
    std::optional<std::uint64_t> rawCapacityBytes;
    std::string wwn; ///< world wide name; or empty
    /// Why it is not to be planned with, whatever its state is ("locked by its encryption", "in
    /// use: mounted at /srv"); or empty.
    std::string barred;
    ListingPlace place;
    friend bool operator==(const DriveFacts&, const DriveFacts&) = default;
};

/// One logical drive and the drives that it lies on.
struct LogicalDriveFacts {
    std::string id; ///< as the utility numbers it
    /// As its commands number it, where they count otherwise than its listings.
    std::optional<std::int32_t> commandNumber;
    std::string name;
    std::string array;    ///< id of its array; logical drives over the same drives share it
    std::string raidType; ///< "RAID0", ..., "RAID60", "RAID5E", "RAID5EE", "None"; empty: unknown
    std::string reportedLevel; ///< the utility's own words
    /// Locations of its drives, span by span; one span for levels without spans. A member that is
    /// not among the drives stands as the listing names it, "Missing" too.
    std::vector<std::vector<std::string>> spans;
    std::optional<std::uint64_t> capacityBytes;
    /// One of the last digit of the listed size, in bytes: how far it may be off.
    std::uint64_t capacityTolerance = 0;
    std::optional<std::uint64_t> stripSizeBytes;
    std::string
        writeCache; ///< "WriteThrough", "ProtectedWriteBack", "UnprotectedWriteBack" or empty
    std::string readCache; ///< "Off", "ReadAhead", "AdaptiveReadAhead" or empty
    std::string reportedState;
    std::string device; ///< as the system names it, "/dev/sda"; or empty
    /// What no other logical drive has, nor a later one under the same number on the same drives:
    /// its SCSI NAA id, the UUID of an array; or empty.
    std::string uniqueId;
    /// What the running system uses it for ("mounted at /srv"). Only a capture of the machine
    /// itself looks for that; empty: nothing, or nobody has looked.
    std::string usedAs;
    Health health = Health::unknown;
    ListingPlace place;

    /// Of all its spans, one behind another.
    [[nodiscard]] std::vector<std::string> drives() const;
    [[nodiscard]] bool isOn(std::string_view location) const;
    friend bool operator==(const LogicalDriveFacts&, const LogicalDriveFacts&) = default;
};

/// A block of a listing that could not be read to its end, or a line that cannot be true.
struct BrokenBlock {
    ListingPlace place;
    std::string what; ///< for a reader: "physical drive without a slot number"
    friend bool operator==(const BrokenBlock&, const BrokenBlock&) = default;
};

/// How one listing was read.
struct ListingReading {
    bool isListing = false;     ///< not an answer of the utility in the place of one
    std::size_t blocks = 0;     ///< blocks that begin (drives, logical drives, members, ...)
    std::size_t blocksRead = 0; ///< of them those that became records, or are known to be no drive
    std::size_t keys = 0;       ///< lines "key : value"
    std::size_t keysUsed = 0;   ///< of them those that a record holds
    /// Keys that no table names, cut after 80 bytes, with the line where each stands first and how
    /// often it stands.
    struct UnknownKey {
        std::int32_t line = 0;
        std::size_t count = 0;
        friend bool operator==(const UnknownKey&, const UnknownKey&) = default;
    };
    std::map<std::string, UnknownKey, std::less<>> unknownKeys;
    friend bool operator==(const ListingReading&, const ListingReading&) = default;
};

/// What a controller itself says of what it can do; 0 and false: not told.
struct ControllerAbilities {
    std::int32_t mostDrives = 0; ///< of one logical drive
    std::int32_t mostSpans = 0;
    std::int32_t mostVolumesPerArray = 0;
    std::optional<bool> mixesProtocols; ///< SAS and SATA in one logical drive
    std::optional<bool> mixesMedia;     ///< HDD and SSD
    /// What it takes where a command does not say; words as of logical drives.
    std::optional<std::uint64_t> usualStripSizeBytes;
    std::string usualWriteCache;
    std::string usualReadCache;
    friend bool operator==(const ControllerAbilities&, const ControllerAbilities&) = default;
};

/// Everything that the listings of one controller say.
struct Facts {
    std::string productName;
    std::string serialNumber;
    std::string firmwareVersion;
    std::string biosVersion;
    std::string driverVersion;
    std::string utilityVersion; ///< of the program that told all this, where it tells its own
    std::string reportedState;
    std::string pciIds;                 ///< "1000:0411:1000:1002" where the listing tells them
    std::string pciAddress;             ///< "02:0e.0" where the listing tells it, in hexadecimal
    std::vector<std::string> raidTypes; ///< that it supports; empty: not told
    std::optional<std::uint64_t> minStripSizeBytes;
    std::optional<std::uint64_t> maxStripSizeBytes;
    std::optional<std::int32_t> rebuildRatePercent;
    std::string rebuildRate; ///< in the utility's own words: "30%", "High"
    ControllerAbilities abilities;
    DeepMirrors deepMirrors = DeepMirrors::asRaid10;
    /// In the order of the listing that lists the drives, one for each location.
    std::vector<DriveFacts> drives;
    std::vector<LogicalDriveFacts> logicalDrives;
    /// One line each, as told. No listing of a capture tells them so far; foreign drives are told.
    std::vector<std::string> foreignConfigurations;
    std::vector<BrokenBlock> broken;
    std::vector<ListingReading> listings;

    [[nodiscard]] const DriveFacts* drive(std::string_view location) const;
    friend bool operator==(const Facts&, const Facts&) = default;
};

} // namespace zolex::companion
