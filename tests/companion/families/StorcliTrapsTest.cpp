// What listings do to whoever reads them in a hurry, one by one.

#include "companion/families/FamilyCodes.h"
#include "companion/families/StorcliListings.h"
#include "companion/families/storcli/StorcliWords.h"
#include "companion/families/storcli/ToldValue.h"

#include <algorithm>

namespace zolex::companion {
namespace {

using namespace test; // NOLINT: the words of these tests

constexpr const char* all = "/c0 show all J";
constexpr const char* drives = "/c0/eall/sall show all J";
constexpr const char* volumes = "/c0/vall show all J";
constexpr const char* foreign = "/c0/fall show J";

const DriveFacts& driveOf(const FamilyController& controller, const std::string& location) {
    static const DriveFacts none;
    const DriveFacts* const found = controller.facts.drive(location);
    EXPECT_NE(found, nullptr) << location;
    return found == nullptr ? none : *found;
}

TEST(StorcliTraps, ExactSizeOfADriveComesFromItsCoercedSectors) {
    ListedController server;
    server.edit(drives, "\"Coerced size\" : \"893.750 GB [0x6fb80000 Sectors]\"",
                "\"Coerced size\" : \"1 TB [0x6fb80010 Sectors]\"");
    const DriveFacts drive = driveOf(server.controller(), "252:0");
    EXPECT_EQ(drive.capacityBytes, 0x6fb80010ULL * 512);
    EXPECT_EQ(drive.rawCapacityBytes, 0x6fc81ab0ULL * 512); // what its label says
}

TEST(StorcliTraps, ExactSizeOfAVolumeComesFromItsBlocks) {
    ListedController server;
    server.edit(volumes, "\"Number of Blocks\" : 1874329600", "\"Number of Blocks\" : 1874329601");
    EXPECT_EQ(server.controller().facts.logicalDrives[0].capacityBytes, 1874329601ULL * 512);
    // Blocks of 4096 bytes, where those of 512 contradict the text.
    server.edit(volumes, "\"Number of Blocks\" : 1874329601", "\"Number of Blocks\" : 234291200");
    EXPECT_EQ(server.controller().facts.logicalDrives[0].capacityBytes, 234291200ULL * 4096);
}

TEST(StorcliTraps, SectorsThatAreNotTheSizeInWordsDoNotCount) {
    ListedController server;
    const std::string size =
        "\"EID:Slt\" : \"252:12\",\n\t\t\t\t\"DID\" : 20,\n\t\t\t\t\"State\" : "
        "\"UGood\",\n\t\t\t\t\"DG\" : \"-\",\n\t\t\t\t\"Size\" : ";
    server.editOnce(all, size + "\"7.277 TB\"", size + "\"893.750 GB\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(driveOf(controller, "252:12").capacityBytes, 0x6fb80000ULL * 512);
    EXPECT_GT(driveOf(controller, "252:12").capacityTolerance, 0U);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP147 drive 252:12 has 8001524072448 bytes in its sectors, which are not the "
                     "893.750 GB that it is said to have: the latter counts"}));
    // What its label says is another size of it, and no contradiction.
    ListedController raw;
    raw.edit(all, "\"893.750 GB\"", "\"894.252 GB\"");
    EXPECT_EQ(driveOf(raw.controller(), "252:0").capacityBytes, 0x6fb80000ULL * 512);
}

TEST(StorcliTraps, ADriveWithTwoSectorSizesIsNotPlanned) {
    ListedController server;
    server.edit(all, "\"SeSz\" : \"4 KB\"", "\"SeSz\" : \"512B\"");
    EXPECT_EQ(driveOf(server.controller(), "252:15").barred,
              "its sectors are told to be of 4096 and of 512 bytes");
}

TEST(StorcliTraps, TextIsCutAndOnlyTheLeastSize) {
    const auto tera = storcliSize("7.277 TB", StorcliUnits::binary);
    ASSERT_TRUE(tera);
    constexpr std::uint64_t exact = 0x3a3800000ULL * 512;
    EXPECT_LE(tera->bytes, exact);
    EXPECT_LE(exact, tera->bytes + tera->tolerance);
    EXPECT_EQ(tera->tolerance, std::uint64_t{2} << 30U);
    const auto giga = storcliSize("893.750 GB", StorcliUnits::binary);
    ASSERT_TRUE(giga);
    EXPECT_EQ(giga->bytes, 0x6fb80000ULL * 512);
    EXPECT_EQ(giga->tolerance, (std::uint64_t{1} << 20U) + (std::uint64_t{1} << 30U) / 1000 + 1);
}

TEST(StorcliTraps, EarlyVersionsHaveOneDecimal) {
    const auto size = storcliSize("931.0 GB", StorcliUnits::binary);
    ASSERT_TRUE(size);
    EXPECT_EQ(size->bytes, std::uint64_t{931} << 30U);
    EXPECT_GE(size->tolerance, (std::uint64_t{1} << 30U) / 10);
}

TEST(StorcliTraps, AWordOfSizeIsDecidedBySectors) {
    ListedController server;
    server.edit(all, "\"Drive Groups\" :", "\"Arrays\" :");
    server.edit(all, "\"893.750 GB\"", "\"959.66 GB\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(driveOf(controller, "252:0").capacityBytes, 959656755200U);
    EXPECT_EQ(driveOf(controller, "252:0").capacityTolerance, 0U);
    const auto alone = storcliSize("959.66 GB", StorcliUnits::decimal);
    ASSERT_TRUE(alone);
    EXPECT_LE(alone->bytes, 959656755200U);
    EXPECT_LE(959656755200U, alone->bytes + alone->tolerance);
}

TEST(StorcliTraps, SectorsOf4KbAreNotOf512) {
    const DriveFacts drive = driveOf(ListedController().controller(), "252:15");
    EXPECT_EQ(drive.blockSizeBytes, 4096U);
    EXPECT_EQ(drive.capacityBytes, 0x74700000ULL * 4096);
}

TEST(StorcliTraps, NumbersOfVolumesAreNoPositions) {
    ListedController server;
    server.edit(all, "\"DG/VD\" : \"0/239\"", "\"DG/VD\" : \"0/7\"");
    server.edit(volumes, "239", "7");
    const FamilyController controller = server.controller();
    std::vector<std::string> ids;
    for (const LogicalDriveFacts& volume : controller.facts.logicalDrives) {
        ids.push_back(volume.id);
        EXPECT_FALSE(volume.commandNumber);
    }
    // As they were made, group by group.
    EXPECT_EQ(ids, Lines({"7", "238", "237", "236"}));
}

TEST(StorcliTraps, WithoutDatesTheNumbersTellTheOrder) {
    ListedController server;
    server.edit(volumes, "\"Creation Date\"", "\"Created\"");
    std::vector<std::string> ids;
    for (const LogicalDriveFacts& volume : server.controller().facts.logicalDrives) {
        ids.push_back(volume.id);
    }
    EXPECT_EQ(ids, Lines({"239", "238", "237", "236"})); // the highest is the first possible
    server.edit(all, "\"Max Number of VDs\" : 240", "\"Max Number of VDs\" : 512");
    ids.clear();
    for (const LogicalDriveFacts& volume : server.controller().facts.logicalDrives) {
        ids.push_back(volume.id);
    }
    EXPECT_EQ(ids, Lines({"239", "238", "236", "237"}));
}

TEST(StorcliTraps, DrivesAreTakenByTheirPlacesAndNotByTheirOrder) {
    ListedController server;
    // The rows of two drives have changed places; nothing else has.
    server.edit(all, "\"252:14\"", "\"252:99\"");
    server.edit(all, "\"252:12\"", "\"252:14\"");
    server.edit(all, "\"252:99\"", "\"252:12\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.drives[12].location, "252:14");
    EXPECT_EQ(controller.facts.drives[12].serialNumber, "NV004114");
    EXPECT_EQ(controller.facts.drives[14].location, "252:12");
    EXPECT_EQ(controller.facts.drives[14].serialNumber, "NV004112");
}

TEST(StorcliTraps, SlotsOfTwoEnclosuresAreNotMixedUp) {
    ListedController server;
    server.edit(all, "\"252:13\"", "\"253:12\"");
    server.edit(drives, "\"252:13\"", "\"253:12\"");
    server.edit(drives, "/c0/e252/s13", "/c0/e253/s12");
    const FamilyController controller = server.controller();
    EXPECT_EQ(driveOf(controller, "252:12").serialNumber, "NV004112");
    EXPECT_EQ(driveOf(controller, "253:12").serialNumber, "NV004113");
    EXPECT_EQ(findingsOf(controller.findings), Lines());
}

TEST(StorcliTraps, DrivesOfNvmeAndUnitsOfStrips) {
    ListedController server;
    server.editOnce(all, "\"Intf\" : \"SATA\"", "\"Intf\" : \"NVMe\"");
    server.edit(all, "\"Min Strip Size\" : \"64 KB\"", "\"Min Strip Size\" : \"512Bytes\"");
    server.edit(all, "\"Max Strip Size\" : \"1.000 MB\"", "\"Max Strip Size\" : \"64 KB\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(driveOf(controller, "252:0").protocol, "NVMe");
    EXPECT_EQ(controller.facts.minStripSizeBytes, 512U);
    EXPECT_EQ(controller.facts.maxStripSizeBytes, 65536U);
}

TEST(StorcliTraps, ALongTextInsideIsNoMatter) {
    ListedController server;
    const FamilyController before = server.controller();
    server.edit(drives, "\"Inquiry Data\" : \"",
                "\"Inquiry Data\" : \"" + std::string(100000, ' '));
    EXPECT_EQ(describeAll(server.controller().facts.drives), describeAll(before.facts.drives));
}

TEST(StorcliTraps, EnclosuresAreOf16BitsAndDrivesMayBeInNone) {
    ListedController server;
    for (const char* const call : {all, drives, volumes}) {
        server.edit(call, "\"252:0\"", "\" :0\"");
        server.edit(call, "\"252:1\"", "\"65535:1\"");
    }
    server.edit(drives, "/c0/e252/s0 ", "/c0/s0 ");
    server.edit(drives, "/c0/e252/s0\"", "/c0/s0\"");
    server.edit(drives, "/c0/e252/s1 ", "/c0/e65535/s1 ");
    server.edit(drives, "/c0/e252/s1\"", "/c0/e65535/s1\"");
    server.answer("/c0/sall show all J",
                  server.answers.at("STORCLI " + std::string(drives)).output);
    const FamilyController controller = server.controller();
    EXPECT_EQ(driveOf(controller, ":0").serialNumber, "NV004100");
    EXPECT_FALSE(driveOf(controller, ":0").enclosure);
    EXPECT_EQ(driveOf(controller, "65535:1").serialNumber, "NV004101");
    EXPECT_EQ(controller.facts.logicalDrives[0].spans,
              (std::vector<std::vector<std::string>>{{":0", "65535:1"}}));
    EXPECT_NE(
        std::find(server.calls.begin(), server.calls.end(), "STORCLI /c0/sall show all J nolog"),
        server.calls.end());
    EXPECT_EQ(findingsOf(controller.findings), Lines());
}

TEST(StorcliTraps, TheKeyOfADriveIsItsSerialNumberAndNotItsDeviceId) {
    ListedController server;
    const Facts before = server.controller().facts;
    server.edit(all, "\"DID\" : 8,", "\"DID\" : 77,");
    const Facts after = server.controller().facts;
    EXPECT_EQ(before.drives[0].serialNumber, after.drives[0].serialNumber);
    EXPECT_EQ(after.drives[0].number, 77);
}

TEST(StorcliTraps, NumbersMayBeTextsAndTextsNumbers) {
    ListedController server;
    const Facts before = server.controller().facts;
    server.edit(all, "\"DG\" : 1,", "\"DG\" : \"1\",");
    server.edit(all, "\"Controller\" : 0", "\"Controller\" : \"0\"");
    server.edit(all, "\"Vendor Id\" : 4096", "\"Vendor Id\" : \"0x1000\"");
    server.edit(all, "\"Physical Drives\" : 16", "\"Physical Drives\" : \"16\"");
    Facts after = server.controller().facts;
    EXPECT_EQ(describeAll(before.drives), describeAll(after.drives));
    EXPECT_EQ(describeAll(before.logicalDrives), describeAll(after.logicalDrives));
    EXPECT_EQ(before.pciIds, after.pciIds);
}

TEST(StorcliTraps, OfTwoKeysOfOneNameTheFirstCountsAndItIsSaid) {
    ListedController server;
    server.edit(all, "\"Serial Number\" : \"NX26400017\",",
                "\"Serial Number\" : \"NX26400017\", \"Serial Number\" : \"other\",");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.serialNumber, "NX26400017");
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP135 STORCLI /c0 show all J nolog: \"Serial Number\" stands twice; the "
                     "first counts"}));
}

TEST(StorcliTraps, BlanksAroundKeysAndValuesDoNotCount) {
    ListedController server;
    server.edit(all, "\"Model\" : \"MegaRAID N3916-16i 8GB\"",
                "\" Model  \" : \"  MegaRAID N3916-16i 8GB  \"");
    server.edit(drives, "\"SN\"", "\"SN \"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.model, "MegaRAID-N3916-16i-8GB");
    EXPECT_EQ(driveOf(controller, "252:0").serialNumber, "NV004100");
}

TEST(StorcliTraps, AMissingSectionKillsNothing) {
    for (const char* const section : {"Bus", "Version", "Status", "Capabilities", "Basics"}) {
        ListedController server;
        server.edit(all, "\"" + std::string(section) + "\" : {", "\"Elsewhere\" : {");
        const FamilyController controller = server.controller();
        EXPECT_FALSE(controller.failed) << section;
        EXPECT_EQ(controller.facts.drives.size(), 16U) << section;
        EXPECT_EQ(
            findingsOf(controller.findings),
            Lines({"ZP134 STORCLI /c0 show all J nolog does not tell: " + std::string(section)}));
    }
}

TEST(StorcliTraps, WithoutTopologySpansComeFromTheVolumes) {
    ListedController server;
    server.edit(all, "\"TOPOLOGY\"", "\"Elsewhere\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(describeAll(controller.facts.logicalDrives),
              describeAll(ListedController().controller().facts.logicalDrives));
}

TEST(StorcliTraps, AWordOfTomorrowIsKeptAndNeverPlanned) {
    ListedController server;
    server.editOnce(all, "\"State\" : \"UGood\"", "\"State\" : \"Tmrw\"");
    const FamilyController controller = server.controller();
    const DriveFacts drive = driveOf(controller, "252:12");
    EXPECT_EQ(drive.reportedState, "Tmrw");
    EXPECT_EQ(drive.state, DriveState::unknown);
    EXPECT_EQ(drive.barred, "its state is not known: Tmrw");
    EXPECT_EQ(Storcli().whyNotUsable(drive), "its state is not known: Tmrw");
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP133 1 drive is in a state that zolexctl does not know, and not planned "
                     "with: 252:12 (Tmrw)"}));
}

TEST(StorcliTraps, EveryWordOfADriveIsKnown) {
    struct Case {
        const char* word;
        DriveState state;
        Health health;
        bool isBarred;
    };
    const Case cases[] = {
        {"Onln", DriveState::member, Health::ok, false},
        {"Offln", DriveState::failed, Health::critical, false},
        {"UGood", DriveState::free, Health::ok, false},
        {"UBad", DriveState::failed, Health::critical, false},
        {"Failed", DriveState::failed, Health::critical, false},
        {"Rbld", DriveState::rebuilding, Health::warning, false},
        {"Cpybck", DriveState::rebuilding, Health::warning, false},
        {"GHS", DriveState::hotspare, Health::ok, false},
        {"DHS", DriveState::hotspare, Health::ok, false},
        {"JBOD", DriveState::jbod, Health::ok, true},
        {"Msng", DriveState::missing, Health::critical, false},
        {"UGUnsp", DriveState::free, Health::warning, true},
        {"UBUnsp", DriveState::failed, Health::critical, true},
        {"UGShld", DriveState::free, Health::warning, true},
        {"HSPShld", DriveState::hotspare, Health::warning, true},
        {"CFShld", DriveState::member, Health::warning, true},
        {"CBShld", DriveState::rebuilding, Health::warning, true},
        {"Sntze", DriveState::free, Health::warning, true},
    };
    for (const Case& each : cases) {
        const StorcliDriveWord* const word = storcliDriveWord(each.word);
        ASSERT_NE(word, nullptr) << each.word;
        EXPECT_EQ(word->state, each.state) << each.word;
        EXPECT_EQ(word->health, each.health) << each.word;
        EXPECT_EQ(!word->barred.empty(), each.isBarred) << each.word;
    }
}

TEST(StorcliTraps, EveryWordOfAVolumeIsKnownAndOthersAreTold) {
    EXPECT_EQ(storcliVolumeHealth("Optl"), Health::ok);
    for (const char* const word : {"Dgrd", "Pdgd", "Rec", "TRANS", "B", "HD"}) {
        EXPECT_EQ(storcliVolumeHealth(word), Health::warning) << word;
    }
    EXPECT_EQ(storcliVolumeHealth("OfLn"), Health::critical);
    EXPECT_EQ(storcliVolumeHealth("Tmrw"), Health::unknown);
    for (const char* const level :
         {"RAID0", "RAID1", "RAID5", "RAID6", "RAID00", "RAID10", "RAID50", "RAID60"}) {
        EXPECT_EQ(storcliLevel(level), level);
    }
    ListedController server;
    server.edit(all, "\"State\" : \"Dgrd\",\n\t\t\t\t\"Access\"",
                "\"State\" : \"Tmrw\",\n\t\t\t\t\"Access\"");
    server.edit(all, "\"DG/VD\" : \"2/237\",\n\t\t\t\t\"TYPE\" : \"RAID10\"",
                "\"DG/VD\" : \"2/237\",\n\t\t\t\t\"TYPE\" : \"Cac1\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.logicalDrives[1].reportedState, "Tmrw");
    EXPECT_EQ(controller.facts.logicalDrives[1].health, Health::unknown);
    EXPECT_EQ(controller.facts.logicalDrives[2].reportedLevel, "Cac1");
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP133 VD 238 is in a state that zolexctl does not know: Tmrw",
                     "ZP133 VD 237 has a level that zolexctl does not know: Cac1"}));
}

TEST(StorcliTraps, ADriveWhosePowerChangesIsNotPlanned) {
    ListedController server;
    server.edit(all, "\"Sp\" : \"U\"", "\"Sp\" : \"T\"");
    EXPECT_EQ(driveOf(server.controller(), "252:12").barred, "its power state is changing");
}

TEST(StorcliTraps, AForeignDriveIsToldInThreePlaces) {
    ListedController server;
    EXPECT_TRUE(driveOf(server.controller(), "252:15").isForeign); // by its group
    EXPECT_EQ(driveOf(server.controller(), "252:12").state, DriveState::free);
    server.editOnce("/c0/fall show J", "\"FOREIGN CONFIGURATION\"",
                    "\"FOREIGN PD LIST\" : [ { \"EID:Slt\" : \"252:12\", \"State\" : "
                    "\"Foreign\" } ],\n\"FOREIGN DG LIST\"");
    EXPECT_EQ(driveOf(server.controller(), "252:12").state, DriveState::foreign);
    ListedController second;
    second.editOnce(all, "\"State\" : \"UGood\"", "\"State\" : \"Frgn\"");
    EXPECT_EQ(driveOf(second.controller(), "252:12").state, DriveState::foreign);
}

TEST(StorcliTraps, LockedDrivesAreNotPlanned) {
    ListedController server;
    server.edit(drives, "\"Locked\" : \"No\"", "\"Locked\" : \"Yes\"");
    EXPECT_EQ(driveOf(server.controller(), "252:12").barred, "locked by its encryption");
}

TEST(StorcliTraps, ASpareMayCoverSeveralGroups) {
    ListedController server;
    server.edit(all, "\"DG\" : 2,\n\t\t\t\t\"Arr\" : \"-\",\n\t\t\t\t\"Row\" : \"-\",",
                "\"DG\" : 2, \"EID:Slot\" : \"252:11\", \"State\" : \"DHS\" }, {\n\t\t\t\t\"DG\" : "
                "2,\n\t\t\t\t\"Arr\" : \"-\",\n\t\t\t\t\"Row\" : \"-\",");
    EXPECT_EQ(driveOf(server.controller(), "252:11").covers, Lines({"1", "2"}));
}

TEST(StorcliTraps, TheModeThatIsSetCountsAndTheOneThatRunsIsTold) {
    ListedController server;
    server.edit(all, "\"Cache\" : \"RWBD\"", "\"Cache\" : \"RWTD\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.logicalDrives[0].writeCache, "ProtectedWriteBack");
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP136 VD 239 is set to write-back and runs as write-through (RWTD)",
                     "ZP136 VD 238 is set to write-back and runs as write-through (RWTD)"}));
}

TEST(StorcliTraps, CacheWords) {
    const auto cache = [](const char* word) {
        const auto told = storcliCache(word);
        return told ? told->read + " " + told->write : std::string("-");
    };
    EXPECT_EQ(cache("RWTD"), "ReadAhead WriteThrough");
    EXPECT_EQ(cache("NRWTD"), "Off WriteThrough");
    EXPECT_EQ(cache("RAWBC"), "ReadAhead UnprotectedWriteBack");
    EXPECT_EQ(cache("NRFWBD"), "Off UnprotectedWriteBack");
    EXPECT_EQ(cache("NRWBC"), "Off ProtectedWriteBack");
    for (const char* const other : {"", "R", "RC", "WTD", "RWT", "NR,WB", "RWTDX"}) {
        EXPECT_EQ(cache(other), "-") << other;
    }
}

TEST(StorcliTraps, AListingThatListsLessThanItCountsIsNone) {
    struct Case {
        const char* from;
        const char* to;
        const char* finding;
    };
    const Case cases[] = {
        {"\"Physical Drives\" : 16", "\"Physical Drives\" : 17",
         "ZP131 the listing is not whole: 16 of 17 physical drives are listed"},
        {"\"Virtual Drives\" : 4", "\"Virtual Drives\" : 5",
         "ZP131 the listing is not whole: 4 of 5 logical drives are listed"},
        {"\"Drive Groups\" : 3", "\"Drive Groups\" : 4",
         "ZP131 the listing is not whole: 3 of 4 drive groups are listed"},
    };
    for (const Case& each : cases) {
        ListedController server;
        server.edit(all, each.from, each.to);
        const FamilyController controller = server.controller();
        EXPECT_TRUE(controller.failed) << each.from;
        EXPECT_EQ(findingsOf(controller.findings), Lines({each.finding}));
    }
}

TEST(StorcliTraps, OfTwoStatesTheWorseOneCounts) {
    // What is asked for later knows of a second drive that has left.
    ListedController server;
    server.editOnce(volumes,
                    "\"DG/VD\" : \"1/238\",\n\t\t\t\t\"TYPE\" : \"RAID5\",\n\t\t\t\t"
                    "\"State\" : \"Dgrd\"",
                    "\"DG/VD\" : \"1/238\",\n\t\t\t\t\"TYPE\" : \"RAID5\",\n\t\t\t\t"
                    "\"State\" : \"OfLn\"");
    server.editOnce(drives,
                    "\"EID:Slt\" : \"252:3\",\n\t\t\t\t\"DID\" : 11,\n\t\t\t\t"
                    "\"State\" : \"Onln\"",
                    "\"EID:Slt\" : \"252:3\",\n\t\t\t\t\"DID\" : 11,\n\t\t\t\t"
                    "\"State\" : \"Failed\"");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.logicalDrives[1].reportedState, "OfLn");
    EXPECT_EQ(controller.facts.logicalDrives[1].health, Health::critical);
    EXPECT_EQ(driveOf(controller, "252:3").reportedState, "Failed");
    EXPECT_EQ(driveOf(controller, "252:3").state, DriveState::failed);
    EXPECT_FALSE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings), Lines());
    // And the other way round.
    ListedController second;
    second.editOnce(all, "\"State\" : \"Dgrd\",\n\t\t\t\t\"Access\"",
                    "\"State\" : \"OfLn\",\n\t\t\t\t\"Access\"");
    EXPECT_EQ(second.controller().facts.logicalDrives[1].reportedState, "OfLn");
    // A word that is not known is worse than a good one, and an array more than a free drive.
    ListedController third;
    third.edit(drives, "\"State\" : \"UGood\"", "\"State\" : \"Tmrw\"");
    EXPECT_EQ(driveOf(third.controller(), "252:12").barred, "its state is not known: Tmrw");
    ListedController fourth;
    fourth.edit(drives, "\"State\" : \"UGood\"", "\"State\" : \"JBOD\"");
    EXPECT_EQ(driveOf(fourth.controller(), "252:12").state, DriveState::jbod);
    // A spare by TOPOLOGY, or JBOD by its type, is not free.
    ListedController fifth;
    for (const char* const call : {all, drives}) {
        fifth.edit(call, "\"DID\" : 18,\n\t\t\t\t\"State\" : \"GHS\"",
                   "\"DID\" : 18,\n\t\t\t\t\"State\" : \"UGood\"");
        fifth.edit(call, "\"DID\" : 19,\n\t\t\t\t\"State\" : \"DHS\",\n\t\t\t\t\"DG\" : 1",
                   "\"DID\" : 19, \"State\" : \"UGood\", \"DG\" : \"-\"");
        fifth.edit(call, "\"State\" : \"JBOD\"", "\"State\" : \"UGood\"");
    }
    const FamilyController spares = fifth.controller();
    EXPECT_EQ(driveOf(spares, "252:10").hotspare, HotspareKind::global);
    EXPECT_EQ(driveOf(spares, "252:11").covers, Lines({"1"}));
    EXPECT_EQ(driveOf(spares, "252:14").state, DriveState::jbod);
}

/// What one of the two says of a drive that has left, or is on its way, is no contradiction.
TEST(StorcliTraps, ALogicalDriveLiesOnTheSameDrivesInBothLists) {
    ListedController server;
    server.edit(volumes, "PDs for VD 238", "PDs for VD 0");
    server.edit(volumes, "PDs for VD 239", "PDs for VD 238");
    server.edit(volumes, "PDs for VD 0", "PDs for VD 239");
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP131 the listings contradict each other: PDs for VD 239 and TOPOLOGY tell "
                     "other drives (252:2, 252:3, 252:5, 252:0, 252:1), PDs for VD 238 and "
                     "TOPOLOGY tell other drives (252:0, 252:1, 252:2, 252:3, 252:5)"}));
    ListedController left;
    left.editOnce(volumes, "\"EID:Slt\" : \"252:4\"", "\"EID:Slt\" : \"-\"");
    EXPECT_FALSE(left.controller().failed);
}

TEST(StorcliTraps, ListingsThatContradictEachOtherAreNone) {
    struct Case {
        const char* call;
        const char* from;
        const char* to;
        const char* told;
    };
    const Case cases[] = {
        {all,
         "\"DG\" : 2,\n\t\t\t\t\"Arr\" : 1,\n\t\t\t\t\"Row\" : 0,\n\t\t\t\t"
         "\"EID:Slot\" : \"252:8\"",
         "\"DG\" : 1, \"Arr\" : 0, \"Row\" : 9, \"EID:Slot\" : \"252:8\"",
         "252:8 is in drive groups 1 and 2"},
        {drives, "\"Drive position\" : \"DriveGroup:2, Span:1, Row:0\"",
         "\"Drive position\" : \"DriveGroup:0, Span:1, Row:0\"",
         "252:8 is in drive groups 0 and 2"},
        {all, "\"EID:Slt\" : \"252:13\"", "\"EID:Slt\" : \"252:12\"",
         "252:12 stands twice in PD LIST"},
        {all, "\"DID\" : 11,\n\t\t\t\t\"State\" : \"Onln\"",
         "\"DID\" : 11,\n\t\t\t\t\"State\" : \"UGood\"", "252:3 is UGood and in drive group 1"},
        {all, "\"DID\" : 11,\n\t\t\t\t\"State\" : \"Onln\",\n\t\t\t\t\"DG\" : 1",
         "\"DID\" : 11, \"State\" : \"Onln\", \"DG\" : \"-\"",
         "252:3 is in drive group 1 and in none"},
        {drives, "\"DID\" : 20,\n\t\t\t\t\"State\" : \"UGood\",\n\t\t\t\t\"DG\" : \"-\"",
         "\"DID\" : 20, \"State\" : \"UGood\", \"DG\" : 1", "252:12 is UGood and in drive group 1"},
        {all, "\"DG/VD\" : \"1/238\",\n\t\t\t\t\"TYPE\" : \"RAID5\"",
         "\"DG/VD\" : \"1/238\", \"TYPE\" : \"RAID0\"", "VD 238 is RAID0 and RAID5"},
        {volumes, "\"DG/VD\" : \"1/238\",\n\t\t\t\t\"TYPE\" : \"RAID5\"",
         "\"DG/VD\" : \"1/238\", \"TYPE\" : \"RAID6\"", "VD 238 is RAID5 and RAID6"},
        {volumes, "\"DG/VD\" : \"1/238\"", "\"DG/VD\" : \"2/238\"",
         "VD 238 is in drive groups 1 and 2"},
        {all, "\"PCI Address\" : \"00:c1:00:00\"", "\"PCI Address\" : \"00:60:00:00\"",
         "it is at 0000:60:00.0 and at 0000:c1:00.0"},
        {all, "\"Basics\" : {\n\t\t\t\"Controller\" : 0", "\"Basics\" : { \"Controller\" : 1",
         "what is told of controller 0 is of controller 1"},
    };
    for (const Case& each : cases) {
        ListedController server;
        server.editOnce(each.call, each.from, each.to);
        const FamilyController controller = server.controller();
        EXPECT_TRUE(controller.failed) << each.told;
        const auto found =
            std::find_if(controller.findings.begin(), controller.findings.end(),
                         [](const FamilyFinding& finding) {
                             return finding.code == family_code::notWhole && !finding.help.empty();
                         });
        ASSERT_NE(found, controller.findings.end()) << each.told;
        EXPECT_EQ(found->summary, "the listings contradict each other: " + std::string(each.told));
        EXPECT_EQ(found->help,
                  Lines({"capture again, in case it changed meanwhile: zolexctl show",
                         "compare what the utility lists: storcli64 /c0 show all, storcli64 "
                         "/c0/eall/sall show all, storcli64 /c0/vall show all"}));
    }
}

/// Any free drive may be one of them.
TEST(StorcliTraps, AForeignLayoutOnNoDriveIsPlannedBesideByNobody) {
    ListedController server;
    for (const char* const call : {all, drives}) {
        server.edit(call, "\"DG\" : \"F\"", "\"DG\" : \"-\"");
    }
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    ASSERT_EQ(findingsOf(controller.findings),
              Lines({"ZP131 the listing is not whole: 1 foreign drive group is told, and no drive "
                     "of it"}));
    EXPECT_EQ(controller.findings.front().help,
              Lines({"look at what its utility lists: storcli64 /c0/fall show all",
                     "import it there, or clear it, if nobody needs its data"}));
    // Without the layout there is nothing to be found.
    server.answer("/c0/fall show J", listing("storcli-c0-fall-show-none.json"), 50);
    EXPECT_FALSE(server.controller().failed);
}

/// Whether a drive that is told to be free carries an array of another controller is not known
/// then.
TEST(StorcliTraps, WithoutAnAnswerAboutForeignLayoutsNothingIsCaptured) {
    const std::string head = "{\"Controllers\":[{\"Command Status\":{\"Controller\":0,\"Status\":";
    ListedController server;
    server.answer(foreign,
                  head + "\"Failure\",\"Description\":\"x\",\"Detailed Status\":[{\"ErrCd\":46,"
                         "\"ErrMsg\":\"drive does not answer\"}]}}]}",
                  46);
    EXPECT_TRUE(server.controller().failed);
    EXPECT_EQ(findingsOf(server.controller().findings),
              Lines({"ZP104 STORCLI /c0/fall show J nolog tells nothing: drive does not answer"}));
    const Lines untold = {"ZP131 the listing is not whole: STORCLI /c0/fall show J nolog does not "
                          "tell whether there are foreign drive groups"};
    for (const char* const data : {"}}]}", "},\"Response Data\":{\"Other\":1}}]}"}) {
        server.answer(foreign, head + "\"Success\",\"Description\":\"None\"" + data);
        EXPECT_TRUE(server.controller().failed) << data;
        EXPECT_EQ(findingsOf(server.controller().findings), untold) << data;
    }
    // None, in other words than an error's.
    for (const char* const none : {"\"x\"},\"Response Data\":{\"Total foreign Drive Groups\":0}}]}",
                                   "\"x\"},\"Response Data\":{\"FOREIGN CONFIGURATION\":[]}}]}",
                                   "\"No foreign configuration found\"}}]}"}) {
        server.answer(foreign, head + "\"Success\",\"Description\":" + none);
        EXPECT_FALSE(server.controller().failed) << none;
    }
    server.answer(foreign, head + "\"Success\",\"Description\":\"x\"},\"Response Data\":{\"Total "
                                  "foreign Drive Groups\":2}}]}");
    EXPECT_TRUE(server.controller().failed);
    EXPECT_EQ(findingsOf(server.controller().findings),
              Lines({"ZP131 the listing is not whole: 0 of 2 foreign drive groups are listed"}));
}

TEST(StorcliTraps, AForeignDriveIsToldByItsOwnRowToo) {
    for (const auto& [from, to] : {std::pair("\"DG\" : \"-\"", "\"DG\" : \"F\""),
                                   std::pair("\"Sp\" : \"U\"", "\"Sp\" : \"F\"")}) {
        ListedController server;
        server.edit(drives, from, to);
        EXPECT_EQ(driveOf(server.controller(), "252:12").state, DriveState::foreign) << to;
    }
    ListedController changing;
    changing.edit(drives, "\"Sp\" : \"U\"", "\"Sp\" : \"T\"");
    EXPECT_EQ(driveOf(changing.controller(), "252:12").barred, "its power state is changing");
    ListedController server; // the list of groups names drives, in some versions
    server.edit(foreign, "\"EID:Slot\" : \"-\"", "\"EID:Slot\" : \"252:12\"");
    EXPECT_EQ(driveOf(server.controller(), "252:12").state, DriveState::foreign);
    server.edit(foreign, "\"252:12\"", "\"252:15,252:12\"");
    EXPECT_EQ(driveOf(server.controller(), "252:12").state, DriveState::foreign);
    EXPECT_FALSE(server.controller().failed);
}

TEST(StorcliTraps, EachForeignGroupHasADrive) {
    ListedController server;
    const std::string row = "{ \"DG\" : 1, \"EID:Slot\" : \"-\", \"Type\" : \"RAID1\" }, ";
    server.editOnce(foreign, "\"FOREIGN CONFIGURATION\" : [",
                    "\"FOREIGN CONFIGURATION\" : [" + row);
    server.edit(foreign, "\"Total foreign Drive Groups\" : 1",
                "\"Total foreign Drive Groups\" : 2");
    EXPECT_TRUE(server.controller().failed);
    EXPECT_EQ(findingsOf(server.controller().findings),
              Lines({"ZP131 the listing is not whole: 2 foreign drive groups are told, and 1 drive "
                     "of them"}));
    // An incomplete one has those that are left of it.
    server.answer(foreign, replaced(listing("storcli-c0-fall-show-none.json"), "50", "59"), 59);
    server.edit(foreign, "No foreign configuration", "Foreign configuration ");
    EXPECT_FALSE(server.controller().failed);
    for (const char* const call : {all, drives}) {
        server.edit(call, "\"DG\" : \"F\"", "\"DG\" : \"-\"");
    }
    EXPECT_TRUE(server.controller().failed);
    EXPECT_EQ(findingsOf(server.controller().findings),
              Lines({"ZP138 a foreign configuration is incomplete: drives of it are missing",
                     "ZP131 the listing is not whole: an incomplete foreign drive group is told, "
                     "and no drive of it"}));
}

TEST(StorcliTraps, BlocksThatAreNotTheSizeInWordsDoNotCount) {
    ListedController server;
    server.edit(volumes, "\"Number of Blocks\" : 1874329600", "\"Number of Blocks\" : 3748659200");
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.logicalDrives[0].capacityBytes, 1874329600ULL * 512);
    EXPECT_GT(controller.facts.logicalDrives[0].capacityTolerance, 0U);
    EXPECT_FALSE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP147 VD 239 has 3748659200 blocks, which are not the 893.750 GB that it is "
                     "said to have: the latter counts"}));
}

TEST(StorcliTraps, AGroupWhoseDrivesAreNotListedIsNone) {
    ListedController server;
    server.edit(all, "\"DG\" : 0,\n\t\t\t\t\"Arr\" : 0,\n\t\t\t\t\"Row\" : ",
                "\"DG\" : 0,\n\t\t\t\t\"Arr\" : 0,\n\t\t\t\t\"Line\" : ");
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(
        findingsOf(controller.findings),
        Lines({"ZP131 the listing is not whole: the drives of drive group 0 are not listed"}));
}

TEST(StorcliTraps, ADriveInAnArrayWithoutALogicalDriveIsNotFree) {
    ListedController server;
    server.editOnce(all, "\"State\" : \"UGood\"", "\"State\" : \"Onln\"");
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP131 the listing is not whole: no logical drive is listed of 252:12"}));
    ListedController copied;
    copied.editOnce(all, "\"State\" : \"UGood\"", "\"State\" : \"Cpybck\"");
    EXPECT_EQ(Storcli().whyNotUsable(driveOf(copied.controller(), "252:12")),
              "data is being written to it, and no logical drive tells of it");
}

TEST(StorcliTraps, FailureWithEverythingListedIsAWarning) {
    ListedController server;
    server.editOnce(all, "\"Status\" : \"Success\"", "\"Status\" : \"Failure\"");
    const FamilyController controller = server.controller();
    EXPECT_FALSE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP137 STORCLI /c0 show all J nolog says Failure, and lists all that there "
                     "is"}));
}

TEST(StorcliTraps, TextThoughJsonWasAsked) {
    ListedController server;
    server.answer(all, listing("storcli2-syntax-error.txt"), 1);
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP139 STORCLI is of generation 008, which zolexctl does not drive yet: "
                     "008.0005.0000.0010 Feb 22, 2023"}));
    server.answer(all, replaced(listing("storcli2-syntax-error.txt"), "008.0005", "007.0709"), 1);
    EXPECT_EQ(findingsOf(server.controller().findings),
              Lines({"ZP130 STORCLI /c0 show all J nolog answers in text, though JSON was asked "
                     "for: syntax error, unexpected TOKEN_JBOD, expecting TOKEN_HOTSPARE_DRIVE"}));
    server.answer("show J", "storcli64: error while loading shared libraries\n", 127);
    EXPECT_EQ(findingsOf(server.capture().findings),
              Lines({"ZP130 STORCLI show J nolog prints no answer: storcli64: error while loading "
                     "shared libraries"}));
}

TEST(StorcliTraps, ATextStillSaysWhichControllerItIs) {
    ListedController server;
    server.answer(all, "CLI Version = 007.1108.0000.0000 July 17, 2019\nStatus = Success\n"
                       "Description = None\n\n\nBasics :\n======\nController = 0\n"
                       "Model = PERC H730P Mini\nSerial Number = 7AB01C2\n"
                       "PCI Address = 00:02:00:00\n");
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(controller.facts.productName, "PERC H730P Mini");
    EXPECT_EQ(controller.facts.serialNumber, "7AB01C2");
    EXPECT_EQ(controller.pci, "0000:02:00.0");
    ASSERT_EQ(controller.findings.size(), 1U);
    EXPECT_EQ(controller.findings[0].summary,
              "STORCLI /c0 show all J nolog answers in text, though JSON was asked for");
    EXPECT_EQ(controller.findings[0].detail,
              "exit code 0; version 007.1108.0000.0000 July 17, 2019");
    EXPECT_EQ(controller.findings[0].help,
              Lines({"install a version of the utility that answers in JSON, or name one: "
                     "zolexctl --utility STORCLI=/path/storcli64 doctor"}));
}

TEST(StorcliTraps, ATruncatedAnswerIsNoListing) {
    ListedController server;
    std::string& output = server.answers.at("STORCLI " + std::string(all)).output;
    output.resize(output.size() / 2);
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP130 STORCLI /c0 show all J nolog answers with JSON that is not whole"}));
}

TEST(StorcliTraps, ACutListOfVolumesSaysWhatToLookAt) {
    ListedController server;
    std::string& output = server.answers.at("STORCLI /c0/vall show all J").output;
    output.resize(output.size() / 2);
    const FamilyController controller = server.controller();
    const auto found = std::find_if(
        controller.findings.begin(), controller.findings.end(),
        [](const FamilyFinding& finding) { return finding.code == family_code::noDetails; });
    ASSERT_NE(found, controller.findings.end()) << controller.findings.size();
    EXPECT_EQ(found->help, Lines({"see whether the utility's answer ends in the middle, and "
                                  "capture again: storcli64 /c0/vall show all J"}));
}

TEST(StorcliTraps, APreservedCacheIsTold) {
    ListedController server;
    EXPECT_EQ(server.controller().findings.size(), 0U);
    server.edit(all, "\"Any Offline VD Cache Preserved\" : \"No\"",
                "\"Any Offline VD Cache Preserved\" : \"Yes\"");
    FamilyController controller = server.controller();
    ASSERT_EQ(findingsOf(controller.findings),
              Lines({"ZP145 the cache keeps data that could not be written to a logical drive: no "
                     "other can be made until it is"}));
    EXPECT_EQ(controller.findings.front().help,
              Lines({"see of which: storcli64 /c0 show preservedcache",
                     "bring its drives back, and the data is written; or delete it, and it is "
                     "lost: storcli64 /c0/vN delete preservedcache"}));
    EXPECT_FALSE(controller.failed);
    server.edit(all, "\"Model\" : \"MegaRAID N3916-16i 8GB\"", "\"Model\" : \"PERC N745 Front\"");
    controller = server.controller();
    EXPECT_EQ(controller.findings.front().help.front(),
              "see of which: perccli64 /c0 show preservedcache");
    server.program = "storcli";
    EXPECT_EQ(server.controller().findings.front().help.front(),
              "see of which: storcli /c0 show preservedcache");
}

TEST(StorcliTraps, NoLogIsRefusedAndAskedWithoutOnce) {
    ListedController server;
    server.refusesNoLog = true;
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.drives.size(), 16U);
    EXPECT_EQ(server.calls, Lines({"STORCLI show J nolog", "STORCLI show J",
                                   "STORCLI /c0 show all J", "STORCLI /c0/eall/sall show all J",
                                   "STORCLI /c0/vall show all J", "STORCLI /c0/fall show J"}));
    EXPECT_TRUE(Storcli().leavesFiles("STORCLI /c0 show all J"));
    // Some versions refuse it and end with 0.
    ListedController second;
    second.refusesNoLog = true;
    second.refusalCode = 0;
    EXPECT_EQ(second.controller().facts.drives.size(), 16U);
}

TEST(StorcliTraps, WhatIsRefusedWithoutNoLogTooIsAskedTwiceAndNoMore) {
    ListedController server;
    server.answers.clear();
    server.answer("show J",
                  "{\"Controllers\":[{\"Command Status\":{\"Status\":\"Failure\","
                  "\"Description\":\"Un-supported Command\"}}]}",
                  255);
    const FamilyCapture captured = server.capture();
    EXPECT_EQ(server.calls, Lines({"STORCLI show J nolog", "STORCLI show J"}));
    EXPECT_EQ(findingsOf(captured.findings),
              Lines({"ZP104 STORCLI show J nolog tells nothing: Un-supported Command"}));
}

TEST(StorcliTraps, HostAdaptersBesideAreLeftOut) {
    ListedController server;
    server.answer("show J",
                  "{\"Controllers\":[{\"Command Status\":{\"Status\":\"Success\"},\"Response "
                  "Data\":{\"Number of Controllers\":2,\"System Overview\":[{\"Ctl\":\"0\"}],\"IT "
                  "System Overview\":[{\"Ctl\":1}]}}]}");
    const FamilyCapture captured = server.capture();
    EXPECT_EQ(captured.controllers.size(), 1U);
    EXPECT_EQ(findingsOf(captured.findings), Lines());
}

TEST(StorcliTraps, ControllersThatAreCountedAndNotListedAreTold) {
    ListedController server;
    server.answer("show J", replaced(ListedController::overview({{"0", "A"}}), "Controllers\":1",
                                     "Controllers\":3"));
    const FamilyCapture captured = server.capture();
    EXPECT_EQ(captured.controllers.size(), 1U);
    EXPECT_EQ(findingsOf(captured.findings),
              Lines({"ZP131 STORCLI show J nolog counts 3 controllers and lists 1"}));
}

TEST(StorcliTraps, TheNextGenerationUnderAnyNameIsAskedForNothingMore) {
    ListedController server;
    server.edit("show J", "007.2507", "008.0005.0000.0010 Feb 22, 2023");
    FamilyCapture captured = server.capture();
    EXPECT_EQ(server.calls, Lines({"STORCLI show J nolog"}));
    EXPECT_TRUE(captured.controllers.empty());
    const Lines told = {"ZP139 STORCLI is of generation 008, which zolexctl does not drive yet: "
                        "008.0005.0000.0010 Feb 22, 2023"};
    EXPECT_EQ(findingsOf(captured.findings), told);
    server.answer("show J", listing("storcli2-syntax-error.txt"), 255);
    EXPECT_EQ(findingsOf(server.capture().findings), told);
}

TEST(StorcliTraps, AnAnswerOfAnotherControllerIsNone) {
    ListedController server;
    server.editOnce(all, "\"Controller\" : 0", "\"Controller\" : 1");
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_TRUE(controller.facts.drives.empty());
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP104 STORCLI /c0 show all J nolog tells nothing"}));
    // One that tells no number is that of the call; of several it is the one of its number.
    server.editOnce(all, "\"Controller\" : 1,", "");
    EXPECT_EQ(findingsOf(server.controller().findings), Lines());
    server.editOnce(all, "\"Controllers\":[\n",
                    "\"Controllers\":[\n{\"Command Status\":{\"Controller\":1,\"Status\":"
                    "\"Success\"},\"Response Data\":{}},\n");
    EXPECT_EQ(server.controller().facts.drives.size(), 16U);
}

TEST(StorcliTraps, ACallThatDoesNotEndIsTold) {
    ListedController server;
    server.answers["STORCLI " + std::string(all)] = {ChildOutcome::stillRunning, 0, ""};
    const FamilyController controller = server.controller();
    EXPECT_TRUE(controller.failed);
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP103 STORCLI /c0 show all J nolog did not end within 300 s"}));
    EXPECT_EQ(server.calls, Lines({"STORCLI show J nolog", "STORCLI /c0 show all J nolog"}));
}

TEST(StorcliTraps, AProgramThatCannotBeStartedIsTold) {
    ListedController server;
    server.answers.clear();
    const FamilyCapture captured = server.capture();
    EXPECT_TRUE(captured.controllers.empty());
    EXPECT_EQ(findingsOf(captured.findings),
              Lines({"ZP102 STORCLI show J nolog cannot be started"}));
}

TEST(StorcliTraps, ProgramsInTheirOrder) {
    const auto programs = Storcli().programs();
    EXPECT_EQ(Lines(programs.begin(), programs.end()),
              Lines({"storcli64", "storcli", "perccli64", "perccli"}));
}

TEST(StorcliTraps, NoControllerIsNoFault) {
    ListedController server;
    server.answer("show J",
                  "{\"Controllers\":[{\"Command Status\":{\"Status\":\"Failure\",\"Description\":"
                  "\"No Controller found\"}}]}",
                  255);
    FamilyCapture captured = server.capture();
    EXPECT_TRUE(captured.controllers.empty());
    EXPECT_EQ(findingsOf(captured.findings), Lines());
    server.answer("show J", ListedController::overview({}));
    captured = server.capture();
    EXPECT_TRUE(captured.controllers.empty());
    EXPECT_EQ(findingsOf(captured.findings), Lines());
}

TEST(StorcliTraps, EarlyVersionsTellLess) {
    ListedController server;
    for (const char* const call : {all, drives, volumes}) {
        server.edit(call, "\"CLI Version\" : \"007.2507.0000.0000 Mar 11, 2024\",", "");
        server.edit(call, ",\n\t\t\t\t\"Type\" : \"-\"\n", "\n");
    }
    server.edit(all, "\"DG\" : 1,", "\"DG\" : \"1\",");
    const FamilyController controller = server.controller();
    EXPECT_EQ(describeAll(controller.facts.drives),
              describeAll(ListedController().controller().facts.drives));
    EXPECT_EQ(findingsOf(controller.findings), Lines());
}

TEST(StorcliTraps, ForeignListsOfLaterVersions) {
    ListedController server;
    server.edit("/c0/fall show J", "FOREIGN CONFIGURATION", "FOREIGN DG LIST");
    EXPECT_EQ(server.controller().facts.foreignConfigurations,
              Lines({"DG 0: RAID0, 7.277 TB, 1 logical drive"}));
    std::string incomplete = replaced(listing("storcli-c0-fall-show-none.json"), "50", "59");
    server.answer("/c0/fall show J",
                  replaced(incomplete, "No foreign configuration", "Foreign configuration "), 59);
    const FamilyController controller = server.controller();
    EXPECT_EQ(controller.facts.foreignConfigurations,
              Lines({"incomplete: drives of it are missing"}));
    EXPECT_EQ(findingsOf(controller.findings),
              Lines({"ZP138 a foreign configuration is incomplete: drives of it are missing"}));
}

TEST(StorcliTraps, TwoForeignSetsAreTold) {
    ListedController server;
    const std::string& output = server.answers.at("STORCLI /c0/fall show J").output;
    const std::size_t begin = output.find('{', output.find("\"FOREIGN CONFIGURATION\""));
    const std::size_t end = output.find('}', begin) + 1;
    ASSERT_LT(begin, end);
    const std::string row = output.substr(begin, end - begin);
    std::string second = replaced(row, "RAID0", "RAID5");
    second = replaced(second, "\"DG\" : 0", "\"DG\" : 1");
    server.edit("/c0/fall show J", row, row + ", " + second);
    EXPECT_EQ(server.controller().facts.foreignConfigurations,
              Lines({"DG 0: RAID0, 7.277 TB, 1 logical drive",
                     "DG 1: RAID5, 7.277 TB, 1 logical drive"}));
}

TEST(StorcliTraps, JsonThatIsNoneEndsInNoException) {
    EXPECT_FALSE(readToldJson("").isJson);
    EXPECT_FALSE(readToldJson("{").isJson);
    EXPECT_FALSE(readToldJson("}{").isJson);
    EXPECT_EQ(readToldJson(std::string(65, '[')).isJson, false);
    std::string deep = "{\"a\":";
    for (int i = 0; i < 100; ++i) {
        deep += "[";
    }
    EXPECT_EQ(readToldJson(deep + std::string(100, ']') + "}").fault,
              "its values lie deeper than 64");
    EXPECT_TRUE(readToldJson("warning: cannot lock\n{\"a\":\"\xff\t\"}\nbye").isJson);
    EXPECT_EQ(readToldJson("{\"a\":\"x\xffy\"}").value.at("a").text(), "x?y");
    EXPECT_EQ(readToldJson(std::string((64U << 20U) + 1, ' ')).fault, "it is larger than 64 MB");
}

TEST(StorcliTraps, PciAddresses) {
    EXPECT_EQ(storcliPciAddress("00:c1:00:00"), "0000:c1:00.0");
    EXPECT_EQ(storcliPciAddress("01:03:1f:07"), "0001:03:1f.7");
    for (const char* const other : {"", "00:c1:00", "00:c1:00:00:00", "00:g1:00:00", "00:c1:20:00",
                                    "00:c1:00:08", "-", "00:100:00:00"}) {
        EXPECT_EQ(storcliPciAddress(other), "") << other;
    }
    ListedController server;
    server.edit(all, "\"PCI Address\"", "\"Address\"");
    EXPECT_EQ(server.controller().pci, "0000:c1:00.0"); // of the bus, in decimal
}

TEST(StorcliTraps, ModelsAreNamedByLettersAndDigits) {
    EXPECT_EQ(storcliModel("PERC H755 Front"), "PERC-H755-Front");
    EXPECT_EQ(storcliModel("MegaRAID 9560-8i 4GB"), "MegaRAID-9560-8i-4GB");
    EXPECT_EQ(storcliModel("  (HPE)  MR416i-p Gen10+ "), "HPE-MR416i-p-Gen10");
}

TEST(StorcliTraps, OnlyReadingLinesRead) {
    const Storcli family;
    for (const char* const line :
         {"STORCLI show J nolog", "STORCLI show J", "STORCLI /c12/eall/sall show all J nolog",
          "STORCLI /c0/fall show J nolog \n", "STORCLI /c0/dall show all J nolog"}) {
        EXPECT_TRUE(family.isReading(line)) << line;
    }
    for (const char* const line :
         {"STORCLI", "STORCLI /c0 show", "STORCLI /c0 delete config J nolog", "storcli show J",
          "STORCLI /c0 show all J nolog force", "STORCLI /c0/fall del J nolog",
          "STORCLI /c0 show all J; rm x", "STORCLI /call show all J nolog",
          "UTIL.BAT STORCLI show J", "STORCLI /c0/v0 show all J\nSTORCLI /c0/v0 del",
          "STORCLI /c99999 show all J nolog"}) {
        EXPECT_FALSE(family.isReading(line)) << line;
    }
}

} // namespace
} // namespace zolex::companion
