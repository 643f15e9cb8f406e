#include "platform/LocalTime.h"
#include "platform/Platform.h"
#include "platform/posix/ChildRunner.h"
#include "platform/posix/ProcessStart.h"
#include "platform/posix/SystemPciFolders.h"

#include <cerrno>
#include <ctime>

namespace zolex {

namespace {

class PosixPlatform : public Platform {
  public:
    PosixPlatform() { posix::prepareProcess(); }

    Console& console() override { return console_; }
    FileSystem& files() override { return files_; }

    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override {
        return posix::runChild(commandLine, capture, limit);
    }

    ChildResult runChildIn(const std::string& folder, std::string_view commandLine, bool capture,
                           std::chrono::milliseconds limit) override {
        return posix::runChild(commandLine, capture, limit, posix::Notice::byDescriptor,
                               mostChildOutput, folder);
    }

    std::unique_ptr<PCI_DevList_VC> pciDevices() override {
        const std::string named = namedPciRoot();
        return std::make_unique<FolderPciDeviceList>(
            console_, named.empty() ? posix::systemPciRoot : named, posix::makeSystemPciFolders());
    }

    void pauseOneSecond() override {
        timespec left{1, 0};
        while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
    }

    LocalTime localTime() override { return currentLocalTime(); }

  private:
    StandardConsole console_;
    StandardFileSystem files_;
};

} // namespace

std::unique_ptr<Platform> makeSystemPlatform() {
    return std::make_unique<PosixPlatform>();
}

} // namespace zolex
