#include "companion/layout/Layout.h"

#include "companion/facts/Bytes.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::size_t pairOfDrives = 2;

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

bool spanStandsBefore(const Span& a, const Span& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        locationStandsBefore);
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

/// A mirror over more than two drives may be mirrored pairs under another name.
void nameLevel(std::string& raidType, std::size_t drives, DeepMirrors deepMirrors) {
    if (deepMirrors == DeepMirrors::asRaid10 && raidType == "RAID1" && drives > pairOfDrives &&
        drives % pairOfDrives == 0) {
        raidType = "RAID10";
    }
}

/// The spans of a level, in order.
void orderSpans(std::string_view raidType, std::vector<Span>& spans) {
    const std::size_t drives = countDrives(spans);
    if (spans.size() == 1 && drives > 0) {
        if (raidType == "RAID10") {
            spans = cutInto(Span(spans.front()), pairOfDrives);
        } else if (raidType == "RAID50" || raidType == "RAID60") {
            spans = cutInto(Span(spans.front()), (drives + 1) / 2);
        }
    }
    for (Span& span : spans) {
        std::sort(span.begin(), span.end(), locationStandsBefore);
    }
    std::sort(spans.begin(), spans.end(), spanStandsBefore);
}

void sortGroups(std::vector<LayoutGroup>& groups) {
    std::vector<std::pair<Span, LayoutGroup>> keyed;
    keyed.reserve(groups.size());
    for (LayoutGroup& group : groups) {
        Span drives = group.drives();
        keyed.emplace_back(std::move(drives), std::move(group));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        return spanStandsBefore(a.first, b.first);
    });
    std::transform(keyed.begin(), keyed.end(), groups.begin(),
                   [](auto& each) { return std::move(each.second); });
}

void sortSpares(std::vector<LayoutSpare>& spares) {
    std::stable_sort(spares.begin(), spares.end(), [](const auto& a, const auto& b) {
        return locationStandsBefore(a.location, b.location);
    });
}

/// A logical drive that was captured, with the spans that it has itself.
struct CapturedVolume {
    LayoutVolume volume;
    std::vector<Span> spans;
    DeepMirrors deepMirrors = DeepMirrors::asRaid10;

    [[nodiscard]] std::uint64_t halves() const {
        return dataHalves(volume.raidType, countDrives(spans), spans.size(), deepMirrors);
    }
    /// What it takes of each member.
    [[nodiscard]] std::uint64_t share() const {
        const std::uint64_t all = halves();
        return all == 0 ? 0 : volume.capacityBytes.value_or(0) / all * 2;
    }
};

CapturedVolume volumeOf(const LogicalDriveFacts& facts, DeepMirrors deepMirrors) {
    CapturedVolume captured;
    captured.deepMirrors = deepMirrors;
    LayoutVolume& volume = captured.volume;
    volume.id = facts.id;
    volume.raidType = facts.raidType.empty() ? facts.reportedLevel : facts.raidType;
    volume.capacityBytes = facts.capacityBytes;
    volume.toleranceBytes = facts.capacityTolerance;
    volume.stripSizeBytes = facts.stripSizeBytes;
    volume.writeCache = facts.writeCache;
    volume.readCache = facts.readCache;
    volume.reportedState = facts.reportedState;
    volume.health = facts.health;
    volume.name = facts.name;
    volume.uniqueId = facts.uniqueId;
    volume.device = facts.device;
    captured.spans = facts.spans;
    nameLevel(volume.raidType, countDrives(captured.spans), deepMirrors);
    orderSpans(volume.raidType, captured.spans);
    return captured;
}

using DriveIndex = std::map<std::string_view, const DriveFacts*>;

DriveIndex indexOf(const Facts& facts) {
    DriveIndex index;
    for (const DriveFacts& drive : facts.drives) {
        index.emplace(drive.location, &drive);
    }
    return index;
}

/// The smallest member; nothing when one is not known.
std::optional<std::uint64_t> smallestMember(const DriveIndex& drives,
                                            const std::vector<Span>& spans) {
    std::optional<std::uint64_t> smallest;
    for (const Span& span : spans) {
        for (const std::string& location : span) {
            const auto drive = drives.find(location);
            if (drive == drives.end() || !drive->second->capacityBytes) {
                return std::nullopt;
            }
            const std::uint64_t size = *drive->second->capacityBytes;
            smallest = std::min(smallest.value_or(size), size);
        }
    }
    return smallest;
}

/// Whether the last of the logical drives leaves no room for another one.
bool isFilled(const DriveIndex& drives, const std::vector<CapturedVolume>& volumes) {
    const CapturedVolume& last = volumes.back();
    const auto smallest = smallestMember(drives, last.spans);
    const std::uint64_t halves = last.halves();
    if (!smallest || !last.volume.capacityBytes || halves == 0) {
        return false;
    }
    std::uint64_t used = 0;
    for (const CapturedVolume& volume : volumes) {
        used += volume.share();
    }
    const std::uint64_t left = *smallest > used ? *smallest - used : 0;
    return left <=
           (fillMarginBytes + last.volume.toleranceBytes) * 2 / halves + metadataBytes(*smallest);
}

/// The logical drives, group by group.
std::vector<LayoutGroup> groupsOf(const Facts& facts) {
    struct Draft {
        LayoutGroup group;
        std::vector<CapturedVolume> volumes;
    };
    std::vector<Draft> drafts;
    std::map<Span, std::size_t> byDrives;
    for (const LogicalDriveFacts& logical : facts.logicalDrives) {
        CapturedVolume volume = volumeOf(logical, facts.deepMirrors);
        Draft draft;
        draft.group.id = logical.array;
        draft.group.spans = volume.spans;
        const Span drives = draft.group.drives();
        // What names no drives stands alone.
        const Span key = drives.empty() ? Span{"\n" + std::to_string(drafts.size())} : drives;
        const auto [entry, isNew] = byDrives.emplace(key, drafts.size());
        if (isNew) {
            drafts.push_back(std::move(draft));
        }
        drafts[entry->second].volumes.push_back(std::move(volume));
    }
    const DriveIndex index = indexOf(facts);
    std::vector<LayoutGroup> groups;
    for (Draft& draft : drafts) {
        const bool fills = isFilled(index, draft.volumes);
        for (CapturedVolume& volume : draft.volumes) {
            draft.group.volumes.push_back(std::move(volume.volume));
        }
        draft.group.volumes.back().fills = fills;
        groups.push_back(std::move(draft.group));
    }
    return groups;
}

/// One group of those over the same drives; spares that cover one of them cover it.
void mergeGroups(Layout& layout) {
    std::vector<LayoutGroup> merged;
    std::map<Span, std::size_t> byDrives;
    std::map<std::string, std::string> ids;
    for (LayoutGroup& group : layout.groups) {
        Span drives = group.drives();
        const Span key =
            drives.empty() ? Span{"\n" + std::to_string(merged.size())} : std::move(drives);
        const auto [entry, isNew] = byDrives.emplace(key, merged.size());
        if (isNew) {
            merged.push_back(std::move(group));
            continue;
        }
        LayoutGroup& first = merged[entry->second];
        ids[group.id] = first.id;
        first.isListed = first.isListed || group.isListed;
        first.isByPairs = first.isByPairs || group.isByPairs;
        std::move(group.volumes.begin(), group.volumes.end(), std::back_inserter(first.volumes));
    }
    layout.groups = std::move(merged);
    for (LayoutSpare& spare : layout.spares) {
        std::vector<std::string> covers;
        for (const std::string& id : spare.covers) {
            const auto other = ids.find(id);
            const std::string& name = other == ids.end() ? id : other->second;
            if (std::find(covers.begin(), covers.end(), name) == covers.end()) {
                covers.push_back(name);
            }
        }
        spare.covers = std::move(covers);
    }
}

} // namespace

std::vector<std::string> LayoutGroup::drives() const {
    std::vector<std::string> all;
    for (const Span& span : spans) {
        all.insert(all.end(), span.begin(), span.end());
    }
    std::sort(all.begin(), all.end(), locationStandsBefore);
    return all;
}

Layout capturedLayout(const Facts& facts) {
    Layout layout;
    layout.deepMirrors = facts.deepMirrors;
    layout.groups = groupsOf(facts);
    sortGroups(layout.groups);
    for (const DriveFacts& drive : facts.drives) {
        if (drive.hotspare != HotspareKind::none || drive.state == DriveState::hotspare) {
            LayoutSpare& spare = layout.spares.emplace_back();
            spare.location = drive.location;
            spare.isDedicated = drive.hotspare == HotspareKind::dedicated;
        }
        if (drive.isForeign || drive.state == DriveState::foreign) {
            layout.foreignDrives.push_back(drive.location);
        }
    }
    sortSpares(layout.spares);
    std::stable_sort(layout.foreignDrives.begin(), layout.foreignDrives.end(),
                     locationStandsBefore);
    return layout;
}

void nameCovers(Layout& captured, const Facts& facts) {
    for (LayoutSpare& spare : captured.spares) {
        const DriveFacts* const drive = facts.drive(spare.location);
        if (spare.isDedicated && drive != nullptr) {
            spare.covers = drive->covers;
        }
    }
}

void normalize(Layout& layout) {
    mergeGroups(layout);
    for (LayoutGroup& group : layout.groups) {
        for (LayoutVolume& volume : group.volumes) {
            nameLevel(volume.raidType, countDrives(group.spans), layout.deepMirrors);
        }
        orderSpans(group.volumes.empty() ? std::string_view() : group.volumes.front().raidType,
                   group.spans);
    }
    sortGroups(layout.groups);
    sortSpares(layout.spares);
    std::sort(layout.foreignDrives.begin(), layout.foreignDrives.end(), locationStandsBefore);
}

std::uint64_t dataHalves(std::string_view raidType, std::uint64_t drives, std::uint64_t spans,
                         DeepMirrors deepMirrors) {
    if (raidType == "RAID1" && deepMirrors == DeepMirrors::ofAll) {
        return std::min<std::uint64_t>(drives, pairOfDrives);
    }
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
    if (raidType == "RAID1" || raidType == "RAID1E" || raidType == "RAID10") {
        return drives;
    }
    const auto* const row = std::find_if(
        rows.begin(), rows.end(), [raidType](const Row& each) { return each.level == raidType; });
    const std::uint64_t kept = row == rows.end() ? 0 : row->kept;
    return drives > kept ? 2 * (drives - kept) : 0;
}

std::string locationsLine(const std::vector<std::string>& locations) {
    std::string text;
    for (const std::string& location : locations) {
        text += (text.empty() ? "" : " ") + location;
    }
    return text;
}

std::string spansLine(const std::vector<std::vector<std::string>>& spans) {
    if (spans.size() == 1) {
        return locationsLine(spans.front());
    }
    std::string text;
    for (const Span& span : spans) {
        text += (text.empty() ? "(" : " (") + locationsLine(span) + ")";
    }
    return text;
}

std::string stripSizeLine(std::uint64_t bytes) {
    return std::to_string(bytes / bytesOfKb) + " KB";
}

std::string writeCacheWords(std::string_view writeCache) {
    return writeCache == "WriteThrough"         ? "write-through"
           : writeCache == "ProtectedWriteBack" ? "protected write-back"
                                                : "write-back";
}

std::string readCacheWords(std::string_view readCache) {
    return readCache == "Off"         ? "no read-ahead"
           : readCache == "ReadAhead" ? "read-ahead"
                                      : "adaptive read-ahead";
}

std::string layoutVolumeLine(const LayoutVolume& volume) {
    std::string text = volume.raidType.empty() ? "?" : volume.raidType;
    text += volume.fills ? " fill" : " " + sizeText(volume.capacityBytes);
    if (volume.stripSizeBytes) {
        text += ", strip " + stripSizeLine(*volume.stripSizeBytes);
    }
    if (!volume.writeCache.empty()) {
        text += ", " + writeCacheWords(volume.writeCache);
    }
    if (!volume.readCache.empty()) {
        text += ", " + readCacheWords(volume.readCache);
    }
    return text;
}

std::string volumeNameText(const std::string& id, const std::string& name,
                           const std::string& device) {
    return "LD " + printable(id) + (name.empty() ? "" : " \"" + printable(name) + "\"") +
           (device.empty() ? "" : " (" + printable(device) + ")");
}

std::string volumeAliasText(const std::string& name, const std::string& device) {
    std::string text = name.empty() ? "" : "\"" + printable(name) + "\"";
    return text + (text.empty() || device.empty() ? "" : ", ") + printable(device);
}

std::vector<std::string> layoutLines(const Layout& layout) {
    std::vector<std::string> lines;
    for (const LayoutGroup& group : layout.groups) {
        std::string& line = lines.emplace_back();
        for (const LayoutVolume& volume : group.volumes) {
            line += (line.empty() ? "" : "; ") + layoutVolumeLine(volume);
        }
        line += ": " + spansLine(group.spans);
    }
    for (const LayoutSpare& spare : layout.spares) {
        lines.push_back((spare.isDedicated ? "dedicated hot spare: " : "hot spare: ") +
                        spare.location);
    }
    for (const std::string& location : layout.foreignDrives) {
        lines.push_back("foreign: " + location);
    }
    return lines;
}

bool locationStandsBefore(const std::string& a, const std::string& b) {
    return LocationKey(a) < LocationKey(b);
}

} // namespace zolex::companion
