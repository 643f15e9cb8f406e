#pragma once

#include "readers/ConfigurationReader.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace zolex {

class ControllerList;
class CString;
class FileSystem;

/// Turns what was captured of every controller back into the model.
class DiskInformation {
  public:
    DiskInformation(Detail detail, Report& report) : detail_(detail), report_(report) {}
    virtual ~DiskInformation() = default;
    DiskInformation(const DiskInformation&) = delete;
    DiskInformation& operator=(const DiskInformation&) = delete;

    /// Reads the listings of each controller, in the order of the controllers; one without any is a
    /// fault. False after the first controller that could not be read, which has been reported.
    bool readDiskInformation(ControllerList& controllers,
                             std::span<const std::vector<std::string>> listings);
    /// Takes the drives from a controller-definition file. False when it cannot be read, which has
    /// been reported.
    bool readDefinition(ControllerList& controllers, FileSystem& files, const CString& fileName);

  protected:
    /// The reader of a row of the reader table; null when it cannot be created.
    virtual std::unique_ptr<ConfigurationReader> createReader(const ReaderEntry& entry);

  private:
    bool readController(RAIDController& controller, std::int32_t number, Listings listings);
    bool parseDiskInfo(ConfigurationReader& reader, RAIDController& controller, Listings listings);
    void fail(FaultKind kind, const RAIDController& controller);

    Detail detail_;
    Report& report_;
};

} // namespace zolex
