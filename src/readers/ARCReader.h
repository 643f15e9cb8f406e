#pragma once

#include "readers/HRReader.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zolex {

/// Reads ARCCONF's listing: controller information, firmware versions, the logical drives when
/// configurations are captured, then the drives.
class ARCReader : public HRReader {
  public:
    explicit ARCReader(Detail detail, Report& report);

    /// A configuration that holds at least one array becomes the controller's. False when a RAID
    /// level, a stripe size or a read-cache mode is not known.
    bool readConfiguration(RAIDController& controller, Listings listings) override;

    /// Number of logical drives that the controller information of the last listing named; 0 when
    /// it named none.
    [[nodiscard]] std::int32_t announcedLogicalDrives() const { return announcedLogicalDrives_; }

  protected:
    std::string_view nextLine() override;

    [[nodiscard]] bool endsLogicalDrives() const override;
    Exit readLogicalDriveLine() override;
    void readDriveList() override;
    void finishLogicalDrive() override;

    bool addDevice() override;
    void readDeviceLine(Device& device, const KeyedLine& keyed) override;

    std::string_view translatePhysicalState(std::string_view state) override;
    std::string_view translateLogicalState(std::string_view state) override;
    void traceUnknownRaidLevel(const CString& value) override;
    void traceStored(const RaidDisk& disk, bool used) override;

  private:
    static constexpr Exit unknownReadCacheMode = 3;

    /// Where a drive of the listing says that it is.
    struct ReportedDrive {
        std::string_view location;      ///< in the listing
        DrivePosition position{-1, -1}; ///< numbered from channel 0
    };

    const std::vector<ReportedDrive>& locations();
    void readLocations();
    std::string_view readLocation();

    void getControllerInfo();
    /// False when the current line holds none of the controller information's keys.
    bool readControllerLine();
    void skipBlock();
    void getFirmware();
    bool getLogicalDrives();
    bool getArraysAndLogicalDrives();
    bool getSegmentsAndLogicalDrives();
    bool getDrives();

    void beginSegments();
    void addSegment();
    [[nodiscard]] std::optional<DrivePosition> segmentDrive(std::string_view value);
    void readWriteCacheMode();
    Exit readReadCacheMode();

    /// None before they were needed.
    std::optional<std::vector<ReportedDrive>> locations_;
    bool segmentForm_ = false;
    std::int32_t announcedLogicalDrives_ = 0;
    /// The members of the open logical drive that its segment lines gave so far; none before its
    /// segment heading.
    std::optional<std::vector<DrivePosition>> segments_;
    /// Whether the open logical drive has members of a "Channel,Device" line.
    bool hasDriveList_ = false;
};

} // namespace zolex
