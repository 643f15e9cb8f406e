#include "companion/exchange/IronicDocument.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion {
namespace {

/// "3:12 ZP272 summary", one line each.
std::string faultsOf(std::string_view text) {
    const IronicReading reading = readIronic(text, "node.json");
    EXPECT_EQ(reading.disks.has_value(), reading.findings.empty());
    std::string lines;
    for (const Finding& finding : reading.findings) {
        EXPECT_EQ(finding.file, "node.json");
        EXPECT_EQ(finding.severity, Severity::error);
        EXPECT_FALSE(finding.help.empty());
        lines += std::to_string(finding.start.line) + ":" + std::to_string(finding.start.column) +
                 "-" + std::to_string(finding.end.column) + " " + finding.code + " " +
                 finding.summary + "\n";
    }
    return lines;
}

TEST(IronicDocument, IsReadAndWrittenWithAllItsProperties) {
    const std::string text = R"({
  "logical_disks": [
    {
      "raid_level": "1+0",
      "size_gb": 100,
      "volume_name": "root \"1\"",
      "is_root_volume": true,
      "share_physical_disks": true,
      "disk_type": "ssd",
      "interface_type": "sata",
      "number_of_physical_disks": 4,
      "controller": "LSI-MegaRAID-8480",
      "physical_disks": [
        "32:0",
        "32:1"
      ]
    },
    {
      "raid_level": "JBOD",
      "size_gb": "MAX"
    }
  ]
}
)";
    const IronicReading reading = readIronic(text, "node.json");
    ASSERT_TRUE(reading.disks);
    EXPECT_EQ(reading.disks->size(), 2U);
    EXPECT_EQ(reading.disks->front().volumeName, "root \"1\"");
    EXPECT_EQ(ironicDocument(*reading.disks), text);
}

TEST(IronicDocument, TellsEachFaultWithItsPlace) {
    EXPECT_EQ(
        faultsOf(R"({"logical_disks": [
  {"raid_level": 5, "size_gb": 0, "disk_type": "nvme", "spare": 1},
  {"raid_level": "3", "size_gb": 1.5, "is_root_volume": "yes", "interface_type": ""},
  {"size_gb": "max", "controller": "", "physical_disks": ["a", {}, "b\n"]},
  7, {"raid_level": "1", "size_gb": -1, "number_of_physical_disks": 0, "physical_disks": []}],
  "more": {}})"),
        R"(6:11-13 ZP272 more is no name of a RAID configuration: logical_disks is the only one
2:18-19 ZP272 logical_disks[0].raid_level is 5, and can be "JBOD", "0", "1", "2", "5", "6", "1+0", "5+0" or "6+0"
2:32-33 ZP272 logical_disks[0].size_gb is 0, and must be a whole number above 0, or "MAX"
2:48-54 ZP272 logical_disks[0].disk_type is "nvme", and can be "hdd" or "ssd"
2:65-66 ZP272 logical_disks[0].spare is no name that a logical disk has
3:18-21 ZP272 logical_disks[1].raid_level is "3", and can be "JBOD", "0", "1", "2", "5", "6", "1+0", "5+0" or "6+0"
3:34-37 ZP272 logical_disks[1].size_gb is 1.5, and must be a whole number above 0, or "MAX"
3:57-62 ZP272 logical_disks[1].is_root_volume is neither true nor false
3:82-84 ZP272 logical_disks[1].interface_type is "", and can be "sata", "scsi" or "sas"
4:15-20 ZP272 logical_disks[2].size_gb is "max", and must be a whole number above 0, or "MAX"
4:36-38 ZP272 logical_disks[2].controller is no text of 1 to 255 plain characters
4:64-66 ZP272 logical_disks[2].physical_disks[1] is no text
4:68-73 ZP272 logical_disks[2].physical_disks[2] is no text of 1 to 255 plain characters
4:3-75 ZP272 logical_disks[2] has no raid_level
5:3-4 ZP272 logical_disks[3] is no object
5:37-39 ZP272 logical_disks[4].size_gb is -1, and must be a whole number above 0, or "MAX"
5:69-70 ZP272 logical_disks[4].number_of_physical_disks is 0, and must be a whole number above 0
5:90-92 ZP272 logical_disks[4].physical_disks is no list of 1 to 1024 drives
)");
}

TEST(IronicDocument, TellsWhatIsNoConfiguration) {
    EXPECT_EQ(faultsOf("{}"), "1:1-3 ZP272 the document is empty: that only takes the "
                              "configuration of a node back, and there is nothing to convert\n");
    EXPECT_EQ(faultsOf("[]"), "1:1-3 ZP272 the document is no object\n");
    EXPECT_EQ(faultsOf(R"({"logical_disks": []})"),
              "1:19-21 ZP272 logical_disks is no list of at least one object\n");
    EXPECT_EQ(faultsOf("{\"logical_disks\": [\n{]}"),
              "2:2-2 ZP271 this is no JSON: syntax error while parsing object key - unexpected "
              "']'; expected string literal\n");
    EXPECT_EQ(faultsOf(""), "1:1-1 ZP271 this is no JSON: syntax error while parsing value - "
                            "unexpected end of input; expected '[', '{', or a literal\n");
    EXPECT_EQ(faultsOf(std::string(mostIronicBytes + 1, ' ')),
              "0:0-0 ZP273 the document is larger than 1 MB\n");
    EXPECT_EQ(faultsOf(std::string(33, '[')),
              "1:33-33 ZP273 the document is nested deeper than 32 levels\n");
    std::string many = R"({"logical_disks": [)";
    for (std::size_t i = 0; i <= mostIronicDisks; ++i) {
        many += std::string(i == 0 ? "" : ",") + R"({"raid_level": "1", "size_gb": 1})";
    }
    EXPECT_EQ(faultsOf(many + "]}"), "1:19-8758 ZP272 logical_disks has more than 256 elements\n");
}

TEST(IronicDocument, TellsWhatLogicalDisksLeaveToEachOther) {
    EXPECT_EQ(faultsOf(R"({"logical_disks": [
  {"raid_level": "1", "size_gb": 1, "volume_name": "a", "is_root_volume": true},
  {"raid_level": "1", "size_gb": 1, "volume_name": "b", "is_root_volume": false},
  {"raid_level": "1", "size_gb": 1, "volume_name": "a", "is_root_volume": true}]})"),
              R"(4:52-55 ZP272 logical_disks[2].volume_name is the name of another logical disk, too
4:75-79 ZP272 logical_disks[2].is_root_volume is true as that of logical_disks[0]: there is one root volume at most
)");
}

} // namespace
} // namespace zolex::companion
