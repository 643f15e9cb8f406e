#pragma once

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/MEGAReader.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::test {

/// The lines of a text, each with its line end.
std::vector<std::string> splitLines(const std::string& text);
std::string joinLines(const std::vector<std::string>& lines);
/// The text with CR LF for every LF.
std::string withCrLf(const std::string& text);
/// How often `part` stands in `text`.
std::size_t countOf(const std::string& text, const std::string& part);

/// Text of a drive block with the lines that drives are read from.
struct PdText {
    std::string enclosure = "32";
    int slot = 0;
    std::string size = "69376MB [0x8780000 Sectors]";
    std::string state = "Online";
    std::string inquiry = "SERIAL";

    [[nodiscard]] std::string text() const;
};

/// Text of a virtual disk.
struct VdText {
    std::string level = "Primary-1, Secondary-0, RAID Level Qualifier-0";
    std::string size = "69376MB";
    std::string state = "Optimal";
    std::string stripe = "64kB";
    std::string cache = "WriteBack, ReadAdaptive, Direct, No Write Cache if Bad BBU";
    std::vector<std::vector<PdText>> spans; ///< the members of each span

    [[nodiscard]] std::string text(int number) const;
};

std::string configurationListing(const std::vector<VdText>& disks);
std::string driveListing(const std::vector<PdText>& drives);

/// "A=1:0,1:1 1=A/69376/10/1/Optimal/GOOD hs=32:4:4 stripe=3 ra=0"; "none" without a configuration.
/// A logical drive is array, MB, RAID level code, write-cache code, state, derived state; a hot
/// spare enclosure id, id, disk number.
std::string describeLayout(const RAIDController& controller);
/// One entry for each drive: "1:0 69376 t32 Online GOOD SERIAL", with " used" behind it when it is.
std::vector<std::string> describeDrives(const RAIDController& controller);

/// What the reader prints about a logical drive with missing drives on a controller of subtype 1.
inline constexpr const char* missingDrives =
    "\n#### ERROR\n\tController LSI-MegaRAID-8480 has a logical drive with missing drives; its "
    "configuration is not captured.\n\n";

/// A MegaRAID controller and the application around it. The capture flag is set.
class MEGAReaderFixture : public ::testing::Test {
  protected:
    MEGAReaderFixture();

    /// Reads the listings into a fresh controller: configuration, drives, adapter. Without the
    /// capture flag there is no first one.
    void read(const std::string& configuration, const std::string& drives,
              const std::string& adapter = {});
    void readDrives(const std::vector<PdText>& drives) { read("", driveListing(drives)); }
    [[nodiscard]] std::string layout() const { return describeLayout(*controller); }
    [[nodiscard]] std::vector<std::string> drives() const { return describeDrives(*controller); }
    std::string takeOutput() { return platform.consoleFake.takeOutput(); }

    FakePlatform platform;
    Application application{platform};
    Detail detail{.layout = true};
    std::int32_t subtype = 1;
    std::unique_ptr<RAIDController> controller;
};

} // namespace zolex::test
