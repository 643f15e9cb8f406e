#include "model/StorcliController.h"

#include "model/Text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace zolex_sim::storcli {
namespace {

// In the order of the enumerations.
// clang-format off
constexpr std::array<Rules, 8> rules = {{
    {"RAID0",  Level::raid0, false, 1, 0},
    {"RAID1",  Level::raid1, false, 2, -1},
    {"RAID5",  Level::raid5, false, 3, 1},
    {"RAID6",  Level::raid6, false, 4, 2},
    {"RAID00", Level::raid0, true,  1, 0},
    {"RAID10", Level::raid1, true,  2, -1},
    {"RAID50", Level::raid5, true,  3, 1},
    {"RAID60", Level::raid6, true,  4, 2},
}};
// clang-format on
constexpr std::array<std::string_view, 6> versionWords = {"1.x",      "007.1017", "007.1616",
                                                          "007.2507", "007.3703", "008"};
constexpr std::array<std::string_view, 3> brandingWords = {"lsi", "perc", "hpe"};
constexpr std::array<std::string_view, 3> batteryWords = {"none", "optimal", "failed"};
constexpr std::array<std::string_view, 3> cacheWords = {"WT", "WB", "AWB"};
constexpr std::array<std::string_view, 12> stateWords = {
    "good",    "bad",    "jbod",     "online",    "rebuild", "copyback",
    "offline", "failed", "hotspare", "dedicated", "foreign", "missing"};
static_assert(stateWords.size() == static_cast<std::size_t>(DriveState::missing) + 1);

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

std::int64_t dataDrivesOfSpan(Level level, std::size_t drives) {
    const int redundancy = rulesOf(level).redundancy;
    const auto count = static_cast<std::int64_t>(drives);
    return redundancy < 0 ? count / 2 : count - redundancy;
}

bool holdsData(const Drive& drive) {
    return drive.state == DriveState::online || drive.state == DriveState::copyback;
}

} // namespace

const Rules& rulesOf(Level level) {
    return rules[static_cast<std::size_t>(level)];
}

std::optional<Version> versionNamed(std::string_view word) {
    return valueNamed<Version>(versionWords, word);
}

std::optional<Branding> brandingNamed(std::string_view word) {
    return valueNamed<Branding>(brandingWords, word);
}

std::optional<Battery> batteryNamed(std::string_view word) {
    return valueNamed<Battery>(batteryWords, word);
}

std::optional<Level> levelNamed(std::string_view word) {
    for (std::size_t i = 0; i < rules.size(); ++i) {
        if (equalsIgnoringCase(rules[i].name, word)) {
            return static_cast<Level>(i);
        }
    }
    return std::nullopt;
}

std::optional<Cache> cacheNamed(std::string_view word) {
    return valueNamed<Cache>(cacheWords, word);
}

std::optional<DriveState> stateNamed(std::string_view word) {
    return valueNamed<DriveState>(stateWords, word);
}

std::string_view wordOf(Cache cache) {
    return cacheWords[static_cast<std::size_t>(cache)];
}

std::string_view wordOf(DriveState state) {
    return stateWords[static_cast<std::size_t>(state)];
}

std::size_t Controller::driveCount() const {
    return static_cast<std::size_t>(std::count_if(
        drives.begin(), drives.end(), [](const Drive& drive) { return drive.isThere(); }));
}

const Drive* Controller::driveAt(const DriveLocation& place) const {
    const auto found = std::find_if(drives.begin(), drives.end(),
                                    [&](const Drive& drive) { return drive.place == place; });
    return found == drives.end() ? nullptr : &*found;
}

Drive* Controller::driveAt(const DriveLocation& place) {
    return const_cast<Drive*>(std::as_const(*this).driveAt(place));
}

std::optional<MemberPlace> Controller::placeOf(const DriveLocation& place) const {
    for (std::size_t group = 0; group < groups.size(); ++group) {
        for (std::size_t span = 0; span < groups[group].spans.size(); ++span) {
            const std::vector<DriveLocation>& members = groups[group].spans[span];
            const auto found = std::find(members.begin(), members.end(), place);
            if (found != members.end()) {
                return MemberPlace{group, span, static_cast<std::size_t>(found - members.begin())};
            }
        }
    }
    return std::nullopt;
}

const Volume* Controller::volumeNumbered(int number) const {
    const auto found = std::find_if(volumes.begin(), volumes.end(),
                                    [&](const Volume& volume) { return volume.number == number; });
    return found == volumes.end() ? nullptr : &*found;
}

bool Controller::supports(Level level) const {
    return std::find(levels.begin(), levels.end(), level) != levels.end();
}

std::optional<int> Controller::nextNumber() const {
    if (volumes.size() >= static_cast<std::size_t>(maxVolumes)) {
        return std::nullopt;
    }
    for (int i = 0; i <= lastNumber; ++i) {
        const int number = numbersUp ? i : lastNumber - i;
        if (volumeNumbered(number) == nullptr) {
            return number;
        }
    }
    return std::nullopt;
}

std::string Controller::nextDevice() const {
    constexpr int letters = 26;
    for (int i = 0;; ++i) {
        std::string name = "/dev/sd";
        if (i >= letters) {
            name += static_cast<char>('a' + i / letters - 1);
        }
        name += static_cast<char>('a' + i % letters);
        if (std::none_of(volumes.begin(), volumes.end(),
                         [&](const Volume& volume) { return volume.device == name; })) {
            return name;
        }
    }
}

std::int64_t Controller::dataDrives(Level level,
                                    const std::vector<std::vector<DriveLocation>>& spans) {
    std::int64_t count = 0;
    for (const std::vector<DriveLocation>& span : spans) {
        count += dataDrivesOfSpan(level, span.size());
    }
    return std::max<std::int64_t>(count, 0);
}

std::int64_t Controller::capacity(Level level,
                                  const std::vector<std::vector<DriveLocation>>& spans) const {
    std::int64_t smallest = std::numeric_limits<std::int64_t>::max();
    for (const std::vector<DriveLocation>& span : spans) {
        for (const DriveLocation& place : span) {
            smallest = std::min(smallest, driveAt(place)->blocks());
        }
    }
    const std::int64_t data = dataDrives(level, spans);
    return data == 0 ? 0 : smallest * data;
}

std::int64_t Controller::roomLeft(std::size_t group, Level level) const {
    const std::vector<std::vector<DriveLocation>>& spans = groups[group].spans;
    const std::int64_t data = dataDrives(level, spans);
    std::int64_t left = data == 0 ? 0 : capacity(level, spans) / data; // of each drive
    for (const Volume& volume : volumes) {
        if (volume.group == group) {
            const std::int64_t others = dataDrives(volume.level, spans);
            left -= others == 0 ? 0 : (volume.blocks + others - 1) / others;
        }
    }
    return std::max<std::int64_t>(left, 0) * data;
}

VolumeState Controller::stateOf(Level level, const std::vector<DriveLocation>& span) const {
    const auto isGone = [&](const DriveLocation& place) { return !holdsData(*driveAt(place)); };
    if (rulesOf(level).inSpan == Level::raid1) {
        VolumeState worst = VolumeState::optimal;
        for (std::size_t i = 0; i + 1 < span.size(); i += 2) {
            const int lost = (isGone(span[i]) ? 1 : 0) + (isGone(span[i + 1]) ? 1 : 0);
            worst = std::max(worst, lost == 2   ? VolumeState::offline
                                    : lost == 1 ? VolumeState::degraded
                                                : VolumeState::optimal);
        }
        return worst;
    }
    const auto gone = static_cast<std::int64_t>(std::count_if(span.begin(), span.end(), isGone));
    const std::int64_t tolerated =
        static_cast<std::int64_t>(span.size()) - dataDrivesOfSpan(level, span.size());
    if (gone == 0) {
        return VolumeState::optimal;
    }
    if (gone > tolerated) {
        return VolumeState::offline;
    }
    return gone < tolerated && rulesOf(level).inSpan == Level::raid6
               ? VolumeState::partiallyDegraded
               : VolumeState::degraded;
}

VolumeState Controller::stateOf(Level level, std::size_t group) const {
    VolumeState worst = VolumeState::optimal;
    for (const std::vector<DriveLocation>& span : groups[group].spans) {
        worst = std::max(worst, stateOf(level, span));
    }
    return worst;
}

Level Controller::levelOf(std::size_t group) const {
    const Volume* first = nullptr;
    for (const Volume& volume : volumes) {
        if (volume.group == group && (first == nullptr || volume.order < first->order)) {
            first = &volume;
        }
    }
    return first == nullptr ? Level::raid0 : first->level;
}

std::string Controller::naaIdOf(int number) const {
    constexpr std::uint64_t ofController = 0xfffffffffffffffU;
    return formatted("6%015llx2d1f00%06x%04x",
                     static_cast<unsigned long long>(sasAddress & ofController),
                     static_cast<unsigned>(deleted), static_cast<unsigned>(number));
}

void Controller::enter(Volume volume) {
    if (volume.naaId.empty()) {
        volume.naaId = naaIdOf(volume.number);
    }
    volume.order = 0;
    for (const Volume& other : volumes) {
        volume.order = std::max(volume.order, other.order + 1);
    }
    const auto place = std::find_if(volumes.begin(), volumes.end(), [&](const Volume& other) {
        return other.number > volume.number;
    });
    volumes.insert(place, std::move(volume));
}

void Controller::remove(int number) {
    const auto found = std::find_if(volumes.begin(), volumes.end(),
                                    [&](const Volume& volume) { return volume.number == number; });
    if (found == volumes.end()) {
        return;
    }
    const std::size_t group = found->group;
    volumes.erase(found);
    ++deleted;
    if (std::none_of(volumes.begin(), volumes.end(),
                     [&](const Volume& volume) { return volume.group == group; })) {
        dissolve(group);
    }
}

void Controller::dissolve(std::size_t group) {
    for (const std::vector<DriveLocation>& span : groups[group].spans) {
        for (const DriveLocation& place : span) {
            Drive& drive = *driveAt(place);
            const bool lost =
                drive.state == DriveState::failed || drive.state == DriveState::offline;
            drive.state = !drive.isThere() ? DriveState::missing
                          : lost           ? DriveState::bad
                                           : DriveState::good;
        }
    }
    groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(group));
    for (Volume& volume : volumes) {
        volume.group -= volume.group > group ? 1 : 0;
    }
    for (Drive& drive : drives) {
        std::erase(drive.groups, group);
        for (std::size_t& other : drive.groups) {
            other -= other > group ? 1 : 0;
        }
        if (drive.state == DriveState::dedicatedSpare && drive.groups.empty()) {
            drive.state = DriveState::globalSpare;
        }
    }
}

} // namespace zolex_sim::storcli
