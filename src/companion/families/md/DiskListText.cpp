#include "companion/families/md/DiskList.h"

#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>

namespace zolex::companion::md {

namespace {

using Json = nlohmann::ordered_json;

/// In the order of Superblock::Part.
constexpr std::array<std::string_view, 4> partWords = {"member", "spare", "journal", "faulty"};

constexpr std::string_view kind = "zolexctl drives of Linux";

template <typename Number>
Json numberOrNull(const std::optional<Number>& number) {
    return number ? Json(*number) : Json();
}

Json toJson(const Superblock& superblock) {
    return Json{{"version", superblock.version},
                {"uuid", superblock.uuid},
                {"name", superblock.name},
                {"level", superblock.level},
                {"raid_disks", superblock.raidDisks},
                {"chunk_bytes", superblock.chunkBytes},
                {"component_bytes", superblock.componentBytes},
                {"events", superblock.events},
                {"part", partWords.at(static_cast<std::size_t>(superblock.part))},
                {"role", numberOrNull(superblock.role)},
                {"has_journal", superblock.hasJournal}};
}

Json toJson(const ListedDisk& disk) {
    return Json{{"name", disk.name},
                {"id", disk.id},
                {"path", disk.path},
                {"function", disk.function},
                {"serial_number", disk.serialNumber},
                {"manufacturer", disk.manufacturer},
                {"model", disk.model},
                {"revision", disk.revision},
                {"wwn", disk.wwn},
                {"protocol", disk.protocol},
                {"media_type", disk.mediaType},
                {"bytes", disk.bytes},
                {"block_bytes", disk.blockBytes},
                {"channel", numberOrNull(disk.channel)},
                {"target", numberOrNull(disk.target)},
                {"bus", disk.bus},
                {"unit", disk.unit},
                {"is_loose", disk.isLoose},
                {"superblock", disk.superblock ? toJson(*disk.superblock) : Json()},
                {"array", disk.array},
                {"array_state", disk.arrayState},
                {"array_slot", numberOrNull(disk.arraySlot)},
                {"why", disk.why},
                {"carries", disk.carries}};
}

Json toJson(const ListedArray& array) {
    return Json{{"node", array.node},
                {"name", array.name},
                {"uuid", array.uuid},
                {"level", array.level},
                {"version", array.version},
                {"state", array.state},
                {"sync_action", array.syncAction},
                {"raid_disks", array.raidDisks},
                {"degraded", array.degraded},
                {"chunk_bytes", array.chunkBytes},
                {"component_bytes", array.componentBytes},
                {"bytes", array.bytes},
                {"has_journal", array.hasJournal},
                {"is_ours", array.isOurs},
                {"is_shown", array.isShown},
                {"why_not_stopped", array.whyNotStopped},
                {"members", array.members}};
}

/// Fields of an object; what is not there, or of another kind, is empty.
class Fields {
  public:
    explicit Fields(const Json& object) : object_(object) {}

    [[nodiscard]] std::string text(const char* key) const {
        const Json* const value = find(key);
        return value != nullptr && value->is_string() ? value->get<std::string>() : std::string();
    }
    template <typename Number>
    [[nodiscard]] std::optional<Number> number(const char* key) const {
        const Json* const value = find(key);
        if (value == nullptr || !value->is_number_integer()) {
            return std::nullopt;
        }
        if (value->is_number_unsigned()) {
            const auto told = value->get<std::uint64_t>();
            return told <= static_cast<std::uint64_t>(std::numeric_limits<Number>::max())
                       ? std::optional(static_cast<Number>(told))
                       : std::nullopt;
        }
        const auto told = value->get<std::int64_t>();
        return std::numeric_limits<Number>::is_signed &&
                       told >= static_cast<std::int64_t>(std::numeric_limits<Number>::min())
                   ? std::optional(static_cast<Number>(told))
                   : std::nullopt;
    }
    template <typename Number>
    void get(const char* key, Number& value) const {
        value = number<Number>(key).value_or(value);
    }
    [[nodiscard]] bool flag(const char* key) const {
        const Json* const value = find(key);
        return value != nullptr && value->is_boolean() && value->get<bool>();
    }
    [[nodiscard]] const Json* find(const char* key) const {
        if (!object_.is_object()) {
            return nullptr;
        }
        const auto found = object_.find(key);
        return found == object_.end() ? nullptr : &*found;
    }

  private:
    const Json& object_;
};

Superblock superblockFrom(const Json& json) {
    const Fields fields(json);
    Superblock superblock;
    superblock.version = fields.text("version");
    superblock.uuid = fields.text("uuid");
    superblock.name = fields.text("name");
    fields.get("level", superblock.level);
    fields.get("raid_disks", superblock.raidDisks);
    fields.get("chunk_bytes", superblock.chunkBytes);
    fields.get("component_bytes", superblock.componentBytes);
    fields.get("events", superblock.events);
    superblock.role = fields.number<std::uint32_t>("role");
    superblock.hasJournal = fields.flag("has_journal");
    // Texts of earlier versions tell places alone.
    superblock.part = superblock.role ? Superblock::Part::member : Superblock::Part::spare;
    const auto* const part = std::find(partWords.begin(), partWords.end(), fields.text("part"));
    if (part != partWords.end()) {
        superblock.part = static_cast<Superblock::Part>(part - partWords.begin());
    }
    return superblock;
}

ListedDisk diskFrom(const Json& json) {
    const Fields fields(json);
    ListedDisk disk;
    disk.name = fields.text("name");
    disk.id = fields.text("id");
    disk.path = fields.text("path");
    disk.function = fields.text("function");
    disk.serialNumber = fields.text("serial_number");
    disk.manufacturer = fields.text("manufacturer");
    disk.model = fields.text("model");
    disk.revision = fields.text("revision");
    disk.wwn = fields.text("wwn");
    disk.protocol = fields.text("protocol");
    disk.mediaType = fields.text("media_type");
    fields.get("bytes", disk.bytes);
    fields.get("block_bytes", disk.blockBytes);
    disk.channel = fields.number<std::int32_t>("channel");
    disk.target = fields.number<std::int32_t>("target");
    fields.get("bus", disk.bus);
    fields.get("unit", disk.unit);
    disk.isLoose = fields.flag("is_loose");
    const Json* const superblock = fields.find("superblock");
    if (superblock != nullptr && superblock->is_object()) {
        disk.superblock = superblockFrom(*superblock);
    }
    disk.array = fields.text("array");
    disk.arrayState = fields.text("array_state");
    disk.arraySlot = fields.number<std::uint32_t>("array_slot");
    disk.why = fields.text("why");
    disk.carries = fields.text("carries");
    return disk;
}

ListedArray arrayFrom(const Json& json) {
    const Fields fields(json);
    ListedArray array;
    array.node = fields.text("node");
    array.name = fields.text("name");
    array.uuid = fields.text("uuid");
    array.level = fields.text("level");
    array.version = fields.text("version");
    array.state = fields.text("state");
    array.syncAction = fields.text("sync_action");
    fields.get("raid_disks", array.raidDisks);
    fields.get("degraded", array.degraded);
    fields.get("chunk_bytes", array.chunkBytes);
    fields.get("component_bytes", array.componentBytes);
    fields.get("bytes", array.bytes);
    array.hasJournal = fields.flag("has_journal");
    array.isOurs = fields.flag("is_ours");
    array.isShown = array.isOurs || fields.flag("is_shown");
    array.whyNotStopped = fields.text("why_not_stopped");
    if (const Json* const members = fields.find("members"); members != nullptr) {
        for (const Json& member : *members) {
            if (member.is_string()) {
                array.members.push_back(member.get<std::string>());
            }
        }
    }
    return array;
}

} // namespace

std::string toText(const DiskList& list) {
    Json disks = Json::array();
    for (const ListedDisk& disk : list.disks) {
        disks.push_back(toJson(disk));
    }
    Json arrays = Json::array();
    for (const ListedArray& array : list.arrays) {
        arrays.push_back(toJson(array));
    }
    const Json whole{
        {"kind", kind}, {"kernel", list.kernel}, {"drives", disks}, {"arrays", arrays}};
    return whole.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::optional<DiskList> diskListFrom(std::string_view text) {
    constexpr int deepest = 8;
    bool isTooDeep = false;
    const Json whole = Json::parse(
        text,
        [&isTooDeep](int depth, Json::parse_event_t, Json&) {
            isTooDeep = isTooDeep || depth > deepest;
            return !isTooDeep;
        },
        false);
    const Fields fields(whole);
    if (isTooDeep || fields.text("kind") != kind) {
        return std::nullopt;
    }
    DiskList list;
    list.kernel = fields.text("kernel");
    if (const Json* const disks = fields.find("drives"); disks != nullptr) {
        for (const Json& disk : *disks) {
            list.disks.push_back(diskFrom(disk));
        }
    }
    if (const Json* const arrays = fields.find("arrays"); arrays != nullptr) {
        for (const Json& array : *arrays) {
            list.arrays.push_back(arrayFrom(array));
        }
    }
    return list;
}

} // namespace zolex::companion::md
