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
struct LogicalDrive;

/// Turns the planned configuration of one controller into the command lines of its utility, and
/// adds them to the application's generated commands.
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
    virtual bool generate() = 0;

  protected:
    /// What a step that makes lines answers: done, or the number of the exit that its trace shows.
    using Exit = int;
    static constexpr Exit done = 0;
    static constexpr Exit exitNoArray = 1;
    static constexpr Exit exitNoLogicalDrive = 2;

    /// The lines that an operation logs. `failed` ends before the number of the exit.
    struct Traces {
        const char* entering;
        const char* succeeded;
        const char* failed;
    };
    [[nodiscard]] virtual const Traces& arrayTraces() const = 0;
    /// Logs the end of an operation; true for `done`.
    bool traceExit(const Traces& traces, Exit exit);

    /// The lines of arrays and logical drives, with the operation's traces.
    bool doArraysAndLogicalDrives();
    virtual Exit makeArrays() = 0;

    /// Stripe-size code that takes the place of "none"; "none" itself keeps it.
    [[nodiscard]] virtual std::int32_t defaultStripeSize() const = 0;
    void replaceStripeSize();

    /// Adds a line. When the list is full, the line is dropped without a message and the generation
    /// goes on: a deploy run fetches only the first half of the list, so that no line is lost that
    /// would have been run.
    void addCommand(const CString& line);
    /// Index of the first logical drive, from index `from` on, that belongs to the array.
    [[nodiscard]] std::optional<std::size_t> findLogicalDrive(std::size_t array,
                                                              std::size_t from = 0) const;

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
