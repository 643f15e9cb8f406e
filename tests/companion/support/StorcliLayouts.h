#pragma once

#include "companion/planning/FamilyServer.h"

#include <string>
#include <vector>

namespace zolex::companion::test {

inline constexpr const char* hdds =
    R"({"enclosure": 252, "slot": 0, "count": 24, "sectors": 41943040})";
inline constexpr const char* bare = R"({"slot": 0, "count": 8, "sectors": 41943040})";
inline constexpr const char* twoBoxes =
    R"({"enclosure": 62, "slot": 0, "count": 6, "sectors": 41943040},
       {"enclosure": 320, "slot": 0, "count": 6, "sectors": 41943040})";
inline constexpr const char* large =
    R"({"enclosure": 252, "slot": 0, "count": 6, "sectors": 5242880, "sectorBytes": 4096})";
inline constexpr const char* someJbod =
    R"({"enclosure": 252, "slot": 0, "count": 2, "sectors": 41943040, "status": "jbod"},
       {"enclosure": 252, "slot": 2, "count": 6, "sectors": 41943040})";
inline constexpr const char* someForeign =
    R"({"enclosure": 252, "slot": 0, "count": 8, "sectors": 41943040})";
inline constexpr const char* foreignSet =
    R"(, "foreign": [{"level": "RAID1", "drives": ["252:6", "252:7"]}])";
inline constexpr const char* unlike =
    R"({"enclosure": 252, "slot": 0, "count": 4, "sectors": 41943040},
       {"enclosure": 252, "slot": 4, "count": 4, "sectors": 62914560, "interface": "SATA",
        "medium": "ssd"})";

/// A layout that policies ask for, the drives of its server, and further fields of its controller.
struct LayoutCase {
    const char* name;
    std::string policies;
    const char* drives = hdds;
    const char* fields = "";
};

/// Each level, two and three volumes on a group, spares of each kind, JBOD and foreign drives, and
/// drives and controllers that differ.
inline std::vector<LayoutCase> layouts() {
    const std::string eight = "Array.A = 1,2,3,4,5,6,7,8\n";
    return {
        {"automatic", policy("")},
        {"raid 0", custom("Array.A = 1\nLogical.1 = A:FILL:0\n")},
        {"raid 0 of three, strip",
         custom("Array.A = 1,2,3\nLogical.1 = A:FILL:0\nStripeSize = 64\n")},
        {"raid 1, cache on", custom("Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n")},
        {"mirror of four", custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:1\n")},
        {"mirror of six, half", custom("Array.A = 1,2,3,4,5,6\nLogical.1 = A:50%:1\n")},
        {"raid 5, cache off, read-ahead",
         custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5:OFF\nReadAhead = ON\n")},
        {"raid 6, no read-ahead",
         custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:6\nReadAhead = OFF\n")},
        {"raid 10", custom(eight + "Logical.1 = A:FILL:10\n")},
        {"raid 10 of twenty", custom("Array.A = ALL\nHotspares = 21,22,23,24\n"
                                     "Logical.1 = A:FILL:10\n")},
        {"raid 50", custom(eight + "Logical.1 = A:FILL:50\n")},
        {"raid 50 in four", custom("Array.A = 1,2,3,4,5,6,7,8,9,10,11,12\nSpans = 4\n"
                                   "Logical.1 = A:FILL:50\n")},
        {"raid 60", custom(eight + "Logical.1 = A:FILL:60\n")},
        {"two on a group",
         custom("Array.A = 1,2,3\nLogical.1 = A:4096:5:ON\nLogical.2 = A:FILL:5:OFF\n")},
        {"three on a group", custom("Array.A = 1,2,3,4\nLogical.1 = A:4096:10\n"
                                    "Logical.2 = A:25%:10\nLogical.3 = A:FILL:10\n")},
        {"two on a mirror of four",
         custom("Array.A = 1,2,3,4\nLogical.1 = A:8192:1\nLogical.2 = A:FILL:1\n")},
        {"global spares", custom("Array.A = 1,2,3\nHotspares = 23,24\nLogical.1 = A:FILL:5\n")},
        {"dedicated spares",
         policy("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4\n"
                "Level.A = 1\nLevel.B = 5\n"
                "Spares = 1 covering A and 1 covering B\n")},
        {"dedicated and global spares",
         policy("Drives.A = slots 252:0,252:1\nDrives.B = slots 252:2,252:3,252:4\n"
                "Level.A = 1\nLevel.B = 5\nSpares = 1 covering B and 1\n")},
        {"by place", custom("Array.A = 1:5,1:6\nArray.B = 252:10,252:11\n"
                            "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:0\n")},
        {"by kind", policy("Drives.A = 2 x SSD\nDrives.B = 4 x HDD\nLevel.A = 1\nLevel.B = 5\n"),
         unlike},
        {"unlike drives by themselves", policy("Array_Defaults = 0%:0\n"), unlike},
        {"in no enclosure", custom("Array.A = 1,2,3\nHotspares = 8\nLogical.1 = A:FILL:5\n"), bare},
        {"two enclosures",
         custom("Array.A = 62:0,62:1,320:0,320:1\nHotspares = 62:5\nLogical.1 = A:FILL:10\n"),
         twoBoxes},
        {"4Kn", custom("Array.A = 1,2,3,4\nLogical.1 = A:FILL:6\nHotspares = 6\n"), large},
        {"JBOD drives stay", custom("Array.A = 3,4,5\nHotspares = 8\nLogical.1 = A:FILL:5\n"),
         someJbod},
        {"foreign drives stay", custom("Array.A = 1,2,3\nLogical.1 = A:FILL:5\n"), someForeign,
         foreignSet},
        {"foreign drives go", custom("Array.A = 5,6,7,8\nLogical.1 = A:FILL:10\n"), someForeign,
         foreignSet},
        {"without a battery", custom("Array.A = 1,2\nLogical.1 = A:FILL:1:ON\nStripeSize = 1024\n"),
         hdds, R"(, "battery": "none", "showsRunningCache": true)"},
        {"numbers from 0 on",
         custom("Array.A = 1,2\nArray.B = 3,4,5\nLogical.1 = A:FILL:1\n"
                "Logical.2 = B:4096:5\nLogical.3 = B:FILL:5\nRebuildRate = HIGH\n"),
         hdds, R"(, "vdNumbers": "up")"},
        {"a utility that knows no nolog", custom("Array.A = 1,2\nLogical.1 = A:FILL:1\n"), hdds,
         R"(, "refusesNolog": true)"},
    };
}

} // namespace zolex::companion::test
