#pragma once

#include "foundation/CString.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"
#include "readers/LayoutReader.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace zolex {

class KeyedLine;

/// Reads the listing of the family utility and those of the two CFGGEN utilities: blocks between
/// separators for the controller, its settings, the arrays and logical drives, and the drives.
class KXReader : public LayoutReader {
  public:
    using LayoutReader::LayoutReader;

    /// An empty listing is no error and changes nothing. A configuration that holds at least one
    /// array becomes the controller's. False when the listing ends inside a block that must be
    /// there or holds a value that is not known; the controller then gets no configuration.
    bool readConfiguration(RAIDController& controller, Listings listings) override;

  private:
    /// What has been read of one "Target on" block. The record's disk number is the slot.
    struct Device {
        std::optional<RaidDisk> disk; ///< none as long as the block is not known to be a disk's
        CString type;
        bool online = false;
        bool hotSpare = false;
        bool failed = false;
        bool controllersOwn = false;
    };

    void begin(RAIDController& controller, Listings listings);

    using ConfigurationReader::nextLine;
    /// Reads lines up to one that holds `separator`, giving each before it to `take`; false when
    /// the output ends first.
    bool nextLine(std::string_view ending, void (KXReader::*take)(std::string_view) = nullptr);

    /// Reads from the second separator to the end of the logical drives.
    Exit readBlocks();

    bool setControllerType();
    bool readControllerType(const CString& value);
    bool readSlot(std::string_view line);
    bool readBus(std::string_view line);
    /// A line behind those of setControllerType: CFGGEN prints the slot and the bus there.
    void readLocation(std::string_view line);

    bool setControllerSettings();
    Exit readSetting(std::string_view line);

    bool getArraysAndLogicalDrives();
    Exit readLayoutLine(std::string_view line);
    void readLogicalDriveState(const CString& value);
    Exit readRaidLevel(const CString& value);
    void readPhysicalHardDisks(std::string_view value);
    void finishArray();

    bool getDrives();
    bool addDevice(std::int32_t channel);
    void readDeviceLine(const KeyedLine& keyed, std::int32_t channel, Device& device);
    /// False when the line holds none of the keys that say where the drive stands.
    bool readDriveLocation(const KeyedLine& keyed, RaidDisk& disk);
    void readDeviceState(std::string_view value, Device& device);
    Exit storeDevice(Device& device);
    void storeDrive(Device& device);
    /// Enters the positions of the members that arrays hold as the utility's drive numbers.
    void locateMembers();

    bool isCfggen_ = false;
    /// Whether drives stand at (enclosure, slot) instead of at (channel, id).
    bool placesBySlot_ = false;
    /// The array that further lines may add members to.
    std::optional<RaidArray> array_;
};

} // namespace zolex
