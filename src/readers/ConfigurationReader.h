#pragma once

#include "model/Configuration.h"
#include "platform/CapturedOutput.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace zolex {

class Application;
class RAIDController;

/// What a reader's next line is when there is none.
inline constexpr std::string_view endOfOutput = "EOF";

/// Parses what a utility printed about one controller and fills the controller.
class ConfigurationReader {
  public:
    explicit ConfigurationReader(Application& application) : application_(application) {}
    virtual ~ConfigurationReader() = default;
    ConfigurationReader(const ConfigurationReader&) = delete;
    ConfigurationReader& operator=(const ConfigurationReader&) = delete;

    /// `output` is the controller's first captured output; a reader may take more from it. False
    /// when the format is not the utility's.
    virtual bool readConfiguration(RAIDController& controller,
                                   std::shared_ptr<CapturedOutput> output) = 0;

  protected:
    [[nodiscard]] Application& application() const { return application_; }

    /// Makes `output` the one that lines are read from; null reads as empty.
    void setOutput(std::shared_ptr<CapturedOutput> output) {
        output_ = std::move(output);
        ended_ = false;
    }
    [[nodiscard]] const std::shared_ptr<CapturedOutput>& output() const { return output_; }
    [[nodiscard]] bool hasOutput() const { return output_ != nullptr; }
    /// The next line, without its line end, or "EOF". At most 198 bytes; a longer line goes on as
    /// the next. An unterminated last line is lost. Nothing follows "EOF". Valid while the output
    /// is.
    virtual std::string_view nextLine();
    /// Reads until a line equals `wanted` or "EOF", and returns it.
    std::string_view skipTo(std::string_view wanted);

    // Adding to a configuration within its limits. What lies beyond is left out (false) and named
    // once for each kind ("Controller %s has more than 8 logical drives; the rest is not
    // captured.\n").
    bool addArray(RAIDConfiguration& configuration, RaidArray array);
    bool addLogicalDrive(RAIDConfiguration& configuration, LogicalDrive drive);
    bool addHotspare(RAIDConfiguration& configuration, Hotspare hotspare);
    bool addMember(RaidArray& array, DrivePosition position);
    bool addMemberNumber(RaidArray& array, std::int32_t driveNumber);
    /// Whether the position is one that drives can have; if not it is named in an error block.
    bool checkPosition(std::int32_t channel, std::int32_t id);
    /// Whether the size, in MB, is one that a drive at the position can have, or none; if not it is
    /// named in an error block.
    bool checkSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb);

    /// Starts a controller: the limits above count anew.
    void beginController(RAIDController& controller);
    [[nodiscard]] RAIDController& controller() const { return *controller_; }
    [[nodiscard]] CString modelName() const;

  private:
    enum class Limit : unsigned { arrays = 1, logicalDrives = 2, members = 4, hotspares = 8 };
    /// Whether the limit is met for the first time on this controller.
    bool isFirst(Limit limit);
    bool keepsMember(bool added);

    Application& application_;
    RAIDController* controller_ = nullptr;
    std::shared_ptr<CapturedOutput> output_;
    bool ended_ = false;
    unsigned reportedLimits_ = 0;
};

/// One row for each controller type: the reader of its utility's output and the line that its
/// creation logs.
struct ReaderEntry {
    std::int32_t controllerType;
    const char* creationTrace;
    std::unique_ptr<ConfigurationReader> (*create)(Application& application);
};

/// The row of a controller type; null outside 1 to 12.
[[nodiscard]] const ReaderEntry* findReader(std::int32_t controllerType);

} // namespace zolex
