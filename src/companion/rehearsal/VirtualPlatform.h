#pragma once

#include "companion/rehearsal/VirtualMachine.h"
#include "platform/Platform.h"

#include <memory>
#include <string>
#include <string_view>

namespace zolex::companion {

/// A virtual machine in the place of a real one, for a program that changes it: its utilities are
/// those of the copy, its pauses take no time, and what is printed is kept. What only reads and is
/// no utility (the hardware detector, the PCI functions, files) is asked of the machine itself. No
/// file can be written.
class VirtualPlatform : public Platform {
  public:
    /// Both outlive the platform.
    VirtualPlatform(Platform& machine, VirtualMachine& copy);
    ~VirtualPlatform() override;
    VirtualPlatform(const VirtualPlatform&) = delete;
    VirtualPlatform& operator=(const VirtualPlatform&) = delete;

    Console& console() override;
    FileSystem& files() override;
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return machine_.pciDevices(); }
    void pauseOneSecond() override {}
    LocalTime localTime() override { return machine_.localTime(); }
    FirmwareNames firmware() override { return machine_.firmware(); }

    /// All that was printed.
    [[nodiscard]] const std::string& printed() const;

  private:
    class KeepingConsole;
    class ReadingFiles;

    Platform& machine_;
    VirtualMachine& copy_;
    std::unique_ptr<KeepingConsole> console_;
    std::unique_ptr<ReadingFiles> files_;
};

} // namespace zolex::companion
