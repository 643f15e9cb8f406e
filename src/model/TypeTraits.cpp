#include "model/TypeTraits.h"

namespace zolex {

namespace {

// Columns, first line: type; utility command; accepted exit codes besides 0; scan family; dialect;
// lines that list the drives, list the layout, reset; seconds before a command; whether a reset is
// tried again; whether ordered by bus.
// Second line: whether drives are named by target id; plain write-back; stripe size in place of
// "none"; whether sizes in MB are written; whether stripe size, rebuild rate, read-ahead and write
// cache are written. Order: by type, looked up by position.
// clang-format off
using namespace controller_type;
using enum Dialect;
using enum PlainWriteBack;
constexpr std::array<TypeTraits, controller_type::last> typeRows{{
    {family,    "UTIL.BAT QTCSEND",       {-1, -1}, 1,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::kb8,   true,  {true, true, true, true}},
    {arcconf2,  "UTIL.BAT ARCCONF",       {-1, -1}, 7,  conf,     {1, 0, 1}, 0,  false, false,
     false, always,     stripe::kb256, true,  {true, false, true, true}},
    {hrconf3,   "UTIL.BAT HRCONF",        {-1, -1}, 4,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::kb64,  false, {true, false, false, false}},
    {hrconf4,   "UTIL.BAT HRCONF",        {-1, -1}, 4,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::kb64,  false, {true, false, false, false}},
    {lsiScsi,   "UTIL.BAT CFGGEN1.02.02", {2, -1},  5,  cfggen,   {1, 0, 1}, 0,  false, false,
     true,  never,      stripe::none,  false, {false, false, false, false}},
    {lsiIde,    "UTIL.BAT HYPERWIN",      {-1, -1}, 6,  hyperwin, {2, 1, 1}, 0,  false, false,
     false, never,      stripe::kb64,  false, {true, false, false, true}},
    {arcconf7,  "UTIL.BAT ARCCONF",       {-1, -1}, 7,  conf,     {1, 0, 1}, 0,  true,  false,
     false, ofSubtype1, stripe::kb256, true,  {true, true, true, true}},
    {hrconf8,   "UTIL.BAT HRCONF",        {-1, -1}, 4,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::kb64,  false, {true, false, false, true}},
    {hrconf9,   "UTIL.BAT HRCONF",        {-1, -1}, 4,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::kb64,  false, {true, false, false, false}},
    {lsiSas,    "UTIL.BAT CFGGEN",        {-1, -1}, 6,  cfggen,   {1, 0, 1}, 15, false, true,
     false, never,      stripe::none,  true,  {false, false, false, false}},
    {arcconf11, "UTIL.BAT ARCCONF",       {-1, -1}, 7,  conf,     {1, 0, 1}, 0,  true,  false,
     false, ofSubtype1, stripe::kb256, true,  {true, true, true, true}},
    {megaRaid,  "UTIL.BAT MEGACLI",       {-1, 49}, 12, megaCli,  {2, 1, 2}, 0,  false, false,
     false, never,      stripe::kb64,  true,  {true, false, true, true}},
}};
constexpr TypeTraits otherType =
    {none,      "",                       {-1, -1}, 6,  conf,     {1, 0, 1}, 0,  false, false,
     false, never,      stripe::none,  true,  {true, true, true, true}};
// clang-format on

constexpr const TypeTraits& rowOf(std::int32_t type) {
    return type < controller_type::first || type > controller_type::last
               ? otherType
               : typeRows[static_cast<std::size_t>(type - controller_type::first)];
}

constexpr bool standInOrder() {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        if (rowOf(type).controllerType != type) {
            return false;
        }
    }
    return true;
}

/// Controllers of one utility are counted together.
constexpr bool familiesFollowUtilities() {
    for (const TypeTraits& one : typeRows) {
        for (const TypeTraits& other : typeRows) {
            if (one.utilityCommand == other.utilityCommand && one.scanFamily != other.scanFamily) {
                return false;
            }
        }
    }
    return true;
}

static_assert(coversEveryType(typeRows));
static_assert(standInOrder());
static_assert(familiesFollowUtilities());
static_assert((rowOf(controller_type::lsiScsi).dialect == Dialect::cfggen) ==
              usesCfggenSyntax(rowOf(controller_type::lsiScsi).utilityCommand,
                               rowOf(controller_type::lsiSas).utilityCommand));

} // namespace

const TypeTraits& traitsOf(std::int32_t controllerType) {
    return rowOf(controllerType);
}

std::int32_t finalStripeSize(std::int32_t controllerType, std::int32_t stripeSize) {
    return stripeSize == stripe::none ? rowOf(controllerType).stripeSize : stripeSize;
}

} // namespace zolex
