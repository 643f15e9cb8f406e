#include "companion/planning/UsedDrives.h"

#include <cstddef>
#include <vector>

namespace zolex::companion {

std::set<std::string> usedDrives(const ControllerPlanning& planning, bool keeps) {
    const Comparison& comparison = planning.comparison;
    std::set<std::string> used;
    for (std::size_t i = 0; i < planning.after.groups.size(); ++i) {
        const bool stands = keeps && i < comparison.groups.size() && comparison.groups[i].isWhole;
        const std::vector<std::string> drives =
            stands ? planning.before.groups.at(*comparison.groups[i].captured).drives()
                   : planning.after.groups[i].drives();
        used.insert(drives.begin(), drives.end());
    }
    for (std::size_t i = 0; i < planning.after.spares.size(); ++i) {
        const bool stands = keeps && i < comparison.spares.size() && !comparison.spares[i].empty();
        used.insert(stands ? comparison.spares[i] : planning.after.spares[i].location);
    }
    return used;
}

} // namespace zolex::companion
