#include "setup/Samples.h"
#include "simulator/BlockSupport.h"
#include "support/FakePlatform.h"

namespace zolex_sim::test {
namespace {

// The adapter that the sample listing shows.
constexpr const char* sampleAdapter = R"({
  "machineType": "8837", "serialNumber": "KQ1",
  "controllers": [{
    "utility": "CFGGEN", "model": "LSI-SAS-RAID", "productName": "SAS1064E",
    "bios": "6.12.01.00", "firmware": "1.18.84.00",
    "pci": {"bus": 2, "device": 0, "vendorId": "0x1000", "deviceId": "0x0056"},
    "enclosures": [{"number": 1, "logicalId": "0x5000abcd10010203", "slots": 4}],
    "drives": [
      {"enclosure": 1, "slot": 1, "targetId": 1, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00010000000A0001"},
      {"enclosure": 1, "slot": 0, "targetId": 4, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00020000000A0002"},
      {"enclosure": 1, "slot": 2, "targetId": 5, "sizeMB": 70006, "rawSectors": 143374000,
       "model": "NV73401S", "revision": "B51D", "serial": "NV9B00030000000A0003"}],
    "virtualDisks": [{"level": "RAID1", "spans": [["1:1", "1:0"]], "sizeMB": 69618}]}]})";

TEST(CfggenListing, ReproducesTheSampleListing) {
    Server server = serverOf(sampleAdapter);
    const PlayResult result = play(server, "CFGGEN 0 DISPLAY");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_FALSE(result.changed);
    EXPECT_EQ(result.output, zolex::test::readTestData("cfggen-display.txt"));
}

TEST(CfggenListing, ReproducesTheSampleListingOfAServerThatWasConfiguredByCommands) {
    Server server = serverOf(sampleAdapter);
    EXPECT_EQ(play(server, "CFGGEN 0 DELETE NOPROMPT").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 CREATE IM 69618 1:1 1:0 qsync NOPROMPT").exitCode, 0);
    EXPECT_EQ(play(server, "CFGGEN 0 DISPLAY").output,
              zolex::test::readTestData("cfggen-display.txt"));
}

} // namespace
} // namespace zolex_sim::test
