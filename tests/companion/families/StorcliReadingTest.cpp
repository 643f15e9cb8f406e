// Whole listings, read as a person reads them.

#include "companion/families/StorcliListings.h"

namespace zolex::companion {
namespace {

using namespace test; // NOLINT: the words of these tests

const std::string ssd = " \"ATA\" \"NVS960-D\" N101 SATA SSD 959656755200 of 512 ";
const std::string hdd = " \"NORVIK\" \"NV8000SAS12\" N101 SAS HDD 8001524072448 of 512 ";
const std::string needsForce = " barred: it is a JBOD drive: the system has it as it is";

TEST(StorcliReading, TheDrivesOfAServer) {
    const Lines wanted = {
        "252:0 NV004100" + ssd + "Onln member ok errors 0 0 0 C 24 wwn 500AAA0000004200",
        "252:1 NV004101" + ssd + "Onln member ok errors 0 0 0 C 25 wwn 500AAA0000004201",
        "252:2 NV004102" + hdd + "Onln member ok errors 0 0 0 C 26 wwn 500AAA0000004202",
        "252:3 NV004103" + hdd + "Onln member warning errors 12 0 1 C 27 wwn 500AAA0000004203",
        "252:4 NV004104" + hdd + "Rbld rebuilding warning errors 0 0 0 C 28 wwn 500AAA0000004204",
        "252:5 NV004105" + hdd + "Onln member ok errors 0 0 0 C 29 wwn 500AAA0000004205",
        "252:6 NV004106" + hdd + "Onln member ok errors 0 0 0 C 30 wwn 500AAA0000004206",
        "252:7 NV004107" + hdd + "Onln member ok errors 0 0 0 C 31 wwn 500AAA0000004207",
        "252:8 NV004108" + hdd + "Onln member ok errors 0 0 0 C 32 wwn 500AAA0000004208",
        "252:9 NV004109" + hdd + "Onln member ok errors 0 0 0 C 33 wwn 500AAA0000004209",
        "252:10 NV004110" + hdd + "GHS hotspare ok errors 0 0 0 C 34 wwn 500AAA000000420A global",
        "252:11 NV004111" + hdd +
            "DHS hotspare ok errors 0 0 0 C 35 wwn 500AAA000000420B covers 1 dedicated",
        "252:12 NV004112" + hdd + "UGood free ok errors 0 0 0 C 36 wwn 500AAA000000420C",
        "252:13 NV004113" + hdd + "UBad failed critical errors 0 0 0 C 37 wwn 500AAA000000420D",
        "252:14 NV004114" + ssd + "JBOD jbod ok errors 0 0 0 C 38 wwn 500AAA000000420E" +
            needsForce,
        "252:15 NV004115 \"NORVIK\" \"NV8000SAS12-4K\" N101 SAS HDD 8001524072448 of 4096 UGood "
        "foreign ok errors 0 0 0 C 39 wwn 500AAA000000420F is foreign",
    };
    const FamilyController controller = ListedController().controller();
    EXPECT_EQ(describeAll(controller.facts.drives), wanted);
    EXPECT_EQ(findingsOf(controller.findings), Lines());
    EXPECT_FALSE(controller.failed);
}

TEST(StorcliReading, TheLogicalDrivesOfAServer) {
    const Lines wanted = {
        "239 \"system\" in 0 RAID1 (252:0 252:1) 959656755200 strip 65536 ProtectedWriteBack "
        "ReadAhead Optl ok /dev/sda",
        "238 \"\" in 1 RAID5 (252:2 252:3 252:4 252:5) 24004572217344 strip 262144 "
        "ProtectedWriteBack ReadAhead Dgrd warning /dev/sdb",
        "237 \"logs\" in 2 RAID10 (252:6 252:7)(252:8 252:9) 167772160000 strip 65536 "
        "WriteThrough Off Optl ok /dev/sdc",
        "236 \"data\" in 2 RAID10 (252:6 252:7)(252:8 252:9) 15835275984896 strip 1048576 "
        "UnprotectedWriteBack ReadAhead Optl ok /dev/sdd",
    };
    EXPECT_EQ(describeAll(ListedController().controller().facts.logicalDrives), wanted);
}

TEST(StorcliReading, TheControllerItself) {
    const FamilyController controller = ListedController().controller();
    const Facts& facts = controller.facts;
    EXPECT_EQ(controller.adapter, 0);
    EXPECT_EQ(controller.model, "MegaRAID-N3916-16i-8GB");
    EXPECT_EQ(controller.pci, "0000:c1:00.0");
    EXPECT_EQ(controller.pciIds, "1000:10e2:1000:4000");
    EXPECT_EQ(facts.pciAddress, "c1:00.0");
    EXPECT_EQ(facts.pciIds, "1000:10e2:1000:4000");
    EXPECT_EQ(facts.productName, "MegaRAID N3916-16i 8GB");
    EXPECT_EQ(facts.serialNumber, "NX26400017");
    EXPECT_EQ(facts.firmwareVersion, "52.26.0-0001");
    EXPECT_EQ(facts.biosVersion, "7.26.00.0_0x071A0000");
    EXPECT_EQ(facts.driverVersion, "07.719.03.00-rc1");
    EXPECT_EQ(facts.utilityVersion, "007.2507.0000.0000 Mar 11, 2024");
    EXPECT_EQ(facts.reportedState, "Needs Attention");
    EXPECT_EQ(facts.raidTypes,
              Lines({"RAID0", "RAID1", "RAID5", "RAID6", "RAID00", "RAID10", "RAID50", "RAID60"}));
    EXPECT_EQ(facts.minStripSizeBytes, 65536U);
    EXPECT_EQ(facts.maxStripSizeBytes, 1048576U);
    EXPECT_EQ(facts.rebuildRatePercent, 30);
    EXPECT_EQ(facts.rebuildRate, "30%");
    EXPECT_EQ(facts.abilities.mostDrives, 32);
    EXPECT_EQ(facts.abilities.mostSpans, 8);
    EXPECT_EQ(facts.abilities.mostVolumesPerArray, 16);
    EXPECT_EQ(facts.abilities.mixesProtocols, true);
    EXPECT_EQ(facts.abilities.mixesMedia, false);
    EXPECT_EQ(facts.abilities.usualStripSizeBytes, 262144U);
    EXPECT_EQ(facts.abilities.usualWriteCache, "ProtectedWriteBack");
    EXPECT_EQ(facts.abilities.usualReadCache, "ReadAhead");
    EXPECT_EQ(facts.foreignConfigurations, Lines({"DG 0: RAID0, 7.277 TB, 1 logical drive"}));
}

TEST(StorcliReading, FourCallsForEachController) {
    ListedController server;
    server.controller();
    EXPECT_EQ(server.calls,
              Lines({"STORCLI show J nolog", "STORCLI /c0 show all J nolog",
                     "STORCLI /c0/eall/sall show all J nolog", "STORCLI /c0/vall show all J nolog",
                     "STORCLI /c0/fall show J nolog"}));
    for (const std::string& call : server.calls) {
        EXPECT_TRUE(Storcli().isReading(call)) << call;
        EXPECT_FALSE(Storcli().leavesFiles(call)) << call;
    }
}

TEST(StorcliReading, NoForeignConfigurationIsNoError) {
    ListedController server;
    server.answer("/c0/fall show J", listing("storcli-c0-fall-show-none.json"), 50);
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.foreignConfigurations, Lines());
    EXPECT_EQ(findingsOf(controller.findings), Lines());
}

TEST(StorcliReading, OneDriveThatAnswersNotEndsNoListing) {
    ListedController server;
    server.answer("/c0/eall/sall show all J", listing("storcli-one-drive-answers-not.json"), 46);
    const FamilyController controller = server.controller();
    EXPECT_FALSE(controller.failed);
    ASSERT_EQ(controller.facts.drives.size(), 16U);
    EXPECT_EQ(describe(controller.facts.drives[13]),
              "252:13  \"\" \"NV8000SAS12\"  SAS HDD 8001146115325+2147483648 of 512 UBad failed "
              "critical errors - - - C - wwn  barred: it does not tell its details (error 46)");
    EXPECT_EQ(describe(controller.facts.drives[12]).substr(0, 15), "252:12 NV004112");
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP146 1 drive tells no details, and is not planned with: 252:13 (error 46)",
                     "ZP137 STORCLI /c0/eall/sall show all J nolog says Failure, and lists all "
                     "that answers"}));
}

TEST(StorcliReading, AnswersToChanges) {
    const StorcliAnswer size = storcliAnswer(listing("storcli-add-vd-refused.json"));
    EXPECT_TRUE(size.isFailure());
    EXPECT_EQ(size.errorCode, 13);
    EXPECT_EQ(size.description, "disk doesn't have enough capacity");
    const StorcliAnswer jbod = storcliAnswer(listing("storcli-set-jbod-refused.json"));
    EXPECT_TRUE(jbod.isFailure());
    EXPECT_EQ(jbod.errorCode, 255);
    EXPECT_EQ(jbod.description, "Operation not allowed.");
    const StorcliAnswer text = storcliAnswer(listing("storcli2-syntax-error.txt"));
    EXPECT_FALSE(text.isJson);
    EXPECT_EQ(text.status, "Failure");
    EXPECT_EQ(text.description,
              "syntax error, unexpected TOKEN_JBOD, expecting TOKEN_HOTSPARE_DRIVE");
}

TEST(StorcliReading, GenerationEightIsNotHalfDriven) {
    ListedController server;
    server.answer("/c0 show all J", listing("storcli2-c0-show-all.json"));
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_TRUE(controller.facts.drives.empty());
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP139 STORCLI is of generation 008, which zolexctl does not drive yet: "
                     "008.0005.0000.0010 Feb 22, 2023"}));
}

} // namespace
} // namespace zolex::companion
