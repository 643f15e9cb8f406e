#pragma once

#include "driver/ZOLEX.h"
#include "support/FakePlatform.h"

#include <functional>
#include <string>
#include <vector>

namespace zolex::test {

/// Whole runs of the program over a platform without a system.
class ModeRun {
  public:
    ModeRun();

    /// Adds a PCI function with the ids of a catalogue row, on bus 2, 3, 4, ...
    void addDevice(std::uint16_t vendor, std::uint16_t device, std::uint16_t subsystemVendor = 0,
                   std::uint16_t subsystem = 0);
    /// An LSI-MegaRAID-8480 (type 12).
    void addMegaRaid() { addDevice(0x1000, 0x0411, 0x1000, 0x1002); }

    /// Runs the program with these arguments after its own path.
    int run(const std::vector<std::string>& arguments);
    /// The same over a given application object.
    int run(ZOLEX& application, const std::vector<std::string>& arguments);

    /// The children that were started, without the hardware detector.
    [[nodiscard]] std::vector<std::string> commands() const;

    FakePlatform platform;
    std::string& output = platform.consoleFake.output;
    std::string hardware = "Machine_Type=8837\nSerial_Number=KQ12345\n";
    std::string driveList;         ///< what "-pdList" prints
    std::string configurationList; ///< what "-LdPdInfo" prints
    std::string adapterList = "\nAdapter #0\n\nFW Version         : 1.11.50-0300\n\n";
    /// Answers any other child; by default it ends with exit code 0.
    std::function<ChildResult(const std::string& commandLine)> respond;
};

/// A MegaCLI drive listing of `drives` free drives in slots 0 on of one enclosure.
std::string megaCliDrives(int drives, int sizeMb = 69376, int enclosure = 32);

/// A CFGGEN listing of a controller on this bus, without drives.
std::string cfggenBusListing(int bus);

} // namespace zolex::test
