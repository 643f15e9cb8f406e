#include "StorcliSupport.h"

#include "roles/Faults.h"

namespace zolex_sim::test {
namespace {

std::string data(const std::string& name) {
    return readFile(std::string(ZOLEX_TEST_DATA) + "/" + name, 1'000'000).value_or("(no file)");
}

/// The server of the listings: everything in them follows from this.
Server serverOfListings(const std::string& version = "007.2507", const std::string& controller = "",
                        const std::string& faults = "") {
    std::string drives;
    for (int slot = 0; slot < 16; ++slot) {
        const bool ssd = slot < 2 || slot == 14;
        const char* size = R"("sectors": "0x3a3800000", "rawSectors": "0x3a3812ab0")";
        if (ssd) {
            size = R"("sectors": "0x6fb80000", "rawSectors": "0x6fc81ab0", "interface": "SATA",
                      "medium": "ssd", "model": "NVS960-D")";
        } else if (slot == 15) {
            size = R"("sectors": "0x74700000", "rawSectors": "0x74702556", "sectorBytes": 4096,
                      "model": "NV8000SAS12-4K")";
        }
        std::string more;
        switch (slot) {
        case 3:
            more = R"(, "mediaErrors": 12, "predictiveFailures": 1)";
            break;
        case 4:
            more = R"(, "status": "rebuild", "deviceId": 24)";
            break;
        case 10:
            more = R"(, "status": "hotspare")";
            break;
        case 11:
            more = R"(, "status": "dedicated", "groups": [1])";
            break;
        case 13:
            more = R"(, "status": "bad")";
            break;
        case 14:
            more = R"(, "status": "jbod")";
            break;
        default:
            break;
        }
        drives += formatted(R"(%s{"enclosure": 252, "slot": %d, "serial": "NV0041%02d",
                               "temperature": %d, %s%s})",
                            slot > 0 ? "," : "", slot, slot, 24 + slot, size, more.c_str());
    }
    return serverOf(storcliDefinition(drives, R"(, "foreign": [{"drives": ["252:15"]}],
        "virtualDrives": [
          {"level": "RAID1", "spans": [["252:0", "252:1"]], "stripKB": 64, "name": "system"},
          {"level": "RAID5", "spans": [["252:2", "252:3", "252:4", "252:5"]]},
          {"level": "RAID10", "spans": [["252:6", "252:7"], ["252:8", "252:9"]],
           "blocks": 327680000, "stripKB": 64, "writeCache": "WT", "readAhead": false,
           "name": "logs"},
          {"level": "RAID10", "group": 2, "stripKB": 1024, "writeCache": "AWB", "cachedIO": true,
           "name": "data"}],
        "version": ")" + version + "\"" + controller,
                                      faults));
}

/// The paths of a JSON value and the kinds of what is there, in their order.
void outline(const OrderedJson& value, const std::string& path, std::vector<std::string>& lines) {
    lines.push_back(path + " " + value.type_name());
    if (!value.is_structured()) {
        return;
    }
    for (const auto& item : value.items()) {
        outline(item.value(), path + "/" + item.key(), lines);
    }
}

std::vector<std::string> outline(const std::string& text) {
    std::vector<std::string> lines;
    outline(OrderedJson::parse(text, nullptr, false), "", lines);
    return lines;
}

struct Listing {
    const char* file;
    const char* options;
    int exitCode;
};

constexpr Listing listings[] = {
    {"storcli-c0-show-all.json", "/c0 show all J nolog", 0},
    {"storcli-c0-eall-sall-show-all.json", "/c0/eall/sall show all J nolog", 0},
    {"storcli-c0-vall-show-all.json", "/c0/vall show all J nolog", 0},
    {"storcli-c0-fall-show.json", "/c0/fall show J nolog", 0},
    {"storcli-set-jbod-refused.json", "/c0/e252/s15 set jbod J nolog", 255},
    {"storcli-add-vd-refused.json", "/c0 add vd r1 drives=252:0,252:1 J nolog", 13},
};

TEST(StorcliListing, HasTheKeysAndKindsOfTheUtilitysPlaceByPlace) {
    for (const Listing& listing : listings) {
        Server server = serverOfListings();
        const PlayResult result = storcli(server, listing.options);
        EXPECT_EQ(outline(result.output), outline(data(listing.file))) << listing.file;
        EXPECT_EQ(result.exitCode, listing.exitCode) << listing.file;
    }
}

TEST(StorcliListing, IsTheUtilitysByteByByte) {
    for (const Listing& listing : listings) {
        Server server = serverOfListings();
        EXPECT_EQ(storcli(server, listing.options).output, data(listing.file)) << listing.file;
    }
}

TEST(StorcliListing, OfNoForeignConfigurationIsAFailure) {
    Server server = serverOfListings();
    EXPECT_EQ(outcome(server, "/c0/fall del"), "0: Successfully deleted foreign configuration");
    const PlayResult result = storcli(server, "/c0/fall show J nolog");
    EXPECT_EQ(result.output, data("storcli-c0-fall-show-none.json"));
    EXPECT_EQ(result.exitCode, 50);
}

TEST(StorcliListing, OfASickDriveHasAllOthers) {
    Server server = serverOfListings("007.2507", "", R"(, "faults": [
        {"match": "/eall/sall show all", "effect": "sickDrive", "drive": "252:13"}])");
    server.effect = server.faults.front().effect;
    const PlayResult result = storcli(server, "/c0/eall/sall show all J nolog");
    EXPECT_EQ(result.output, data("storcli-one-drive-answers-not.json"));
    EXPECT_EQ(result.exitCode, 46);
}

/// A fault on the listing of the controller, and what it then prints.
std::string faultyListing(const std::string& effect, int exitCode = 0) {
    Server server = serverOfListings(
        "007.2507", "",
        R"(, "faults": [{"match": "/c0 show all", "occurrence": 1, "effect": )" + effect + "}]");
    EXPECT_EQ(countFaults(server, "storcli64 show J nolog").due, nullptr);
    EXPECT_NE(countFaults(server, "storcli64 /c0 show all J nolog").due, nullptr);
    const PlayResult result = storcli(server, "/c0 show all J nolog");
    EXPECT_EQ(result.exitCode, exitCode) << effect;
    // Its turn has passed.
    countFaults(server, "storcli64 /c0 show all J nolog");
    EXPECT_EQ(storcli(server, "/c0 show all J nolog").output, data("storcli-c0-show-all.json"));
    return result.output;
}

TEST(StorcliFault, SpoilsAnAnswer) {
    const std::string whole = data("storcli-c0-show-all.json");
    EXPECT_EQ(faultyListing("\"truncated\""), whole.substr(0, whole.size() / 2));
    EXPECT_EQ(faultyListing("\"plainText\"").substr(0, 16), "CLI Version = 00");

    const auto read = [](const std::string& text) {
        return OrderedJson::parse(text)["Controllers"][0]["Response Data"];
    };
    const OrderedJson sound = read(whole);
    OrderedJson lacking = sound;
    lacking.erase("Bus");
    EXPECT_EQ(read(faultyListing(R"("missingSection", "section": "Bus")")), lacking);

    OrderedJson more = read(faultyListing("\"unknownKey\""));
    EXPECT_EQ(more["Norvik Extension"], "on");
    EXPECT_EQ(more["PD LIST"][3]["Norvik Extension"], "on");
    EXPECT_EQ(more["PD LIST"][3]["State"], "Onln");

    const OrderedJson strange = read(faultyListing(R"("wordOfTomorrow", "drive": "252:12")"));
    EXPECT_EQ(strange["PD LIST"][12]["State"], "Zzzz");
    EXPECT_EQ(strange["PD LIST"][11], sound["PD LIST"][11]);
}

TEST(StorcliFault, RefusesACommand) {
    Server server = serverOfListings(
        "007.2507", "",
        R"(, "faults": [{"match": "add vd", "effect": "refused", "errorCode": 46}])");
    countFaults(server, "storcli64 /c0 add vd r0 drives=252:12 J nolog");
    EXPECT_EQ(outcome(server, "/c0 add vd r0 drives=252:12"), "46: Operation Failed.");
    EXPECT_EQ(server.storcliControllers.front().volumes.size(), 4U);
    // Without the fault it is done.
    EXPECT_EQ(outcome(server, "/c0 add vd r0 drives=252:12"), "0: Add VD Succeeded.");
}

TEST(StorcliVersion, OfTheFirstGenerationTellsLess) {
    Server server = serverOfListings("1.x");
    const OrderedJson answer = storcliJson(server, "/c0 show all");
    EXPECT_FALSE(answer["Command Status"].contains("CLI Version"));
    const OrderedJson& drives = answer["Response Data"]["PD LIST"];
    EXPECT_FALSE(drives[0].contains("Type"));
    EXPECT_EQ(drives[0]["Size"], "893.7 GB");
    EXPECT_EQ(drives[2]["Size"], "7.277 TB");
    EXPECT_EQ(drives[11]["DG"], "1"); // as text, of a dedicated spare
    EXPECT_EQ(drives[10]["DG"], "-");
    EXPECT_FALSE(answer["Response Data"]["TOPOLOGY"][0].contains("TR"));
    EXPECT_FALSE(answer["Response Data"]["VD LIST"][0].contains("Cac"));
    EXPECT_FALSE(answer["Response Data"]["Enclosure LIST"][0].contains("ProdID"));
    // Codes of the firmware have no text, those of the utility do.
    EXPECT_EQ(outcome(server, "/c0/e252/s13 add hotsparedrive"), "50: Add Hot Spare Failed.");
    EXPECT_EQ(outcome(server, "/c0/e252/s15 set jbod"),
              "255: Set Drive JBOD Failed. Operation not allowed.");
}

TEST(StorcliVersion, Others) {
    struct Row {
        const char* version;
        const char* cli;
        bool type;
        const char* foreign;
        const char* created;
    };
    constexpr Row rows[] = {
        {"007.1017", "007.1017.0000.0000 May 10, 2019", false, "FOREIGN CONFIGURATION",
         "0: Add VD Succeeded."},
        {"007.1616", "007.1616.0000.0000 Dec 24, 2020", true, "FOREIGN CONFIGURATION",
         "0: Add VD Succeeded."},
        {"007.3703", "007.3703.0000.0000 Jan 14, 2026", true, "FOREIGN DG LIST",
         "0: Add VD succeeded."},
    };
    for (const Row& row : rows) {
        Server server = serverOfListings(row.version);
        const OrderedJson answer = storcliJson(server, "/c0 show all");
        EXPECT_EQ(answer["Command Status"]["CLI Version"], row.cli);
        EXPECT_EQ(answer["Response Data"]["PD LIST"][0].contains("Type"), row.type) << row.version;
        const OrderedJson foreign = storcliJson(server, "/c0/fall show")["Response Data"];
        EXPECT_EQ(foreign.begin().key(), row.foreign);
        EXPECT_EQ(foreign.contains("FOREIGN PD LIST"), std::string(row.version) == "007.3703");
        EXPECT_EQ(outcome(server, "/c0 add vd r0 drives=252:12"), row.created);
    }
    // The second generation has controllers of its own, which this utility does not see.
    Server server = serverOfListings("008");
    EXPECT_EQ(storcliJson(server, "show")["Response Data"]["Number of Controllers"], 0);
    EXPECT_EQ(outcome(server, "/c0 show"), "255: No Controller found");
}

TEST(StorcliBranding, ChangesNamesAndUnits) {
    Server perc = serverOfListings("007.2507", R"(, "branding": "perc")");
    OrderedJson data = storcliJson(perc, "/c0 show all")["Response Data"];
    EXPECT_TRUE(data["Capabilities"].contains("Enable SystemPD"));
    EXPECT_FALSE(data["Capabilities"].contains("Enable JBOD"));
    EXPECT_EQ(data["VD LIST"][0]["Cache"], "RFWBC");

    Server hpe = serverOfListings("007.2507", R"(, "branding": "hpe")");
    data = storcliJson(hpe, "/c0 show all")["Response Data"];
    EXPECT_EQ(data["Arrays"], 3);
    EXPECT_FALSE(data.contains("Drive Groups"));
    EXPECT_TRUE(data.contains("Supported Drive Operations"));
    EXPECT_TRUE(data["Status"].contains("Energy Pack Status"));
    EXPECT_EQ(data["PD LIST"][0]["Size"], "959.65 GB");
    EXPECT_EQ(data["PD LIST"][2]["Size"], "8.00 TB");
    EXPECT_EQ(data["VD LIST"][3]["Size"], "893.750 GB");
    EXPECT_FALSE(data["Enclosure LIST"][0].contains("ProdID"));
}

TEST(StorcliBattery, DecidesWhatRuns) {
    Server none = serverOfListings("007.2507", R"(, "battery": "none")");
    OrderedJson data = storcliJson(none, "/c0 show all")["Response Data"];
    EXPECT_EQ(data["HwCfg"]["BBU"], "Absent");
    EXPECT_FALSE(data.contains("Cachevault_Info"));
    EXPECT_EQ(data["VD LIST"][3]["Cache"], "RWBD"); // the policy
    EXPECT_EQ(outcome(none, "/c0/cv show"), "255: None Cachevault is absent!");

    Server running =
        serverOfListings("007.2507", R"(, "battery": "failed", "showsRunningCache": true)");
    data = storcliJson(running, "/c0 show all")["Response Data"];
    EXPECT_EQ(data["VD LIST"][3]["Cache"], "RWTD");
    EXPECT_EQ(data["VD LIST"][0]["Cache"], "RAWBC"); // whatever the battery does
    EXPECT_EQ(data["Cachevault_Info"][0]["State"], "Failed");
    data = storcliJson(running, "/c0/v239 show all")["Response Data"];
    EXPECT_EQ(data["VD239 Properties"]["Write Cache(initial setting)"], "WriteBack");
}

TEST(StorcliGroups, TellTheirFreeSpace) {
    Server server = serverOfListings();
    EXPECT_EQ(outcome(server, "/c0/v236 del"), "0: Delete VD Succeeded.");
    const OrderedJson data = storcliJson(server, "/c0/dall show all")["Response Data"];
    EXPECT_EQ(data["TOPOLOGY"][11]["FSpace"], "Y");
    EXPECT_EQ(data["DG Drive LIST"].size(), 10U);
    EXPECT_EQ(data["FREE SPACE DETAILS"][0]["DG"], 2);
    EXPECT_EQ(data["FREE SPACE DETAILS"][0]["Size"], "14.401 TB");
    EXPECT_EQ(data["UN-CONFIGURED DRIVE LIST"].size(), 6U);
}

TEST(StorcliForeign, ThatIsIncompleteIsToldByItsCode) {
    Server server = serverOf(storcliDefinition(
        R"({"enclosure": 1, "slot": 0, "count": 2, "sectors": 4194304})",
        R"(, "foreign": [{"level": "RAID5", "drives": ["1:0", "1:1"], "missing": 1}])"));
    EXPECT_EQ(outcome(server, "/c0/fall show"),
              "59: Operation on foreign configuration Failed incomplete foreign configuration");
    EXPECT_EQ(outcome(server, "/c0/fall del"), "0: Successfully deleted foreign configuration");
}

TEST(StorcliDrive, WithoutAnEnclosureAndAfterCoercion) {
    Server server = serverOf(storcliDefinition(
        R"({"slot": 3, "rawSectors": 7814037168}, {"slot": 4, "rawSectors": 976754646,
            "sectorBytes": 4096})",
        R"(, "coercion": "128MB")"));
    const OrderedJson answer = storcliJson(server, "/c0/sall show all");
    const OrderedJson& data = answer["Response Data"];
    EXPECT_EQ(data["Drive /c0/s3"][0]["EID:Slt"], " :3");
    const OrderedJson& details =
        data["Drive /c0/s3 - Detailed Information"]["Drive /c0/s3 Device attributes"];
    EXPECT_EQ(details["Raw size"], "3.638 TB [0x1d1c0beb0 Sectors]");
    EXPECT_EQ(details["Non Coerced size"], "3.637 TB [0x1d1b0beb0 Sectors]");
    EXPECT_EQ(details["Coerced size"], "3.637 TB [0x1d1b00000 Sectors]");
    EXPECT_EQ(data["Drive /c0/s4 - Detailed Information"]["Drive /c0/s4 Device attributes"]
                  ["Coerced size"],
              "3.637 TB [0x3a360000 Sectors]");
    EXPECT_EQ(data["Drive /c0/s4"][0]["SeSz"], "4 KB");
    EXPECT_EQ(outcome(server, "/c0/eall/sall show all"), "255: No drive found!");
}

TEST(StorcliOverview, ListsAdaptersWithoutRaidApart) {
    Server server = serverOf(R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [
        {"utility": "STORCLI", "pci": {"bus": 9}, "hostAdapter": true, "model": "N9500-16i"},
        {"utility": "STORCLI", "pci": {"bus": 7}, "model": "N3916"}]})");
    const OrderedJson data = storcliJson(server, "show")["Response Data"];
    EXPECT_EQ(data["Number of Controllers"], 2);
    EXPECT_EQ(data["System Overview"].size(), 1U);
    EXPECT_EQ(data["System Overview"][0]["Model"], "N3916");
    EXPECT_EQ(data["System Overview"][0]["Ctl"], 0);
    EXPECT_EQ(data["IT System Overview"][0]["Ctl"], 1);
    EXPECT_EQ(data["IT System Overview"][0]["PCI Address"], "00:09:00:00");
    const OrderedJson both =
        OrderedJson::parse(storcli(server, "/call show J nolog").output)["Controllers"];
    ASSERT_EQ(both.size(), 2U);
    EXPECT_EQ(both[1]["Command Status"]["Controller"], 1);
}

} // namespace
} // namespace zolex_sim::test
