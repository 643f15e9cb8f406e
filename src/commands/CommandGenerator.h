#pragma once

#include "foundation/CString.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace zolex {

class Application;
class Printer;
class RAIDController;
class RAIDConfiguration;
class RaidArray;
struct Hotspare;
struct LogicalDrive;

/// Turns the planned configuration of one controller into the command lines of its utility, and
/// adds them to the application's generated commands.
///
/// The walk over arrays and hot spares is written here once; a generator gives the lines of one
/// array and the line of one hot spare.
class CommandGenerator {
  public:
    explicit CommandGenerator(Application& application) : application_(application) {}
    virtual ~CommandGenerator() = default;
    CommandGenerator(const CommandGenerator&) = delete;
    CommandGenerator& operator=(const CommandGenerator&) = delete;

    /// Gives the generator the controller, its 1-based position in the list (for messages) and the
    /// command prefix: path prefix and utility command.
    void start(RAIDController& controller, std::int32_t number, const CString& prefix);

    /// Called after start, for a controller that has a planned configuration. False after a fault,
    /// which has been reported; lines already added stay. A stripe size of "none" in the
    /// configuration is replaced by the utility's default.
    virtual bool generate();

  protected:
    /// What a step that makes lines answers: done, or the number of the exit that its trace shows.
    using Exit = int;
    static constexpr Exit done = 0;
    static constexpr Exit exitNoArray = 1;
    static constexpr Exit exitNoLogicalDrive = 2;

    /// The entry and exit lines of a generator's two operations. The text of a failed exit ends
    /// before the number of the exit.
    struct Traces {
        const char* enteringArrays;
        const char* arraysDone;
        const char* arraysFailed;
        const char* enteringHotspares;
        const char* hotsparesDone;
        const char* hotsparesFailed;
    };
    [[nodiscard]] virtual const Traces& traces() const = 0;

    /// The two operations, with their traces.
    bool doArraysAndLogicalDrives();
    bool doHotspareDrives();

    /// Stripe-size code that takes the place of "none"; "none" itself keeps it.
    [[nodiscard]] virtual std::int32_t defaultStripeSize() const = 0;
    /// The lines of every array, in order.
    virtual Exit makeArrays();
    /// The lines of array `array`, whose first logical drive has index `drive`.
    virtual Exit makeArray(std::size_t array, std::size_t drive) = 0;
    /// The lines of every hot spare, in order.
    virtual Exit makeHotspares();
    [[nodiscard]] virtual CString hotspareLine(const Hotspare& hotspare) const = 0;

    /// Adds a line. False when the list is full, which is reported.
    bool addCommand(const CString& line);
    /// Index of the first logical drive, from index `from` on, that belongs to the array.
    [[nodiscard]] std::optional<std::size_t> findLogicalDrive(std::size_t array,
                                                              std::size_t from = 0) const;
    void replaceStripeSize();

    // The faults that generators share, as error blocks.
    void reportNoArray();
    void reportNoLogicalDrive();
    void reportOneLogicalDriveOnly();

    [[nodiscard]] Printer& printer() const;
    [[nodiscard]] const RAIDController& controller() const { return *controller_; }
    [[nodiscard]] const RAIDConfiguration& configuration() const;
    [[nodiscard]] const RaidArray& arrayAt(std::size_t index) const;
    [[nodiscard]] const LogicalDrive& logicalDriveAt(std::size_t index) const;
    /// The controller's position in the list, from 1.
    [[nodiscard]] std::int32_t number() const { return number_; }
    /// Path prefix and utility command.
    [[nodiscard]] const char* prefix() const { return prefix_.c_str(); }
    /// The controller as utilities number it from 0.
    [[nodiscard]] std::int32_t adapter() const;
    [[nodiscard]] CString modelName() const;

  private:
    Application& application_;
    RAIDController* controller_ = nullptr;
    std::int32_t number_ = 0;
    CString prefix_;
};

/// One row for each controller type: the generator of its utility and the line that its creation
/// logs.
struct GeneratorEntry {
    std::int32_t controllerType;
    const char* creationTrace;
    std::unique_ptr<CommandGenerator> (*create)(Application& application);
};

/// The row of a controller type; null outside 1 to 12.
[[nodiscard]] const GeneratorEntry* findGenerator(std::int32_t controllerType);

} // namespace zolex
