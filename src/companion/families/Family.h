#pragma once

#include "companion/facts/Facts.h"
#include "companion/layout/Layout.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// A call of a capture, and what came of it.
struct FamilyListing {
    std::string command; ///< "STORCLI /c0 show all J nolog"
    ChildOutcome outcome = ChildOutcome::notStarted;
    std::uint32_t exitCode = 0;
    std::chrono::milliseconds duration{0};
    std::string output;
};

/// What is to be said of a controller or of a family as a whole: id of a problem code, and texts.
struct FamilyFinding {
    std::string code;
    std::string summary;
    std::string detail;
    std::vector<std::string> help; ///< empty: that of the code
};

/// One controller as its family tells it.
struct FamilyController {
    std::int32_t adapter = 0; ///< its number in the utility's commands: 0 of "/c0"
    /// The utility's text for the model with every run of other characters than letters and digits
    /// as one "-": "PERC-H755-Front".
    std::string model;
    std::string pci;    ///< "0000:c1:00.0"; empty: not told, or none
    std::string pciIds; ///< "1000:10e2:1028:1ae1"; the same
    std::vector<FamilyListing> listings;
    Facts facts;
    std::vector<FamilyFinding> findings;
    bool failed = false; ///< its utility failed: nothing but that it is there is known
    std::string program; ///< as in FamilyRequest
};

struct FamilyCapture {
    std::vector<FamilyController> controllers; ///< in the order of the utility
    std::vector<FamilyFinding> findings;       ///< of the family as a whole
};

struct FamilyRequest {
    std::chrono::milliseconds limit{300000}; ///< for each child
    std::function<void(const std::string& text)> progress;
    /// The time since some moment; may be empty, and nothing is timed then.
    std::function<std::chrono::milliseconds()> elapsed;
    /// False where only the controllers are asked for that its policies may name, and this family
    /// has to be asked for by name ("--family md").
    bool isAskedFor = false;
    std::string program; ///< usual name of the one that was found: "perccli64"; empty: not known
};

/// A logical drive to be made, with its drives.
struct VolumeWish {
    std::string raidType;                        ///< "RAID5"
    std::vector<std::vector<std::string>> spans; ///< locations in the order of the command
    std::optional<std::uint64_t> capacityBytes;  ///< nothing: all that is left
    std::optional<std::uint64_t> stripSizeBytes; ///< nothing: the controller's own
    std::string writeCache;          ///< as in LayoutVolume; empty: the controller's own
    std::string readCache;           ///< the same
    std::string name;                ///< empty: none
    std::vector<std::string> spares; ///< dedicated ones that are made with the array
};

/// Which limits a controller has, from what its listings say and what its utility is known for.
struct FamilyLimits {
    std::vector<std::string> raidTypes; ///< that it can make
    std::size_t mostDrives = 0;         ///< of one logical drive; 0: not known
    std::size_t mostDrivesPerSpan = 0;  ///< the same
    std::size_t mostSpans = 0;
    std::size_t mostVolumes = 0;
    std::size_t mostVolumesPerGroup = 0; ///< 1: a group holds one logical drive
    std::uint64_t leastStripBytes = 0;   ///< 0: not told
    std::uint64_t mostStripBytes = 0;
    bool mixesProtocols = false; ///< SAS and SATA in one logical drive
    bool mixesNvme = true;       ///< NVMe with these, where protocols are mixed at all
    bool mixesMedia = false;     ///< HDD and SSD
    bool setsCaches = false;     ///< write and read-ahead modes can be told
    bool hasGlobalSpares = false;
    bool hasDedicatedSpares = false;
    DeepMirrors deepMirrors = DeepMirrors::ofPairs;
};

/// What a command came to.
struct FamilyVerdict {
    bool isDone = false;
    std::string why; ///< of one that is not: the utility's words, in a line
    std::vector<std::string> help;
    /// A command line that does the same and is to be run in its place, where the utility does not
    /// know a word of this one and has done nothing; or empty.
    std::string instead;
};

/// A logical drive that is there and serves nobody.
struct FamilyIdle {
    std::string serves; ///< its state if it did: "active"
    std::string state;  ///< "stopped"
    std::string help;   ///< how it is made to serve
};

/// The machine under a family whose command lines are more than the start of one program.
struct FamilyMachine {
    /// Starts a program, the first of the arguments.
    std::function<ChildResult(const std::vector<std::string>& arguments,
                              std::chrono::milliseconds limit)>
        start;
    std::function<void()> pauseOneSecond;
    std::string program; ///< the family's own, as it was found; empty: it was not
    /// Drives of less than so many bytes are left alone by families that look for drives; 0: the
    /// family's own bound.
    std::uint64_t leastDriveBytes = 0;
};

/// A family of controllers that zolex does not know, with the utility that drives it. Command lines
/// begin with the family's word ("STORCLI /c0 ..."), which the platform of the machine turns into
/// the program that was found.
class Family {
  public:
    virtual ~Family() = default;

    [[nodiscard]] virtual std::string_view name() const = 0; ///< "STORCLI"
    /// Usual names of its program, in the order in which they are looked for.
    [[nodiscard]] virtual std::span<const std::string_view> programs() const = 0;
    /// Whether it is captured only when it is asked for by name.
    [[nodiscard]] virtual bool isOptIn() const { return false; }
    /// Whether a command line of the family only reads.
    [[nodiscard]] virtual bool isReading(std::string_view commandLine) const = 0;
    /// Whether a command line makes the utility write files of its own into the current folder: it
    /// is run in an empty one then, which is removed.
    [[nodiscard]] virtual bool leavesFiles(std::string_view /*commandLine*/) const { return false; }

    /// Asks the utility for its controllers, and each for all that it has. What fails is told and
    /// ends nothing else.
    [[nodiscard]] virtual FamilyCapture capture(Platform& platform,
                                                const FamilyRequest& request) const = 0;

    /// Whether it carries out its command lines itself, as they are more than the start of its
    /// program.
    [[nodiscard]] virtual bool carriesOut() const { return false; }
    /// Does so; nothing for a family that does not.
    [[nodiscard]] virtual std::optional<ChildResult>
    carryOut(const FamilyMachine& machine, std::string_view commandLine,
             std::chrono::milliseconds limit) const {
        (void)machine;
        (void)commandLine;
        (void)limit;
        return std::nullopt;
    }

    /// Whether policies count drives as they are listed; else by enclosure and slot.
    [[nodiscard]] virtual bool listsInOrder() const { return false; }
    [[nodiscard]] virtual FamilyLimits limits(const Facts& facts) const = 0;
    /// Why a drive cannot be planned with; empty for one that can. A drive in an array or a spare
    /// of this controller can, once what it is in is gone.
    [[nodiscard]] virtual std::string whyNotUsable(const DriveFacts& drive) const = 0;

    /// Why a logical drive cannot be made, beside the limits; empty for one that can.
    [[nodiscard]] virtual std::string whyNotMade(const VolumeWish& wish, const Facts& facts) const {
        (void)wish;
        (void)facts;
        return {};
    }
    /// Why a logical drive cannot be deleted as it stands; empty for one that can.
    [[nodiscard]] virtual std::string whyNotDeleted(const LogicalDriveFacts& /*volume*/) const {
        return {};
    }
    /// Why a logical drive serves nobody, whole as it may be; nothing for one that does.
    [[nodiscard]] virtual std::optional<FamilyIdle>
    whyIdle(const LogicalDriveFacts& /*volume*/) const {
        return std::nullopt;
    }
    /// What somebody may type to make a drive usable that the system has as it is; for eyes, as its
    /// data is lost. Empty: there is nothing.
    [[nodiscard]] virtual std::string makeGood(std::int32_t /*adapter*/,
                                               const DriveFacts& /*drive*/) const {
        return {};
    }

    // Command lines. An empty one: the family has no command for it.
    [[nodiscard]] virtual std::string createVolume(std::int32_t adapter,
                                                   const VolumeWish& wish) const = 0;
    [[nodiscard]] virtual std::string deleteVolume(std::int32_t adapter,
                                                   const LogicalDriveFacts& volume) const = 0;
    /// A hot spare of these arrays (ids as listed), of all arrays where there are none.
    [[nodiscard]] virtual std::string addSpare(std::int32_t adapter, const std::string& location,
                                               const std::vector<std::string>& arrays) const = 0;
    /// The same arrays as the spare is listed with.
    [[nodiscard]] virtual std::string removeSpare(std::int32_t adapter, const std::string& location,
                                                  const std::vector<std::string>& arrays) const = 0;
    [[nodiscard]] virtual std::string clearForeign(std::int32_t adapter) const = 0;
    /// "write_cache_policy" or "read_cache_policy", with the word of LayoutVolume.
    [[nodiscard]] virtual std::string setCache(std::int32_t adapter,
                                               const LogicalDriveFacts& volume,
                                               std::string_view attribute,
                                               std::string_view value) const = 0;
    /// "HIGH", "MEDIUM" or "LOW" of policies.
    [[nodiscard]] virtual std::string setRebuildRate(std::int32_t adapter,
                                                     std::string_view rate) const = 0;

    /// Judges a command that changes something by its exit code and by what it printed.
    [[nodiscard]] virtual FamilyVerdict judge(std::string_view commandLine, std::uint32_t exitCode,
                                              std::string_view output) const = 0;
};

/// The families beside those of zolex, in the order of their names.
[[nodiscard]] std::span<const Family* const> families();
/// The family of a word, or of the first word of a command line, letter case ignored; null: none.
[[nodiscard]] const Family* findFamily(std::string_view wordOrLine);

} // namespace zolex::companion
