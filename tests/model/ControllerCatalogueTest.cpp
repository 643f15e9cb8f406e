#include "model/ControllerCatalogue.h"

#include "model/Codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace zolex {
namespace {

constexpr std::int32_t lowestCode = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highestCode = std::numeric_limits<std::int32_t>::max();

// What each type is driven by. Columns: type, utility command, utility family, the three accepted
// exit codes, whether an explicit size in MB may be written for it.
struct TypeFacts {
    std::int32_t type;
    const char* command;
    std::int32_t family;
    std::int32_t accepted[3];
    bool explicitSize;
};
// clang-format off
constexpr std::array<TypeFacts, 12> types{{
    {1,  "UTIL.BAT QTCSEND",       1,  {0, -1, -1}, true},
    {2,  "UTIL.BAT ARCCONF",       7,  {0, -1, -1}, true},
    {3,  "UTIL.BAT HRCONF",        4,  {0, -1, -1}, false},
    {4,  "UTIL.BAT HRCONF",        4,  {0, -1, -1}, false},
    {5,  "UTIL.BAT CFGGEN1.02.02", 5,  {0, 2,  -1}, false},
    {6,  "UTIL.BAT HYPERWIN",      6,  {0, -1, -1}, false},
    {7,  "UTIL.BAT ARCCONF",       7,  {0, -1, -1}, true},
    {8,  "UTIL.BAT HRCONF",        4,  {0, -1, -1}, false},
    {9,  "UTIL.BAT HRCONF",        4,  {0, -1, -1}, false},
    {10, "UTIL.BAT CFGGEN",        6,  {0, -1, -1}, true},
    {11, "UTIL.BAT ARCCONF",       7,  {0, -1, -1}, true},
    {12, "UTIL.BAT MEGACLI",       12, {0, -1, 49}, true},
}};

// Model name of a type and subtype. A subtype of `any` stands for every one without a row.
constexpr std::int32_t any = 0xFFFF;
struct Model {
    std::int32_t type;
    std::int32_t subtype;
    const char* name;
};
constexpr std::array<Model, 39> models{{
    {1,  1,   "Kestrix-A1"},
    {1,  2,   "Kestrix-A2"},
    {1,  3,   "Kestrix-A3"},
    {1,  4,   "Kestrix-A4"},
    {1,  5,   "Kestrix-A5"},
    {1,  6,   "Kestrix-A6"},
    {1,  7,   "Kestrix-A7"},
    {1,  any, "Kestrix controller"},
    {2,  any, "Kestrix-A8"},
    {3,  any, "Kestrix-A9"},
    {4,  any, "Kestrix-A10"},
    {5,  any, "LSI-SCSI-RAID"},
    {6,  any, "LSI-IDEal-RAID"},
    {7,  1,   "Kestrix-B2"},
    {7,  any, "Kestrix-B1"},
    {8,  any, "Kestrix-B3"},
    {9,  any, "Kestrix-B4"},
    {10, 1,   "LSI-SAS-1078-IR"},
    {10, 2,   "Kestrix-B6"},
    {10, 3,   "Kestrix-B5"},
    {10, any, "LSI-SAS-RAID"},
    {11, 1,   "Kestrix-B8"},
    {11, 2,   "Kestrix-B7"},
    {11, any, "Kestrix controller"},
    {12, 1,   "LSI-MegaRAID-8480"},
    {12, 2,   "Kestrix-C1"},
    {12, 3,   "Kestrix-C2"},
    {12, 4,   "Kestrix-C3"},
    {12, 5,   "Kestrix-C4"},
    {12, 6,   "Kestrix-C5"},
    {12, 7,   "Kestrix-C6"},
    {12, 8,   "Kestrix-C7"},
    {12, 9,   "Kestrix-C8"},
    {12, 10,  "Kestrix-C9"},
    {12, 11,  "Kestrix-D1"},
    {12, 12,  "Kestrix-D2"},
    {12, 13,  "Kestrix-D3"},
    {12, 14,  "Kestrix-D4"},
    {12, any, "LSI-MegaRAID"},
}};

// PCI rows: vendor, device, subsystem vendor, subsystem id, type, subtype.
constexpr std::uint16_t maker = ZOLEX_MAKER_PCI_VENDOR_ID;
constexpr std::array<PciRow, 36> rows{{
    {0x0000, 0x0000, any,    any,    -1, -1},
    {maker,  0x002E, any,    any,    1,  1},
    {maker,  0x01BD, any,    any,    1,  -1},
    {0x9005, 0x0250, any,    any,    1,  -1},
    {0x9005, 0x0285, 0x9005, 0x0290, 2,  -1},
    {0x8086, 0x25B0, any,    any,    3,  -1},
    {0x8086, 0x24DF, any,    any,    3,  -1},
    {0x9005, 0x808F, any,    any,    4,  1},
    {0x9005, 0x809D, any,    any,    4,  1},
    {0x1000, 0x0030, any,    any,    5,  1},
    {0x1166, 0x0213, any,    any,    6,  1},
    {0x9005, 0x0285, maker,  0x02F2, 7,  7},
    {0x9005, 0x043F, any,    any,    8,  -1},
    {0x8086, 0x27C3, any,    any,    9,  -1},
    {0x1000, 0x0050, any,    any,    10, -1},
    {0x1000, 0x0056, any,    any,    10, -1},
    {0x1000, 0x005C, any,    any,    10, -1},
    {0x8086, 0x2682, any,    any,    9,  -1},
    {0x9005, 0x0286, any,    any,    11, 2},
    {0x1000, 0x0058, any,    any,    10, -1},
    {0x1000, 0x0054, any,    any,    10, -1},
    {0x1000, 0x0062, any,    any,    10, 1},
    {0x1000, 0x0073, any,    any,    12, 10},
    {0x1000, 0x0079, any,    any,    12, 14},
    {0x1000, 0x0411, 0x1000, 0x1002, 12, 1},
    {0x1000, 0x0060, maker,  0x0363, 12, 6},
    {0x1000, 0x0060, maker,  0x0364, 12, 2},
    {0x1000, 0x0060, maker,  0x0379, 12, 7},
    {0x9005, 0x0285, maker,  0x034D, 7,  1},
    {0x1000, 0x0060, maker,  0x0365, 12, 5},
    {0x1000, 0x0060, maker,  0x03A2, 12, 4},
    {0x1000, 0x0060, maker,  0x03AC, 12, 3},
    {0x1000, 0x0079, maker,  0x03C7, 12, 11},
    {0x1000, 0x0079, maker,  0x03B2, 12, 12},
    {0x1000, 0x0073, maker,  0x03B1, 12, 8},
    {0x1000, 0x0079, maker,  0x03B3, 12, 13},
}};

// Names in the order in which the look-ups compare them, with the type and subtype they give.
struct NameFacts {
    const char* name;
    std::int32_t type;
    std::int32_t subtype;
    bool valid;
};
constexpr NameFacts names[] = {
    {"Kestrix-A1",          1,  1,  true},
    {"Kestrix-A2",          1,  2,  true},
    {"Kestrix-A3",          1,  3,  true},
    {"Kestrix-A4",          1,  4,  true},
    {"Kestrix-A5",          1,  5,  true},
    {"Kestrix-A6",          1,  6,  true},
    {"Kestrix-A7",          1,  7,  true},
    {"Kestrix controller",  1,  -1, true},
    {"Kestrix-A8",          2,  -1, true},
    {"Kestrix-A9",          3,  -1, true},
    {"Kestrix-A10",         4,  -1, true},
    {"LSI-SCSI-RAID",       5,  -1, true},
    {"LSI-IDEal-RAID",      6,  -1, true},
    {"Kestrix-B1",          7,  7,  true},
    {"Kestrix-B3",          8,  -1, true},
    {"Kestrix-B4",          9,  -1, true},
    {"LSI-SAS-RAID",        10, -1, true},
    {"Kestrix-B8",          11, 1,  true},
    {"Kestrix-B7",          11, 2,  true},
    {"Kestrix-B2",          7,  1,  true},
    {"Kestrix-C1",          12, 2,  true},
    {"Kestrix-C2",          12, 3,  true},
    {"Kestrix-C5",          12, 6,  true},
    {"Kestrix-C6",          12, 7,  true},
    {"Kestrix-C4",          12, 5,  true},
    {"Kestrix-C3",          12, 4,  true},
    {"Kestrix-C7",          12, 8,  true},
    {"Kestrix-C8",          12, 9,  true},
    {"Kestrix-C9",          12, 10, true},
    {"Kestrix-D1",          12, 11, true},
    {"Kestrix-D2",          12, 12, true},
    {"Kestrix-D3",          12, 13, true},
    {"Kestrix-D4",          12, 14, true},
    {"Kestrix-B6",          10, 2,  true},
    {"Kestrix-B5",          10, 3,  true},
    {"LSI-MegaRAID-8480",   12, 1,  true},
    {"LSI-SAS-1078-IR",     10, 1,  true},
    // A policy may name it and it has a subtype, yet it gives no type.
    {"LSI-MegaRAID",        -1, 12, true},
    // The name of the end marker is accepted where names are checked.
    {"ERROR-NO-CONTROLLER", -1, -1, true},
    // No models: other letter case, blanks, parts of names, names of no row.
    {"",                    -1, -1, false},
    {"kestrix-a1",          -1, -1, false},
    {"KESTRIX-C1",          -1, -1, false},
    {"Kestrix-C1 ",         -1, -1, false},
    {" Kestrix-C1",         -1, -1, false},
    {"Kestrix-C",           -1, -1, false},
    {"Kestrix-C10",         -1, -1, false},
    {"Kestrix-A0",          -1, -1, false},
    {"Kestrix-A11",         -1, -1, false},
    {"Kestrix-B9",          -1, -1, false},
    {"Kestrix-D5",          -1, -1, false},
    {"Kestrix Controller",  -1, -1, false},
    {"Kestrix_controller",  -1, -1, false},
    {"LSI-MegaRAID-8481",   -1, -1, false},
    {"LSI-SAS-1078",        -1, -1, false},
    {"error-no-controller", -1, -1, false},
};
// clang-format on

bool isGeneric(const PciRow& row) {
    return row.subsystemVendorId == 0xFFFF && row.subsystemId == 0xFFFF;
}

/// The rows as the cursor gives them, up to the end row.
std::vector<PciRow> walk() {
    std::vector<PciRow> walked;
    PciRowCursor cursor;
    do {
        walked.push_back(cursor.nextPciRow());
    } while (walked.back().type != -1 && walked.size() < 100);
    return walked;
}

std::string text(const PciRow& row) {
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%04X:%04X:%04X:%04X %d %d", row.vendorId, row.deviceId,
                  row.subsystemVendorId, row.subsystemId, row.type, row.subtype);
    return buffer;
}

TEST(ControllerCatalogue, EveryTypeHasItsUtilityCommand) {
    const ControllerCatalogue catalogue;
    for (const TypeFacts& facts : types) {
        EXPECT_STREQ(catalogue.getUtilityCommand(facts.type).c_str(), facts.command) << facts.type;
    }
    for (const std::int32_t type : {lowestCode, -1, 0, 13, 22, 23, highestCode}) {
        EXPECT_TRUE(catalogue.getUtilityCommand(type).isEmpty()) << type;
    }
}

TEST(ControllerCatalogue, ScanOrdersAreCountedByUtilityFamily) {
    const ControllerCatalogue catalogue;
    for (const TypeFacts& facts : types) {
        EXPECT_EQ(catalogue.getUtilityFamily(facts.type), facts.family) << facts.type;
    }
    for (const std::int32_t type : {lowestCode, -1, 0, 13, 99, highestCode}) {
        EXPECT_EQ(catalogue.getUtilityFamily(type), 6) << type;
    }
}

TEST(ControllerCatalogue, TypeTenCountsWithTypeSixAlthoughItsUtilityIsAnother) {
    const ControllerCatalogue catalogue;
    EXPECT_EQ(catalogue.getUtilityFamily(10), catalogue.getUtilityFamily(6));
    EXPECT_FALSE(catalogue.getUtilityCommand(10) == catalogue.getUtilityCommand(6));
}

TEST(ControllerCatalogue, EveryTypeAcceptsItsExitCodes) {
    const ControllerCatalogue catalogue;
    for (const TypeFacts& facts : types) {
        for (std::int32_t slot = 1; slot <= 3; ++slot) {
            EXPECT_EQ(catalogue.getAcceptedReturnCode(facts.type, slot), facts.accepted[slot - 1])
                << facts.type << ", slot " << slot;
        }
        for (const std::int32_t slot : {lowestCode, -1, 0, 4, highestCode}) {
            EXPECT_EQ(catalogue.getAcceptedReturnCode(facts.type, slot), -1)
                << facts.type << ", slot " << slot;
        }
    }
    for (const std::int32_t type : {lowestCode, -1, 0, 13, highestCode}) {
        EXPECT_EQ(catalogue.getAcceptedReturnCode(type, 1), 0) << type;
        EXPECT_EQ(catalogue.getAcceptedReturnCode(type, 2), -1) << type;
        EXPECT_EQ(catalogue.getAcceptedReturnCode(type, 3), -1) << type;
    }
}

bool accepts(const ControllerCatalogue& catalogue, std::int32_t type, std::int32_t exitCode) {
    for (std::int32_t slot = 1; slot <= 3; ++slot) {
        if (catalogue.getAcceptedReturnCode(type, slot) == exitCode) {
            return true;
        }
    }
    return false;
}

TEST(ControllerCatalogue, OnlyItsOwnUtilityMayEndWithTwoOrFortyNine) {
    const ControllerCatalogue catalogue;
    for (const TypeFacts& facts : types) {
        EXPECT_TRUE(accepts(catalogue, facts.type, 0)) << facts.type;
        EXPECT_FALSE(accepts(catalogue, facts.type, 1)) << facts.type;
        EXPECT_EQ(accepts(catalogue, facts.type, 2), facts.type == 5) << facts.type;
        EXPECT_EQ(accepts(catalogue, facts.type, 49), facts.type == 12) << facts.type;
    }
}

TEST(ControllerCatalogue, EveryTypeAndSubtypeHasItsModelName) {
    const ControllerCatalogue catalogue;
    const auto expected = [](std::int32_t type, std::int32_t subtype) {
        for (const std::int32_t wanted : {subtype, any}) {
            for (const Model& model : models) {
                if (model.type == type && model.subtype == wanted) {
                    return std::string(model.name);
                }
            }
        }
        return std::string("ERROR-NO-CONTROLLER");
    };
    for (std::int32_t type = -3; type <= 20; ++type) {
        for (std::int32_t subtype = -3; subtype <= 20; ++subtype) {
            EXPECT_EQ(catalogue.getControllerName(type, subtype).view(), expected(type, subtype))
                << type << ", " << subtype;
        }
        for (const std::int32_t subtype : {lowestCode, highestCode}) {
            EXPECT_EQ(catalogue.getControllerName(type, subtype).view(), expected(type, subtype))
                << type << ", " << subtype;
        }
    }
    EXPECT_TRUE(catalogue.getControllerName(lowestCode, 1) == "ERROR-NO-CONTROLLER");
    EXPECT_TRUE(catalogue.getControllerName(highestCode, 1) == "ERROR-NO-CONTROLLER");
}

TEST(ControllerCatalogue, UnknownSubtypesAndTypesHaveFallBackNames) {
    const ControllerCatalogue catalogue;
    EXPECT_TRUE(catalogue.getControllerName(11, 5) == "Kestrix controller");
    EXPECT_TRUE(catalogue.getControllerName(13, 1) == "ERROR-NO-CONTROLLER");
}

TEST(ControllerCatalogue, AModelNameGivesItsTypeAndSubtype) {
    const ControllerCatalogue catalogue;
    for (const NameFacts& facts : names) {
        EXPECT_EQ(catalogue.getControllerType(facts.name), facts.type) << facts.name;
        EXPECT_EQ(catalogue.getControllerSubtype(facts.name), facts.subtype) << facts.name;
    }
}

TEST(ControllerCatalogue, OnlyModelNamesAndTheNameOfNoControllerAreValid) {
    const ControllerCatalogue catalogue;
    for (const NameFacts& facts : names) {
        EXPECT_EQ(catalogue.isValidControllerName(facts.name), facts.valid) << facts.name;
    }
}

TEST(ControllerCatalogue, TheNameWithoutATypeHasASubtypeThatShowsAsAnotherModel) {
    const ControllerCatalogue catalogue;
    EXPECT_EQ(catalogue.getControllerType("LSI-MegaRAID"), -1);
    EXPECT_EQ(catalogue.getControllerSubtype("LSI-MegaRAID"), 12);
    EXPECT_TRUE(catalogue.getControllerName(12, 12) == "Kestrix-D2");
    EXPECT_TRUE(catalogue.getControllerName(12, -1) == "LSI-MegaRAID");
}

TEST(ControllerCatalogue, ExplicitSizesAreAcceptedByTheTypesThatTakeThem) {
    const ControllerCatalogue catalogue;
    for (const TypeFacts& facts : types) {
        EXPECT_EQ(catalogue.acceptsExplicitSize(facts.type), facts.explicitSize) << facts.type;
    }
    for (const std::int32_t type : {lowestCode, -1, 0, 13, 99, highestCode}) {
        EXPECT_TRUE(catalogue.acceptsExplicitSize(type)) << type;
    }
}

TEST(ControllerCatalogue, TheCursorGivesTheRowsFromTheLastToTheEndMarker) {
    PciRowCursor cursor;
    for (std::size_t i = rows.size(); i-- > 0;) {
        EXPECT_EQ(text(cursor.nextPciRow()), text(rows[i])) << "row " << i;
    }
    EXPECT_EQ(text(cursor.nextPciRow()), text(rows[0]));
    EXPECT_EQ(text(cursor.nextPciRow()), text(rows[0]));
    cursor.resetPciRowCursor();
    EXPECT_EQ(text(cursor.nextPciRow()), text(rows[35]));
    EXPECT_EQ(text(cursor.nextPciRow()), text(rows[34]));
    cursor.resetPciRowCursor();
    EXPECT_EQ(text(cursor.nextPciRow()), text(rows[35]));
}

// The catalogue's tables against each other.

TEST(ControllerCatalogueTables, ThirtySixRowsEndInTheMarkerAndNameKnownTypes) {
    const std::vector<PciRow> walked = walk();
    ASSERT_EQ(walked.size(), 36U);
    for (std::size_t i = 0; i + 1 < walked.size(); ++i) {
        EXPECT_GE(walked[i].type, controller_type::first) << text(walked[i]);
        EXPECT_LE(walked[i].type, controller_type::last) << text(walked[i]);
        EXPECT_NE(walked[i].vendorId, 0) << text(walked[i]);
        EXPECT_EQ(walked[i].subsystemVendorId == 0xFFFF, walked[i].subsystemId == 0xFFFF)
            << text(walked[i]);
    }
}

TEST(ControllerCatalogueTables, NoRowIsHiddenByOneThatIsTriedBefore) {
    const std::vector<PciRow> walked = walk();
    for (std::size_t late = 0; late < walked.size(); ++late) {
        for (std::size_t early = 0; early < late; ++early) {
            const PciRow& a = walked[early];
            const PciRow& b = walked[late];
            const bool hides = a.vendorId == b.vendorId && a.deviceId == b.deviceId &&
                               (isGeneric(a) || (a.subsystemVendorId == b.subsystemVendorId &&
                                                 a.subsystemId == b.subsystemId));
            EXPECT_FALSE(hides) << text(a) << " hides " << text(b);
        }
    }
}

TEST(ControllerCatalogueTables, TheModelOfEveryRowCanBeNamedInAPolicy) {
    ControllerCatalogue catalogue;
    for (const PciRow& row : walk()) {
        const CString name = catalogue.getControllerName(row.type, row.subtype);
        EXPECT_TRUE(catalogue.isValidControllerName(name)) << text(row);
        EXPECT_EQ(catalogue.getControllerType(name), row.type) << text(row);
    }
}

TEST(ControllerCatalogueTables, ANameGivenByTypeAndSubtypeLeadsBackToThem) {
    const ControllerCatalogue catalogue;
    for (const Model& model : models) {
        const CString name = catalogue.getControllerName(model.type, model.subtype);
        // The two names that stand for no model of their own.
        if (name == "LSI-MegaRAID" || name == "Kestrix controller") {
            continue;
        }
        EXPECT_EQ(catalogue.getControllerType(name), model.type) << model.name;
        const std::int32_t subtype = catalogue.getControllerSubtype(name);
        EXPECT_TRUE(catalogue.getControllerName(model.type, subtype) == model.name) << model.name;
        if (model.subtype != any) {
            EXPECT_EQ(subtype, model.subtype) << model.name;
        }
    }
}

TEST(ControllerCatalogueTables, EveryTypeHasAUtilityBehindTheWrapper) {
    const ControllerCatalogue catalogue;
    std::set<std::int32_t> families;
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        const CString command = catalogue.getUtilityCommand(type);
        EXPECT_TRUE(command.startsWith("UTIL.BAT ")) << type;
        EXPECT_EQ(command.tokenCount(" "), 2U) << type;
        EXPECT_EQ(catalogue.getAcceptedReturnCode(type, 1), 0) << type;
        families.insert(catalogue.getUtilityFamily(type));
    }
    EXPECT_EQ(families, (std::set<std::int32_t>{1, 4, 5, 6, 7, 12}));
}

TEST(ControllerCatalogueTables, TheModelsOfTheFirstRowsAreNamedByTheirRows) {
    const std::vector<PciRow> walked = walk();
    for (std::size_t i = 0; i < walked.size(); ++i) {
        EXPECT_EQ(walked[i].namedInPolicies, walked.size() - 1 - i < 21) << text(walked[i]);
    }
}

} // namespace
} // namespace zolex
