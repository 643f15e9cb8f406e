#include "companion/facts/FactsReader.h"

#include <algorithm>

namespace zolex::companion {

const DriveFacts* Facts::drive(std::string_view location) const {
    const auto found = std::find_if(drives.begin(), drives.end(), [&](const DriveFacts& drive) {
        return drive.location == location;
    });
    return found == drives.end() ? nullptr : &*found;
}

Facts readFacts(std::int32_t /*controllerType*/, std::span<const std::string> listings) {
    Facts facts;
    facts.listings.resize(listings.size());
    return facts;
}

} // namespace zolex::companion
