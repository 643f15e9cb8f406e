#pragma once

#include "companion/machine/Utilities.h"
#include "platform/Platform.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// The machine itself: command lines as zolex writes them run the programs that were found, each
/// with a vector of arguments and without a shell, and the firmware is asked. It stands directly
/// over the platform of the system; a recording stands over it and so holds zolex's command lines,
/// wherever the programs are.
class UtilityPlatform : public Platform {
  public:
    UtilityPlatform(Platform& system, Utilities utilities)
        : system_(system), utilities_(std::move(utilities)) {}

    Console& console() override { return system_.console(); }
    FileSystem& files() override { return system_.files(); }
    /// A program that was not found is `notStarted`. A command line of a family that makes its
    /// utility write files is run in an empty folder.
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return system_.pciDevices(); }
    void pauseOneSecond() override { system_.pauseOneSecond(); }
    LocalTime localTime() override { return system_.localTime(); }
    FirmwareNames firmware() override;

    [[nodiscard]] const Utilities& utilities() const { return utilities_; }

  private:
    Platform& system_;
    Utilities utilities_;
};

} // namespace zolex::companion
