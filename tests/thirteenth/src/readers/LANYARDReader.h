#pragma once

#include "readers/ConfigurationReader.h"

#include <string_view>
#include <vector>

namespace zolex {

/// Reads what the invented utility LANYARD prints: a line for each drive ("DRIVE 1,4 76319"), array
/// ("ARRAY RAID1 1,4 1,5") and hot spare ("SPARE 1,7"), and "END".
class LANYARDReader : public ConfigurationReader {
  public:
    using ConfigurationReader::ConfigurationReader;

    bool readConfiguration(RAIDController& controller, Listings listings) override;

  private:
    /// False when the line is none of the utility's.
    bool readLine(const std::vector<std::string_view>& words, RAIDConfiguration& configuration);
    bool readDrive(const std::vector<std::string_view>& words);
    bool readArray(const std::vector<std::string_view>& words, RAIDConfiguration& configuration);
    bool readHotspare(const std::vector<std::string_view>& words, RAIDConfiguration& configuration);
};

} // namespace zolex
