#pragma once

#include "foundation/CString.h"

#include <cstdint>
#include <memory>

namespace zolex {

class Application;
class RAIDController;
class RAIDConfiguration;

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

    /// False after a fault, which has been reported; lines already added stay.
    virtual bool generate() = 0;

  protected:
    [[nodiscard]] Application& application() { return application_; }
    [[nodiscard]] RAIDController& controller() { return *controller_; }
    /// The planned configuration of the controller; generate is called only when there is one.
    [[nodiscard]] const RAIDConfiguration& configuration() const;
    [[nodiscard]] std::int32_t number() const { return number_; }
    [[nodiscard]] const CString& prefix() const { return prefix_; }
    [[nodiscard]] CString modelName() const;

    // The two faults that every generator reports; both return false.
    bool reportNoArray();
    bool reportNoLogicalDrive();

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
