#pragma once

#include <cstdint>
#include <memory>

namespace zolex {

class Application;
class ConfigurationReader;
class ControllerList;
class RAIDController;
struct ReaderEntry;

/// Turns the captured outputs of every controller back into the model.
class DiskInformation {
  public:
    explicit DiskInformation(Application& application) : application_(application) {}
    virtual ~DiskInformation() = default;
    DiskInformation(const DiskInformation&) = delete;
    DiskInformation& operator=(const DiskInformation&) = delete;

    /// False after the first controller that could not be read, which has been reported. Closes the
    /// captured outputs of all controllers whatever the result.
    bool readDiskInformation(ControllerList& controllers);

  protected:
    /// The reader of a row of the reader table; null when it cannot be created.
    virtual std::unique_ptr<ConfigurationReader> createReader(const ReaderEntry& entry);

  private:
    bool readControllers(ControllerList& controllers);
    bool readController(RAIDController& controller, std::int32_t number);
    bool parseDiskInfo(std::unique_ptr<ConfigurationReader> reader, RAIDController& controller);
    bool readDrivesFromDefinition(ControllerList& controllers);

    Application& application_;
};

} // namespace zolex
