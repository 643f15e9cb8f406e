#pragma once

#include "foundation/CString.h"
#include "model/Codes.h"
#include "model/Configuration.h"
#include "readers/ConfigurationReader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zolex {

class KeyedLine;

/// Reads what HYPERWIN prints: status codes and keywords, in the captured outputs 0, 1 and 2 as one
/// stream. There are at most two drives on one channel, whose sizes the utility does not tell.
class IDEReader : public ConfigurationReader {
  public:
    using ConfigurationReader::ConfigurationReader;

    /// Without configurations to capture only the drives are read. False when a RAID level or a
    /// stripe size is not known; the controller then gets no configuration.
    bool readConfiguration(RAIDController& controller, Listings listings) override;

  protected:
    std::string_view nextLine() override;

  private:
    /// 0, or the number of the exit by which reading fails.
    using Exit = int;
    static constexpr Exit success = 0;

    /// What has been read of a listing with its layout.
    struct Layout {
        /// None as long as no logical array was seen.
        std::optional<RAIDConfiguration> configuration;
        RaidArray array;
        LogicalDrive drive;
        std::int32_t stripeSize = stripe::none;
        bool hasRaidMode = false;
        bool hasStripeSize = false;
        bool hasDriveCount = false;
        std::int32_t errorCodes = 0; ///< "Error Code" lines so far
    };

    void readDrives();
    Exit readLayout();
    Exit readLayoutLine(const KeyedLine& keyed);
    Exit readRaidMode(const CString& value);
    Exit readStripeSize(const CString& value);
    void readDriveCount(const CString& value);
    void readErrorCode(const KeyedLine& keyed);
    void storeDrive(std::int32_t id);
    void finishLayout();
    void failWith(FaultKind kind, const CString& value) const;

    Listings listings_;
    std::size_t nextListing_ = 1; ///< the one that follows the current one
    Layout layout_;
};

} // namespace zolex
