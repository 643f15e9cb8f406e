#include "companion/execution/PlanRun.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"

#include <algorithm>
#include <string_view>

namespace zolex::companion {

namespace {

constexpr std::size_t mostLines = 24;
constexpr std::size_t longestLineShown = 200;

void add(std::string& list, const std::string& item) {
    list += (list.empty() ? "" : ", ") + item;
}

/// "A, Logical.2 of B stand".
std::string verb(std::size_t count, const char* one, const char* many) {
    return count == 1 ? one : many;
}

} // namespace

std::vector<std::string> commandLines(const std::string& command, const std::string& output) {
    std::vector<std::string> lines = {printable(command)};
    std::string_view rest = output;
    while (!rest.empty() && lines.size() <= mostLines) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        std::string_view line = rest.substr(0, end);
        while (!line.empty() && std::string_view(" \t\r").find(line.back()) != line.npos) {
            line.remove_suffix(1);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!line.empty()) {
            lines.push_back("| " + printable(line.substr(0, longestLineShown)));
        }
    }
    if (!text::trim(rest, " \t\r\n").empty()) {
        lines.emplace_back("| ...");
    }
    return lines;
}

namespace {

/// Logical drives that the plan removes, and that stand all the same: not over drives on which
/// what is planned stands already.
std::vector<std::string> notRemoved(const ControllerPlanning& planning, const Layout& found,
                                    const Comparison& comparison) {
    std::vector<std::string> ids;
    for (const Loss& loss : planning.losses) {
        std::vector<std::string> drives = loss.drives;
        std::sort(drives.begin(), drives.end(), locationStandsBefore);
        bool isReplaced = loss.kind != "logical_drive";
        for (std::size_t i = 0; i < planning.after.groups.size(); ++i) {
            isReplaced = isReplaced || (planning.after.groups[i].drives() == drives &&
                                        comparison.groups[i].volumesThatStand > 0);
        }
        for (const LayoutGroup& group : found.groups) {
            for (const LayoutVolume& volume : group.volumes) {
                if (!isReplaced && group.drives() == drives && volume.raidType == loss.raidType &&
                    std::find(ids.begin(), ids.end(), volume.id) == ids.end()) {
                    ids.push_back(volume.id);
                }
            }
        }
    }
    return ids;
}

} // namespace

std::string nowLine(const ControllerPlanning& planning, const Facts& facts) {
    const Layout found = capturedLayout(facts);
    const Comparison comparison =
        compareLayouts(facts, found, planning.after, {planning.controller.utility});
    std::string stands;
    std::string missing;
    std::size_t standing = 0;
    std::size_t lacking = 0;
    const auto tell = [&](const std::string& name, bool isThere) {
        add(isThere ? stands : missing, name);
        ++(isThere ? standing : lacking);
    };
    for (std::size_t i = 0; i < planning.after.groups.size(); ++i) {
        const LayoutGroup& group = planning.after.groups[i];
        for (std::size_t k = 0; k < group.volumes.size(); ++k) {
            tell(group.volumes.size() == 1 ? "array " + group.id
                                           : group.volumes[k].id + " of array " + group.id,
                 k < comparison.groups[i].volumesThatStand);
        }
    }
    for (std::size_t i = 0; i < planning.after.spares.size(); ++i) {
        tell("hot spare " + planning.after.spares[i].location, !comparison.spares[i].empty());
    }
    std::string line = stands.empty() ? "" : stands + verb(standing, " stands", " stand");
    if (!missing.empty()) {
        add(line,
            missing + verb(lacking, " does not", " do not") + (stands.empty() ? " stand" : ""));
    }
    std::vector<std::string> others = notRemoved(planning, found, comparison);
    for (std::string& id : others) {
        id.insert(0, "LD ");
    }
    for (const Difference& difference : comparison.differences) {
        const std::string name = difference.logicalDrive.empty()
                                     ? "hot spare " + difference.location
                                     : "LD " + difference.logicalDrive;
        if (difference.attribute == "surplus" &&
            std::find(others.begin(), others.end(), name) == others.end()) {
            others.push_back(name);
        }
    }
    // Layouts of other controllers are no part of what stands.
    const bool hasForeign = std::any_of(planning.losses.begin(), planning.losses.end(),
                                        [](const Loss& loss) { return loss.kind == "foreign"; });
    if (others.empty() && !planning.losses.empty() && !hasForeign) {
        line += (line.empty() ? "" : "; ") + std::string("what the plan removes is gone");
    }
    for (const std::string& other : others) {
        line += (line.empty() ? "still there: " : "; still there: ") + other;
    }
    return "now on controller " + std::to_string(planning.controller.number) + ": " +
           (line.empty() ? "nothing stands" : printable(line));
}

std::string differenceText(const Difference& difference) {
    const bool isPlanned = difference.logicalDrive.starts_with("Logical.");
    const std::string volume =
        difference.logicalDrive.empty() ? "" : (isPlanned ? "" : "LD ") + difference.logicalDrive;
    const std::string where = difference.location.empty() ? volume : difference.location;
    return printable(where + (where.empty() ? "" : ", ") + difference.attribute + ": planned is " +
                     (difference.wanted.empty() ? "none" : difference.wanted) + "; found is " +
                     (difference.found.empty() ? "none" : difference.found));
}

} // namespace zolex::companion
