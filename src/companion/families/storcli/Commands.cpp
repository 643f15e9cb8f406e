#include "companion/families/storcli/Commands.h"
#include "companion/facts/Bytes.h"
#include "companion/text/Words.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <optional>

namespace zolex::companion::storcli {

namespace {

constexpr std::size_t mostNameBytes = 15;

struct WordRow {
    std::string_view ours;
    std::string_view word;
};

// clang-format off
constexpr std::array<WordRow, 8> levels = {{
    {"RAID0",  "r0"},  {"RAID1",  "r1"},  {"RAID5",  "r5"},  {"RAID6", "r6"},
    {"RAID00", "r00"}, {"RAID10", "r10"}, {"RAID50", "r50"}, {"RAID60", "r60"},
}};
// Write-back falls to write-through while there is no battery; "AWB", which does not, is never
// asked for.
constexpr std::array<WordRow, 3> writeModes = {{
    {"WriteThrough", "WT"}, {"ProtectedWriteBack", "WB"}, {"UnprotectedWriteBack", "WB"},
}};
constexpr std::array<WordRow, 3> readModes = {{
    {"Off", "nora"}, {"ReadAhead", "ra"}, {"AdaptiveReadAhead", "ra"},
}};
// Columns: the word of policies, percent.
constexpr std::array<WordRow, 3> rebuildRates = {{
    {"HIGH", "60"}, {"MEDIUM", "30"}, {"LOW", "15"},
}};
// clang-format on

template <std::size_t Count>
std::string_view wordOf(const std::array<WordRow, Count>& rows, std::string_view ours) {
    const auto* const row = std::find_if(rows.begin(), rows.end(),
                                         [ours](const WordRow& each) { return each.ours == ours; });
    return row == rows.end() ? std::string_view() : row->word;
}

std::string controllerPath(std::int32_t adapter) {
    return std::string(word) + " /c" + std::to_string(adapter);
}

std::string volumePath(std::int32_t adapter, const LogicalDriveFacts& volume) {
    const std::optional<std::int32_t> number =
        volume.commandNumber ? volume.commandNumber : text::wholeNumber(volume.id);
    return number ? controllerPath(adapter) + "/v" + std::to_string(*number) : std::string();
}

std::string ended(std::string line) {
    return line.empty() ? line : line.append(ending);
}

/// Whether the utility has to be told how many drives a span has.
bool hasSpans(std::string_view raidType) {
    return raidType == "RAID00" || raidType == "RAID10" || raidType == "RAID50" ||
           raidType == "RAID60";
}

/// The name as the utility can be told it.
std::string nameOf(const std::string& name) {
    std::string text;
    for (const char letter : name) {
        const bool isPlain = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
                             (letter >= '0' && letter <= '9') || letter == '-' || letter == '_';
        text += isPlain ? letter : '_';
    }
    return text.substr(0, mostNameBytes);
}

} // namespace

std::string typed(const FamilyController& controller, std::string_view words) {
    const std::string program = !controller.program.empty() ? controller.program
                                : controller.facts.productName.starts_with("PERC") ? "perccli64"
                                                                                   : "storcli64";
    return program + " " + std::string(words);
}

std::string drivePath(std::int32_t adapter, std::string_view location) {
    const std::size_t colon = location.find(':');
    const std::string_view enclosure = location.substr(0, colon == std::string::npos ? 0 : colon);
    const std::string_view slot =
        colon == std::string::npos ? location : location.substr(colon + 1);
    return controllerPath(adapter) +
           (enclosure.empty() ? std::string() : "/e" + std::string(enclosure)) + "/s" +
           std::string(slot);
}

std::string createVolume(std::int32_t adapter, const VolumeWish& wish) {
    const std::string_view level = wordOf(levels, wish.raidType);
    if (level.empty() || wish.spans.empty()) {
        return {};
    }
    std::string line = controllerPath(adapter) + " add vd " + std::string(level);
    if (wish.capacityBytes) {
        line += " Size=" + std::to_string(*wish.capacityBytes / bytesOfMb) + "MB";
    }
    if (!wish.name.empty()) {
        line += " name=" + nameOf(wish.name);
    }
    std::vector<std::string> drives;
    for (const std::vector<std::string>& span : wish.spans) {
        drives.insert(drives.end(), span.begin(), span.end());
    }
    line += " drives=" + joined(drives, ",");
    if (hasSpans(wish.raidType)) {
        line += " PDperArray=" + std::to_string(wish.spans.front().size());
    }
    for (const std::string_view mode :
         {wordOf(writeModes, wish.writeCache), wordOf(readModes, wish.readCache)}) {
        line += (mode.empty() ? "" : " ") + std::string(mode);
    }
    if (wish.stripSizeBytes) {
        line += " Strip=" + std::to_string(*wish.stripSizeBytes / bytesOfKb);
    }
    if (!wish.spares.empty()) {
        line += " Spares=" + joined(wish.spares, ",");
    }
    return ended(std::move(line));
}

std::string deleteVolume(std::int32_t adapter, const LogicalDriveFacts& volume) {
    const std::string path = volumePath(adapter, volume);
    return path.empty() ? path : ended(path + " del");
}

std::string addSpare(std::int32_t adapter, const std::string& location,
                     const std::vector<std::string>& arrays) {
    return ended(drivePath(adapter, location) + " add hotsparedrive" +
                 (arrays.empty() ? "" : " DGs=" + joined(arrays, ",")));
}

std::string removeSpare(std::int32_t adapter, const std::string& location) {
    return ended(drivePath(adapter, location) + " delete hotsparedrive");
}

std::string clearForeign(std::int32_t adapter) {
    return ended(controllerPath(adapter) + "/fall del");
}

std::string setCache(std::int32_t adapter, const LogicalDriveFacts& volume,
                     std::string_view attribute, std::string_view value) {
    const std::string path = volumePath(adapter, volume);
    const bool isWrite = attribute == "write_cache_policy";
    const std::string_view mode = isWrite                            ? wordOf(writeModes, value)
                                  : attribute == "read_cache_policy" ? wordOf(readModes, value)
                                                                     : std::string_view();
    if (path.empty() || mode.empty()) {
        return {};
    }
    const std::string told = isWrite          ? "wrcache=" + std::string(mode)
                             : mode == "nora" ? "rdcache=NoRA"
                                              : "rdcache=RA";
    return ended(path + " set " + told);
}

std::string setRebuildRate(std::int32_t adapter, std::string_view rate) {
    const std::string_view percent = wordOf(rebuildRates, rate);
    return percent.empty()
               ? std::string()
               : ended(controllerPath(adapter) + " set rebuildrate=" + std::string(percent));
}

} // namespace zolex::companion::storcli
