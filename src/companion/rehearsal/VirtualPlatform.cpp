#include "companion/rehearsal/VirtualPlatform.h"

#include "companion/machine/ReadOnlyPlatform.h"

namespace zolex::companion {

/// Answers a question whether to go on with yes.
class VirtualPlatform::KeepingConsole : public Console {
  public:
    void writeOutput(std::string_view text) override { printed.append(text); }
    void writeError(std::string_view text) override { printed.append(text); }
    int readCharacter() override { return 'Y'; }

    std::string printed;
};

class VirtualPlatform::ReadingFiles : public FileSystem {
  public:
    explicit ReadingFiles(FileSystem& files) : files_(files) {}

    std::unique_ptr<File> open(std::string_view name, const char* mode) override {
        const std::string_view wanted = mode;
        return wanted == "r" || wanted == "rb" ? files_.open(name, mode) : nullptr;
    }
    std::unique_ptr<File> create(std::string_view /*name*/, std::string_view /*other*/,
                                 WhenInterrupted /*interrupted*/) override {
        return nullptr;
    }
    LockResult lock(std::string_view /*name*/, std::chrono::milliseconds /*wait*/) override {
        return {};
    }
    bool remove(std::string_view /*name*/) override { return false; }
    bool isFile(std::string_view name) override { return files_.isFile(name); }

  private:
    FileSystem& files_;
};

VirtualPlatform::VirtualPlatform(Platform& machine, VirtualMachine& copy)
    : machine_(machine), copy_(copy), console_(std::make_unique<KeepingConsole>()),
      files_(std::make_unique<ReadingFiles>(machine.files())) {}

VirtualPlatform::~VirtualPlatform() = default;

Console& VirtualPlatform::console() {
    return *console_;
}

FileSystem& VirtualPlatform::files() {
    return *files_;
}

ChildResult VirtualPlatform::runChild(std::string_view commandLine, bool capture,
                                      std::chrono::milliseconds limit) {
    if (const auto answer = copy_.run(commandLine)) {
        return {ChildOutcome::ended, answer->exitCode, capture ? answer->output : std::string()};
    }
    return isReadingLine(commandLine) ? machine_.runChild(commandLine, capture, limit)
                                      : ChildResult();
}

const std::string& VirtualPlatform::printed() const {
    return console_->printed;
}

} // namespace zolex::companion
