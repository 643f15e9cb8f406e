#include "platform/LocalTime.h"
#include "platform/Platform.h"
#include "platform/RegistryPciDeviceList.h"
#include "platform/win32/ChildRunner.h"
#include "platform/win32/ProcessStart.h"
#include "platform/win32/SystemPciFolders.h"
#include "platform/win32/SystemRegistry.h"

#include <windows.h>

namespace zolex {

namespace {

class WindowsPlatform : public Platform {
  public:
    WindowsPlatform() { win32::prepareProcess(); }

    Console& console() override { return console_; }
    FileSystem& files() override { return files_; }

    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        return win32::runChild(commandLine, capture, limit);
    }

    ChildResult runChildIn(const std::string& folder, std::string_view commandLine, bool capture,
                           std::chrono::milliseconds limit) override {
        return win32::runChild(commandLine, capture, limit, mostChildOutput, folder);
    }

    std::unique_ptr<PCI_DevList_VC> pciDevices() override {
        if (const std::string named = namedPciRoot(); !named.empty()) {
            return std::make_unique<FolderPciDeviceList>(console_, named,
                                                         win32::makeSystemPciFolders());
        }
        return std::make_unique<RegistryPciDeviceList>(console_, win32::makeSystemRegistry());
    }

    void pauseOneSecond() override { Sleep(1000); }

    LocalTime localTime() override { return currentLocalTime(); }

  private:
    StandardConsole console_;
    StandardFileSystem files_;
};

} // namespace

std::unique_ptr<Platform> makeSystemPlatform() {
    return std::make_unique<WindowsPlatform>();
}

} // namespace zolex
