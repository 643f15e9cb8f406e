#pragma once

#include "model/Basics.h"
#include "model/RaidLevel.h"
#include "model/StorcliController.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim {

/// jbod: shown to the system as it is; of MEGACLI. missing: a member that is not there, which no
/// listing of drives tells of; it stands for one in copies of real controllers. dedicated: a hot
/// spare for some arrays alone, no listing tells which; it stays when arrays go.
enum class DriveStatus : std::uint8_t {
    good,
    bad,
    failed,
    foreign,
    hotspare,
    online,
    rebuild,
    jbod,
    missing,
    dedicated,
};

/// The status word of the definition and state files.
std::string_view statusWord(DriveStatus status);
std::optional<DriveStatus> statusNamed(std::string_view word);

constexpr std::int64_t sectorsPerMb = 2048;

struct Drive {
    DriveLocation location;
    std::int64_t sizeMb = 0; ///< coerced: what arrays are built from
    std::int64_t rawSectors = 0;
    std::int64_t nonCoercedSectors = 0;
    std::string interface; ///< "SAS" or "SATA"
    Medium medium = Medium::disk;
    std::string vendor; ///< the four parts of the inquiry data
    std::string model;
    std::string revision;
    std::string serial;
    std::uint64_t sasAddress = 0;
    int deviceId = 0;
    int port = 0;
    int mediaErrors = 0;
    int otherErrors = 0;
    int predictiveFailures = 0;
    int temperature = 0; ///< degrees Celsius
    std::string transferSpeed;
    DriveLocation bay; ///< where a drive sits that is addressed by channel and device
    DriveStatus status = DriveStatus::good;
    /// Of a foreign drive: the one of the controller's foreign configurations that it carries.
    std::optional<std::size_t> foreignConfiguration;
};

/// What another controller has left on drives that are foreign here.
struct ForeignConfiguration {
    RaidLevel level = RaidLevel::raid0;
    std::int64_t sizeMb = 0; ///< 0: not known
    int missing = 0;         ///< members that are not here
    std::string name;
};

/// A group of drives: one or more spans of equally many drives.
struct Array {
    std::vector<std::vector<DriveLocation>> spans;
    friend bool operator==(const Array&, const Array&) = default;
};

enum class WritePolicy : std::uint8_t { writeThrough, writeBack };
enum class ReadPolicy : std::uint8_t { adaptive, ahead, none };

/// The words of the files: "WT", "WB"; "ADRA", "RA", "NORA".
std::string_view policyWord(WritePolicy policy);
std::string_view policyWord(ReadPolicy policy);
std::optional<WritePolicy> writePolicyNamed(std::string_view word);
std::optional<ReadPolicy> readPolicyNamed(std::string_view word);

struct LogicalDrive {
    std::size_t array = 0; ///< index into the controller's arrays
    RaidLevel level = RaidLevel::raid0;
    std::int64_t sizeMb = 0;
    int stripeKb = 0;
    WritePolicy writePolicy = WritePolicy::writeThrough;
    ReadPolicy readPolicy = ReadPolicy::none;
    std::string name;
    bool batteryProtected = false; ///< written back only as long as a battery protects the cache
    bool partitioned = false;      ///< the system has put partitions on it
    /// From 0, its own as long as it exists; absent: its place among the logical drives.
    std::optional<std::size_t> number;
    /// MEGACLI: written back without a sound battery, too. No command and no file says so; it is so
    /// in copies of real controllers.
    bool withoutBattery = false;
    friend bool operator==(const LogicalDrive&, const LogicalDrive&) = default;
};

enum class LogicalDriveState : std::uint8_t { optimal, partiallyDegraded, degraded, offline };

/// Generations of a utility's firmware, which print different listings. Only ARCCONF has the
/// newest.
enum class Generation : std::uint8_t { early, later, newest };

/// A device on a channel that is no drive.
struct EnclosureDevice {
    DriveLocation location; ///< channel and device
    int id = 0;             ///< number of the enclosure
    std::string type;
    std::string vendor;
    std::string model;
    std::string revision;
    std::string temperature; ///< in a word
};

/// What ARCCONF and HRCONF show of a controller besides what every utility does.
struct ConfIdentity {
    std::string status;
    std::string channels; ///< a description
    int physicalSlot = 0;
    std::string memory;
    std::string copyback;
    std::string dataScrubbing;
    std::string failover; ///< empty: without support for automatic failover
    std::string driver;   ///< version
    std::string battery;
    bool showsReadCache = true; ///< with the logical drives
    bool expander = false;      ///< members are told by the enclosure and the slot where they sit
    std::vector<EnclosureDevice> enclosureDevices;
};

/// An enclosure as CFGGEN shows it.
struct EnclosureBox {
    int number = 0;
    std::uint64_t logicalId = 0;
    int slots = 0;
};

/// What QTCSEND and the CFGGEN utilities show of a controller besides what every utility does.
struct BlockIdentity {
    std::string controllerName;
    std::string rebuildPriority; ///< "High", "Medium" or "Low"
    std::optional<int> slot;
    int bus = 0; ///< as the listing tells it
    int initiatorId = 0;
    std::vector<EnclosureBox> enclosures;
};

/// What a controller is and can do; it never changes.
struct ControllerIdentity {
    std::string utility;
    Generation generation = Generation::early;
    std::string model; ///< the name that inventory files use
    std::string productName;
    std::string serialNumber;
    std::string firmwarePackage;
    std::string firmware;
    std::string bios;
    std::string webBios;
    std::string bootBlock;
    std::string manufactured;
    std::string coercionMode;
    int rebuildRate = 0; ///< percent
    PciFunction pci;
    std::vector<RaidLevel> levels; ///< that it supports
    int minStripeKb = 0;
    int maxStripeKb = 0;
    int maxSpans = 0;
    int maxDrivesPerSpan = 0;
    int maxLogicalDrives = 0;
    int defaultStripeKb = 0;
    WritePolicy defaultWritePolicy = WritePolicy::writeThrough;
    ReadPolicy defaultReadPolicy = ReadPolicy::none;
    bool defaultBatteryProtected = false;
    int maxHotSpares = 0;
    /// Whether a mirror is listed with a stripe size; absent: as the form of the listing has it.
    std::optional<bool> showsMirrorStripe;
    ConfIdentity conf;
    BlockIdentity block;
};

/// Foreign drives that belong together.
struct ForeignGroup {
    std::optional<std::size_t> configuration; ///< index into the controller's; absent: unknown
    std::vector<DriveLocation> drives;
};

class Controller {
  public:
    ControllerIdentity identity;
    std::vector<Drive> drives; ///< in the order of the definition
    std::vector<Array> arrays;
    std::vector<LogicalDrive> logicalDrives; ///< in the order of their numbers
    /// As drives name them, whether or not any still carries them.
    std::vector<ForeignConfiguration> foreignConfigurations;

    [[nodiscard]] bool supports(RaidLevel level) const;
    /// Null when no drive sits there.
    [[nodiscard]] const Drive* driveAt(const DriveLocation& location) const;
    [[nodiscard]] Drive* driveAt(const DriveLocation& location);
    [[nodiscard]] std::optional<MemberPlace> placeOf(const DriveLocation& location) const;
    /// Whether a new array can take the drive: it is good, in no array and no hot spare.
    [[nodiscard]] bool isFree(const Drive& drive) const;
    /// The array that has exactly these drives in each span, in whatever order within it.
    [[nodiscard]] std::optional<std::size_t>
    arrayOf(const std::vector<std::vector<DriveLocation>>& spans) const;
    /// The enclosures in the order in which drives name them; drives outside every enclosure count
    /// as one more.
    [[nodiscard]] std::vector<std::optional<int>> enclosures() const;
    /// Room in MB that the level keeps of the spans: the smallest member times the drives that hold
    /// data. Every location must hold a drive.
    [[nodiscard]] std::int64_t capacity(RaidLevel level,
                                        const std::vector<std::vector<DriveLocation>>& spans) const;
    /// Room in MB that the array's logical drives leave to one more of this level. Drives of
    /// different levels share it by what they take of each member; a begun MB counts.
    [[nodiscard]] std::int64_t roomLeft(std::size_t array, RaidLevel level) const;
    [[nodiscard]] LogicalDriveState stateOf(const LogicalDrive& logicalDrive) const;
    /// The foreign drives by the configuration that they carry, without those that no drive
    /// carries; drives that carry an unknown one come last, together.
    [[nodiscard]] std::vector<ForeignGroup> foreignGroups() const;
    /// The number of the logical drive at this place.
    [[nodiscard]] std::size_t numberOf(std::size_t place) const;
    /// The place of the logical drive that has the number.
    [[nodiscard]] std::optional<std::size_t> placeNumbered(std::size_t number) const;
    /// The number that the next logical drive gets: the lowest that none has.
    [[nodiscard]] std::size_t nextNumber() const;
};

/// What a fault does to an answer of STORCLI instead of ending the command.
enum class EffectKind : std::uint8_t {
    sickDrive,      ///< one drive does not answer: Failure with all others
    plainText,      ///< text, though JSON was asked for
    truncated,      ///< cut in the middle
    unknownKey,     ///< a key more in every object
    missingSection, ///< a section less
    wordOfTomorrow, ///< a drive in a state that no list has
    refused,        ///< Failure with a number, and nothing is done
};

/// The words of the definition: "sickDrive" and so on.
std::optional<EffectKind> effectNamed(std::string_view word);

struct Effect {
    EffectKind kind = EffectKind::truncated;
    std::optional<DriveLocation> drive; ///< absent: the first one
    std::string section;
    int errorCode = 0; ///< that the refusal tells
};

/// A command that is to go wrong.
struct Fault {
    std::string match;           ///< part of the command's text, letter case ignored
    int occurrence = 0;          ///< which matching command, from 1; 0: each
    std::optional<int> exitCode; ///< ends the command with this code instead of running it
    std::int64_t delayMs = 0;
    std::string output;           ///< printed before anything else
    std::int64_t outputBytes = 0; ///< that many bytes of filler lines are printed too
    int seen = 0;                 ///< matching commands so far, up to the occurrence
    std::optional<Effect> effect; ///< on the answer, which then comes
};

class Server {
  public:
    std::string machineType;
    std::string serialNumber;
    int detectorExitCode = 0;
    int fakeraidExitCode = 0;
    std::vector<Controller> controllers; ///< in the order of the definition
    std::vector<PciFunction> otherDevices;
    std::vector<Fault> faults;
    std::vector<storcli::Controller> storcliControllers; ///< in the order of the definition
    /// What a fault does to the command that is played next; no file holds it.
    std::optional<Effect> effect;

    /// The controllers that the utility drives, in the order of the PCI listing: adapter 0 first.
    [[nodiscard]] std::vector<Controller*> adaptersOf(std::string_view utility);
    /// Every controller, in the order of the PCI listing.
    [[nodiscard]] std::vector<const Controller*> controllersInPciOrder() const;
    /// The controllers of today, likewise; they are numbered apart.
    [[nodiscard]] std::vector<const storcli::Controller*> storcliInPciOrder() const;
    [[nodiscard]] std::vector<storcli::Controller*> storcliInPciOrder();
};

} // namespace zolex_sim
