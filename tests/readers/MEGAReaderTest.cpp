#include "readers/MegaCliListings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace zolex::test {
namespace {

using Drives = std::vector<std::string>;

/// The drive listing and the adapter listing, read as a deploy run reads them.
class MEGAReaderTest : public MEGAReaderFixture {
  protected:
    MEGAReaderTest() { detail.layout = false; }

    /// The places of drives with these enclosures, one drive each at slot 0, 1, ...: the channels,
    /// "-" for a drive that was left out.
    std::string channelsOf(const std::vector<std::string>& enclosures) {
        std::vector<PdText> listed;
        for (std::size_t i = 0; i < enclosures.size(); ++i) {
            listed.push_back({.enclosure = enclosures[i], .slot = static_cast<int>(i)});
        }
        readDrives(listed);
        std::string channels;
        for (std::int32_t slot = 0; slot < static_cast<std::int32_t>(listed.size()); ++slot) {
            std::string found;
            for (std::int32_t channel = 0; channel < 5; ++channel) {
                if (controller->size(channel, slot) != RAIDController::noDrive) {
                    found += std::to_string(channel);
                }
            }
            channels += found.empty() ? "-" : found;
        }
        return channels;
    }
};

TEST_F(MEGAReaderTest, ADriveIsStoredAtItsChannelAndSlot) {
    readDrives({{.enclosure = "252", .slot = 7, .size = "67.843 GB", .inquiry = "NORVIK  X  1"}});
    EXPECT_EQ(drives(), (Drives{"1:7 69472 t252 Online GOOD NORVIK  X  1"}));
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(MEGAReaderTest, OnlyTheCoercedSizeCounts) {
    read("", "Enclosure Device ID: 1\nSlot Number: 1\nRaw Size: 5MB\nCoerced Size: 7MB\n"
             "Non Coerced Size: 6MB\nFirmware state: Online\nInquiry Data: A\n");
    EXPECT_EQ(drives(), (Drives{"1:1 7 t1 Online GOOD A"}));
}

TEST_F(MEGAReaderTest, AnyLineOfABlockCanBeItsFirst) {
    std::vector<std::string> lines = {"Enclosure Device ID: 5\n", "Slot Number: 3\n",
                                      "Coerced Size: 7MB\n", "Firmware state: Online\n"};
    for (std::size_t i = 0; i < lines.size(); ++i) {
        read("", "\nAdapter #0\n\n" + joinLines(lines) + "Inquiry Data: A\n");
        EXPECT_EQ(drives(), (Drives{"1:3 7 t5 Online GOOD A"})) << lines.front();
        std::rotate(lines.begin(), lines.begin() + 1, lines.end());
    }
}

TEST_F(MEGAReaderTest, FirmwareStates) {
    const struct {
        const char* state;
        const char* drive; ///< what is stored behind position, size and target id; null: nothing
    } rows[] = {
        {"Online", "Online GOOD S"},
        {"Online, Spun Up", "Online, Spun Up GOOD S"},
        {"Rebuild", "Rebuild GOOD S"},
        {"Unconfigured(good)", "Unconfigured(good) GOOD S"},
        {"Unconfigured(good), Spun down", "Unconfigured(good), Spun down GOOD S"},
        {"Hotspare", "Hotspare GOOD S"},
        {"Hotspare, Spun down", "Hotspare, Spun down GOOD S"},
        {"Unconfigured(bad)", "Unconfigured(bad) BAD S used"},
        {"Failed", nullptr},
        {"Offline", nullptr},
        {"Copyback", nullptr},
        {"JBOD", nullptr},
        {"online", nullptr},
        {"", nullptr},
    };
    for (const auto& row : rows) {
        readDrives({{.size = "5MB", .state = row.state, .inquiry = "S"}});
        const Drives expected =
            row.drive == nullptr ? Drives{} : Drives{std::string("1:0 5 t32 ") + row.drive};
        EXPECT_EQ(drives(), expected) << row.state;
        EXPECT_EQ(takeOutput(), "") << row.state;
    }
}

TEST_F(MEGAReaderTest, ADriveWithoutSizeIsNotStored) {
    for (const char* size : {"0 MB", "0.000 GB", "", "-5MB", "unknown"}) {
        readDrives(
            {{.slot = 1, .size = size}, {.slot = 2, .size = size, .state = "Unconfigured(bad)"}});
        EXPECT_EQ(drives(), Drives{}) << size;
        EXPECT_FALSE(controller->isUsed(1, 2)) << size;
    }
    read("", "Enclosure Device ID: 1\nSlot Number: 1\nFirmware state: Online\nInquiry Data: A\n");
    EXPECT_EQ(controller->targetId(1, 1), -1);
    EXPECT_EQ(controller->driveRecord(1, 1).serialNumber, CString());
}

// A failed drive passed for present when the line that ends the block before it was lost.
TEST_F(MEGAReaderTest, TheLastStateOfABlockCounts) {
    read("", "Enclosure Device ID: 1\nSlot Number: 1\nCoerced Size: 7MB\nFirmware state: Online\n"
             "Enclosure Device ID: 1\nSlot Number: 2\nCoerced Size: 7MB\nFirmware state: Failed\n"
             "Inquiry Data: A\n");
    EXPECT_EQ(drives(), Drives{});
}

TEST_F(MEGAReaderTest, EnclosuresTakeChannelsInTheOrderTheyAppear) {
    EXPECT_EQ(channelsOf({"32", "32", "64", "32"}), "1121");
    EXPECT_EQ(channelsOf({"9", "8", "7", "6", "8", "9"}), "123421");
    EXPECT_EQ(takeOutput(), "");
    EXPECT_TRUE(controller->channelReassignment());
    EXPECT_EQ(controller->targetId(4, 3), 6);
}

TEST_F(MEGAReaderTest, AFifthEnclosureFindsNoChannel) {
    EXPECT_EQ(channelsOf({"1", "2", "3", "4", "5", "1"}), "1234-1");
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tDrive position out of range for controller "
                            "LSI-MegaRAID-8480:  channel=-1, id=4\n\n");
    // A drive that is not stored anyway is not named.
    readDrives({{.enclosure = "1"},
                {.enclosure = "2"},
                {.enclosure = "3"},
                {.enclosure = "4"},
                {.enclosure = "5", .state = "Failed"},
                {.enclosure = "6", .size = "0MB"}});
    EXPECT_EQ(drives().size(), 4U);
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(MEGAReaderTest, DrivesWithoutEnclosureShareEnclosure0) {
    const struct {
        std::vector<std::string> enclosures;
        const char* channels;
        bool reassignment;
    } rows[] = {
        {{"N/A", "N/A"}, "11", false},
        {{"32", "N/A"}, "12", false},
        {{"0", "N/A"}, "11", false},
        {{"N/A", "0"}, "11", false},
        {{"32", "0", "N/A"}, "122", false},
        {{"N/A", "32", "N/A"}, "121", false},
        {{"1", "2", "3", "N/A"}, "1234", false},
        {{"1", "2", "3", "4", "N/A"}, "1234-", false},
        {{"0", "0"}, "11", true},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(channelsOf(row.enclosures), row.channels);
        EXPECT_EQ(controller->channelReassignment(), row.reassignment) << row.channels;
    }
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tDrive position out of range for controller "
                            "LSI-MegaRAID-8480:  channel=-1, id=4\n\n");
    channelsOf({"32", "N/A"});
    EXPECT_EQ(controller->targetId(2, 1), 0);
}

TEST_F(MEGAReaderTest, TheChannelTableStartsAnewWithEveryRead) {
    EXPECT_EQ(channelsOf({"1", "2", "3", "4"}), "1234");
    EXPECT_EQ(channelsOf({"4", "3"}), "12");
    MEGAReader reader(detail, application.report());
    for (const char* enclosure : {"1", "2", "3", "4", "5"}) {
        RAIDController fresh;
        fresh.setType(controller_type::megaRaid);
        const std::vector<std::string> listings = {driveListing({{.enclosure = enclosure}})};
        EXPECT_TRUE(reader.readConfiguration(fresh, listings));
        EXPECT_EQ(describeDrives(fresh).size(), 1U) << enclosure;
    }
}

TEST_F(MEGAReaderTest, SlotsOutOfRangeAreLeftOutAndNamed) {
    readDrives({{.slot = 35, .size = "1MB", .inquiry = "A"},
                {.slot = 36},
                {.slot = -1},
                {.slot = 0, .size = "1MB", .state = "Unconfigured(bad)", .inquiry = "B"},
                {.slot = 77, .state = "Unconfigured(bad)"}});
    EXPECT_EQ(drives(),
              (Drives{"1:0 1 t32 Unconfigured(bad) BAD B used", "1:35 1 t32 Online GOOD A"}));
    std::string expected;
    for (const char* id : {"36", "-1", "77"}) {
        expected += std::string("\n#### ERROR\n\tDrive position out of range for controller "
                                "LSI-MegaRAID-8480:  channel=1, id=") +
                    id + "\n\n";
    }
    EXPECT_EQ(takeOutput(), expected);
}

TEST_F(MEGAReaderTest, TheEnclosureKeyHasTwoSpellings) {
    read("", "Enclosure Number: 5\nSlot Number: 2\nCoerced Size: 7MB\nFirmware state: Online\n"
             "Inquiry Data: A\n");
    EXPECT_EQ(drives(), (Drives{"1:2 7 t5 Online GOOD A"}));
}

TEST_F(MEGAReaderTest, AnAdapterLineBeforeTheFirstDriveDoesNotEndTheListing) {
    const std::string drive = PdText{.size = "5MB", .inquiry = "A"}.text();
    const std::string second = PdText{.slot = 1, .size = "5MB", .inquiry = "B"}.text();
    const auto drivesIn = [this](const std::string& listing) {
        read("", listing);
        std::string slots;
        controller->forEachDrive(
            [&](std::int32_t, std::int32_t id) { slots += std::to_string(id); });
        return slots;
    };
    EXPECT_EQ(drivesIn(drive + second), "01");
    EXPECT_EQ(drivesIn("Adapter #0\nAdapter #0\n\n" + drive + second), "01");
    // One behind a drive ends the listing; what stood before it is judged.
    EXPECT_EQ(drivesIn("Adapter #0\n" + drive + "Adapter #1\n" + second), "0");
    EXPECT_EQ(drivesIn("Enclosure Device ID: 1\nSlot Number: 4\nCoerced Size: 5MB\n"
                       "Firmware state: Online\nAdapter #1\n" +
                       second),
              "4");
    EXPECT_EQ(drivesIn("Enclosure Device ID: 1\nSlot Number: 4\nCoerced Size: 5MB\n"
                       "Adapter #1\nFirmware state: Online\n" +
                       second),
              "");
    EXPECT_EQ(drivesIn(drive + "EOF\n" + second), "0");
    EXPECT_EQ(drivesIn("EOF\n" + drive), "");
    EXPECT_EQ(drivesIn(""), "");
}

TEST_F(MEGAReaderTest, AdapterListing) {
    const struct {
        const char* listing;
        const char* firmware; ///< null: none
        const char* bios;
    } rows[] = {
        {"Adapter #0\nFW Version : 1.11\nBIOS Version : B\nWebBIOS Version : W\n", "1.11", "B"},
        {"Adapter #0\nWebBIOS Version : W\n", nullptr, nullptr},
        {"FW Version : 1.11\nAdapter #0\nBIOS Version:\n", nullptr, ""},
        {"Adapter #0\nFW Version : 1\nAdapter #1\nFW Version : 2\n", "1", nullptr},
        {"Adapter #0\nFW Version : 1\nFW Version : 2:3\n", "2:3", nullptr},
        {"Adapter #0\nFW Version : 1\nEOF\nFW Version : 2\n", "1", nullptr},
        {"Adapter #0\nFW Package Build: 6\nBoot Block Version : 3\n", nullptr, nullptr},
        {"FW Version : 1\n", nullptr, nullptr},
        {"", nullptr, nullptr},
    };
    const auto text = [](const std::optional<CString>& version) {
        return version ? std::string(version->c_str()) : std::string("(none)");
    };
    for (const auto& row : rows) {
        read("", "", row.listing);
        EXPECT_EQ(text(controller->firmwareVersion()), row.firmware ? row.firmware : "(none)");
        EXPECT_EQ(text(controller->biosVersion()), row.bios ? row.bios : "(none)");
    }
}

TEST_F(MEGAReaderTest, RaidLevel5MakesSubtype9OfSubtype8) {
    const struct {
        std::int32_t before;
        const char* levels;
        std::int32_t after;
    } rows[] = {
        {8, "RAID0, RAID1, RAID5, RAID6", 9},
        {8, "RAID0, RAID1, RAID10", 8},
        {8, "RAID0, RAID50", 9},
        {8, "RAID0, raid5", 8},
        {7, "RAID0, RAID1, RAID5", 7},
        {9, "RAID0", 9},
        {8, "", 8},
    };
    for (const auto& row : rows) {
        subtype = row.before;
        read("", "",
             std::string("Adapter #0\nRAID Level Supported             : ") + row.levels + "\n");
        EXPECT_EQ(controller->subtype(), row.after) << row.before << " " << row.levels;
    }
}

TEST_F(MEGAReaderTest, MissingOutputsReadAsEmpty) {
    controller = std::make_unique<RAIDController>();
    for (const bool capture : {false, true}) {
        detail.layout = capture;
        EXPECT_TRUE(MEGAReader(detail, application.report()).readConfiguration(*controller, {}));
        EXPECT_EQ(controller->captured(), nullptr);
        EXPECT_EQ(controller->numberOfDrives(), 0);
    }
}

TEST_F(MEGAReaderTest, TracesOfADriveListing) {
    application.printer().setVerbosity(level::traces);
    subtype = 8;
    read("",
         "\nAdapter #0\n\n"
         "Enclosure Device ID: 32\nSlot Number: 3\nNon Coerced Size: 1MB\n"
         "Coerced Size: 67.843 GB\nFirmware state: Online\nInquiry Data:  A 1 \n"
         "Media Type: Disk\n"
         "Enclosure Device ID: N/A\nSlot Number: 4\nCoerced Size: 9MB\n"
         "Firmware state: Hotspare\nInquiry Data: B\n"
         "Enclosure Number: 32\nSlot Number: 5\nCoerced Size: 9MB\n"
         "Firmware state: Unconfigured(bad)\nInquiry Data: C\n"
         "Slot Number: 6\nFirmware state: Failed\nInquiry Data: D\n"
         "\n",
         "skipped\nAdapter #0\nFW Version : 1.11\nBIOS Version : NV\nWebBIOS Version : W\n"
         "RAID Level Supported : RAID0, RAID5\n");
    EXPECT_EQ(takeOutput(), "Entering MEGAReader::readConfiguration\n"
                            "Entering MEGAReader::getDrives\n"
                            "Creating new instance of RaidDisk\n"
                            "p_lines: Enclosure Device ID: 32\n"
                            "Entering MEGAReader::reAssignChannelID, trueChannelID=32\n"
                            "Exiting MEGAReader::reAssignChannelID, iterator=1\n"
                            "Setting enclosure number=32\n"
                            "p_lines: Slot Number: 3\n"
                            "Setting slot number=3\n"
                            "p_lines: Non Coerced Size: 1MB\n"
                            "p_lines: Coerced Size: 67.843 GB\n"
                            "Setting Coerced size=69472\n"
                            "p_lines: Firmware state: Online\n"
                            "p_lines: Inquiry Data:  A 1 \n"
                            "Found 'Inquiry Data', value=A 1\n"
                            "Setting serial number=A 1\n"
                            "Inserted new instance of RaidDisk(1) at location 1:3\n"
                            "Creating new instance of RaidDisk\n"
                            "p_lines: Media Type: Disk\n"
                            "p_lines: Enclosure Device ID: N/A\n"
                            "Entering MEGAReader::reAssignChannelID, trueChannelID=0\n"
                            "Exiting MEGAReader::reAssignChannelID, iterator=2\n"
                            "Setting enclosure number=0\n"
                            "p_lines: Slot Number: 4\n"
                            "Setting slot number=4\n"
                            "p_lines: Coerced Size: 9MB\n"
                            "Setting Coerced size=9\n"
                            "p_lines: Firmware state: Hotspare\n"
                            "Found a Hotspare\n"
                            "p_lines: Inquiry Data: B\n"
                            "Found 'Inquiry Data', value=B\n"
                            "Setting serial number=B\n"
                            "Inserted new instance of RaidDisk(1) at location 2:4\n"
                            "Creating new instance of RaidDisk\n"
                            "p_lines: Enclosure Number: 32\n"
                            "Entering MEGAReader::reAssignChannelID, trueChannelID=32\n"
                            "Exiting MEGAReader::reAssignChannelID, iterator=1\n"
                            "Setting enclosure number=32\n"
                            "p_lines: Slot Number: 5\n"
                            "Setting slot number=5\n"
                            "p_lines: Coerced Size: 9MB\n"
                            "Setting Coerced size=9\n"
                            "p_lines: Firmware state: Unconfigured(bad)\n"
                            "p_lines: Inquiry Data: C\n"
                            "Found 'Inquiry Data', value=C\n"
                            "Setting serial number=C\n"
                            "Inserted new instance of RaidDisk(2) at location 1:5\n"
                            "Creating new instance of RaidDisk\n"
                            "p_lines: Slot Number: 6\n"
                            "Setting slot number=6\n"
                            "p_lines: Firmware state: Failed\n"
                            "p_lines: Inquiry Data: D\n"
                            "Found 'Inquiry Data', value=D\n"
                            "Setting serial number=D\n"
                            "Creating new instance of RaidDisk\n"
                            "p_lines: \n"
                            "Exiting MEGAReader::getDrives\n"
                            "Entering MEGAReader::getAdapterInfo\n"
                            "Found 'FW Version' value: 1.11\n"
                            "Found 'BIOS Version' or 'WebBIOS Version' value: NV\n"
                            "Found 'RAID Level Supported' value: RAID0, RAID5\n"
                            "Exiting MEGAReader::getAdapterInfo\n"
                            "Exitng MEGAReader::readConfiguration, returning true\n");
    EXPECT_EQ(controller->subtype(), 9);
}

TEST_F(MEGAReaderTest, DebugOutputDumpsEveryRecord) {
    detail.dumpRecords = true;
    readDrives({{.enclosure = "32", .slot = 3, .size = "5MB", .inquiry = "A"},
                {.enclosure = "33", .slot = 4, .size = "6MB", .state = "Failed", .inquiry = "B"}});
    EXPECT_EQ(takeOutput(), "Contents of RaidDisk:\n"
                            "  Channel Number:    32\n"
                            "  ID:                3\n"
                            "  Disk Number:       -1\n"
                            "  Size:              5\n"
                            "  Serial Number:     A\n"
                            "  Reported Location: \n"
                            "  State:             Online\n"
                            "  Derived State:     GOOD\n\n"
                            "Contents of RaidDisk:\n"
                            "  Channel Number:    33\n"
                            "  ID:                4\n"
                            "  Disk Number:       -1\n"
                            "  Size:              6\n"
                            "  Serial Number:     B\n"
                            "  Reported Location: \n"
                            "  State:             Failed\n"
                            "  Derived State:     GOOD\n\n");
}

} // namespace
} // namespace zolex::test
