#include "StorcliSupport.h"

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

} // namespace
} // namespace zolex_sim::test
