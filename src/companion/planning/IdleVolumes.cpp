#include "companion/planning/IdleVolumes.h"

#include "companion/families/Family.h"

#include <algorithm>
#include <optional>
#include <set>

namespace zolex::companion {

namespace {

std::set<std::string> wantedIds(const Facts& facts, const Comparison& comparison) {
    const Layout captured = capturedLayout(facts);
    std::set<std::string> ids;
    for (const StandingGroup& group : comparison.groups) {
        if (!group.captured || *group.captured >= captured.groups.size()) {
            continue;
        }
        for (const LayoutVolume& volume : captured.groups[*group.captured].volumes) {
            ids.insert(volume.id);
        }
    }
    return ids;
}

void addHelp(IdleVolumes& idle, const std::string& line) {
    if (std::find(idle.help.begin(), idle.help.end(), line) == idle.help.end()) {
        idle.help.push_back(line);
    }
}

void tell(const Family* family, const LogicalDriveFacts& volume, IdleVolumes& idle) {
    if (volume.health == Health::critical) {
        idle.isOffline = true;
        idle.differences.push_back(
            {"state", "", volume.id, "online",
             volume.reportedState.empty() ? "offline" : "offline (" + volume.reportedState + ")"});
        for (const std::string& line : offlineHelp()) {
            addHelp(idle, line);
        }
        return;
    }
    const std::optional<FamilyIdle> why =
        family == nullptr ? std::nullopt : family->whyIdle(volume);
    if (why) {
        idle.differences.push_back({"state", "", volume.id, why->serves, why->state});
        addHelp(idle, why->help);
    }
}

} // namespace

IdleVolumes idleVolumes(const std::string& utility, const Facts& facts) {
    IdleVolumes idle;
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        tell(findFamily(utility), volume, idle);
    }
    return idle;
}

IdleVolumes idleVolumes(const std::string& utility, const Facts& facts,
                        const Comparison& comparison) {
    IdleVolumes idle;
    const std::set<std::string> wanted = wantedIds(facts, comparison);
    for (const LogicalDriveFacts& volume : facts.logicalDrives) {
        if (wanted.contains(volume.id)) {
            tell(findFamily(utility), volume, idle);
        }
    }
    return idle;
}

std::vector<std::string> offlineHelp() {
    return {"while its data is wanted, replace no drive and delete nothing: that loses it",
            "bring back the drives that left (cables, enclosure, power), and look at what its "
            "utility lists: zolexctl show"};
}

} // namespace zolex::companion
