#include "model/ControllerCatalogue.h"

#include "model/Codes.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>

namespace zolex {

namespace {

constexpr std::int32_t anySubtype = -2;
constexpr std::uint16_t anyId = 0xFFFF;
constexpr std::uint16_t maker = ZOLEX_MAKER_PCI_VENDOR_ID;

constexpr std::string_view noController = "ERROR-NO-CONTROLLER";

// clang-format off
// Model name of a type and subtype. Order matters: the first row whose type is equal and whose
// subtype is equal or any (-2) gives the name.
struct NameRow {
    std::int32_t type;
    std::int32_t subtype;
    std::string_view name;
};
constexpr std::array<NameRow, 39> nameRows{{
    {1,  1,          "Kestrix-A1"},
    {1,  2,          "Kestrix-A2"},
    {1,  3,          "Kestrix-A3"},
    {1,  4,          "Kestrix-A4"},
    {1,  5,          "Kestrix-A5"},
    {1,  6,          "Kestrix-A6"},
    {1,  7,          "Kestrix-A7"},
    {1,  anySubtype, "Kestrix controller"},
    {2,  anySubtype, "Kestrix-A8"},
    {3,  anySubtype, "Kestrix-A9"},
    {4,  anySubtype, "Kestrix-A10"},
    {5,  anySubtype, "LSI-SCSI-RAID"},
    {6,  anySubtype, "LSI-IDEal-RAID"},
    {7,  1,          "Kestrix-B2"},
    {7,  anySubtype, "Kestrix-B1"},
    {8,  anySubtype, "Kestrix-B3"},
    {9,  anySubtype, "Kestrix-B4"},
    {10, 1,          "LSI-SAS-1078-IR"},
    {10, 2,          "Kestrix-B6"},
    {10, 3,          "Kestrix-B5"},
    {10, anySubtype, "LSI-SAS-RAID"},
    {11, 1,          "Kestrix-B8"},
    {11, 2,          "Kestrix-B7"},
    {11, anySubtype, "Kestrix controller"},
    {12, 1,          "LSI-MegaRAID-8480"},
    {12, 2,          "Kestrix-C1"},
    {12, 3,          "Kestrix-C2"},
    {12, 4,          "Kestrix-C3"},
    {12, 5,          "Kestrix-C4"},
    {12, 6,          "Kestrix-C5"},
    {12, 7,          "Kestrix-C6"},
    {12, 8,          "Kestrix-C7"},
    {12, 9,          "Kestrix-C8"},
    {12, 10,         "Kestrix-C9"},
    {12, 11,         "Kestrix-D1"},
    {12, 12,         "Kestrix-D2"},
    {12, 13,         "Kestrix-D3"},
    {12, 14,         "Kestrix-D4"},
    {12, anySubtype, "LSI-MegaRAID"},
}};

// Type and subtype of a model name. Names are unique. -1: the name gives none. The two columns are
// not the inverse of the table above: "LSI-MegaRAID" has no type, yet a subtype. The last column
// says that a policy may name the model whatever the PCI rows hold.
struct ModelRow {
    std::string_view name;
    std::int32_t type;
    std::int32_t subtype;
    bool namedInPolicies;
};
constexpr std::array<ModelRow, 38> modelRows{{
    {"Kestrix-A1",         1,  1,  true},
    {"Kestrix-A2",         1,  2,  true},
    {"Kestrix-A3",         1,  3,  true},
    {"Kestrix-A4",         1,  4,  true},
    {"Kestrix-A5",         1,  5,  true},
    {"Kestrix-A6",         1,  6,  true},
    {"Kestrix-A7",         1,  7,  true},
    {"Kestrix controller", 1,  -1, false},
    {"Kestrix-A8",         2,  -1, false},
    {"Kestrix-A9",         3,  -1, false},
    {"Kestrix-A10",        4,  -1, false},
    {"LSI-SCSI-RAID",      5,  -1, false},
    {"LSI-IDEal-RAID",     6,  -1, false},
    {"Kestrix-B1",         7,  7,  false},
    {"Kestrix-B2",         7,  1,  true},
    {"Kestrix-B3",         8,  -1, false},
    {"Kestrix-B4",         9,  -1, false},
    {"LSI-SAS-RAID",       10, -1, true},
    {"Kestrix-B5",         10, 3,  true},
    {"Kestrix-B6",         10, 2,  true},
    {"LSI-SAS-1078-IR",    10, 1,  true},
    {"Kestrix-B7",         11, 2,  true},
    {"Kestrix-B8",         11, 1,  true},
    {"LSI-MegaRAID",       -1, 12, true},
    {"LSI-MegaRAID-8480",  12, 1,  true},
    {"Kestrix-C1",         12, 2,  true},
    {"Kestrix-C2",         12, 3,  true},
    {"Kestrix-C3",         12, 4,  true},
    {"Kestrix-C4",         12, 5,  true},
    {"Kestrix-C5",         12, 6,  true},
    {"Kestrix-C6",         12, 7,  true},
    {"Kestrix-C7",         12, 8,  true},
    {"Kestrix-C8",         12, 9,  true},
    {"Kestrix-C9",         12, 10, true},
    {"Kestrix-D1",         12, 11, true},
    {"Kestrix-D2",         12, 12, true},
    {"Kestrix-D3",         12, 13, true},
    {"Kestrix-D4",         12, 14, true},
}};

// PCI identification: vendor, device, subsystem vendor, subsystem id (0xFFFF: any), type, subtype,
// whether a policy may name the row's model. Order matters: the table is walked from its last row
// to its first, so that the rows with an exact subsystem come before the generic ones. Row 0 is the
// end marker.
constexpr std::array<PciRow, 36> pciRows{{
    {0x0000, 0x0000, anyId,  anyId,  -1, -1,  true},
    {maker,  0x002E, anyId,  anyId,  1,  1,   true},
    {maker,  0x01BD, anyId,  anyId,  1,  -1,  true},
    {0x9005, 0x0250, anyId,  anyId,  1,  -1,  true},
    {0x9005, 0x0285, 0x9005, 0x0290, 2,  -1,  true},
    {0x8086, 0x25B0, anyId,  anyId,  3,  -1,  true},
    {0x8086, 0x24DF, anyId,  anyId,  3,  -1,  true},
    {0x9005, 0x808F, anyId,  anyId,  4,  1,   true},
    {0x9005, 0x809D, anyId,  anyId,  4,  1,   true},
    {0x1000, 0x0030, anyId,  anyId,  5,  1,   true},
    {0x1166, 0x0213, anyId,  anyId,  6,  1,   true},
    {0x9005, 0x0285, maker,  0x02F2, 7,  7,   true},
    {0x9005, 0x043F, anyId,  anyId,  8,  -1,  true},
    {0x8086, 0x27C3, anyId,  anyId,  9,  -1,  true},
    {0x1000, 0x0050, anyId,  anyId,  10, -1,  true},
    {0x1000, 0x0056, anyId,  anyId,  10, -1,  true},
    {0x1000, 0x005C, anyId,  anyId,  10, -1,  true},
    {0x8086, 0x2682, anyId,  anyId,  9,  -1,  true},
    {0x9005, 0x0286, anyId,  anyId,  11, 2,   true},
    {0x1000, 0x0058, anyId,  anyId,  10, -1,  true},
    {0x1000, 0x0054, anyId,  anyId,  10, -1,  true},
    {0x1000, 0x0062, anyId,  anyId,  10, 1,   false},
    {0x1000, 0x0073, anyId,  anyId,  12, 10,  false},
    {0x1000, 0x0079, anyId,  anyId,  12, 14,  false},
    {0x1000, 0x0411, 0x1000, 0x1002, 12, 1,   false},
    {0x1000, 0x0060, maker,  0x0363, 12, 6,   false},
    {0x1000, 0x0060, maker,  0x0364, 12, 2,   false},
    {0x1000, 0x0060, maker,  0x0379, 12, 7,   false},
    {0x9005, 0x0285, maker,  0x034D, 7,  1,   false},
    {0x1000, 0x0060, maker,  0x0365, 12, 5,   false},
    {0x1000, 0x0060, maker,  0x03A2, 12, 4,   false},
    {0x1000, 0x0060, maker,  0x03AC, 12, 3,   false},
    {0x1000, 0x0079, maker,  0x03C7, 12, 11,  false},
    {0x1000, 0x0079, maker,  0x03B2, 12, 12,  false},
    {0x1000, 0x0073, maker,  0x03B1, 12, 8,   false},
    {0x1000, 0x0079, maker,  0x03B3, 12, 13,  false},
}};
// clang-format on

const ModelRow* findModel(std::string_view name) {
    const auto* row = std::find_if(modelRows.begin(), modelRows.end(),
                                   [name](const ModelRow& model) { return name == model.name; });
    return row == modelRows.end() ? nullptr : row;
}

constexpr std::string_view nameOf(std::int32_t type, std::int32_t subtype) {
    for (const NameRow& row : nameRows) {
        if (row.type == type && (row.subtype == subtype || row.subtype == anySubtype)) {
            return row.name;
        }
    }
    return noController;
}

constexpr bool everyTypeHasAName() {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        if (nameOf(type, subtypeNotSet) == noController) {
            return false;
        }
    }
    return true;
}
static_assert(everyTypeHasAName());

/// Whether each controller type stands in a row of the table.
template <typename Table>
constexpr bool namesEveryType(const Table& table) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        if (std::none_of(table.begin(), table.end(),
                         [type](const auto& row) { return row.type == type; })) {
            return false;
        }
    }
    return true;
}
static_assert(namesEveryType(modelRows));
static_assert(namesEveryType(pciRows));

constexpr auto namesOfPciRows = [] {
    std::array<std::string_view, pciRows.size()> names;
    for (std::size_t row = 0; row < names.size(); ++row) {
        names[row] = nameOf(pciRows[row].type, pciRows[row].subtype);
    }
    return names;
}();

bool isNamedByPciRow(std::string_view name) {
    for (std::size_t row = 0; row < pciRows.size(); ++row) {
        if (pciRows[row].namedInPolicies && namesOfPciRows[row] == name) {
            return true;
        }
    }
    return false;
}

} // namespace

PciRowCursor::PciRowCursor() : row_(pciRows.size() - 1) {}

void PciRowCursor::resetPciRowCursor() {
    *this = PciRowCursor();
}

PciRow PciRowCursor::nextPciRow() {
    const PciRow row = pciRows[row_];
    if (row_ > 0) {
        --row_;
    }
    return row;
}

CString ControllerCatalogue::getControllerName(std::int32_t type, std::int32_t subtype) {
    return nameOf(type, subtype);
}

CString ControllerCatalogue::getUtilityCommand(std::int32_t type) {
    return traitsOf(type).utilityCommand;
}

std::int32_t ControllerCatalogue::getUtilityFamily(std::int32_t type) {
    return traitsOf(type).scanFamily;
}

std::int32_t ControllerCatalogue::getAcceptedReturnCode(std::int32_t type, std::int32_t slot) {
    constexpr std::int32_t never = -1;
    switch (slot) {
    case 1:
        return 0;
    case 2:
    case 3:
        return traitsOf(type).acceptedCodes[static_cast<std::size_t>(slot - 2)];
    default:
        return never;
    }
}

std::int32_t ControllerCatalogue::getControllerType(const CString& name) {
    const ModelRow* model = findModel(name);
    return model == nullptr ? controller_type::none : model->type;
}

std::int32_t ControllerCatalogue::getControllerSubtype(const CString& name) {
    const ModelRow* model = findModel(name);
    return model == nullptr ? subtypeNotSet : model->subtype;
}

CString ControllerCatalogue::modelNames() {
    CString names;
    for (const ModelRow& model : modelRows) {
        if (model.type != controller_type::none) {
            names.append(names.isEmpty() ? "" : ", ").append(model.name);
        }
    }
    return names;
}

bool ControllerCatalogue::isValidControllerName(std::string_view name) {
    const ModelRow* model = findModel(name);
    return (model != nullptr && model->namedInPolicies) || isNamedByPciRow(name);
}

bool ControllerCatalogue::acceptsExplicitSize(std::int32_t type) {
    return traitsOf(type).explicitSizes;
}

} // namespace zolex
