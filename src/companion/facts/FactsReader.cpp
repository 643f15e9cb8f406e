#include "companion/facts/FactsReader.h"

#include "companion/facts/Utilities.h"
#include "model/Codes.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

struct UtilityRow {
    std::int32_t controllerType;
    Facts (*read)(std::span<const std::string> listings);
};

// Columns: controller type, what reads the listings of its utility. The order does not matter.
// clang-format off
constexpr std::array<UtilityRow, 12> utilities = {{
    {controller_type::family,    readQtcsend},
    {controller_type::arcconf2,  readArcconf},
    {controller_type::hrconf3,   readHrconf},
    {controller_type::hrconf4,   readHrconf},
    {controller_type::lsiScsi,   readCfggenScsi},
    {controller_type::lsiIde,    readHyperwin},
    {controller_type::arcconf7,  readArcconf},
    {controller_type::hrconf8,   readHrconf},
    {controller_type::hrconf9,   readHrconf},
    {controller_type::lsiSas,    readCfggen},
    {controller_type::arcconf11, readArcconf},
    {controller_type::megaRaid,  readMegacli},
}};
// clang-format on

} // namespace

std::vector<std::string> LogicalDriveFacts::drives() const {
    std::vector<std::string> all;
    for (const std::vector<std::string>& span : spans) {
        all.insert(all.end(), span.begin(), span.end());
    }
    return all;
}

bool LogicalDriveFacts::isOn(std::string_view location) const {
    return std::any_of(spans.begin(), spans.end(), [&](const std::vector<std::string>& span) {
        return std::find(span.begin(), span.end(), location) != span.end();
    });
}

const DriveFacts* Facts::drive(std::string_view location) const {
    const auto found = std::find_if(drives.begin(), drives.end(), [&](const DriveFacts& drive) {
        return drive.location == location;
    });
    return found == drives.end() ? nullptr : &*found;
}

Facts readFacts(std::int32_t controllerType, std::span<const std::string> listings) {
    const auto row = std::find_if(utilities.begin(), utilities.end(), [&](const UtilityRow& each) {
        return each.controllerType == controllerType;
    });
    Facts facts = row == utilities.end() ? Facts() : row->read(listings);
    facts.listings.resize(listings.size());
    return facts;
}

} // namespace zolex::companion
