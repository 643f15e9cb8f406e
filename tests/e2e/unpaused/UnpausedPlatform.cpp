// The seam of the program whose fixed pauses take no time and whose children's limit can be
// shortened: ZOLEX_TEST_CHILD_LIMIT gives it in milliseconds. All else is the program as it is,
// src/main.cpp included.

#include "platform/Platform.h"

#include <cstdlib>
#include <utility>

namespace zolex {

namespace {

class UnpausedPlatform : public Platform {
  public:
    explicit UnpausedPlatform(std::unique_ptr<Platform> system) : system_(std::move(system)) {}

    Console& console() override { return system_->console(); }
    FileSystem& files() override { return system_->files(); }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        const char* shorter = std::getenv("ZOLEX_TEST_CHILD_LIMIT");
        return system_->runChild(
            commandLine, capture,
            shorter == nullptr ? limit : std::chrono::milliseconds(std::atol(shorter)));
    }
    ChildResult runChildIn(const std::string& folder, std::string_view commandLine, bool capture,
                           std::chrono::milliseconds limit) override {
        return system_->runChildIn(folder, commandLine, capture, limit);
    }
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return system_->pciDevices(); }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return system_->localTime(); }
    FirmwareNames firmware() override { return system_->firmware(); }

  private:
    std::unique_ptr<Platform> system_;
};

} // namespace

/// What src/main.cpp makes here instead of the system's own platform.
std::unique_ptr<Platform> makeUnpausedPlatform();

std::unique_ptr<Platform> makeUnpausedPlatform() {
    return std::make_unique<UnpausedPlatform>(makeSystemPlatform());
}

} // namespace zolex
