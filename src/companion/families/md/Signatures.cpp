#include "companion/families/md/Signatures.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace zolex::companion::md {

namespace {

/// Bytes of a drive that are known, by their place on it.
class Reader {
  public:
    explicit Reader(const DriveEnds& ends) : ends_(ends) {}

    /// Bytes from a place on; empty where not all of them are known.
    [[nodiscard]] std::string_view at(std::uint64_t place, std::size_t count) const {
        const std::string_view head = ends_.head;
        if (place <= head.size() && head.size() - place >= count) {
            return head.substr(static_cast<std::size_t>(place), count);
        }
        const std::string_view tail = ends_.tail;
        const std::uint64_t begin = ends_.bytes - std::min<std::uint64_t>(ends_.bytes, tail.size());
        if (place >= begin && place - begin <= tail.size() &&
            tail.size() - (place - begin) >= count) {
            return tail.substr(static_cast<std::size_t>(place - begin), count);
        }
        return {};
    }

    [[nodiscard]] bool has(std::uint64_t place, std::string_view bytes) const {
        return at(place, bytes.size()) == bytes;
    }

    /// A number of which the lowest byte stands first; 0 where it is not known.
    [[nodiscard]] std::uint64_t number(std::uint64_t place, std::size_t count) const {
        std::uint64_t value = 0;
        const std::string_view bytes = at(place, count);
        for (std::size_t i = bytes.size(); i > 0; --i) {
            value = value << 8U | static_cast<unsigned char>(bytes[i - 1]);
        }
        return value;
    }

    [[nodiscard]] std::uint64_t size() const { return ends_.bytes; }
    /// The place that lies so many bytes before the end; past every end where there is none.
    [[nodiscard]] std::uint64_t beforeEnd(std::uint64_t bytes) const {
        return bytes <= ends_.bytes ? ends_.bytes - bytes : ~std::uint64_t{0} >> 1U;
    }

  private:
    const DriveEnds& ends_;
};

struct Magic {
    std::uint64_t place;
    std::string_view bytes;
    std::string_view name;
};

using namespace std::string_view_literals;

/// What stands at a place of its own from the beginning of a drive.
constexpr std::array magics = {
    Magic{512, "EFI PART"sv, "a GPT partition table"},
    Magic{4096, "EFI PART"sv, "a GPT partition table"},
    Magic{1080, "\x53\xef"sv, "ext2, ext3 or ext4"},
    Magic{0, "XFSB"sv, "xfs"},
    Magic{65600, "_BHRfS_M"sv, "btrfs"},
    Magic{0, "LUKS\xba\xbe"sv, "LUKS"},
    Magic{16384, "SKUL\xba\xbe"sv, "LUKS"},
    Magic{32768, "SKUL\xba\xbe"sv, "LUKS"},
    Magic{0, "LABELONE"sv, "LVM2"},
    Magic{512, "LABELONE"sv, "LVM2"},
    Magic{1024, "LABELONE"sv, "LVM2"},
    Magic{1536, "LABELONE"sv, "LVM2"},
    Magic{1024, "\x10\x20\xf5\xf2"sv, "f2fs"},
    Magic{32769, "CD001"sv, "iso9660"},
    Magic{32768, "JFS1"sv, "jfs"},
    Magic{65588, "ReIsEr"sv, "reiserfs"},
    Magic{8244, "ReIsEr"sv, "reiserfs"}, // as it was at first
    Magic{65536, "ReIsEr4"sv, "reiser4"},
    Magic{65536, "\x01\x16\x19\x70"sv, "gfs2"},
    Magic{4120, "\xc6\x85\x73\xf6\x4e\x1a\x45\xca\x82\x65\xf5\x7f\x48\xba\x6d\x81"sv, "bcache"},
    Magic{4120, "\xc6\x85\x73\xf6\x66\xce\x90\xa9\xd9\x6a\x60\xcf\x80\x3d\xf7\xef"sv, "bcachefs"},
    Magic{510, "\x55\xaa"sv, "an MBR partition table or boot sector"},
};

/// The same, counted from the end.
constexpr std::array magicsAtEnd = {
    Magic{512, "EFI PART"sv, "the second table of a GPT"},
    Magic{4096, "EFI PART"sv, "the second table of a GPT"},
    Magic{1024, "Intel Raid ISM Cfg Sig. "sv, "RAID of Intel's firmware (IMSM)"},
    Magic{8192, "Intel Raid ISM Cfg Sig. "sv, "RAID of Intel's firmware (IMSM)"},
    Magic{512, "\xde\x11\xde\x11"sv, "RAID of a controller (DDF)"},
    Magic{512, "\x11\xde\x11\xde"sv, "RAID of a controller (DDF)"},
    Magic{4096, "\xde\x11\xde\x11"sv, "RAID of a controller (DDF)"},
    Magic{4096, "\x11\xde\x11\xde"sv, "RAID of a controller (DDF)"},
    Magic{4036, "\x83\x74\x02\x6b"sv, "drbd"},
    Magic{4036, "\x83\x74\x02\x6c"sv, "drbd"},
    Magic{4036, "\x83\x74\x02\x6d"sv, "drbd"},
};

bool hasSwap(const Reader& drive) {
    for (const std::uint64_t page : {4096U, 8192U, 16384U, 32768U, 65536U}) {
        if (drive.has(page - 10, "SWAPSPACE2") || drive.has(page - 10, "SWAP-SPACE") ||
            drive.has(page - 10, "S1SUSPEND")) {
            return true;
        }
    }
    return false;
}

/// A label of zfs has its uberblocks in its second half, each 1 KiB or more.
bool hasZfs(const Reader& drive) {
    constexpr std::uint64_t label = std::uint64_t{256} * 1024;
    constexpr std::uint64_t half = label / 2;
    const std::uint64_t end = drive.size() / label * label;
    for (const std::uint64_t begin :
         {std::uint64_t{0}, label, end - std::min(end, 2 * label), end - std::min(end, label)}) {
        for (std::uint64_t block = half; block < label; block += 1024) {
            if (drive.has(begin + block, "\x0c\xb1\xba\x00\x00\x00\x00\x00"sv) ||
                drive.has(begin + block, "\x00\x00\x00\x00\x00\xba\xb1\x0c"sv)) {
                return true;
            }
        }
    }
    return false;
}

/// Its volume descriptors stand in sectors of 2 KiB or of 4 KiB from 32 KiB on.
bool hasUdf(const Reader& drive) {
    constexpr std::uint64_t first = 32768;
    constexpr std::uint64_t step = 2048;
    constexpr std::uint64_t last = first + 64 * step;
    for (std::uint64_t place = first; place < last; place += step) {
        const std::string_view word = drive.at(place + 1, 5);
        if (word == "BEA01" || word == "NSR02" || word == "NSR03") {
            return true;
        }
    }
    return false;
}

constexpr std::uint32_t superblockMagic = 0xa92b4efc;

std::uint64_t oldSuperblockPlace(const Reader& drive) {
    constexpr std::uint64_t reserved = 65536;
    return drive.size() < 2 * reserved ? ~std::uint64_t{0} >> 1U
                                       : drive.size() / reserved * reserved - reserved;
}

std::string uuidText(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += i != 0 && i % 4 == 0 ? ":" : "";
        text += digits[byte >> 4U];
        text += digits[byte & 15U];
    }
    return text;
}

RoleTable rolesAt(const Reader& drive, std::uint64_t place) {
    constexpr std::uint64_t most = 384;
    RoleTable table;
    table.device = static_cast<std::uint32_t>(drive.number(place + 160, 4));
    const std::uint64_t devices = std::min(most, drive.number(place + 220, 4));
    for (std::uint64_t device = 0; device < devices; ++device) {
        table.roles.push_back(
            static_cast<std::uint32_t>(drive.number(place + 256 + 2 * device, 2)));
    }
    return table;
}

Superblock superblockAt(const Reader& drive, std::uint64_t place, const char* version) {
    constexpr std::uint32_t sector = 512;
    Superblock found;
    found.version = version;
    found.uuid = uuidText(drive.at(place + 16, 16));
    const std::string_view name = drive.at(place + 32, 32);
    found.name = name.substr(0, name.find('\0'));
    found.level =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(drive.number(place + 72, 4)));
    found.componentBytes = drive.number(place + 80, 8) * sector;
    found.chunkBytes = drive.number(place + 88, 4) * sector;
    found.raidDisks = static_cast<std::uint32_t>(drive.number(place + 92, 4));
    found.events = drive.number(place + 200, 8);
    constexpr std::uint64_t journalFeature = 512;
    found.hasJournal = (drive.number(place + 8, 4) & journalFeature) != 0;
    constexpr std::uint32_t spareRole = 0xffff;
    constexpr std::uint32_t journalRole = 0xfffd;
    found.part = Superblock::Part::faulty; // what is in no table is in no array any more
    const RoleTable table = rolesAt(drive, place);
    if (table.device < table.roles.size()) {
        const std::uint32_t role = table.roles[table.device];
        if (role == spareRole) {
            found.part = Superblock::Part::spare;
        } else if (role == journalRole) {
            found.part = Superblock::Part::journal;
        } else if (role < found.raidDisks) {
            found.part = Superblock::Part::member;
            found.role = role;
        }
    }
    return found;
}

struct Place {
    const char* version;
    std::uint64_t place;
};

/// Of a superblock of version 1.
std::optional<Place> placeOf(const Reader& drive) {
    // 1.0 begins 8 KiB before the end or up to 4 KiB earlier, at a multiple of 4 KiB.
    const std::array places = {Place{"1.2", 4096}, Place{"1.1", 0},
                               Place{"1.0", drive.beforeEnd(8192) / 4096 * 4096}};
    const auto* const found =
        std::find_if(places.begin(), places.end(), [&drive](const Place& each) {
            return drive.number(each.place, 4) == superblockMagic &&
                   drive.number(each.place + 4, 4) == 1;
        });
    return found == places.end() ? std::nullopt : std::optional(*found);
}

/// Looks at whole words: of each drive some megabytes are looked at.
bool isAllZero(std::string_view bytes) {
    std::uint64_t word = 0;
    for (; bytes.size() >= sizeof(word); bytes.remove_prefix(sizeof(word))) {
        std::memcpy(&word, bytes.data(), sizeof(word));
        if (word != 0) {
            return false;
        }
    }
    return bytes.find_first_not_of('\0') == std::string_view::npos;
}

} // namespace

std::optional<Superblock> superblockOf(const DriveEnds& ends) {
    const Reader drive(ends);
    if (const std::optional<Place> place = placeOf(drive)) {
        return superblockAt(drive, place->place, place->version);
    }
    const std::uint64_t old = oldSuperblockPlace(drive);
    if (drive.has(old, "\xfc\x4e\x2b\xa9"sv) || drive.has(old, "\xa9\x2b\x4e\xfc"sv)) {
        Superblock found;
        found.version = "0.90";
        return found;
    }
    return std::nullopt;
}

RoleTable rolesOf(const DriveEnds& ends) {
    const Reader drive(ends);
    const std::optional<Place> place = placeOf(drive);
    return place ? rolesAt(drive, place->place) : RoleTable();
}

std::vector<std::string> signaturesOf(const DriveEnds& ends) {
    const Reader drive(ends);
    std::vector<std::string> found;
    const auto add = [&found](std::string_view name) {
        if (std::find(found.begin(), found.end(), name) == found.end()) {
            found.emplace_back(name);
        }
    };
    for (const Magic& magic : magics) {
        if (drive.has(magic.place, magic.bytes)) {
            add(magic.name);
        }
    }
    for (const Magic& magic : magicsAtEnd) {
        if (drive.has(drive.beforeEnd(magic.place), magic.bytes)) {
            add(magic.name);
        }
    }
    if (hasSwap(drive)) {
        add("swap");
    }
    if (hasZfs(drive)) {
        add("zfs");
    }
    if (hasUdf(drive)) {
        add("udf");
    }
    const std::string_view first = std::string_view(ends.head).substr(0, 4096);
    const bool isSuperblock = drive.number(0, 4) == superblockMagic;
    if (found.empty() && !isSuperblock && !isAllZero(first)) {
        add("unknown data in its first 4 KiB");
    }
    return found;
}

bool hasUnknownData(const DriveEnds& ends) {
    const Reader drive(ends);
    const std::string_view head = ends.head;
    constexpr std::uint64_t bitmap = 8192;
    constexpr std::uint64_t page = 4096;
    constexpr std::uint64_t sector = 512;
    std::uint64_t end = bitmap;
    const std::uint64_t chunk = drive.number(bitmap + 52, 4) / sector;
    if (drive.has(bitmap, "bitm") && chunk != 0) {
        constexpr std::uint64_t header = 256;
        const std::uint64_t bits = drive.number(bitmap + 40, 8) / chunk + 1;
        end += (header + bits / 8 + 1 + page - 1) / page * page;
    }
    return !isAllZero(head.substr(0, bitmap)) ||
           (end < head.size() && !isAllZero(head.substr(static_cast<std::size_t>(end))));
}

} // namespace zolex::companion::md
