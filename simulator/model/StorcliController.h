#pragma once

#include "model/Basics.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The machine of today's controllers, which STORCLI and its like drive: drive groups of one or
/// more spans, several virtual drives on one group, sizes in sectors, numbers of virtual drives
/// that are no positions.
namespace zolex_sim::storcli {

/// The versions of the utility whose answers differ.
enum class Version : std::uint8_t { first, v1017, v1616, v2507, v3703, second };
enum class Branding : std::uint8_t { lsi, perc, hpe };
enum class Battery : std::uint8_t { none, optimal, failed };
enum class Level : std::uint8_t { raid0, raid1, raid5, raid6, raid00, raid10, raid50, raid60 };
enum class Cache : std::uint8_t { writeThrough, writeBack, alwaysWriteBack };
enum class DriveState : std::uint8_t {
    good,
    bad,
    jbod,
    online,
    rebuild,
    copyback,
    offline,
    failed,
    globalSpare,
    dedicatedSpare,
    foreign,
    missing, ///< a member that is not there: no list of drives has it
};
enum class VolumeState : std::uint8_t { optimal, partiallyDegraded, degraded, offline };

/// What a level asks of its spans.
struct Rules {
    std::string_view name; ///< "RAID10"
    Level inSpan;          ///< the level of one span
    bool spanned;
    int minDrives;  ///< of one span
    int redundancy; ///< drives of one span that hold no data; -1: of mirrored pairs one
};

const Rules& rulesOf(Level level);

// The words of the definition and state files.
std::optional<Version> versionNamed(std::string_view word);
std::optional<Branding> brandingNamed(std::string_view word);
std::optional<Battery> batteryNamed(std::string_view word);
std::optional<Level> levelNamed(std::string_view word);
std::optional<Cache> cacheNamed(std::string_view word);
std::optional<DriveState> stateNamed(std::string_view word);
std::string_view wordOf(Cache cache);
std::string_view wordOf(DriveState state);

struct Drive {
    DriveLocation place;
    int deviceId = 0;
    int sectorBytes = 512;
    std::int64_t sectors = 0; ///< coerced: what groups are made from
    std::int64_t rawSectors = 0;
    std::string interface;
    Medium medium = Medium::disk;
    std::string vendor;
    std::string model;
    std::string revision;
    std::string serial;
    std::uint64_t wwn = 0;
    int mediaErrors = 0;
    int otherErrors = 0;
    int predictiveFailures = 0;
    bool smartAlert = false;
    int temperature = 0; ///< degrees Celsius
    DriveState state = DriveState::good;
    std::vector<std::size_t> groups; ///< of a dedicated spare
    bool locating = false;

    [[nodiscard]] bool isThere() const { return state != DriveState::missing; }

    /// The coerced size in blocks of 512 bytes.
    [[nodiscard]] std::int64_t blocks() const { return sectors * (sectorBytes / 512); }
    /// What the firmware keeps for itself, 512 MiB, is not in it.
    [[nodiscard]] std::int64_t nonCoercedSectors() const {
        return rawSectors - (std::int64_t{512} << 20) / sectorBytes;
    }
};

struct Group {
    std::vector<std::vector<DriveLocation>> spans;
    friend bool operator==(const Group&, const Group&) = default;
};

struct Volume {
    int number = 0;
    std::size_t group = 0;
    Level level = Level::raid0;
    std::int64_t blocks = 0; ///< of 512 bytes
    int stripKb = 0;
    Cache cache = Cache::writeThrough;
    bool readAhead = false;
    bool cachedIo = false;
    std::string name;
    std::string naaId;      ///< no two ever have one; "-": it is not told
    std::string device;     ///< as the system names it
    bool hasSystem = false; ///< an operating system is on it
    bool consistent = true;
    int order = 0; ///< in which they were made
    friend bool operator==(const Volume&, const Volume&) = default;
};

/// What another controller has left on drives that are foreign here.
struct ForeignSet {
    Level level = Level::raid0;
    std::int64_t blocks = 0;
    int volumes = 1;
    int missing = 0; ///< members that are not here
    std::vector<DriveLocation> drives;
};

struct Enclosure {
    int id = 0;
    int slots = 0;
    std::string product;
};

class Controller {
  public:
    Version version = Version::v2507;
    Branding branding = Branding::lsi;
    std::string model;
    std::string serialNumber;
    std::string firmwarePackage;
    std::string firmware;
    std::string bios;
    std::uint64_t sasAddress = 0;
    PciFunction pci;
    Battery battery = Battery::optimal;
    std::string coercion; ///< "None", "128MB", "1GB"
    bool numbersUp = false;
    bool refusesNolog = false;
    bool hostAdapter = false; ///< no RAID: listed apart
    bool supportsJbod = true;
    bool mixesSasSataDisks = true;
    bool mixesSasSataSsds = true;
    bool mixesMedia = false;
    bool preservedCache = false;    ///< of a volume that is gone
    bool showsRunningCache = false; ///< instead of the policy where the battery is not sound
    int minStripKb = 64;
    int maxStripKb = 1024;
    int defaultStripKb = 256;
    Cache defaultCache = Cache::writeBack;
    bool defaultReadAhead = true;
    int maxVolumes = 240;
    int maxArms = 32;
    int maxSpans = 8;
    int maxVolumesPerGroup = 16;
    std::vector<Level> levels;
    std::vector<Drive> drives;
    std::vector<Enclosure> enclosures;
    std::vector<ForeignSet> foreignSets;

    // What commands change, besides the states of drives.
    bool jbodOn = true;
    int rebuildRate = 30;
    std::vector<Group> groups;
    std::vector<Volume> volumes; ///< by number
    std::uint32_t deleted = 0;   ///< so many virtual drives were

    static constexpr int lastNumber = 239;

    /// How many drives are there.
    [[nodiscard]] std::size_t driveCount() const;
    [[nodiscard]] const Drive* driveAt(const DriveLocation& place) const;
    [[nodiscard]] Drive* driveAt(const DriveLocation& place);
    [[nodiscard]] std::optional<MemberPlace> placeOf(const DriveLocation& place) const;
    [[nodiscard]] const Volume* volumeNumbered(int number) const;
    [[nodiscard]] bool supports(Level level) const;
    /// The number of the next virtual drive; nothing when all are taken.
    [[nodiscard]] std::optional<int> nextNumber() const;
    /// The name that the system gives to the next one.
    [[nodiscard]] std::string nextDevice() const;
    /// Blocks that the level keeps of such spans.
    [[nodiscard]] std::int64_t capacity(Level level,
                                        const std::vector<std::vector<DriveLocation>>& spans) const;
    /// Blocks that the group's virtual drives leave to one more of this level.
    [[nodiscard]] std::int64_t roomLeft(std::size_t group, Level level) const;
    [[nodiscard]] VolumeState stateOf(Level level, const std::vector<DriveLocation>& span) const;
    [[nodiscard]] VolumeState stateOf(Level level, std::size_t group) const;
    /// The level of the group's first virtual drive.
    [[nodiscard]] Level levelOf(std::size_t group) const;
    /// The drives that hold data, of all spans.
    [[nodiscard]] static std::int64_t
    dataDrives(Level level, const std::vector<std::vector<DriveLocation>>& spans);

    /// Enters a virtual drive, in the order of the numbers. One without an id gets one that none
    /// has had.
    void enter(Volume volume);
    /// Takes the virtual drive away, and with the last one of a group the group: sound members
    /// become good, others bad; a spare for nothing but this group becomes one for all.
    void remove(int number);

  private:
    void dissolve(std::size_t group);
    [[nodiscard]] std::string naaIdOf(int number) const;
};

} // namespace zolex_sim::storcli
