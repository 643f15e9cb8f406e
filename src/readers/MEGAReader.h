#pragma once

#include "readers/ConfigurationReader.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace zolex {

/// Reads what MegaCLI printed about one controller: with the capture flag the configuration
/// listing, the drive listing and the adapter listing (captured outputs 0, 1 and 2), without it the
/// latter two (0 and 1). A listing that is missing reads as empty.
class MEGAReader : public ConfigurationReader {
  public:
    using ConfigurationReader::ConfigurationReader;

    /// Always true. A configuration that cannot be read whole is dropped; the drives are still
    /// filled.
    bool readConfiguration(RAIDController& controller, Listings listings) override;

  private:
    /// Where a drive block says that its drive is.
    struct DriveLocation {
        std::int32_t enclosure = -1; ///< the utility's own id; 0 for "N/A"
        std::int32_t channel = -1;   ///< -1 when all four channels belong to other enclosures
        std::int32_t slot = -1;
        bool hasEnclosure = false;
        bool hasSlot = false;
    };
    struct DriveBlock;
    struct VirtualDisk;

    // Enclosures and channels
    void numberEnclosures();
    /// The next line of the drive listing, from what numbering the enclosures has kept of it when
    /// it went through it before.
    std::string_view nextDriveLine();
    std::int32_t channelOf(std::int32_t enclosure);
    [[nodiscard]] std::int32_t reAssignChannelID(std::int32_t enclosure);
    bool readLocationLine(std::string_view line, DriveLocation& location);

    // Drive listing
    void getDrives(RAIDConfiguration* configuration);
    std::string_view readDriveBlock(std::string_view line, DriveBlock& block,
                                    RAIDConfiguration* configuration);
    void readDriveLine(std::string_view line, DriveBlock& block, RAIDConfiguration* configuration);
    void readFirmwareState(std::string_view line, DriveBlock& block,
                           RAIDConfiguration* configuration);
    void addCapturedHotspare(const DriveLocation& location, RAIDConfiguration& configuration);
    void storeDrive(DriveBlock& block);

    // Adapter listing
    void getAdapterInfo();
    void readAdapterLine(std::string_view line);

    // Configuration listing
    [[nodiscard]] std::optional<RAIDConfiguration> readVirtualDisks();
    bool getArraysAndLogicalDrives(RAIDConfiguration& configuration);
    bool readVirtualDiskLine(std::string_view line, VirtualDisk& disk,
                             RAIDConfiguration& configuration);
    void readNumberOfPds(std::string_view line, VirtualDisk& disk);
    void readStripeSize(std::string_view line, RAIDConfiguration& configuration);
    bool readMemberLine(std::string_view line, VirtualDisk& disk);
    void closeMember(VirtualDisk& disk);

    /// The enclosure id that owns channel 1, 2, 3 and 4; -1 for a free channel.
    std::array<std::int32_t, 4> channelTable_{};
    /// The lines of the drive listing that tell something, up to the one that ends it; none before
    /// they are known.
    std::optional<std::vector<std::string_view>> driveLines_;
    std::size_t nextDriveLine_ = 0;
};

} // namespace zolex
