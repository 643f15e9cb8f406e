#include "companion/machine/NormalForm.h"

#include "companion/machine/Sha256.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesOfMb = std::uint64_t{1} << 20U;
constexpr std::uint64_t bytesOfKb = std::uint64_t{1} << 10U;

/// What zolex itself takes for the rest of an array, in MB.
constexpr std::uint64_t fillMarginMb = 139;

using Span = std::vector<std::string>;

/// A location such as "32:4" as numbers, so that "32:10" stands behind "32:9".
struct LocationKey {
    std::array<std::int32_t, 3> numbers{};
    std::string_view text;

    explicit LocationKey(std::string_view location) : text(location) {
        if (location.starts_with(':')) { // in no enclosure
            numbers = {-1, text::leadingInt(location.substr(1)), 0};
            return;
        }
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            numbers.at(i) = text::leadingInt(text::token(location, ":", i));
        }
    }
    friend bool operator<(const LocationKey& a, const LocationKey& b) {
        return std::tie(a.numbers, a.text) < std::tie(b.numbers, b.text);
    }
};

bool standsBefore(const std::string& a, const std::string& b) {
    return LocationKey(a) < LocationKey(b);
}

bool spanStandsBefore(const Span& a, const Span& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), standsBefore);
}

std::size_t countDrives(const std::vector<Span>& spans) {
    std::size_t count = 0;
    for (const Span& span : spans) {
        count += span.size();
    }
    return count;
}

std::vector<Span> cutInto(const Span& drives, std::size_t size) {
    std::vector<Span> spans;
    for (std::size_t i = 0; i < drives.size(); i += size) {
        const auto end = std::min(i + size, drives.size());
        spans.emplace_back(drives.begin() + static_cast<std::ptrdiff_t>(i),
                           drives.begin() + static_cast<std::ptrdiff_t>(end));
    }
    return spans;
}

/// One logical drive in its words.
struct Volume {
    std::string level;
    std::vector<Span> spans;
    const LogicalDriveFacts* facts = nullptr;
};

Volume volumeOf(const LogicalDriveFacts& facts) {
    constexpr std::size_t pair = 2;
    Volume volume;
    volume.facts = &facts;
    volume.level = facts.raidType.empty() ? facts.reportedLevel : facts.raidType;
    volume.spans = facts.spans;
    const std::size_t drives = countDrives(volume.spans);
    // A mirror over more than two drives is mirrored pairs under another name.
    if (volume.level == "RAID1" && drives > pair && drives % pair == 0) {
        volume.level = "RAID10";
    }
    if (volume.spans.size() == 1 && drives > 0) {
        if (volume.level == "RAID10") {
            volume.spans = cutInto(volume.spans.front(), pair);
        } else if (volume.level == "RAID50" || volume.level == "RAID60") {
            volume.spans = cutInto(volume.spans.front(), (drives + 1) / 2);
        }
    }
    for (Span& span : volume.spans) {
        std::sort(span.begin(), span.end(), standsBefore);
    }
    std::sort(volume.spans.begin(), volume.spans.end(), spanStandsBefore);
    return volume;
}

/// Drives that hold data, in halves of a drive.
std::uint64_t dataHalves(const Volume& volume) {
    const std::uint64_t drives = countDrives(volume.spans);
    const std::uint64_t spans = volume.spans.size();
    struct Row {
        std::string_view level;
        std::uint64_t kept; ///< drives that hold none
    };
    const std::array<Row, 6> rows = {{{"RAID5", 1},
                                      {"RAID5E", 2},
                                      {"RAID5EE", 2},
                                      {"RAID6", 2},
                                      {"RAID50", spans},
                                      {"RAID60", 2 * spans}}};
    if (volume.level == "RAID1" || volume.level == "RAID1E" || volume.level == "RAID10") {
        return drives;
    }
    const auto* const row = std::find_if(rows.begin(), rows.end(), [&volume](const Row& each) {
        return each.level == volume.level;
    });
    const std::uint64_t kept = row == rows.end() ? 0 : row->kept;
    return drives > kept ? 2 * (drives - kept) : 0;
}

/// The smallest member; nothing when one is not known.
std::optional<std::uint64_t> smallestMember(const Facts& facts, const std::vector<Span>& spans) {
    std::optional<std::uint64_t> smallest;
    for (const Span& span : spans) {
        for (const std::string& location : span) {
            const DriveFacts* const drive = facts.drive(location);
            if (drive == nullptr || !drive->capacityBytes) {
                return std::nullopt;
            }
            smallest = std::min(smallest.value_or(*drive->capacityBytes), *drive->capacityBytes);
        }
    }
    return smallest;
}

/// What a logical drive takes of each member.
std::uint64_t shareOf(const Volume& volume) {
    const std::uint64_t halves = dataHalves(volume);
    return halves == 0 ? 0 : volume.facts->capacityBytes.value_or(0) / halves * 2;
}

/// Whether the last of the logical drives leaves no room for another one.
bool fills(const Facts& facts, const std::vector<Volume>& volumes) {
    constexpr std::uint64_t perMille = 1000;
    constexpr std::uint64_t metadata = 2; // of a thousand
    const Volume& last = volumes.back();
    const auto smallest = smallestMember(facts, last.spans);
    const std::uint64_t halves = dataHalves(last);
    if (!smallest || !last.facts->capacityBytes || halves == 0) {
        return false;
    }
    std::uint64_t used = 0;
    for (const Volume& volume : volumes) {
        used += shareOf(volume);
    }
    const std::uint64_t left = *smallest > used ? *smallest - used : 0;
    return left <= (fillMarginMb * bytesOfMb + last.facts->capacityTolerance) * 2 / halves +
                       *smallest / perMille * metadata;
}

std::string sizeText(const LogicalDriveFacts& facts) {
    if (!facts.capacityBytes) {
        return "size not told";
    }
    const std::uint64_t unit = std::max(facts.capacityTolerance, bytesOfMb);
    const std::uint64_t rounded = (*facts.capacityBytes + unit / 2) / unit * unit;
    return std::to_string(rounded / bytesOfMb) + " MB";
}

std::string volumeText(const Volume& volume, bool isFilling) {
    const LogicalDriveFacts& facts = *volume.facts;
    std::string text = volume.level + " " + (isFilling ? "fill" : sizeText(facts));
    if (facts.stripSizeBytes) {
        text += ", strip " + std::to_string(*facts.stripSizeBytes / bytesOfKb) + " KB";
    }
    if (!facts.writeCache.empty()) {
        text += ", write " + facts.writeCache;
    }
    if (!facts.readCache.empty()) {
        text += ", read " + facts.readCache;
    }
    return text;
}

std::string drivesText(const std::vector<Span>& spans) {
    std::string text;
    for (const Span& span : spans) {
        text += text.empty() ? "(" : " (";
        for (std::size_t i = 0; i < span.size(); ++i) {
            text += (i == 0 ? "" : " ") + span[i];
        }
        text += ")";
    }
    return text;
}

/// Logical drives over the same drives, in the order of the listing.
struct Group {
    Span drives; ///< sorted
    std::vector<Volume> volumes;
};

std::vector<Group> groupsOf(const Facts& facts) {
    std::vector<Group> groups;
    std::map<Span, std::size_t> byDrives;
    for (const LogicalDriveFacts& logical : facts.logicalDrives) {
        Volume volume = volumeOf(logical);
        Span drives;
        for (const Span& span : volume.spans) {
            drives.insert(drives.end(), span.begin(), span.end());
        }
        std::sort(drives.begin(), drives.end(), standsBefore);
        // What names no drives stands alone.
        const Span key = drives.empty() ? Span{"\n" + std::to_string(groups.size())} : drives;
        const auto [entry, isNew] = byDrives.emplace(key, groups.size());
        if (isNew) {
            groups.push_back({std::move(drives), {}});
        }
        groups[entry->second].volumes.push_back(std::move(volume));
    }
    std::stable_sort(groups.begin(), groups.end(), [](const Group& a, const Group& b) {
        return spanStandsBefore(a.drives, b.drives);
    });
    return groups;
}

std::string groupText(const Facts& facts, const Group& group) {
    const bool isFilled = fills(facts, group.volumes);
    std::string text = "drives " + drivesText(group.volumes.front().spans) + ":";
    for (const Volume& volume : group.volumes) {
        const bool isLast = &volume == &group.volumes.back();
        text += (&volume == &group.volumes.front() ? " " : "; ") +
                volumeText(volume, isLast && isFilled);
    }
    return text + "\n";
}

/// Lines "WORD LOCATION" of the drives that `isOne` picks.
template <typename Pick>
std::string driveLines(const Facts& facts, Pick lineOf) {
    std::vector<std::pair<std::string, std::string>> lines;
    for (const DriveFacts& drive : facts.drives) {
        if (std::string line = lineOf(drive); !line.empty()) {
            lines.emplace_back(drive.location, std::move(line));
        }
    }
    std::sort(lines.begin(), lines.end(),
              [](const auto& a, const auto& b) { return standsBefore(a.first, b.first); });
    std::string text;
    for (const auto& [location, line] : lines) {
        text += line + "\n";
    }
    return text;
}

} // namespace

std::string normalForm(const Facts& facts) {
    std::string text;
    for (const Group& group : groupsOf(facts)) {
        text += groupText(facts, group);
    }
    text += driveLines(facts, [](const DriveFacts& drive) {
        const bool isSpare =
            drive.hotspare != HotspareKind::none || drive.state == DriveState::hotspare;
        const char* const kind =
            drive.hotspare == HotspareKind::dedicated ? "dedicated hot spare " : "hot spare ";
        return isSpare ? kind + drive.location : std::string();
    });
    text += driveLines(facts, [](const DriveFacts& drive) {
        return drive.isForeign || drive.state == DriveState::foreign ? "foreign " + drive.location
                                                                     : std::string();
    });
    for (const std::string& foreign : facts.foreignConfigurations) {
        text += "foreign configuration " + foreign + "\n";
    }
    return text;
}

std::string layoutHash(const Facts& facts) {
    return sha256(normalForm(facts));
}

} // namespace zolex::companion
