// What a definition says of controllers that are driven by QTCSEND, the CFGGEN utilities and
// HYPERWIN.

#include "setup/ServerFiles.h"
#include "simulator/BlockSupport.h"

namespace zolex_sim::test {
namespace {

std::vector<std::string> levelsOf(const ControllerIdentity& identity) {
    std::vector<std::string> names;
    for (const RaidLevel level : identity.levels) {
        names.emplace_back(rulesOf(level).name);
    }
    return names;
}

TEST(BlockDefinition, DefaultsByUtility) {
    const struct {
        const char* utility;
        const char* levels;
        const char* limits; ///< stripes, drives in a span, logical drives, hot spares
        const char* settings;
        const char* interface;
        int initiator;
    } rows[] = {
        {"MEGACLI", "RAID0,RAID1,RAID5,RAID6,RAID10,RAID50,RAID60", "8-1024, 32, 64, 1024",
         "64 WT NORA", "SAS", 0},
        {"QTCSEND", "RAID0,RAID1,RAID1E,RAID5,RAID5E,RAID5EE", "8-64, 16, 8, 8", "16 WT ADRA",
         "SCSI", 7},
        {"CFGGEN", "RAID0,RAID1,RAID1E", "8-1024, 10, 2, 2", "64 WT NORA", "SAS", 112},
        {"CFGGEN1.02.02", "RAID1", "8-1024, 10, 2, 2", "64 WT NORA", "SCSI", 7},
        {"HYPERWIN", "RAID0,RAID1", "32-4096, 2, 1, 1", "64 WT NORA", "IDE", 0},
    };
    for (const auto& row : rows) {
        const char* place =
            row.utility == std::string("MEGACLI") || row.utility == std::string("CFGGEN") ? "slot"
                                                                                          : "id";
        const Server server =
            serverOf(definitionOf(row.utility, formatted(R"({"%s": 0, "sizeMB": 1000})", place)));
        const ControllerIdentity& identity = server.controllers[0].identity;
        EXPECT_EQ(identity.utility, row.utility);
        EXPECT_EQ(join(levelsOf(identity), ","), row.levels) << row.utility;
        EXPECT_EQ(formatted("%d-%d, %d, %d, %d", identity.minStripeKb, identity.maxStripeKb,
                            identity.maxDrivesPerSpan, identity.maxLogicalDrives,
                            identity.maxHotSpares),
                  row.limits)
            << row.utility;
        EXPECT_EQ(formatted("%d ", identity.defaultStripeKb) +
                      std::string(policyWord(identity.defaultWritePolicy)) + " " +
                      std::string(policyWord(identity.defaultReadPolicy)),
                  row.settings)
            << row.utility;
        EXPECT_EQ(server.controllers[0].drives[0].interface, row.interface) << row.utility;
        EXPECT_EQ(identity.block.initiatorId, row.initiator) << row.utility;
    }
}

TEST(BlockDefinition, PlacesOfDrives) {
    const struct {
        const char* utility;
        const char* drives;
        const char* places; ///< with the target ids
    } rows[] = {
        {"QTCSEND", R"({"id": 0, "sizeMB": 9}, {"channel": 4, "id": 15, "sizeMB": 9})",
         "1:0/0 4:15/1"},
        // A group leaves the controller's own id out.
        {"QTCSEND", R"({"channel": 2, "id": 5, "count": 4, "sizeMB": 9})",
         "2:5/0 2:6/1 2:8/2 2:9/3"},
        {"CFGGEN1.02.02", R"({"id": 6, "count": 2, "sizeMB": 9})", "1:6/0 1:8/1"},
        {"CFGGEN", R"({"slot": 0, "sizeMB": 9}, {"enclosure": 0, "slot": 7, "sizeMB": 9})",
         "1:0/0 0:7/1"},
        {"CFGGEN",
         R"({"slot": 0, "count": 2, "targetId": 8, "sizeMB": 9},
            {"enclosure": 5, "slot": 0, "deviceId": 3, "sizeMB": 9})",
         "1:0/8 1:1/9 5:0/3"},
        {"HYPERWIN", R"({"id": 0, "count": 2, "sizeMB": 9})", "1:0/0 1:1/1"},
    };
    for (const auto& row : rows) {
        const Server server = serverOf(definitionOf(row.utility, row.drives));
        std::vector<std::string> places;
        for (const Drive& drive : server.controllers[0].drives) {
            places.push_back(toText(drive.location) + "/" + std::to_string(drive.deviceId));
        }
        EXPECT_EQ(join(places, " "), row.places) << row.utility << row.drives;
    }
}

/// Nothing of a drive is reserved, so its sectors may be just those of its size.
TEST(BlockDefinition, SectorsMayBeAsManyAsTheSizeTakes) {
    const Server server = serverOf(definitionOf(
        "CFGGEN", R"({"slot": 0, "sizeMB": 10}, {"slot": 1, "sizeMB": 10, "rawSectors": 20481})"));
    EXPECT_EQ(server.controllers[0].drives[0].rawSectors, 20480);
    EXPECT_EQ(server.controllers[0].drives[1].rawSectors, 20481);
    EXPECT_EQ(
        problemOf(definitionOf("CFGGEN", R"({"slot": 0, "sizeMB": 10, "rawSectors": 20479})")),
        "controllers[0].drives[0].rawSectors: must be a whole number from 20480 to "
        "409600000000");
}

TEST(BlockDefinition, LogicalDrivesMayShareAnArray) {
    const Server server = serverOf(definitionOf(
        "QTCSEND", R"({"id": 0, "count": 3, "sizeMB": 1000})",
        R"("virtualDisks": [{"level": "RAID5", "spans": [["1:0", "1:1", "1:2"]], "sizeMB": 500},
                            {"level": "RAID0", "array": 0, "sizeMB": 600, "writePolicy": "WB"},
                            {"level": "RAID1E", "array": 0}],)"));
    EXPECT_EQ(dump(server.controllers[0]), "1:0=online | 1:1=online | 1:2=online | "
                                           "RAID5 [1:0,1:1,1:2] 500MB 16kB WT ADRA | "
                                           "RAID0 [1:0,1:1,1:2] 600MB 16kB WB ADRA | "
                                           "RAID1E [1:0,1:1,1:2] 825MB 16kB WT ADRA");
}

TEST(BlockDefinition, FaultsNameTheField) {
    constexpr const char* two = R"({"id": 0, "count": 2, "sizeMB": 100})";
    const struct {
        std::string definition;
        const char* problem;
    } rows[] = {
        {definitionOf("QTCSEND", R"({"sizeMB": 9})"), "controllers[0].drives[0].id: is missing"},
        {definitionOf("QTCSEND", R"({"channel": 0, "id": 1, "sizeMB": 9})"),
         "controllers[0].drives[0].channel: must be a whole number from 1 to 4"},
        {definitionOf("QTCSEND", R"({"channel": 5, "id": 1, "sizeMB": 9})"),
         "controllers[0].drives[0].channel: must be a whole number from 1 to 4"},
        {definitionOf("QTCSEND", R"({"id": 16, "sizeMB": 9})"),
         "controllers[0].drives[0].id: must be a whole number from 0 to 15"},
        {definitionOf("QTCSEND", R"({"id": 7, "sizeMB": 9})"),
         "controllers[0].drives[0].id: no drive can have the id 7"},
        {definitionOf("QTCSEND", R"({"id": 14, "count": 3, "sizeMB": 9})"),
         "controllers[0].drives[0].id: no drive can have the id 16"},
        {definitionOf("QTCSEND", R"({"id": 4, "sizeMB": 9})", R"("initiatorId": 4,)"),
         "controllers[0].drives[0].id: no drive can have the id 4"},
        {definitionOf("QTCSEND", R"({"enclosure": 1, "id": 4, "sizeMB": 9})"),
         "controllers[0].drives[0].enclosure: unknown field"},
        {definitionOf("CFGGEN1.02.02", R"({"channel": 2, "id": 1, "sizeMB": 9})"),
         "controllers[0].drives[0].channel: must be a whole number from 1 to 1"},
        {definitionOf("HYPERWIN", R"({"id": 2, "sizeMB": 9})"),
         "controllers[0].drives[0].id: must be a whole number from 0 to 1"},
        {definitionOf("HYPERWIN", R"({"id": 0, "count": 3, "sizeMB": 9})"),
         "controllers[0].drives[0].id: no drive can have the id 2"},
        {definitionOf("HYPERWIN", two, R"("rebuildPriority": "High",)"),
         "controllers[0].rebuildPriority: unknown field"},
        {definitionOf("QTCSEND", two, R"("rebuildPriority": "high",)"),
         "controllers[0].rebuildPriority: unknown word \"high\""},
        {definitionOf("QTCSEND", two, R"("physicalSlot": 256,)"),
         "controllers[0].physicalSlot: must be a whole number from 0 to 255"},
        {definitionOf("QTCSEND", two, R"("busNumber": -1,)"),
         "controllers[0].busNumber: must be a whole number from 0 to 255"},
        {definitionOf("QTCSEND", two, R"("maxHotSpares": 1025,)"),
         "controllers[0].maxHotSpares: must be a whole number from 0 to 1024"},
        {definitionOf("QTCSEND", two, R"("raidLevels": ["RAID6"],)"),
         "controllers[0].raidLevels[0]: unknown RAID level"},
        {definitionOf("CFGGEN1.02.02", two, R"("raidLevels": ["RAID0"],)"),
         "controllers[0].raidLevels[0]: unknown RAID level"},
        {definitionOf("CFGGEN", R"({"slot": 0, "targetId": 1, "deviceId": 1, "sizeMB": 9})"),
         "controllers[0].drives[0].deviceId: unknown field"},
        {definitionOf("CFGGEN", R"({"slot": 0, "count": 2, "targetId": 1, "sizeMB": 9},
                                   {"slot": 2, "targetId": 2, "sizeMB": 9})"),
         "controllers[0].drives: two drives have the target id 2"},
        {definitionOf("CFGGEN", "", R"("enclosures": [{"number": 1}],)"),
         "controllers[0].enclosures[0].slots: is missing"},
        {definitionOf("CFGGEN", "", R"("enclosures": [{"number": 1, "slots": 0}],)"),
         "controllers[0].enclosures[0].slots: must be a whole number from 1 to 65536"},
        {definitionOf("QTCSEND", two, R"("virtualDisks": [{"level": "RAID0", "array": 0}],)"),
         "controllers[0].virtualDisks[0]: There is no such array."},
        {definitionOf("QTCSEND", two, R"("virtualDisks": [
             {"level": "RAID0", "spans": [["1:0"]]}, {"level": "RAID0", "array": 0}],)"),
         "controllers[0].virtualDisks[1]: A size of 0 MB does not fit: the array has room for 0 "
         "MB."},
        {definitionOf("QTCSEND", two, R"("virtualDisks": [
             {"level": "RAID0", "spans": [["1:0"]], "array": 0}],)"),
         "controllers[0].virtualDisks[0].spans: unknown field"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(problemOf(row.definition), row.problem) << row.definition;
    }
}

TEST(BlockDefinition, InventoriesNumberChannelsAsTheUtilitiesDo) {
    const struct {
        const char* utility;
        const char* drives;
        const char* counted; ///< channel:id
    } rows[] = {
        // Failed drives count; drives that do not answer do not.
        {"QTCSEND",
         R"({"channel": 3, "id": 2, "sizeMB": 9}, {"channel": 1, "id": 9, "sizeMB": 9},
            {"channel": 3, "id": 0, "sizeMB": 9, "status": "failed"},
            {"channel": 3, "id": 1, "sizeMB": 9, "status": "bad"})",
         "1:9 3:0 3:2"},
        {"CFGGEN",
         R"({"enclosure": 4, "slot": 35, "sizeMB": 9}, {"enclosure": 2, "slot": 1, "sizeMB": 9},
            {"enclosure": 2, "slot": 0, "sizeMB": 9, "status": "failed"},
            {"enclosure": 2, "slot": 36, "sizeMB": 9}, {"enclosure": 5, "slot": 0, "sizeMB": 9},
            {"enclosure": 0, "slot": 0, "sizeMB": 9},
            {"enclosure": 3, "slot": 0, "sizeMB": 9, "status": "bad"})",
         "2:0 2:1 4:35"},
        {"CFGGEN1.02.02", R"({"id": 4, "sizeMB": 9}, {"id": 1, "sizeMB": 9, "status": "failed"})",
         "1:1 1:4"},
        {"HYPERWIN", R"({"id": 1, "sizeMB": 9}, {"id": 0, "sizeMB": 9, "status": "failed"})",
         "1:1"},
    };
    for (const auto& row : rows) {
        const std::string text = inventory(serverOf(definitionOf(row.utility, row.drives))).content;
        std::vector<std::string> counted;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            const std::string value = line.substr(line.find('=') + 1);
            if (line.rfind("Channel.", 0) == 0) {
                counted.push_back(value + ":");
            } else if (line.rfind("ID.", 0) == 0) {
                counted.back() += value;
            }
        }
        EXPECT_EQ(join(counted, " "), row.counted) << row.utility;
    }
}

TEST(BlockDefinition, SamplePoliciesFitTheController) {
    const struct {
        const char* utility;
        int drives;
        const char* policy; ///< its lines about drives
    } rows[] = {
        {"QTCSEND", 3, "Array.A = 1,2,3\nLogical.1 = A:FILL:5:ON\n"},
        {"CFGGEN", 2, "Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"},
        {"CFGGEN", 3, "Array.A = 1,2,3\nLogical.1 = A:FILL:1E:ON\n"},
        {"CFGGEN", 4, "Array.A = 1,2,3\nHotspares = 4\nLogical.1 = A:FILL:1E:ON\n"},
        {"CFGGEN", 14,
         "Array.A = 1,2\nArray.B = 3,4,5,6,7,8,9,10,11,12\nHotspares = 14\n"
         "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:1E:ON\n"},
        {"CFGGEN1.02.02", 2, "Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"},
        {"CFGGEN1.02.02", 3, "Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:1:ON\n"},
        {"CFGGEN1.02.02", 5, "Array.A = 1,2\nHotspares = 5\nLogical.1 = A:FILL:1:ON\n"},
        {"CFGGEN1.02.02", 6,
         "Array.A = 1,2\nArray.B = 3,4\nHotspares = 6\n"
         "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:1:ON\n"},
        {"HYPERWIN", 1, "Array.A = 1\nLogical.1 = A:FILL:0:ON\n"},
        {"HYPERWIN", 2, "Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"},
    };
    for (const auto& row : rows) {
        const char* place = row.utility == std::string("CFGGEN") ? "slot" : "id";
        const std::string text =
            samplePolicies(serverOf(definitionOf(row.utility,
                                                 formatted(R"({"%s": 0, "count": %d, "sizeMB": 9})",
                                                           place, row.drives))))
                .content;
        std::istringstream lines(text);
        std::string found;
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind("Array.", 0) == 0 || line.rfind("Logical.", 0) == 0 ||
                line.rfind("Hotspares", 0) == 0) {
                found += line + "\n";
            }
        }
        EXPECT_EQ(found, row.policy) << row.utility << row.drives;
    }
}

} // namespace
} // namespace zolex_sim::test
