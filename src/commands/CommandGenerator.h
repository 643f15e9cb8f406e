#pragma once

#include "commands/CommandLines.h"
#include "foundation/CString.h"
#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "model/Configuration.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace zolex {

/// What a generator works on. All of it outlives the generator.
struct GeneratorInput {
    const RAIDController& controller;
    std::int32_t number; ///< position in the list, from 1
    const RAIDConfiguration& layout;
    const CommandStyle& style;
    Report& report;
};

/// Turns the layout of one controller into the command lines of its utility.
class CommandGenerator {
  public:
    explicit CommandGenerator(const GeneratorInput& input);
    virtual ~CommandGenerator() = default;
    CommandGenerator(const CommandGenerator&) = delete;
    CommandGenerator& operator=(const CommandGenerator&) = delete;

    /// The lines, up to the first fault.
    [[nodiscard]] CommandLines generate();

  protected:
    /// Makes all lines; false after a fault, which has been reported.
    virtual bool makeLines() = 0;

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

    void addCommand(CString line);
    /// Index of the first logical drive, from index `from` on, that belongs to the array.
    [[nodiscard]] std::optional<std::size_t> findLogicalDrive(std::size_t array,
                                                              std::size_t from = 0) const;

    /// A fault of this controller and its policy.
    [[nodiscard]] Fault faultOf(FaultKind kind) const;
    /// The same, of the array of an index.
    [[nodiscard]] Fault faultOf(FaultKind kind, std::size_t array) const;
    /// Keeps the fault for the result and reports it.
    void fail(const Fault& fault);

    [[nodiscard]] Report& report() const { return report_; }
    [[nodiscard]] const RAIDController& controller() const { return controller_; }
    /// The layout with its final stripe size.
    [[nodiscard]] const RAIDConfiguration& configuration() const { return layout_; }
    [[nodiscard]] const RaidArray& arrayAt(std::size_t index) const;
    [[nodiscard]] const LogicalDrive& logicalDriveAt(std::size_t index) const;
    /// Path prefix and utility command.
    [[nodiscard]] const char* prefix() const { return prefix_.c_str(); }
    /// The controller as utilities number it from 0.
    [[nodiscard]] std::int32_t adapter() const;

  private:
    const RAIDController& controller_;
    const std::int32_t number_;
    const RAIDConfiguration layout_;
    const CString prefix_;
    Report& report_;
    CommandLines made_;
};

/// One row for each controller type: the generator of its utility and the line that its creation
/// logs.
struct GeneratorEntry {
    std::int32_t controllerType;
    const char* creationTrace;
    std::unique_ptr<CommandGenerator> (*create)(const GeneratorInput& input);
};

/// The row of a controller type; null outside 1 to 12.
[[nodiscard]] const GeneratorEntry* findGenerator(std::int32_t controllerType);

} // namespace zolex
