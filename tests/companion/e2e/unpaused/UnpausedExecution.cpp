// What carries out plans, with pauses of ten milliseconds at most: all else of it is the program's.

#define makeSystemExecution makePausingExecution
#include "companion/execution/SystemExecution.cpp"
#undef makeSystemExecution

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

class UnpausedExecution : public ExecutionSystem {
  public:
    explicit UnpausedExecution(std::unique_ptr<ExecutionSystem> system)
        : system_(std::move(system)) {}

    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        return system_->start(commandLine, output);
    }
    void removeFolder(const std::string& output) override { system_->removeFolder(output); }
    ProcessIdentity ownProcess() override { return system_->ownProcess(); }
    bool isRunning(const ProcessIdentity& process) override { return system_->isRunning(process); }
    Interruption interruption() override { return system_->interruption(); }
    void sleep(std::chrono::milliseconds time) override {
        system_->sleep(std::min(time, std::chrono::milliseconds(10)));
    }
    bool awaitLine() override { return system_->awaitLine(); }
    std::chrono::milliseconds elapsed() override { return system_->elapsed(); }
    std::string timestamp() override { return system_->timestamp(); }
    std::string userName() override { return system_->userName(); }
    LockAnswer lock(const std::string& name) override { return system_->lock(name); }
    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        return system_->makeDurable(name);
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        return system_->reopenDurable(name, keep);
    }
    std::string commonFolder() override { return system_->commonFolder(); }
    bool isLostAtRestart(const std::string& file) override {
        return system_->isLostAtRestart(file);
    }

  private:
    std::unique_ptr<ExecutionSystem> system_;
};

} // namespace

std::unique_ptr<ExecutionSystem> makeSystemExecution(Platform& system, const Utilities& utilities);

/// In the place of the library's, which is then not linked.
std::unique_ptr<ExecutionSystem> makeSystemExecution(Platform& system, const Utilities& utilities) {
    return std::make_unique<UnpausedExecution>(makePausingExecution(system, utilities));
}

} // namespace zolex::companion
