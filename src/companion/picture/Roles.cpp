#include "companion/picture/Roles.h"

#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string_view>
#include <tuple>

namespace zolex::companion {

namespace {

bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}

/// Where a drive stands. Rows of enclosures come before those of channels, where all else is equal.
enum class PlaceKind { enclosure, channel, none };

struct RowKey {
    PlaceKind kind = PlaceKind::none;
    std::int32_t number = 0;
    friend bool operator<(const RowKey& a, const RowKey& b) {
        return std::tie(a.kind, a.number) < std::tie(b.kind, b.number);
    }
};

RowKey rowKeyOf(const DriveFacts& drive) {
    if (drive.enclosure) {
        return {PlaceKind::enclosure, *drive.enclosure};
    }
    if (drive.channel) {
        return {PlaceKind::channel, *drive.channel};
    }
    return {};
}

std::string titleOf(const RowKey& key) {
    switch (key.kind) {
    case PlaceKind::enclosure:
        return "Enclosure " + std::to_string(key.number);
    case PlaceKind::channel:
        return "Channel " + std::to_string(key.number);
    case PlaceKind::none:
        return "No enclosure";
    }
    return {};
}

constexpr std::int32_t lastNumber = std::numeric_limits<std::int32_t>::max();

/// Drives of a row before they are put into slots.
struct RowDrives {
    RowKey key;
    std::int32_t firstNumber = lastNumber; ///< lowest policy number
    std::vector<std::size_t> drives;
};

/// The slots of drives that are in the order of their slots. Gaps of an enclosure are empty slots,
/// unless the numbers lie so far apart that they cannot be those of one enclosure.
std::vector<DriveRow::Slot> slotsOf(const ControllerSnapshot& controller, const RowDrives& row) {
    std::vector<DriveRow::Slot> slots;
    const auto slotOf = [&](std::size_t drive) { return controller.drives[drive].facts.slot; };
    bool gaps = row.key.kind == PlaceKind::enclosure &&
                std::all_of(row.drives.begin(), row.drives.end(),
                            [&](std::size_t drive) { return slotOf(drive).has_value(); });
    std::int32_t next = 0;
    if (gaps) {
        const std::int32_t first = *slotOf(row.drives.front());
        const std::int32_t last = *slotOf(row.drives.back());
        const auto most = static_cast<std::int64_t>(row.drives.size()) * 2 + 24;
        gaps = first >= 0 && last < most;
        next = first == 1 ? 1 : 0; // slots may count from 1
    }
    for (const std::size_t drive : row.drives) {
        const std::optional<std::int32_t> slot = slotOf(drive);
        for (; gaps && next < *slot; ++next) {
            slots.push_back({std::nullopt, next});
        }
        slots.push_back({drive, slot});
        next = gaps ? *slot + 1 : 0;
    }
    return slots;
}

/// A location in two parts: what stands before its last number, and that number.
std::optional<std::pair<std::string_view, std::int32_t>> splitLocation(std::string_view location) {
    std::size_t start = location.size();
    while (start > 0 && location[start - 1] >= '0' && location[start - 1] <= '9') {
        --start;
    }
    if (start == location.size() || location.size() - start > 6) {
        return std::nullopt;
    }
    std::int32_t number = 0;
    for (const char digit : location.substr(start)) {
        number = number * 10 + (digit - '0');
    }
    return std::pair(location.substr(0, start), number);
}

bool follows(std::string_view next, std::string_view location) {
    const auto a = splitLocation(location);
    const auto b = splitLocation(next);
    return a && b && a->first == b->first && b->second == a->second + 1;
}

} // namespace

Role roleOf(const MachineDrive& drive) {
    switch (drive.facts.state) {
    case DriveState::failed:
    case DriveState::missing:
        return Role::failed;
    case DriveState::hotspare:
        return Role::hotspare;
    case DriveState::foreign:
        return Role::foreign;
    case DriveState::jbod:
        return Role::jbod;
    case DriveState::member:
    case DriveState::rebuilding:
        return drive.array.empty() ? Role::unknown : Role::member;
    case DriveState::free:
        return drive.array.empty() ? Role::free : Role::member;
    case DriveState::unknown:
        return drive.array.empty() ? Role::unknown : Role::member;
    }
    return Role::unknown;
}

std::string markOf(const MachineDrive& drive) {
    switch (roleOf(drive)) {
    case Role::member:
        return drive.array;
    case Role::hotspare:
        return "*";
    case Role::free:
        return ".";
    case Role::failed:
        return "x";
    case Role::foreign:
        return "~";
    case Role::jbod:
        return "=";
    case Role::unknown:
        return "?";
    }
    return {};
}

std::string jobOf(const MachineDrive& drive) {
    if (!drive.array.empty()) {
        return drive.array;
    }
    switch (roleOf(drive)) {
    case Role::hotspare:
        return "spare";
    case Role::free:
        return "free";
    case Role::foreign:
        return "foreign";
    case Role::jbod:
        return "JBOD";
    default:
        return "-";
    }
}

std::string troubleOf(const DriveFacts& drive) {
    std::string text;
    const auto add = [&](std::optional<std::uint64_t> count, const char* one, const char* many) {
        if (count.value_or(0) > 0) {
            text += (text.empty() ? "" : ", ") + countText(*count, one, many);
        }
    };
    add(drive.mediaErrorCount, "media error", "media errors");
    add(drive.predictedFailureCount, "predicted failure", "predicted failures");
    const bool isFailed = drive.state == DriveState::failed || drive.state == DriveState::missing;
    if (!text.empty() || isFailed) {
        return text; // that it failed is told anyway
    }
    if (drive.health == Health::critical) {
        text = "critical health";
    } else if (drive.health == Health::warning && drive.state != DriveState::rebuilding) {
        text = "a warning of its health";
    }
    return text;
}

std::string modelOf(const DriveFacts& drive) {
    std::string text = drive.manufacturer;
    text += (text.empty() || drive.model.empty() ? "" : " ") + drive.model;
    return printable(text.empty() ? drive.inquiry : text);
}

std::string numberOf(const MachineDrive& drive) {
    return drive.policyNumber ? std::to_string(*drive.policyNumber) : "-";
}

std::vector<DriveRow> driveRowsOf(const ControllerSnapshot& controller) {
    std::map<RowKey, RowDrives> byKey;
    for (std::size_t i = 0; i < controller.drives.size(); ++i) {
        const MachineDrive& drive = controller.drives[i];
        RowDrives& row = byKey[rowKeyOf(drive.facts)];
        row.firstNumber = std::min(row.firstNumber, drive.policyNumber.value_or(lastNumber));
        row.drives.push_back(i);
    }
    std::vector<RowDrives> rows;
    for (auto& [key, row] : byKey) {
        row.key = key;
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [](const RowDrives& a, const RowDrives& b) {
        return std::tuple(a.firstNumber, a.key.kind, a.key.number) <
               std::tuple(b.firstNumber, b.key.kind, b.key.number);
    });
    std::vector<DriveRow> result;
    for (RowDrives& row : rows) {
        const auto order = [&](std::size_t i) {
            const MachineDrive& drive = controller.drives[i];
            const std::int32_t place =
                drive.facts.slot.value_or(drive.facts.id.value_or(lastNumber));
            return std::tuple(place, drive.policyNumber.value_or(lastNumber));
        };
        std::stable_sort(row.drives.begin(), row.drives.end(),
                         [&](std::size_t a, std::size_t b) { return order(a) < order(b); });
        result.push_back({titleOf(row.key), slotsOf(controller, row)});
    }
    return result;
}

std::map<std::string, std::size_t> arrayIndices(const ControllerSnapshot& controller) {
    std::map<std::string, std::size_t> indices;
    for (std::size_t i = 0; i < controller.arrays.size(); ++i) {
        indices.emplace(controller.arrays[i].letter, i);
    }
    return indices;
}

std::string levelOf(const LogicalDriveFacts& logicalDrive) {
    if (logicalDrive.raidType.empty()) {
        return logicalDrive.reportedLevel.empty() ? "?" : printable(logicalDrive.reportedLevel);
    }
    std::string level =
        logicalDrive.raidType == "None" ? "VOLUME" : printable(logicalDrive.raidType);
    const auto& spans = logicalDrive.spans;
    const bool equal = std::all_of(spans.begin(), spans.end(), [&](const auto& span) {
        return span.size() == spans.front().size();
    });
    if (spans.size() > 1) {
        level += " " + std::to_string(spans.size()) +
                 (equal ? "x" + std::to_string(spans.front().size()) : " spans");
    }
    return level;
}

std::string cacheOf(const LogicalDriveFacts& logicalDrive) {
    if (logicalDrive.writeCache == "WriteThrough") {
        return "write-through";
    }
    return logicalDrive.writeCache.empty() ? "" : "write-back";
}

std::string labelOf(const LogicalDriveFacts& logicalDrive) {
    // Those of a policy have a word as their id.
    const bool isNumber = logicalDrive.id.substr(0, 7) != "Logical";
    return (isNumber ? "LD " : "") + printable(logicalDrive.id) + " " + levelOf(logicalDrive) +
           " " + sizeText(logicalDrive.capacityBytes);
}

std::string stateText(std::string_view reportedState) {
    std::string text = printable(reportedState);
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins = i == 0 || text[i - 1] == ' ';
        const bool alone = i + 1 == text.size() || !isLower(text[i + 1]);
        if (begins && isUpper(text[i]) && !alone) {
            text[i] = static_cast<char>(text[i] - 'A' + 'a');
        }
    }
    return text;
}

std::vector<std::string> locationRanges(const std::vector<std::string>& locations) {
    std::vector<std::string> ranges;
    for (std::size_t i = 0; i < locations.size();) {
        std::size_t last = i;
        while (last + 1 < locations.size() && follows(locations[last + 1], locations[last])) {
            ++last;
        }
        if (last - i >= 2) {
            ranges.push_back(printable(locations[i]) + "-" + printable(locations[last]));
            i = last + 1;
        } else {
            ranges.push_back(printable(locations[i]));
            ++i;
        }
    }
    return ranges;
}

std::string pciText(const ControllerSnapshot& controller) {
    std::string_view address = controller.pci;
    constexpr std::string_view domain = "0000:";
    if (address.size() > domain.size() && address.substr(0, domain.size()) == domain) {
        address.remove_prefix(domain.size());
    }
    std::string text = printable(address);
    std::string ids = printable(controller.pciIds);
    constexpr std::size_t pair = 9; // "1000:0411"
    if (ids.size() == 2 * pair + 1 && ids[pair] == ':') {
        ids[pair] = ' ';
    }
    text += (text.empty() || ids.empty() ? "" : " ") + ids;
    return text.empty() ? text : "PCI " + text;
}

std::vector<std::string> abilitiesOf(const Facts& facts) {
    std::vector<std::string> abilities;
    if (!facts.raidTypes.empty()) {
        std::string levels = "levels";
        for (const std::string& type : facts.raidTypes) {
            levels += " ";
            levels += type.substr(0, 4) == "RAID" && type.size() > 4 ? printable(type.substr(4))
                      : type == "None"                               ? "VOLUME"
                                                                     : printable(type);
        }
        abilities.push_back(levels);
    }
    constexpr std::uint64_t kb = 1024;
    if (facts.minStripSizeBytes && facts.maxStripSizeBytes) {
        abilities.push_back("strip " + std::to_string(*facts.minStripSizeBytes / kb) + "-" +
                            std::to_string(*facts.maxStripSizeBytes / kb) + " KB");
    }
    if (facts.rebuildRatePercent) {
        abilities.push_back("rebuild rate " + std::to_string(*facts.rebuildRatePercent) + " %");
    } else if (!facts.rebuildRate.empty()) {
        abilities.push_back("rebuild rate " + stateText(facts.rebuildRate));
    }
    return abilities;
}

std::string productText(const ControllerSnapshot& controller) {
    const std::string product = printable(controller.facts.productName);
    std::string model = printable(controller.model);
    if (product.empty() || product == model) {
        return model;
    }
    return model.empty() ? product : product + " (" + model + ")";
}

std::string outcomeText(const CapturedListing& listing) {
    switch (listing.outcome) {
    case ChildOutcome::noPipe:
        return "no pipe could be made for it";
    case ChildOutcome::notStarted:
        return "could not be started";
    case ChildOutcome::stillRunning:
        return "had not ended in time";
    case ChildOutcome::notClosed:
        return "could not be closed";
    case ChildOutcome::ended:
        return "exit code " + std::to_string(listing.exitCode);
    }
    return {};
}

std::string machineTitle(const Snapshot& snapshot) {
    const std::string type = printable(snapshot.machine.machineType.c_str());
    const std::string serial = printable(snapshot.machine.serialNumber.c_str());
    std::string title = type.empty() ? "Machine of unknown type" : "Machine " + type;
    title += serial.empty() ? ", serial not known" : ", serial " + serial;
    return title;
}

} // namespace zolex::companion
