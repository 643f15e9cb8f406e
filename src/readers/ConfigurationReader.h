#pragma once

#include "model/Configuration.h"
#include "readers/ListingCursor.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zolex {

enum class FaultKind : std::int32_t;
struct Fault;
class RAIDController;
class Report;

/// How much is read of a controller's listings, and told while they are read.
struct Detail {
    bool layout = false;      ///< arrays, logical drives and hot spares too
    bool dumpRecords = false; ///< records are shown as they are made
    std::int32_t number = 0;  ///< of the controller, from 1, for its faults; 0: not known
};

/// What a utility printed about one controller, in the order of the commands that asked for it.
using Listings = std::span<const std::string>;

/// Parses what a utility printed about one controller and fills the controller. The listings stay
/// as they are, and nothing of them is kept for the next controller.
class ConfigurationReader {
  public:
    ConfigurationReader(Detail detail, Report& report) : detail_(detail), report_(report) {}
    virtual ~ConfigurationReader() = default;
    ConfigurationReader(const ConfigurationReader&) = delete;
    ConfigurationReader& operator=(const ConfigurationReader&) = delete;

    /// False when the format is not the utility's. A listing that is not there reads as empty.
    virtual bool readConfiguration(RAIDController& controller, Listings listings) = 0;

  protected:
    [[nodiscard]] const Detail& detail() const { return detail_; }
    [[nodiscard]] Report& report() const { return report_; }
    /// Whether traces are shown. Without, those of each line are not even asked for.
    [[nodiscard]] bool traces() const { return traces_; }

    /// Lines come from the front of this listing; none when there is no such listing.
    void setListing(Listings listings, std::size_t index) {
        lines_ = index < listings.size() ? ListingCursor(listings[index]) : ListingCursor();
    }
    [[nodiscard]] bool hasListing() const { return lines_.hasListing(); }
    /// Where the next line is taken from.
    [[nodiscard]] ListingCursor& lines() { return lines_; }
    /// The next line of the listing, or "EOF".
    virtual std::string_view nextLine() { return lines_.nextLine(); }
    /// Reads until a line equals `wanted` or "EOF", and returns it.
    std::string_view skipTo(std::string_view wanted);

    // Adding to a configuration within its limits. What lies beyond is left out (false) and named
    // once for each kind ("Controller %s has more than 8 logical drives; the rest is not
    // captured.\n").
    bool addArray(RAIDConfiguration& configuration, RaidArray array);
    bool addLogicalDrive(RAIDConfiguration& configuration, LogicalDrive drive);
    bool addHotspare(RAIDConfiguration& configuration, Hotspare hotspare);
    bool addMember(RaidArray& array, DrivePosition position);
    bool addMemberNumber(RaidArray& array, std::int32_t driveNumber);
    /// Whether the position is one that drives can have; if not it is a fault.
    bool checkPosition(std::int32_t channel, std::int32_t id);
    /// Whether the size, in MB, is one that a drive at the position can have, or none; if not it is
    /// a fault.
    bool checkSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb);

    /// Starts a controller: the limits above count anew.
    void beginController(RAIDController& controller);
    [[nodiscard]] RAIDController& controller() const { return *controller_; }
    [[nodiscard]] CString modelName() const;
    /// A fault of this kind of the controller.
    [[nodiscard]] Fault faultOf(FaultKind kind) const;
    /// Reports it.
    void fail(FaultKind kind) const;

  private:
    enum class Limit : unsigned { arrays = 1, logicalDrives = 2, members = 4, hotspares = 8 };
    /// Reports the limit when it is met for the first time on this controller.
    bool keeps(bool added, Limit limit, FaultKind kind);

    Detail detail_;
    Report& report_;
    RAIDController* controller_ = nullptr;
    ListingCursor lines_;
    unsigned reportedLimits_ = 0;
    bool traces_ = false;
};

/// One row for each controller type: the reader of its utility's output and the line that its
/// creation logs.
struct ReaderEntry {
    std::int32_t controllerType;
    const char* creationTrace;
    std::unique_ptr<ConfigurationReader> (*create)(Detail detail, Report& report);
};

/// The row of a controller type; null outside 1 to 12.
[[nodiscard]] const ReaderEntry* findReader(std::int32_t controllerType);

} // namespace zolex
