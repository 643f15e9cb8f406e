#include "companion/layout/DriveClasses.h"
#include "companion/facts/Bytes.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

namespace zolex::companion {

namespace {

bool isGood(const DriveFacts& drive) {
    const bool isAtWork = drive.state == DriveState::free || drive.state == DriveState::member ||
                          drive.state == DriveState::hotspare ||
                          drive.state == DriveState::rebuilding;
    return isAtWork && drive.health != Health::critical && !drive.isForeign &&
           drive.capacityBytes.has_value();
}

/// How far sizes of two drives may be apart that are listed alike.
std::uint64_t granularity(const DriveFacts& a, const DriveFacts& b) {
    return std::max({a.capacityTolerance, b.capacityTolerance, bytesOfMb});
}

auto kindOf(const DriveFacts& drive) {
    return std::tie(drive.protocol, drive.mediaType);
}

} // namespace

DriveClasses::DriveClasses(const Facts& facts) {
    std::vector<const DriveFacts*> good;
    for (const DriveFacts& drive : facts.drives) {
        const bool isNew = entries_.try_emplace(drive.location, Entry{&drive, 0}).second;
        if (isNew && isGood(drive)) {
            good.push_back(&drive);
        }
    }
    std::stable_sort(good.begin(), good.end(), [](const DriveFacts* a, const DriveFacts* b) {
        return std::tuple_cat(kindOf(*a), std::tie(*a->capacityBytes)) <
               std::tuple_cat(kindOf(*b), std::tie(*b->capacityBytes));
    });
    const DriveFacts* first = nullptr; // of the class
    std::size_t number = 0;
    for (const DriveFacts* const drive : good) {
        const bool belongs =
            first != nullptr && kindOf(*first) == kindOf(*drive) &&
            *drive->capacityBytes - *first->capacityBytes <= granularity(*first, *drive);
        if (!belongs) {
            first = drive;
            ++number;
        }
        entries_.find(drive->location)->second.number = number;
    }
}

const DriveFacts* DriveClasses::drive(std::string_view location) const {
    const auto found = entries_.find(location);
    return found == entries_.end() ? nullptr : found->second.drive;
}

std::string DriveClasses::wordOf(const std::string& location) const {
    const auto found = entries_.find(location);
    const std::size_t number = found == entries_.end() ? 0 : found->second.number;
    return number == 0 ? "=" + location : "#" + std::to_string(number);
}

std::string DriveClasses::wordsOf(const std::vector<std::string>& locations) const {
    std::vector<std::string> words;
    words.reserve(locations.size());
    for (const std::string& location : locations) {
        words.push_back(wordOf(location));
    }
    std::sort(words.begin(), words.end());
    std::string text;
    for (const std::string& word : words) {
        text += word + " ";
    }
    return text;
}

bool DriveClasses::areInterchangeable(const std::string& a, const std::string& b,
                                      bool inOneEnclosure) const {
    const DriveFacts* const one = drive(a);
    const DriveFacts* const other = drive(b);
    if (one == nullptr || other == nullptr || wordOf(a) != wordOf(b)) {
        return false;
    }
    return !inOneEnclosure ||
           (one->enclosure == other->enclosure && one->channel == other->channel);
}

} // namespace zolex::companion
