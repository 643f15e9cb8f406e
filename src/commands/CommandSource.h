#pragma once

#include "commands/CommandLines.h"
#include "foundation/CString.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace zolex {

class File;
class RAIDController;
class Report;

/// What the lines of capture and restore depend on besides the controller.
struct SourceOptions {
    CommandStyle style;
    bool remarks = false;    ///< the controllers come from an inventory file: no line can run
    bool withLayout = false; ///< the listings of logical drives are taken too
    CString scriptPrefix;    ///< stands before the name of the error script
    friend bool operator==(const SourceOptions&, const SourceOptions&) = default;
};

/// Where the capture and the restore mode take their command lines from.
class CommandSource {
  public:
    CommandSource(SourceOptions options, Report& report)
        : options_(std::move(options)), report_(report) {}
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
    [[nodiscard]] const SourceOptions& options() const { return options_; }
    [[nodiscard]] Report& report() const { return report_; }

  private:
    SourceOptions options_;
    Report& report_;
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
