#pragma once

#include "model/Configuration.h"
#include "readers/ConfigurationReader.h"

#include <optional>
#include <vector>

namespace zolex {

/// A reader that collects one controller's arrays and logical drives while it goes through a
/// listing.
class LayoutReader : public ConfigurationReader {
  public:
    using ConfigurationReader::ConfigurationReader;

  protected:
    /// 0, or the number of the exit by which a step fails.
    using Exit = int;
    static constexpr Exit success = 0;

    /// Forgets what was read before and takes up a listing; makes an empty configuration when they
    /// are captured.
    void beginListing(RAIDController& controller, Listings listings);
    /// Null when configurations are not captured. What follows needs one, but for keeping.
    [[nodiscard]] RAIDConfiguration* configuration() {
        return configuration_ ? &*configuration_ : nullptr;
    }
    /// Hands the configuration, if there is one, over to the controller when it holds an array. One
    /// that is not handed over is forgotten.
    void keepConfiguration();

    /// The logical drive that is being read. It counts only between begin and finish.
    [[nodiscard]] LogicalDrive& logicalDrive() { return drive_; }
    /// Finishes the logical drive before and opens a fresh one.
    void beginLogicalDrive();
    /// Adds the open logical drive, if there is one.
    virtual void finishLogicalDrive();

    /// Adds the members to the array; those at impossible positions are named and left out.
    void addMembers(RaidArray& array, const std::vector<DrivePosition>& members);
    /// Adds the array and ties the logical drive to it.
    void addArrayOfDrive(RaidArray array);

  private:
    std::optional<RAIDConfiguration> configuration_;
    LogicalDrive drive_;
    bool driveOpen_ = false;
};

} // namespace zolex
