#pragma once

#include "companion/support/StorcliLayouts.h"
#include "companion/support/StorcliServer.h"

#include <array>
#include <cctype>
#include <ostream>
#include <string>
#include <vector>

namespace zolex::companion::test {

/// A virtual server with a controller of today, and policies for it.
struct StorcliRun {
    std::string name;
    std::string definition;
    std::string policies;
};

inline void PrintTo(const StorcliRun& run, std::ostream* stream) {
    *stream << run.name;
}

/// A controller with 16 drives behind it; `more` are further fields.
inline std::string storcliServer(const std::string& more) {
    return R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [{
        "utility": "STORCLI", "pci": {"bus": 193})" +
           more + R"(, "drives": [)";
}

inline std::string storcliPolicies(const std::string& entries) {
    return "[Policy.site]\nAppliesTo.1 = t:STORCLI\n" + entries;
}

/// Twelve equal free drives.
inline constexpr const char* freeDrives =
    R"({"enclosure": 252, "slot": 0, "count": 12, "sectors": 41943040})";

/// A mirror, a RAID 5 with a spare of its own, two volumes on a RAID 10, a spare of all, and a
/// foreign drive.
inline constexpr const char* usedDrives =
    R"({"enclosure": 252, "slot": 0, "count": 10, "sectors": 41943040},
       {"enclosure": 252, "slot": 10, "sectors": 41943040, "status": "hotspare"},
       {"enclosure": 252, "slot": 11, "sectors": 41943040, "status": "dedicated", "groups": [1]},
       {"enclosure": 252, "slot": 12, "count": 4, "sectors": 41943040}],
      "foreign": [{"level": "RAID1", "drives": ["252:14", "252:15"]}],
      "virtualDrives": [
       {"level": "RAID1", "spans": [["252:0", "252:1"]], "stripKB": 64},
       {"level": "RAID5", "spans": [["252:2", "252:3", "252:4", "252:5"]]},
       {"level": "RAID10", "spans": [["252:6", "252:7"], ["252:8", "252:9"]],
        "blocks": 8388608, "writeCache": "WT"},
       {"level": "RAID10", "group": 2})";

/// Plans that begin with nothing, take all away, keep a part, need a foreign drive, set caches; in
/// each branding, in each version, with numbers of volumes that go up and down.
inline std::vector<StorcliRun> storcliRuns() {
    const std::string custom =
        "Array_Mode = CUSTOM\nLogical_Mode = CUSTOM\nArray_Defaults = 0%:0\n";
    const std::string all =
        storcliPolicies("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4,252:5\n"
                        "Level.A = 1\nLevel.B = 10\n"
                        "Spares = 1 covering A and 1\n");
    const std::string other =
        storcliPolicies(custom + "Array.A = 1,2,3\nArray.B = 4,5,6,7,8,9\nHotspares = 12\n"
                                 "Logical.1 = A:4096:5:ON\nLogical.2 = A:FILL:5:OFF\n"
                                 "Logical.3 = B:FILL:50\n");
    return {
        {"Blank", storcliServer("") + freeDrives + "]}]}", all},
        {"BlankWithoutNolog", storcliServer(R"(, "refusesNolog": true)") + freeDrives + "]}]}",
         other},
        {"Rebuilt", storcliServer("") + usedDrives + "]}]}", other},
        {"RebuiltWithTheForeignDrives",
         storcliServer(R"(, "version": "007.1017", "vdNumbers": "up")") + usedDrives + "]}]}",
         storcliPolicies(custom + "Array.A = 11,12,13,14,15,16\nLogical.1 = A:FILL:6\n")},
        {"RebuiltPerc",
         storcliServer(R"(, "branding": "perc", "version": "007.1616", "vdNumbers": "up")") +
             usedDrives + "]}]}",
         all},
        {"SparesOfStandingGroups", storcliServer("") + usedDrives + "]}]}",
         storcliPolicies("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4,252:5\n"
                         "Level.A = 1\nLevel.B = 5\n"
                         "Spares = 1 covering A and 1 covering B\n")},
        {"ADedicatedSpareStays", storcliServer("") + usedDrives + "]}]}",
         storcliPolicies("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4,252:5\n"
                         "Level.A = 1\nLevel.B = 5\n"
                         "Spares = slots 252:10 covering A and slots 252:11 covering B\n")},
        {"RebuiltFirstVersion", storcliServer(R"(, "version": "1.x")") + usedDrives + "]}]}",
         other},
        {"PartKept",
         storcliServer(R"(, "branding": "hpe", "version": "007.3703")") + usedDrives + "]}]}",
         storcliPolicies(custom + "Array.A = 3,4,5,6\nArray.B = 7,8,9,10\nHotspares = 11\n"
                                  "Logical.1 = A:FILL:5:OFF\nLogical.2 = B:4096:10:ON\n"
                                  "Logical.3 = B:FILL:10\nRebuildRate = HIGH\n")},
    };
}

/// "raid 0 of three, strip": Raid0OfThreeStrip, as tests are called.
inline std::string testName(std::string_view words) {
    std::string name;
    bool begins = true;
    for (const char c : words) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0) {
            name += static_cast<char>(begins ? std::toupper(byte) : byte);
        }
        begins = std::isalnum(byte) == 0;
    }
    return name;
}

/// A run that makes each layout, in turn in each branding and version.
inline std::vector<StorcliRun> runsOfLayouts() {
    constexpr std::array brandings = {"lsi", "perc", "hpe"};
    constexpr std::array versions = {"1.x", "007.1017", "007.3703"};
    std::vector<StorcliRun> runs;
    for (const LayoutCase& layout : layouts()) {
        const std::size_t turn = runs.size();
        const std::string kind = std::string(R"(, "branding": ")") + brandings[turn % 3] +
                                 R"(", "version": ")" + versions[turn / 3 % 3] + "\"";
        runs.push_back({testName(layout.name),
                        StorcliServer::definition(kind + layout.fields, layout.drives),
                        layout.policies});
    }
    return runs;
}

} // namespace zolex::companion::test
