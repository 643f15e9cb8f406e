#include "companion/execution/SystemExecution.h"

#include "companion/execution/SystemParts.h"
#include "companion/families/Family.h"
#include "companion/machine/CarryOut.h"
#include "companion/machine/ProgramStart.h"
#include "companion/machine/System.h"
#include "companion/machine/Utilities.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

namespace parts = system_execution;

class SystemExecution : public ExecutionSystem {
  public:
    SystemExecution(Platform& system, const Utilities& utilities)
        : system_(system), utilities_(utilities), interruptions_(parts::heedInterruptions()) {}

    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        std::vector<std::string> arguments = carryingArguments(utilities_, commandLine);
        if (arguments.empty()) {
            arguments = utilities_.argumentsOf(commandLine);
        }
        std::string folder;
        const Family* const family = findFamily(commandLine);
        if (family != nullptr && family->leavesFiles(commandLine) && !arguments.empty()) {
            // What an earlier process of this run has left there goes.
            removeFolder(output);
            if (!system::makeFolder(folderBeside(output))) {
                return nullptr;
            }
            folder = system::absolutePath(folderBeside(output));
            arguments.front() = system::absolutePath(arguments.front());
        }
        const auto line = commandLineOf(arguments, systemSplitting());
        auto child = parts::startProgram(line.value_or(std::string()),
                                         output_file::systemName(output), interruptions_, folder);
        if (!child && !folder.empty()) {
            removeFolder(output);
        }
        return child;
    }

    void removeFolder(const std::string& output) override {
        system::removeFolder(folderBeside(output));
    }

    ProcessIdentity ownProcess() override { return parts::ownProcess(); }
    bool isRunning(const ProcessIdentity& process) override { return parts::isRunning(process); }
    Interruption interruption() override { return interruptions_->asked(); }
    void sleep(std::chrono::milliseconds time) override { interruptions_->await({}, time); }
    bool awaitLine() override {
        using Awaited = parts::Interruptions::Awaited;
        constexpr std::chrono::hours slice{24};
        const auto input = parts::standardInput();
        // A read alone would not end for an interruption that came a moment before it.
        auto awaited = input ? Awaited::timeOver : Awaited::object;
        while (awaited == Awaited::timeOver && interruption() == Interruption::none) {
            awaited = interruptions_->await(input, slice);
        }
        return awaited == Awaited::object && interruption() == Interruption::none;
    }
    std::chrono::milliseconds elapsed() override { return system::elapsed(); }
    std::string timestamp() override { return timestampOf(system_.localTime()); }
    std::string userName() override { return parts::userName(); }
    LockAnswer lock(const std::string& name) override {
        return parts::takeLock(output_file::systemName(name));
    }

    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        return parts::makeDurable(output_file::systemName(name));
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        return parts::reopenDurable(output_file::systemName(name), keep);
    }

    std::string commonFolder() override {
        std::string folder = system::temporaryFolder().name;
        const std::string_view separators = system::isWindows ? "/\\" : "/";
        folder.erase(folder.find_last_not_of(separators) + 1);
        return folder;
    }

    bool isLostAtRestart(const std::string& file) override {
        return parts::isLostAtRestart(output_file::systemName(file));
    }

  private:
    static std::string folderBeside(const std::string& output) {
        return output_file::systemName(output) + ".folder";
    }

    Platform& system_;
    const Utilities& utilities_;
    /// Children that are not waited for to their end may outlive this object.
    std::shared_ptr<parts::Interruptions> interruptions_;
};

} // namespace

std::unique_ptr<ExecutionSystem> makeSystemExecution(Platform& system, const Utilities& utilities) {
    return std::make_unique<SystemExecution>(system, utilities);
}

} // namespace zolex::companion
