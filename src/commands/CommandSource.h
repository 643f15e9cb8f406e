#pragma once

#include "foundation/CString.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zolex {

class Application;
class File;
class RAIDController;

/// Whether the utility command of type 5 is one of the two whose commands are CFGGEN's: that of
/// type 10 or "UTIL.BAT CFGGEN1.02.02". Another one is addressed like HRCONF and ARCCONF.
[[nodiscard]] bool usesCfggenSyntax(std::string_view utility, std::string_view sasUtility);

/// Where the capture and the restore mode take their command lines from.
class CommandSource {
  public:
    explicit CommandSource(Application& application) : application_(application) {}
    virtual ~CommandSource() = default;
    CommandSource(const CommandSource&) = delete;
    CommandSource& operator=(const CommandSource&) = delete;

    /// Number of command lines that a controller needs.
    [[nodiscard]] virtual std::size_t numberOfCommands(const RAIDController& controller) const = 0;
    /// Command line `index`, from 0, of controller number `number`, from 1; may be empty.
    [[nodiscard]] virtual CString getCommand(const RAIDController& controller, std::int32_t number,
                                             std::size_t index) = 0;
    /// Writes the error-handling block of a batch script; false, with the file closed, when a write
    /// fails.
    virtual bool writeErrorSection(File& script) = 0;

  protected:
    [[nodiscard]] Application& application() const { return application_; }
    /// Whether the type's utility takes the number of the adapter and CFGGEN's commands.
    [[nodiscard]] bool takesAdapterNumber(std::int32_t type) const;

  private:
    Application& application_;
};

/// The command lines that dump each controller's configuration. Each ends in a newline.
class GetConfigFiles : public CommandSource {
  public:
    using CommandSource::CommandSource;
    [[nodiscard]] std::size_t numberOfCommands(const RAIDController& controller) const override;
    [[nodiscard]] CString getCommand(const RAIDController& controller, std::int32_t number,
                                     std::size_t index) override;
    bool writeErrorSection(File& script) override;
};

/// The command lines that reset each controller to factory defaults; empty for an unknown type.
class RestoreDefaults : public CommandSource {
  public:
    using CommandSource::CommandSource;
    [[nodiscard]] std::size_t numberOfCommands(const RAIDController& controller) const override;
    /// For type 12, index 1 clears foreign configurations.
    [[nodiscard]] CString getCommand(const RAIDController& controller, std::int32_t number,
                                     std::size_t index) override;
    bool writeErrorSection(File& script) override;
};

} // namespace zolex
