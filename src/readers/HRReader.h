#pragma once

#include "model/RAIDController.h"
#include "readers/KeyFilter.h"
#include "readers/LayoutReader.h"
#include "readers/ListingValues.h"

#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace zolex {

/// How a utility spells the keys and words of which there is more than one spelling.
struct ListingDialect {
    std::span<const std::string_view> logicalDriveHeadings; ///< letter case ignored
    std::span<const std::string_view> logicalDriveNumber;
    std::span<const std::string_view> logicalDriveStatus;
    std::span<const std::string_view> raidLevel;
    std::span<const std::string_view> hotSpare;
    std::span<const std::string_view> defunct;
    std::span<const WordCode> moreRaidLevels; ///< besides those that every utility prints
};

/// Reads HRCONF's listing: the logical drives when configurations are captured, then the drives.
/// It is built of steps, so that a listing of nearly the same blocks can be read with them.
class HRReader : public LayoutReader {
  public:
    explicit HRReader(Detail detail, Report& report);

    /// A configuration that holds at least one array becomes the controller's. False when a RAID
    /// level or a stripe size is not known; the controller then gets neither a configuration nor
    /// drives.
    bool readConfiguration(RAIDController& controller, Listings listings) override;

  protected:
    static constexpr Exit unknownRaidLevel = 1;
    static constexpr Exit unknownStripeSize = 2;

    // What parts a listing, on every utility.
    static constexpr std::string_view separator = "--------";
    static constexpr std::string_view physicalDeviceHeading =
        "physical device information"; ///< letter case ignored
    static constexpr std::string_view deviceHeading = "Device #";

    /// What has been read of one "Device #" block.
    struct Device {
        std::optional<RaidDisk> disk; ///< none as long as the block is not known to be a disk's
        bool usable = false;
        bool hotSpare = false;
    };

    HRReader(Detail detail, Report& report, const ListingDialect& dialect);

    // The current line.
    /// Takes up a listing in front of its first line.
    void beginLines(RAIDController& controller, Listings listings);
    /// Goes to the next line; false at "EOF", behind which there is nothing.
    bool advance();
    /// Makes the next advance() stay at the current line.
    void putBack() { stay_ = true; }
    [[nodiscard]] std::string_view line() const { return line_; }
    /// The text after the line's first ":"; the one in "(T:L)" belongs to the key.
    [[nodiscard]] static std::string_view valueOf(std::string_view line);
    [[nodiscard]] std::string_view value() const { return valueOf(line_); }

    // The logical drives.
    /// Reads to the heading and on to the end of the section. What ends it is put back.
    Exit readLogicalDriveSection();
    /// Whether the current line, which is no physical device heading, ends the section.
    [[nodiscard]] virtual bool endsLogicalDrives() const { return false; }
    virtual Exit readLogicalDriveLine();
    /// One line of the keys that every listing has.
    Exit readLayoutLine();
    virtual void readDriveList();
    /// The members that the current "Channel,Device" line lists after its key.
    [[nodiscard]] std::string_view driveListValue() const;
    /// The utilities count channels from 0, the model from 1.
    [[nodiscard]] static DrivePosition toModel(DrivePosition position);
    /// Adds an array of these drives, numbered from channel 0, and ties the open logical drive to
    /// it. Drives at impossible positions are left out; without any there is no array.
    void addArrayOf(const std::vector<DrivePosition>& drives);

    // The drives.
    /// The keys of a device's lines and the words of its state, on every utility.
    enum DeviceKey : std::size_t {
        nextDevice,
        deviceKind,
        positionLine,
        stateLine,
        sizeLine,
        serialLine,
        locationLine,
        powerState,
        blockSize,
        unusedSize,
        stripeSize,
        hotSpareWord,
        hotSpareJoined,
        defunctWord,
        failedWord,
        partitionedWord,
    };

    /// Reads to the heading and then every device block; false when one of them fails.
    bool readDevices();
    /// Handles one device block from the line after its "Device #"; always true here.
    virtual bool addDevice();
    void readDevice();
    /// Whether a "Device is" line says that the device is a disk.
    [[nodiscard]] static bool isDiskLine(std::string_view line);
    /// Takes the current line, of which is known which of deviceKeys it can hold.
    virtual void readDeviceLine(Device& device, const KeyedLine& keyed);

    // What the utilities' readers trace in their own words.
    virtual std::string_view translatePhysicalState(std::string_view state);
    virtual std::string_view translateLogicalState(std::string_view state);
    virtual void traceUnknownRaidLevel(const CString& value);
    virtual void traceStored(const RaidDisk& /*disk*/, bool /*used*/) {}

  private:
    bool getArraysAndLogicalDrive();
    bool getDrives();
    Exit readRaidLevel();
    void readLogicalDriveState();
    Exit readStripeSize();
    void readDeviceState(Device& device, const KeyedLine& keyed);
    [[nodiscard]] static bool tellsSomethingElse(const KeyedLine& keyed);
    void storeDevice(Device& device);

    const ListingDialect& dialect_;
    std::string_view line_;
    bool stay_ = false;
};

} // namespace zolex
