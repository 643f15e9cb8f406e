#include "companion/families/md/MdCommands.h"

#include "companion/families/md/DiskList.h"
#include "companion/text/Sizes.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace zolex::companion::md {

namespace {

constexpr std::string_view byId = "/dev/disk/by-id/";
constexpr std::string_view arrays = "/dev/md/";
constexpr std::string_view uuidOption = "--uuid=";
constexpr std::uint64_t kibibyte = 1024;

struct Level {
    std::string_view raidType;
    std::string_view word; ///< of mdadm
    std::size_t leastDrives;
    bool isRedundant;
    bool hasChunk;
};

constexpr std::array levels = {
    Level{"RAID0", "0", 2, false, true},  Level{"RAID1", "1", 2, true, false},
    Level{"RAID5", "5", 3, true, true},   Level{"RAID6", "6", 4, true, true},
    Level{"RAID10", "10", 4, true, true}, Level{"RAID1E", "10", 3, true, true},
};

const Level* levelOf(std::string_view raidType) {
    const auto found = std::find_if(levels.begin(), levels.end(), [raidType](const Level& level) {
        return level.raidType == raidType;
    });
    return found == levels.end() ? nullptr : &*found;
}

std::vector<std::string> drivesOf(const VolumeWish& wish) {
    std::vector<std::string> drives;
    for (const std::vector<std::string>& span : wish.spans) {
        drives.insert(drives.end(), span.begin(), span.end());
    }
    return drives;
}

bool isPlain(std::string_view name) {
    constexpr std::string_view others = "._:+-@=,";
    return !name.empty() && name[0] != '-' && name[0] != '.' &&
           std::all_of(name.begin(), name.end(), [others](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                      others.find(c) != std::string_view::npos;
           });
}

/// The name of an array: that of the wish, or one made of its drives. A superblock holds 32 bytes.
std::string arrayName(const VolumeWish& wish) {
    constexpr std::size_t most = 32;
    std::string name(ownPrefix);
    if (!wish.name.empty()) {
        name += wish.name.starts_with(ownPrefix) ? wish.name.substr(ownPrefix.size()) : wish.name;
        std::replace_if(
            name.begin(), name.end(),
            [](char c) {
                return !isPlain(std::string{'x', c}) || c == ':' || c == ',';
            },
            '-');
        return name.substr(0, most);
    }
    std::uint32_t hash = 2166136261U;
    for (const std::string& drive : drivesOf(wish)) {
        for (const char c : drive + "\n") {
            hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
        }
    }
    constexpr std::string_view digits = "0123456789abcdef";
    for (int shift = 28; shift >= 0; shift -= 4) {
        name += digits[hash >> static_cast<unsigned>(shift) & 15U];
    }
    return name;
}

/// Drives' worth of data of an array, in halves of a drive.
std::uint64_t halves(std::string_view raidType, std::uint64_t drives) {
    if (raidType == "RAID1") {
        return 2;
    }
    if (raidType == "RAID5") {
        return 2 * (drives - 1);
    }
    if (raidType == "RAID6") {
        return 2 * (drives - 2);
    }
    return raidType == "RAID0" ? 2 * drives : drives;
}

/// The chunk of an array, of which its part of each drive is a multiple.
std::uint64_t stepOf(const VolumeWish& wish, const Level& level) {
    return level.hasChunk ? wish.stripSizeBytes.value_or(512 * kibibyte) : kibibyte;
}

/// What a logical drive with a size of its own takes of each drive.
std::uint64_t shareOf(const VolumeWish& wish, const Level& level, std::size_t drives) {
    const std::uint64_t step = stepOf(wish, level);
    return wish.capacityBytes.value_or(0) / halves(wish.raidType, drives) * 2 / step * step;
}

/// What mdadm keeps of a drive before the data: up to 128 MiB for later changes of the array's
/// shape, and room for its superblock and bitmap.
std::uint64_t dataOffset(std::uint64_t driveBytes, std::uint64_t chunk) {
    constexpr std::uint64_t mebibyte = kibibyte * kibibyte;
    constexpr std::uint64_t part = 1024;
    std::uint64_t spared = 128 * mebibyte;
    while (spared > driveBytes / part && spared > 2 * chunk && spared > kibibyte) {
        spared /= 2;
    }
    return spared / mebibyte * mebibyte + mebibyte;
}

bool isPowerOfTwo(std::uint64_t value) {
    return value != 0 && (value & (value - 1)) == 0;
}

bool isGoodChunk(std::uint64_t bytes) {
    return isPowerOfTwo(bytes) && bytes >= 4 * kibibyte && bytes <= kibibyte * kibibyte * kibibyte;
}

std::optional<std::size_t> countIn(std::string_view text) {
    std::size_t value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size() && !text.empty()
               ? std::optional(value)
               : std::nullopt;
}

std::optional<std::string> nameBehind(std::string_view folder, std::string_view path) {
    return path.starts_with(folder) && isPlain(path.substr(folder.size()))
               ? std::optional<std::string>(path.substr(folder.size()))
               : std::nullopt;
}

bool takeDrives(MdCommand& command, std::size_t from) {
    for (std::size_t i = from; i < command.arguments.size(); ++i) {
        const std::optional<std::string> drive = nameBehind(byId, command.arguments[i]);
        if (!drive || std::find(command.drives.begin(), command.drives.end(), *drive) !=
                          command.drives.end()) {
            return false;
        }
        command.drives.push_back(*drive);
    }
    return !command.drives.empty();
}

bool takeArray(MdCommand& command, std::string_view path) {
    const std::optional<std::string> name = nameBehind(arrays, path);
    if (!name || !name->starts_with(ownPrefix)) {
        return false;
    }
    command.array = *name;
    return true;
}

/// "--create /dev/md/NAME OPTION... DRIVE...": every option is one that createLine writes.
bool takeCreate(MdCommand& command) {
    const std::vector<std::string>& words = command.arguments;
    if (words.size() < 2 || !takeArray(command, words[1])) {
        return false;
    }
    std::size_t drives = 0;
    std::size_t i = 2;
    for (; i < words.size() && words[i].starts_with("--"); ++i) {
        const std::string_view word = words[i];
        const std::size_t equals = word.find('=');
        const std::string_view key = word.substr(0, equals);
        const std::string_view value =
            equals == std::string_view::npos ? std::string_view() : word.substr(equals + 1);
        const std::optional<std::size_t> count = countIn(value);
        const bool isFixed = word == "--metadata=1.2" || word == "--homehost=<none>" ||
                             word == "--bitmap=internal" || word == "--name=" + command.array;
        const bool isCount = key == "--raid-devices" || key == "--spare-devices";
        const bool isNumber = isCount || key == "--level" || key == "--chunk" || key == "--size";
        if (!isFixed && !(isNumber && count)) {
            return false;
        }
        constexpr std::size_t mostDrives = 4096;
        if (isCount && *count > mostDrives) {
            return false;
        }
        drives += isCount ? *count : 0;
    }
    return takeDrives(command, i) && command.drives.size() == drives;
}

/// As mdadm writes it: "3e2f1a00:...:...:...".
bool isUuid(std::string_view text) {
    constexpr std::size_t part = 9; // with its colon
    constexpr std::size_t size = 4 * part - 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit =
            (text[i] >= '0' && text[i] <= '9') || (text[i] >= 'a' && text[i] <= 'f');
        if (i % part == part - 1 ? text[i] != ':' : !isDigit) {
            return false;
        }
    }
    return text.size() == size;
}

bool takeRemove(MdCommand& command) {
    const std::vector<std::string>& words = command.arguments;
    if (words.size() < 4 || !takeArray(command, words[1])) {
        return false;
    }
    std::size_t next = 2;
    if (words[next].starts_with(uuidOption)) {
        command.uuid = words[next++].substr(uuidOption.size());
        if (!isUuid(command.uuid)) {
            return false;
        }
    }
    return words[next] == "--zero-superblock" && takeDrives(command, next + 1);
}

bool takeManage(MdCommand& command) {
    const std::vector<std::string>& words = command.arguments;
    if (words.size() != 4 || !takeArray(command, words[1]) || !takeDrives(command, 3)) {
        return false;
    }
    const bool adds = words[2] == "--add-spare";
    command.verb = adds ? MdCommand::Verb::addSpare : MdCommand::Verb::removeSpare;
    return adds || words[2] == "--remove";
}

/// Bytes of the smallest drive and of the largest.
struct DriveSizes {
    std::uint64_t least = 0;
    std::uint64_t most = 0;
};

/// Why drives have no room for an array, or too much for one that takes a part of them: mdadm asks
/// about one that leaves more than a hundredth of a drive, and nobody answers.
std::string whyNoRoom(const VolumeWish& wish, const Level& level, std::size_t drives,
                      DriveSizes sizes) {
    const std::uint64_t step = stepOf(wish, level);
    const auto roomOf = [&](std::uint64_t bytes) {
        const std::uint64_t offset = dataOffset(bytes, level.hasChunk ? step : 0);
        return (bytes - std::min(bytes, offset)) / step * step;
    };
    const std::uint64_t room = roomOf(sizes.least);
    if (room == 0) {
        return "a drive of " + sizeText(sizes.least) + " has no room for a strip of " +
               sizeText(step);
    }
    if (!wish.capacityBytes) {
        return {};
    }
    const std::uint64_t share = shareOf(wish, level, drives);
    const auto megabytes = [](std::uint64_t bytes) {
        return std::to_string(bytes / (kibibyte * kibibyte)) + " MB";
    };
    const std::string taken =
        "of that size it takes " + megabytes(share + kibibyte * kibibyte - 1) + " of each drive, ";
    if (share > room) {
        return taken + "where mdadm leaves " + megabytes(room) + ": FILL takes all";
    }
    constexpr std::uint64_t hundred = 100;
    const std::uint64_t most = roomOf(sizes.most);
    return most - share > most / hundred
               ? taken + "and mdadm makes none of less than 99 % (" + megabytes(most) +
                     " here) unless it is forced: FILL takes all"
               : std::string();
}

bool isQuestion(const std::vector<std::string>& words) {
    return words.size() == 3 && (words[0] == "--detail" || words[0] == "--examine") &&
           words[1] == "--export" && nameBehind("/dev/", words[2]).has_value();
}

} // namespace

std::string detailLine(std::string_view node) {
    return "MD --detail --export /dev/" + std::string(node);
}

std::string examineLine(std::string_view drive) {
    return "MD --examine --export /dev/" + std::string(drive);
}

std::string createLine(const VolumeWish& wish) {
    if (!whyNoArray(wish, Facts()).empty()) {
        return {};
    }
    const Level& level = *levelOf(wish.raidType);
    const std::vector<std::string> drives = drivesOf(wish);
    const std::string name = arrayName(wish);
    std::string line = "MD --create " + std::string(arrays) + name +
                       " --metadata=1.2 \"--homehost=<none>\" --name=" + name +
                       " --level=" + std::string(level.word) +
                       " --raid-devices=" + std::to_string(drives.size());
    if (wish.stripSizeBytes && level.hasChunk) {
        line += " --chunk=" + std::to_string(*wish.stripSizeBytes / kibibyte);
    }
    if (wish.capacityBytes) {
        line += " --size=" + std::to_string(shareOf(wish, level, drives.size()) / kibibyte);
    }
    if (!wish.spares.empty()) {
        line += " --spare-devices=" + std::to_string(wish.spares.size());
    }
    if (level.isRedundant) {
        line += " --bitmap=internal";
    }
    for (const std::vector<std::string>& part : {drives, wish.spares}) {
        for (const std::string& drive : part) {
            line += " " + std::string(byId) + drive;
        }
    }
    return commandFrom(line) ? line : std::string();
}

std::string deleteLine(const std::string& array, const std::string& uuid,
                       const std::vector<std::string>& drives) {
    std::string line = "MD --stop " + std::string(arrays) + array;
    line += isUuid(uuid) ? " " + std::string(uuidOption) + uuid : std::string();
    line += " --zero-superblock";
    for (const std::string& drive : drives) {
        line += " " + std::string(byId) + drive;
    }
    return commandFrom(line) ? line : std::string();
}

std::string addSpareLine(const std::string& array, const std::string& drive) {
    const std::string line =
        "MD --manage " + std::string(arrays) + array + " --add-spare " + std::string(byId) + drive;
    return commandFrom(line) ? line : std::string();
}

std::string removeSpareLine(const std::string& array, const std::string& drive) {
    const std::string line =
        "MD --manage " + std::string(arrays) + array + " --remove " + std::string(byId) + drive;
    return commandFrom(line) ? line : std::string();
}

std::optional<MdCommand> commandFrom(std::string_view line) {
    const std::vector<std::string> words = splitCommandLine(line);
    if (words.size() < 2 || words[0] != "MD") {
        return std::nullopt;
    }
    MdCommand command;
    command.arguments.assign(words.begin() + 1, words.end());
    const std::string& verb = words[1];
    bool isKnown = false;
    if (verb == "drives") {
        isKnown = words.size() == 2;
    } else if (verb == "--create") {
        command.verb = MdCommand::Verb::create;
        isKnown = takeCreate(command);
    } else if (verb == "--stop") {
        command.verb = MdCommand::Verb::remove;
        isKnown = takeRemove(command);
    } else if (verb == "--manage") {
        isKnown = takeManage(command);
    } else {
        command.verb = MdCommand::Verb::ask;
        isKnown = line == versionLine || isQuestion(command.arguments);
    }
    return isKnown ? std::optional(std::move(command)) : std::nullopt;
}

std::string whyNoArray(const VolumeWish& wish, const Facts& facts) {
    const Level* const level = levelOf(wish.raidType);
    const std::vector<std::string> drives = drivesOf(wish);
    if (level == nullptr) {
        return "md has no " + (wish.raidType.empty() ? "such level" : wish.raidType);
    }
    if (drives.size() < level->leastDrives) {
        return "md makes " + wish.raidType + " of " + std::to_string(level->leastDrives) +
               " drives or more";
    }
    const bool isOdd = drives.size() % 2 != 0;
    if ((wish.raidType == "RAID10" && isOdd) || (wish.raidType == "RAID1E" && !isOdd)) {
        return wish.raidType + " needs an " + (isOdd ? "even" : "odd") + " number of drives";
    }
    if (wish.stripSizeBytes && level->hasChunk && !isGoodChunk(*wish.stripSizeBytes)) {
        return "a strip of md is a power of two from 4 KB to 1 GB";
    }
    if (!level->isRedundant && (wish.capacityBytes || !wish.spares.empty())) {
        return wish.capacityBytes ? "RAID0 of md takes its drives whole"
                                  : "RAID0 of md has no spares";
    }
    // With more than a hundredth between the largest drive and the smallest mdadm asks, and nobody
    // answers.
    std::uint64_t least = ~std::uint64_t{0};
    std::uint64_t most = 0;
    for (const std::vector<std::string>& part : {drives, wish.spares}) {
        for (const std::string& location : part) {
            const DriveFacts* const drive = facts.drive(location);
            if (drive != nullptr && drive->capacityBytes) {
                least = std::min(least, *drive->capacityBytes);
                most = std::max(most, *drive->capacityBytes);
            }
        }
    }
    constexpr std::uint64_t hundred = 100;
    if (level->isRedundant && most > least && most - least > least / hundred) {
        return "its drives differ by more than 1 % (" + sizeText(least) + " and " + sizeText(most) +
               "), which mdadm makes no array of unless it is forced";
    }
    return most == 0 ? std::string() : whyNoRoom(wish, *level, drives.size(), {least, most});
}

} // namespace zolex::companion::md
