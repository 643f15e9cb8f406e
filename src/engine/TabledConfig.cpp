#include "engine/TabledConfig.h"

#include "engine/Planning.h"
#include "model/RAIDController.h"

#include <algorithm>

namespace zolex {

const ConfigDefaults& TabledConfig::row() const {
    const auto fits = [this](const ConfigDefaults& row) {
        return (row.type == anyCode || row.type == controller().type()) &&
               (row.subtype == anyCode || row.subtype == controller().subtype());
    };
    const auto found = std::find_if(rows_.begin(), rows_.end(), fits);
    return found == rows_.end() ? rows_.back() : *found;
}

std::int32_t TabledConfig::defaultHotspareCount() const {
    const HotspareRule rule = row().hotspares;
    const std::int32_t drives = controller().numberOfDrives();
    const bool enough = rule.fromDrives > 0 && drives >= rule.fromDrives;
    return enough && (!rule.oddOnly || drives % 2 != 0) ? 1 : 0;
}

std::int32_t TabledConfig::defaultRAIDLevel(const RaidArray& array) const {
    constexpr std::size_t greaterEven = 5;
    constexpr std::size_t greaterOdd = 6;
    const std::size_t drives = array.driveCount();
    const std::size_t column = drives < greaterEven ? drives
                               : drives % 2 == 0    ? greaterEven
                                                    : greaterOdd;
    return row().levels.at(column);
}

std::int32_t TabledConfig::defaultWriteCache(const RaidArray& /*array*/) const {
    return row().writeCache;
}

std::int32_t TabledConfig::defaultReadAhead() const {
    return row().readAhead;
}

std::int32_t TabledConfig::defaultStripeSize() const {
    return row().stripeSize;
}

bool TabledConfig::canConfigure() const {
    return controller().numberOfDrives() >= row().leastDrives;
}

bool TabledConfig::supportsStripeSize(std::int32_t code) const {
    return row().stripeSizes.contains(code);
}

bool TabledConfig::supportsRAIDLevel(std::int32_t code) const {
    return row().raidLevels.contains(code);
}

} // namespace zolex
