#include "companion/lint/Levels.h"

#include "companion/lint/Entries.h"
#include "model/Codes.h"

#include <algorithm>

namespace zolex::companion {

namespace {

AskedDrive onArray(const LogicalView* view, const DriveListView* array) {
    return {view, array, view == nullptr ? raid_level::notGiven : view->given.raidLevel,
            array == nullptr ? 0 : array->drives.size()};
}

} // namespace

bool is5E(std::int32_t level) {
    return level == raid_level::raid5E || level == raid_level::raid5EE;
}

bool canRebuild(std::int32_t level) {
    return level != raid_level::raid0 && level != raid_level::volume &&
           level != raid_level::simpleVolume;
}

std::vector<AskedDrive> plannedDrives(const PolicyView& policy) {
    std::vector<AskedDrive> drives;
    if (policy.customLogicalDrives) {
        for (const LogicalView& view : policy.logicalDrives) {
            const DriveListView* array =
                policy.customArrays ? policy.array(view.given.arrayIndex) : nullptr;
            drives.push_back(onArray(&view, array));
        }
        return drives;
    }
    const LogicalView* defaults = policy.logicalDefaults ? &*policy.logicalDefaults : nullptr;
    for (const DriveListView& array : policy.countingArrays()) {
        drives.push_back(onArray(defaults, &array));
    }
    if (!policy.customArrays) {
        drives.push_back(onArray(defaults, nullptr));
    }
    return drives;
}

std::size_t mostRemaining(const PolicyView& policy, std::size_t drives) {
    std::vector<const DriveView*> listed;
    const auto add = [&listed](const DriveListView& list) {
        for (const DriveView& drive : list.drives) {
            if (std::none_of(listed.begin(), listed.end(),
                             [&](const DriveView* each) { return each->isSameDrive(drive); })) {
                listed.push_back(&drive);
            }
        }
    };
    for (const DriveListView& array : policy.countingArrays()) {
        add(array);
    }
    if (policy.hotspares) {
        add(*policy.hotspares);
    }
    // A number and a position may be the same drive.
    const auto ofKind = [&listed](bool numbers) {
        return static_cast<std::size_t>(
            std::count_if(listed.begin(), listed.end(), [numbers](const DriveView* each) {
                return (each->number > 0) == numbers;
            }));
    };
    const std::size_t taken = std::max(ofKind(true), ofKind(false));
    return drives > taken ? drives - taken : 0;
}

std::size_t mostAutomaticHotspares(const PolicyView& policy, const EntryView& entry) {
    if (policy.policy->effective("Hotspares") != nullptr) {
        return 0;
    }
    if (policy.arrayDefaults) {
        return static_cast<std::size_t>(std::max(policy.arrayDefaults->given.hotspareCount, 0));
    }
    if (policy.isGenerated()) {
        return 0;
    }
    std::vector<Kind> kinds = kindsOf(entry.given.controllerType.view());
    if (kinds.empty()) {
        kinds = allKinds();
    }
    std::size_t most = 0;
    for (const Kind& kind : kinds) {
        const std::int32_t count = kind.rules->defaultHotspareCount(entry.given.numberOfDrives);
        most = std::max(most, static_cast<std::size_t>(count));
    }
    return most;
}

std::string levelWords(const Kind& kind) {
    std::vector<std::string> words;
    for (std::int32_t code = raid_level::raid0; code <= raid_level::simpleVolume; ++code) {
        if (code != raid_level::notGiven && kind.rules->raidLevels.contains(code)) {
            words.emplace_back(raidLevelWord(code));
        }
    }
    return joinWords(words, ", ");
}

std::string stripeWords(const Kind& kind) {
    std::vector<std::string> words;
    for (std::int32_t code = stripe::kb16; code < stripe::none; ++code) {
        if (kind.rules->stripeSizes.contains(code)) {
            words.emplace_back(stripeSizeWord(code));
        }
    }
    return joinWords(words, ", ");
}

} // namespace zolex::companion
