#include "model/Server.h"

#include "model/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>

namespace zolex_sim {
namespace {

constexpr std::int64_t maxLocationNumber = 65535;

// In the order of the enumeration.
constexpr std::array<std::string_view, 10> statusWords = {
    "good",   "bad",     "failed", "foreign", "hotspare",
    "online", "rebuild", "jbod",   "missing", "dedicated"};
static_assert(statusWords.size() == static_cast<std::size_t>(DriveStatus::dedicated) + 1);
constexpr std::array<std::string_view, 2> mediumWords = {"hdd", "ssd"};
constexpr std::array<std::string_view, 7> effectWords = {
    "sickDrive",      "plainText",      "truncated", "unknownKey",
    "missingSection", "wordOfTomorrow", "refused"};
static_assert(effectWords.size() == static_cast<std::size_t>(EffectKind::refused) + 1);
constexpr std::array<std::string_view, 2> writeWords = {"WT", "WB"};
constexpr std::array<std::string_view, 3> readWords = {"ADRA", "RA", "NORA"};

template <typename Value, std::size_t count>
std::optional<Value> valueNamed(const std::array<std::string_view, count>& words,
                                std::string_view word) {
    for (std::size_t i = 0; i < count; ++i) {
        if (equalsIgnoringCase(words[i], word)) {
            return static_cast<Value>(i);
        }
    }
    return std::nullopt;
}

std::optional<int> parseLocationNumber(std::string_view digits) {
    const std::optional<std::int64_t> number = parseWhole(digits);
    if (!number || *number > maxLocationNumber) {
        return std::nullopt;
    }
    return static_cast<int>(*number);
}

/// Twice the room that the level keeps of the spans, which may be half a MB more than a whole
/// number.
std::int64_t twiceCapacity(const Controller& controller, RaidLevel level,
                           const std::vector<std::vector<DriveLocation>>& spans) {
    const LevelRules& rules = rulesOf(level);
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    std::int64_t sum = 0;
    std::int64_t members = 0;
    std::int64_t dataDrives = 0;
    for (const std::vector<DriveLocation>& span : spans) {
        members += static_cast<std::int64_t>(span.size());
        dataDrives += static_cast<std::int64_t>(span.size()) - rules.redundancy;
        for (const DriveLocation& location : span) {
            sum += controller.driveAt(location)->sizeMb;
            smallest = std::min(smallest, controller.driveAt(location)->sizeMb);
        }
    }
    switch (rules.room) {
    case Room::half:
        return members == 0 ? 0 : members * smallest;
    case Room::sum:
        return 2 * sum;
    case Room::dataDrives:
        break;
    }
    return dataDrives <= 0 ? 0 : 2 * dataDrives * smallest;
}

} // namespace

std::string toText(const DriveLocation& location) {
    return (location.enclosure ? std::to_string(*location.enclosure) : std::string()) + ":" +
           std::to_string(location.slot);
}

std::string toText(const std::vector<DriveLocation>& locations) {
    std::string text;
    for (const DriveLocation& location : locations) {
        text += (text.empty() ? "" : ",") + toText(location);
    }
    return text;
}

std::optional<DriveLocation> parseLocation(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    DriveLocation location;
    if (colon > 0) {
        location.enclosure = parseLocationNumber(text.substr(0, colon));
        if (!location.enclosure) {
            return std::nullopt;
        }
    }
    const std::optional<int> slot = parseLocationNumber(text.substr(colon + 1));
    if (!slot) {
        return std::nullopt;
    }
    location.slot = *slot;
    return location;
}

std::string_view statusWord(DriveStatus status) {
    return statusWords[static_cast<std::size_t>(status)];
}
std::optional<DriveStatus> statusNamed(std::string_view word) {
    return valueNamed<DriveStatus>(statusWords, word);
}
std::optional<EffectKind> effectNamed(std::string_view word) {
    return valueNamed<EffectKind>(effectWords, word);
}

std::optional<Medium> mediumNamed(std::string_view word) {
    return valueNamed<Medium>(mediumWords, word);
}

std::string_view policyWord(WritePolicy policy) {
    return writeWords[static_cast<std::size_t>(policy)];
}
std::string_view policyWord(ReadPolicy policy) {
    return readWords[static_cast<std::size_t>(policy)];
}
std::optional<WritePolicy> writePolicyNamed(std::string_view word) {
    return valueNamed<WritePolicy>(writeWords, word);
}
std::optional<ReadPolicy> readPolicyNamed(std::string_view word) {
    return valueNamed<ReadPolicy>(readWords, word);
}

bool standsBefore(const PciFunction& a, const PciFunction& b) {
    return std::tie(a.bus, a.device, a.function, a.domain) <
           std::tie(b.bus, b.device, b.function, b.domain);
}

bool Controller::supports(RaidLevel level) const {
    return std::find(identity.levels.begin(), identity.levels.end(), level) !=
           identity.levels.end();
}

const Drive* Controller::driveAt(const DriveLocation& location) const {
    const auto found = std::find_if(drives.begin(), drives.end(),
                                    [&](const Drive& drive) { return drive.location == location; });
    return found == drives.end() ? nullptr : &*found;
}

Drive* Controller::driveAt(const DriveLocation& location) {
    return const_cast<Drive*>(static_cast<const Controller*>(this)->driveAt(location));
}

std::optional<MemberPlace> Controller::placeOf(const DriveLocation& location) const {
    for (std::size_t array = 0; array < arrays.size(); ++array) {
        for (std::size_t span = 0; span < arrays[array].spans.size(); ++span) {
            const std::vector<DriveLocation>& members = arrays[array].spans[span];
            const auto found = std::find(members.begin(), members.end(), location);
            if (found != members.end()) {
                return MemberPlace{array, span, static_cast<std::size_t>(found - members.begin())};
            }
        }
    }
    return std::nullopt;
}

bool Controller::isFree(const Drive& drive) const {
    return drive.status == DriveStatus::good && !placeOf(drive.location);
}

std::optional<std::size_t>
Controller::arrayOf(const std::vector<std::vector<DriveLocation>>& spans) const {
    const auto sameDrives = [](const std::vector<DriveLocation>& a,
                               const std::vector<DriveLocation>& b) {
        return std::is_permutation(a.begin(), a.end(), b.begin(), b.end());
    };
    const auto found = std::find_if(arrays.begin(), arrays.end(), [&](const Array& array) {
        return std::equal(array.spans.begin(), array.spans.end(), spans.begin(), spans.end(),
                          sameDrives);
    });
    return found == arrays.end() ? std::nullopt
                                 : std::optional(static_cast<std::size_t>(found - arrays.begin()));
}

std::vector<std::optional<int>> Controller::enclosures() const {
    std::vector<std::optional<int>> found;
    for (const Drive& drive : drives) {
        if (std::find(found.begin(), found.end(), drive.location.enclosure) == found.end()) {
            found.push_back(drive.location.enclosure);
        }
    }
    return found;
}

std::int64_t Controller::capacity(RaidLevel level,
                                  const std::vector<std::vector<DriveLocation>>& spans) const {
    return twiceCapacity(*this, level, spans) / 2;
}

std::int64_t Controller::roomLeft(std::size_t array, RaidLevel level) const {
    // A MB of a logical drive takes as much of the room as the whole array is worth to the level at
    // hand against what it is worth to that drive's level.
    const std::vector<std::vector<DriveLocation>>& spans = arrays[array].spans;
    const double whole = static_cast<double>(twiceCapacity(*this, level, spans)) / 2;
    double room = whole;
    bool shared = false;
    for (const LogicalDrive& drive : logicalDrives) {
        if (drive.array == array) {
            const auto twice = static_cast<double>(twiceCapacity(*this, drive.level, spans));
            room -= static_cast<double>(drive.sizeMb) * whole / (twice / 2);
            shared = true;
        }
    }
    constexpr double rounding = 0.001;
    return shared ? static_cast<std::int64_t>(std::ceil(room - rounding)) : capacity(level, spans);
}

LogicalDriveState Controller::stateOf(const LogicalDrive& logicalDrive) const {
    LogicalDriveState worst = LogicalDriveState::optimal;
    const int tolerated = rulesOf(logicalDrive.level).tolerated;
    for (const std::vector<DriveLocation>& span : arrays[logicalDrive.array].spans) {
        const auto missing =
            std::count_if(span.begin(), span.end(), [&](const DriveLocation& location) {
                return driveAt(location)->status != DriveStatus::online;
            });
        if (missing > tolerated) {
            return LogicalDriveState::offline;
        }
        if (missing > 0) {
            worst = std::max(worst, missing == tolerated ? LogicalDriveState::degraded
                                                         : LogicalDriveState::partiallyDegraded);
        }
    }
    return worst;
}

std::vector<ForeignGroup> Controller::foreignGroups() const {
    std::vector<ForeignGroup> groups(foreignConfigurations.size() + 1);
    for (std::size_t i = 0; i < foreignConfigurations.size(); ++i) {
        groups[i].configuration = i;
    }
    for (const Drive& drive : drives) {
        if (drive.status == DriveStatus::foreign) {
            const std::size_t carried =
                drive.foreignConfiguration.value_or(foreignConfigurations.size());
            groups[carried].drives.push_back(drive.location);
        }
    }
    std::erase_if(groups, [](const ForeignGroup& group) { return group.drives.empty(); });
    return groups;
}

std::size_t Controller::numberOf(std::size_t place) const {
    return logicalDrives[place].number.value_or(place);
}

std::optional<std::size_t> Controller::placeNumbered(std::size_t number) const {
    for (std::size_t place = 0; place < logicalDrives.size(); ++place) {
        if (numberOf(place) == number) {
            return place;
        }
    }
    return std::nullopt;
}

std::size_t Controller::nextNumber() const {
    std::size_t number = 0;
    while (placeNumbered(number)) {
        ++number;
    }
    return number;
}

std::vector<Controller*> Server::adaptersOf(std::string_view utility) {
    std::vector<Controller*> adapters;
    for (Controller& controller : controllers) {
        if (equalsIgnoringCase(controller.identity.utility, utility)) {
            adapters.push_back(&controller);
        }
    }
    std::stable_sort(adapters.begin(), adapters.end(), [](const auto* a, const auto* b) {
        return standsBefore(a->identity.pci, b->identity.pci);
    });
    return adapters;
}

std::vector<const Controller*> Server::controllersInPciOrder() const {
    std::vector<const Controller*> ordered;
    ordered.reserve(controllers.size());
    for (const Controller& controller : controllers) {
        ordered.push_back(&controller);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const auto* a, const auto* b) {
        return standsBefore(a->identity.pci, b->identity.pci);
    });
    return ordered;
}

std::vector<const storcli::Controller*> Server::storcliInPciOrder() const {
    std::vector<const storcli::Controller*> ordered;
    ordered.reserve(storcliControllers.size());
    for (const storcli::Controller& controller : storcliControllers) {
        ordered.push_back(&controller);
    }
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto* a, const auto* b) { return standsBefore(a->pci, b->pci); });
    return ordered;
}

std::vector<storcli::Controller*> Server::storcliInPciOrder() {
    std::vector<storcli::Controller*> ordered;
    for (const storcli::Controller* controller : std::as_const(*this).storcliInPciOrder()) {
        ordered.push_back(const_cast<storcli::Controller*>(controller));
    }
    return ordered;
}

} // namespace zolex_sim
