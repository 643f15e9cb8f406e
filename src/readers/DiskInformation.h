#pragma once

namespace zolex {

class Application;
class ConfigurationReader;
class ControllerList;
class RAIDController;

/// Turns the captured outputs of every controller back into the model.
class DiskInformation {
  public:
    explicit DiskInformation(Application& application) : application_(application) {}

    /// False after the first controller that could not be read, which has been reported.
    bool readDiskInformation(ControllerList& controllers);

  private:
    bool parseDiskInfo(ConfigurationReader& reader, RAIDController& controller);
    void readDrivesFromDefinition(ControllerList& controllers);

    Application& application_;
};

} // namespace zolex
