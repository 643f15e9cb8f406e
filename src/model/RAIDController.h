#pragma once

#include "foundation/CString.h"
#include "model/Codes.h"
#include "model/Configuration.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace zolex {

/// One physical drive as a reader reports it.
struct RaidDisk {
    std::int32_t channelNumber = -1;
    std::int32_t id = -1;
    std::int32_t diskNumber = -1;
    std::int32_t sizeMb = -1;
    CString serialNumber;
    CString reportedLocation;
    CString state;        ///< the utility's own word
    CString derivedState; ///< "GOOD", "BAD", "????"

    friend bool operator==(const RaidDisk&, const RaidDisk&) = default;
};

/// One detected controller, its drives, and the layout that was captured from it. Positions are
/// [channel][id], channel 0 to 4 and id 0 to 35; positions outside are refused. Channel 0 is stored
/// but never counted, listed or dumped.
class RAIDController {
  public:
    static constexpr std::int32_t channels = 5;
    static constexpr std::int32_t ids = 36;
    static constexpr std::int32_t firstChannel = 1; ///< first channel that counts
    static constexpr std::int32_t noDrive = -1;     ///< size at a position without a drive
    static constexpr std::int32_t maxScanOrder = 15;

    [[nodiscard]] static bool isPosition(std::int32_t channel, std::int32_t id) {
        return channel >= 0 && channel < channels && id >= 0 && id < ids;
    }

    // Setters return true unless said otherwise.
    bool setType(std::int32_t type);
    bool setSubtype(std::int32_t subtype);
    /// False outside 1 to 15, keeping the earlier value.
    bool setScanOrder(std::int32_t scanOrder);
    bool setPciFunction(std::int32_t function);
    bool setSlotNumber(std::int32_t slot);
    bool setBusNumber(std::int32_t bus);
    bool setPciLocation(CString location);
    bool setBiosVersion(CString version);
    bool setFirmwareVersion(CString version);
    bool setDriverVersion(CString version);
    // The following are false for a position out of range.
    bool setSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb);
    bool setSizeAndTarget(std::int32_t channel, std::int32_t id, std::int32_t sizeMb,
                          std::int32_t targetId);
    /// The type text is kept only when it is not empty.
    bool addDrive(std::int32_t channel, std::int32_t id, std::int32_t sizeMb, const CString& type);
    bool addDrive(std::int32_t channel, std::int32_t id, std::int32_t sizeMb, const CString& type,
                  std::int32_t targetId);
    bool setDriveRecord(std::int32_t channel, std::int32_t id, RaidDisk disk);
    /// The drive cannot be taken by a plan, or (false) it can, and is no member.
    bool setUsed(std::int32_t channel, std::int32_t id, bool used = true);
    /// The drive is a member of the layout that was captured; a plan may still take it.
    bool setMember(std::int32_t channel, std::int32_t id);

    /// Takes the layout that was captured; nothing for none.
    bool setCaptured(std::optional<RAIDConfiguration> layout);
    bool clearChannelReassignment();
    /// Exchanges subtype and PCI location text with `other`: what stays with a slot when the
    /// records of two slots change places.
    void swapIdentity(RAIDController& other);
    /// Forgets what a capture has read: drives, layout, channel table.
    void forgetReadings();

    [[nodiscard]] std::int32_t type() const { return type_; }
    [[nodiscard]] std::int32_t subtype() const { return subtype_; }
    [[nodiscard]] std::int32_t scanOrder() const { return scanOrder_; }
    [[nodiscard]] std::int32_t pciFunction() const { return pciFunction_; }
    [[nodiscard]] std::int32_t slotNumber() const { return slotNumber_; }
    [[nodiscard]] std::int32_t busNumber() const { return busNumber_; }
    [[nodiscard]] CString pciLocation() const { return pciLocation_; }
    [[nodiscard]] const std::optional<CString>& biosVersion() const { return biosVersion_; }
    [[nodiscard]] const std::optional<CString>& firmwareVersion() const { return firmwareVersion_; }
    [[nodiscard]] const std::optional<CString>& driverVersion() const { return driverVersion_; }
    /// Size in MB; -1 where there is no drive or no such position.
    [[nodiscard]] std::int32_t size(std::int32_t channel, std::int32_t id) const;
    /// The drive's id as its utility numbers it; -1 when none was given.
    [[nodiscard]] std::int32_t targetId(std::int32_t channel, std::int32_t id) const;
    /// Whether the drive cannot be taken, or is a member of the captured layout.
    [[nodiscard]] bool isUsed(std::int32_t channel, std::int32_t id) const;
    /// Whether a plan may take a drive here; whether there is one does not matter.
    [[nodiscard]] bool usable(DrivePosition position) const;
    [[nodiscard]] const std::optional<CString>& driveType(std::int32_t channel,
                                                          std::int32_t id) const;
    [[nodiscard]] const RaidDisk& driveRecord(std::int32_t channel, std::int32_t id) const;
    /// The captured layout; null for none. A planned one is in its ControllerPlan.
    [[nodiscard]] const RAIDConfiguration* captured() const {
        return captured_ ? &*captured_ : nullptr;
    }
    [[nodiscard]] RAIDConfiguration* captured() { return captured_ ? &*captured_ : nullptr; }
    [[nodiscard]] bool channelReassignment() const { return channelReassignment_; }
    /// Positions on channels 1 to 4 that hold a drive.
    [[nodiscard]] std::int32_t numberOfDrives() const;
    /// Calls visit(channel, id) for every position that holds a drive, channel 1 to 4 and id 0 to
    /// 35, ascending.
    template <typename Visit>
    void forEachDrive(Visit visit) const {
        for (std::int32_t channel = firstChannel; channel < channels; ++channel) {
            for (std::int32_t id = 0; id < ids; ++id) {
                if (size(channel, id) != noDrive) {
                    visit(channel, id);
                }
            }
        }
    }

    friend bool operator==(const RAIDController&, const RAIDController&) = default;

  private:
    struct Drive {
        std::int32_t sizeMb = noDrive;
        std::int32_t targetId = -1;
        bool used = false;   ///< cannot be taken
        bool member = false; ///< of the captured layout
        std::optional<CString> type;
        RaidDisk record;
        friend bool operator==(const Drive&, const Drive&) = default;
    };

    [[nodiscard]] Drive* at(std::int32_t channel, std::int32_t id);
    [[nodiscard]] const Drive* at(std::int32_t channel, std::int32_t id) const;

    std::optional<RAIDConfiguration> captured_;
    std::int32_t type_ = controller_type::none;
    std::int32_t subtype_ = subtypeNotSet;
    std::int32_t scanOrder_ = 0;
    std::int32_t pciFunction_ = 0;
    std::int32_t slotNumber_ = -1;
    std::int32_t busNumber_ = -1;
    std::array<std::array<Drive, ids>, channels> drives_;
    std::optional<CString> biosVersion_;
    std::optional<CString> firmwareVersion_;
    std::optional<CString> driverVersion_;
    CString pciLocation_;
    bool channelReassignment_ = true;
};

} // namespace zolex
