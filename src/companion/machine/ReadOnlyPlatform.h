#pragma once

#include "platform/Platform.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// Something was asked of a ReadOnlyPlatform that could change the machine or a file. It is a fault
/// of the program, not of its user.
class NotForReading : public std::logic_error {
  public:
    using std::logic_error::logic_error;
};

/// Whether the command line is one that only reads: those by which a controller's listings are
/// taken, with and without the layout, those that a family calls so, the one that asks the hardware
/// detector, and the nonsense verb below. Blanks and line ends at its end do not count; all else is
/// compared as a whole.
[[nodiscard]] bool isReadingLine(std::string_view commandLine);

/// The command line with a verb that no utility has; a wrapper that keeps exit codes ends it with
/// another code than 0. `utility` is a word such as "MEGACLI".
[[nodiscard]] std::string nonsenseLine(std::string_view utility);

/// Lets only reading command lines through, and opens files for reading only, but for the outputs
/// that are named and what is made beside them under their name with "." and more behind it. All
/// else throws NotForReading.
class ReadOnlyPlatform : public Platform {
  public:
    explicit ReadOnlyPlatform(Platform& inner, std::vector<std::string> outputs = {});
    ~ReadOnlyPlatform() override;
    ReadOnlyPlatform(const ReadOnlyPlatform&) = delete;
    ReadOnlyPlatform& operator=(const ReadOnlyPlatform&) = delete;

    Console& console() override { return inner_.console(); }
    FileSystem& files() override;
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override { return inner_.pciDevices(); }
    void pauseOneSecond() override { inner_.pauseOneSecond(); }
    LocalTime localTime() override { return inner_.localTime(); }
    FirmwareNames firmware() override { return inner_.firmware(); }

  private:
    class Files;

    Platform& inner_;
    std::unique_ptr<Files> files_;
};

} // namespace zolex::companion
