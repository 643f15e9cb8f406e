#include "readers/LANYARDReader.h"

#include "model/Codes.h"
#include "model/RAIDController.h"
#include "readers/ListingValues.h"

#include <array>
#include <utility>

namespace zolex {

namespace {

// Columns: the word of a level, its code. The order does not matter.
constexpr auto levels = std::to_array<WordCode>({
    {"RAID0", raid_level::raid0},
    {"RAID1", raid_level::raid1},
    {"RAID5", raid_level::raid5},
});
static_assert(hasDistinctWords<WordCode>(levels));

} // namespace

bool LANYARDReader::readConfiguration(RAIDController& controller, Listings listings) {
    beginController(controller);
    setListing(listings, 0);
    RAIDConfiguration configuration;
    configuration.stripeSize = stripe::kb64;
    for (std::string_view line = nextLine(); line != "END"; line = nextLine()) {
        if (line == endOfOutput || !readLine(splitAtBlanks(line), configuration)) {
            return false;
        }
    }
    if (!configuration.arrays().empty()) {
        controller.setCaptured(std::move(configuration));
    }
    return true;
}

bool LANYARDReader::readLine(const std::vector<std::string_view>& words,
                             RAIDConfiguration& configuration) {
    if (words.size() < 2) {
        return false;
    }
    return words[0] == "DRIVE"   ? readDrive(words)
           : words[0] == "ARRAY" ? readArray(words, configuration)
           : words[0] == "SPARE" ? readHotspare(words, configuration)
                                 : false;
}

bool LANYARDReader::readDrive(const std::vector<std::string_view>& words) {
    const auto position = parsePosition(words[1], ",");
    if (!position || words.size() != 3) {
        return false;
    }
    const std::int32_t sizeMb = CString(words[2]).toInt();
    if (checkPosition(position->channel, position->id)) {
        controller().setSize(position->channel, position->id, sizeMb);
    }
    return true;
}

bool LANYARDReader::readArray(const std::vector<std::string_view>& words,
                              RAIDConfiguration& configuration) {
    const auto level = findCode(levels, words[1]);
    RaidArray array;
    for (std::size_t i = 2; i < words.size(); ++i) {
        const auto position = parsePosition(words[i], ",");
        if (!position) {
            return false;
        }
        addMember(array, *position);
    }
    LogicalDrive drive;
    drive.raidLevel = level.value_or(raid_level::none);
    drive.arrayIndex = static_cast<std::int32_t>(configuration.arrays().size());
    return level && addArray(configuration, std::move(array)) &&
           addLogicalDrive(configuration, drive);
}

bool LANYARDReader::readHotspare(const std::vector<std::string_view>& words,
                                 RAIDConfiguration& configuration) {
    const auto position = parsePosition(words[1], ",");
    return position &&
           addHotspare(configuration, {.channelNumber = position->channel, .id = position->id});
}

} // namespace zolex
