#include "companion/families/md/DiskList.h"

#include "companion/families/md/BlockDevices.h"
#include "companion/families/md/DeviceText.h"
#include "companion/families/md/StoppedArrays.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <map>
#include <set>
#include <tuple>

namespace zolex::companion::md {

namespace {

/// Block devices that are no drives of a machine.
bool isNoDrive(std::string_view name) {
    constexpr std::array prefixes = {"loop", "ram", "zram", "sr",     "dm-",  "md", "nbd",
                                     "rbd",  "fd",  "zd",   "bcache", "drbd", "mtd"};
    return std::any_of(prefixes.begin(), prefixes.end(),
                       [name](std::string_view prefix) { return name.starts_with(prefix); });
}

bool isHex(std::string_view text) {
    return text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

/// Names that a command line can hold as they are.
bool isPlainName(std::string_view name) {
    constexpr std::string_view others = "._:+-@=,";
    return !name.empty() && name[0] != '-' &&
           std::all_of(name.begin(), name.end(), [others](char c) {
               return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                      others.find(c) != std::string_view::npos;
           });
}

/// Looks at the machine once.
class Lister {
  public:
    explicit Lister(const DiskScan& scan)
        : scan_(scan), files_(*scan.files), devices_(files_, scan.roots) {}

    DiskList list() {
        DiskList list;
        list.kernel = attribute(scan_.roots.proc + "/sys/kernel/osrelease");
        for (const std::string& name : devices_.names()) {
            if (isDrive(name)) {
                list.disks.push_back(describe(name));
            }
        }
        nameDisks(list.disks);
        for (const std::string& name : devices_.names()) {
            if (name.starts_with("md") && !attribute(block(name) + "/md/raid_disks").empty()) {
                list.arrays.push_back(runningArray(name, list.disks));
            }
        }
        for (ListedDisk& disk : list.disks) {
            readEnds(disk);
        }
        findStopped(list, roles_);
        nameArrays(list);
        for (ListedDisk& disk : list.disks) {
            disk.why = whyNot(disk, list);
            holdArray(disk, list);
            const ListedArray* const array = arrayOf(list.arrays, disk);
            const std::vector<std::string>& carried = signatures_[disk.name];
            if (array != nullptr && array->isOurs && !carried.empty()) {
                disk.carries = carried[0];
            }
        }
        std::sort(list.disks.begin(), list.disks.end(),
                  [](const ListedDisk& left, const ListedDisk& right) {
                      return order(left) < order(right);
                  });
        return list;
    }

  private:
    /// As drives are cabled: by the place of their adapter on the bus, which stays where numbers of
    /// hosts and names of drives change, and behind it by host and target. What is plugged in for a
    /// while comes behind all others, which keep their numbers.
    using Order = std::tuple<bool, bool, std::size_t, std::string_view, std::int32_t, std::int32_t,
                             std::int32_t, std::uint64_t, std::size_t, std::string_view>;
    static Order order(const ListedDisk& disk) {
        constexpr std::int32_t last = std::numeric_limits<std::int32_t>::max();
        return Order(disk.isLoose, disk.function.empty(), disk.function.size(),
                     std::string_view(disk.function), disk.channel.value_or(last), disk.bus,
                     disk.target.value_or(last), disk.unit, disk.name.size(),
                     std::string_view(disk.name));
    }

    [[nodiscard]] std::string block(const std::string& name) const {
        return devices_.folderOf(name);
    }
    [[nodiscard]] std::string device(const std::string& name) const {
        return devices_.fileOf(name);
    }
    [[nodiscard]] std::string attribute(const std::string& file) const {
        return devices_.attribute(file);
    }
    template <typename Number>
    Number numberOf(const std::string& file) {
        return numberIn<Number>(attribute(file)).value_or(Number{});
    }

    bool isDrive(const std::string& name) {
        return !isNoDrive(name) && !files_.resolved(block(name) + "/device").empty() &&
               attribute(block(name) + "/hidden") != "1";
    }

    ListedDisk describe(const std::string& name) {
        const std::string folder = block(name);
        const std::string parent = folder + "/device";
        ListedDisk disk;
        disk.name = name;
        const auto firstOf = [this](std::initializer_list<std::string> files) {
            for (const std::string& file : files) {
                if (std::string text = attribute(file); !text.empty()) {
                    return text;
                }
            }
            return std::string();
        };
        // Page 0x80: four bytes, then the number.
        const std::string page = files_.read(parent + "/vpd_pg80", 0, mostAttribute).value_or("");
        disk.serialNumber =
            trimmed(std::string_view(page).substr(std::min<std::size_t>(4, page.size())));
        if (disk.serialNumber.empty()) {
            disk.serialNumber = firstOf({parent + "/serial", folder + "/serial"});
        }
        disk.manufacturer = attribute(parent + "/vendor");
        disk.model = attribute(parent + "/model");
        disk.revision = firstOf({parent + "/rev", parent + "/firmware_rev"});
        disk.wwn = firstOf({parent + "/wwid", folder + "/wwid"});
        const bool isNvme = name.starts_with("nvme");
        disk.protocol = isNvme                                        ? "NVMe"
                        : disk.manufacturer == "ATA"                  ? "SATA"
                        : !attribute(parent + "/sas_address").empty() ? "SAS"
                        : name.starts_with("sd")                      ? "SCSI"
                                                                      : "";
        if (disk.manufacturer == "ATA" || disk.manufacturer.starts_with("0x")) {
            disk.manufacturer.clear();
        }
        const std::string rotates = attribute(folder + "/queue/rotational");
        disk.mediaType = rotates == "0" ? "SSD" : rotates == "1" ? "HDD" : "";
        constexpr std::uint64_t sector = 512;
        disk.bytes = numberOf<std::uint64_t>(folder + "/size") * sector;
        disk.blockBytes = std::max(numberOf<std::uint32_t>(folder + "/queue/logical_block_size"),
                                   std::uint32_t{512});
        const std::string resolved = files_.resolved(parent);
        place(disk, resolved);
        disk.isLoose =
            attribute(folder + "/removable") == "1" || resolved.find("/usb") != std::string::npos;
        return disk;
    }

    /// SCSI host, channel, target and unit of "2:0:3:0", else the place of its PCI function.
    static void place(ListedDisk& disk, std::string_view resolved) {
        for (const std::string_view folder : parts(resolved, "/")) {
            // "0000:03:00.0"; an interface of USB is "2-1.4:1.0".
            const std::vector<std::string_view> pci = parts(folder, ":.");
            const bool isFunction = pci.size() == 4 && pci[0].size() >= 4 && pci[1].size() == 2 &&
                                    pci[2].size() == 2 && pci[3].size() == 1 &&
                                    folder[folder.size() - 2] == '.' &&
                                    std::all_of(pci.begin(), pci.end(), isHex);
            const auto bus = isFunction ? numberIn<std::int32_t>(pci[1], 16) : std::nullopt;
            const auto slot = isFunction ? numberIn<std::int32_t>(pci[2], 16) : std::nullopt;
            if (bus && slot && *bus < 256 && *slot < 32) {
                disk.function = folder;
                disk.channel = *bus;
                disk.target = *slot;
            }
        }
        const std::vector<std::string_view> address = parts(baseName(resolved), ":");
        if (address.size() == 4 && numberIn<std::int32_t>(address[0])) {
            disk.channel = numberIn<std::int32_t>(address[0]);
            disk.bus = numberIn<std::int32_t>(address[1]).value_or(0);
            disk.target = numberIn<std::int32_t>(address[2]);
            disk.unit = numberIn<std::uint64_t>(address[3]).value_or(0);
        }
    }

    /// The links of udev. Of several the one that holds the serial number, and the shortest of
    /// them.
    void nameDisks(std::vector<ListedDisk>& disks) {
        std::map<std::string, ListedDisk*, std::less<>> byName;
        for (ListedDisk& disk : disks) {
            byName.emplace(disk.name, &disk);
        }
        const auto links = [this, &byName](const char* folder, const auto& take) {
            const std::string path = device(folder);
            for (const std::string& entry : files_.entries(path)) {
                std::string link = path;
                const std::string resolved = files_.resolved(link.append("/").append(entry));
                const auto disk = byName.find(baseName(resolved));
                if (disk != byName.end() && isPlainName(entry)) {
                    take(*disk->second, entry);
                }
            }
        };
        links("disk/by-id", [](ListedDisk& disk, const std::string& entry) {
            const auto rank = [&disk](const std::string& name) {
                const bool tellsSerial =
                    !disk.serialNumber.empty() && name.find(disk.serialNumber) != std::string::npos;
                return std::tuple(!tellsSerial, name.size(), name);
            };
            if (disk.id.empty() || rank(entry) < rank(disk.id)) {
                disk.id = entry;
            }
        });
        links("disk/by-path", [](ListedDisk& disk, const std::string& entry) {
            if (disk.path.empty() || entry.size() < disk.path.size()) {
                disk.path = entry;
            }
        });
    }

    ListedArray runningArray(const std::string& node, std::vector<ListedDisk>& disks) {
        const std::string folder = block(node) + "/md";
        ListedArray array;
        array.node = node;
        array.level = attribute(folder + "/level");
        array.version = attribute(folder + "/metadata_version");
        array.state = attribute(folder + "/array_state");
        array.syncAction = attribute(folder + "/sync_action");
        array.raidDisks =
            numberIn<std::uint32_t>(parts(attribute(folder + "/raid_disks") + " ", " (")[0])
                .value_or(0);
        array.degraded = numberOf<std::uint32_t>(folder + "/degraded");
        array.chunkBytes = numberOf<std::uint64_t>(folder + "/chunk_size");
        array.componentBytes = numberOf<std::uint64_t>(folder + "/component_size") * 1024;
        array.bytes = numberOf<std::uint64_t>(block(node) + "/size") * 512;
        constexpr std::string_view member = "dev-";
        for (const std::string& entry : files_.entries(folder)) {
            if (!entry.starts_with(member)) {
                continue;
            }
            const std::string name = entry.substr(member.size());
            const auto disk =
                std::find_if(disks.begin(), disks.end(),
                             [&name](const ListedDisk& one) { return one.name == name; });
            std::string about = folder;
            about.append("/").append(entry);
            std::string file = about;
            const std::string state = attribute(file.append("/state"));
            if (disk != disks.end()) {
                disk->array = node;
                disk->arrayState = state;
                disk->arraySlot = numberIn<std::uint32_t>(attribute(about.append("/slot")));
            } else if (isFaulty(state)) {
                continue; // it has failed and was pulled
            }
            array.members.push_back(name);
        }
        array.whyNotStopped = whyHeld(node);
        return array;
    }

    /// Why an array may not be stopped.
    std::string whyHeld(const std::string& node) {
        if (std::string why = devices_.useOrHolderOf(node); !why.empty()) {
            return why;
        }
        const std::string fault = files_.whyNotOpened(device(node));
        return fault.empty() ? "" : "it cannot be opened alone: " + fault;
    }

    /// Reads the two ends of a drive, or where a superblock of ours would be.
    void readEnds(ListedDisk& disk) {
        const bool isWhole = !scan_.whole || std::find(scan_.whole->begin(), scan_.whole->end(),
                                                       disk.id) != scan_.whole->end();
        constexpr std::size_t little = 8192;
        const auto most = static_cast<std::size_t>(
            std::min<std::uint64_t>(disk.bytes, isWhole ? DriveEnds::most : little));
        const std::string path = device(disk.name);
        const std::optional<std::string> head = files_.read(path, 0, most);
        const std::optional<std::string> tail =
            isWhole ? files_.read(path, disk.bytes - most, most) : std::string();
        if (!head || !tail || head->size() != most || (isWhole && tail->size() != most)) {
            unreadable_.insert(disk.name);
            return;
        }
        const DriveEnds ends{*head, *tail, disk.bytes};
        disk.superblock = superblockOf(ends);
        roles_[disk.name] = rolesOf(ends);
        if (isWhole) {
            signatures_[disk.name] = signaturesOf(ends);
            if (hasUnknownData(ends)) {
                unknown_.insert(disk.name);
            }
        }
    }

    static ListedArray* arrayOf(std::vector<ListedArray>& arrays, const ListedDisk& disk) {
        const auto found =
            std::find_if(arrays.begin(), arrays.end(), [&disk](const ListedArray& array) {
                return std::find(array.members.begin(), array.members.end(), disk.name) !=
                       array.members.end();
            });
        return found == arrays.end() ? nullptr : &*found;
    }

    static bool tellsOfJournal(const ListedDisk& disk) {
        return disk.arrayState.find("journal") != std::string::npos ||
               (disk.superblock && disk.superblock->hasJournal);
    }

    /// Which arrays are this program's own: by their name, when all of their members that are at
    /// work are whole drives that say the same, and no other array has it. What has failed says
    /// nothing. One that runs is shown by its name also where a member cannot say it, and so is one
    /// with a write journal.
    void nameArrays(DiskList& list) {
        for (ListedArray& array : list.arrays) {
            const auto sameName =
                std::count_if(list.arrays.begin(), list.arrays.end(),
                              [&array](const ListedArray& one) { return one.name == array.name; });
            if (!array.name.starts_with(ownPrefix) || !isPlainName(array.name) || sameName != 1) {
                continue;
            }
            bool saysOne = false;
            std::string fault;
            array.hasJournal =
                std::any_of(list.disks.begin(), list.disks.end(), [&array](const ListedDisk& disk) {
                    return lists(array.members, disk.name) && tellsOfJournal(disk);
                });
            array.isShown = true;
            for (const std::string& name : array.members) {
                const auto disk =
                    std::find_if(list.disks.begin(), list.disks.end(),
                                 [&name](const ListedDisk& one) { return one.name == name; });
                if (disk == list.disks.end()) {
                    array.isShown = array.isShown && !devices_.isThere(name);
                    if (fault.empty()) {
                        fault = name;
                        fault += " is not there any more";
                    }
                    continue;
                }
                if (disk->isFailed()) {
                    continue;
                }
                disk->why = whyNoOwnMember(*disk, array);
                saysOne = saysOne || disk->why.empty();
                if (!disk->why.empty() && fault.empty()) {
                    fault = (disk->id.empty() ? name : disk->id) + ": " + disk->why;
                }
            }
            array.isOurs = saysOne && fault.empty();
            array.isShown = array.isOurs || (array.isShown && saysOne && !array.node.empty());
            if (array.isOurs && array.hasJournal) {
                array.isOurs = false; // without its journal it is lost, and zolexctl makes none
                fault = "it has a write journal";
            }
            if (!fault.empty() && array.whyNotStopped.empty()) {
                array.whyNotStopped = fault;
            }
        }
    }

    std::string whyNoOwnMember(const ListedDisk& disk, const ListedArray& array) {
        if (unreadable_.count(disk.name) != 0) {
            return "it cannot be read";
        }
        const bool saysSo = disk.superblock && disk.superblock->uuid == array.uuid &&
                            disk.superblock->name == array.name &&
                            disk.superblock->version == "1.2";
        return saysSo ? "" : "its superblock does not tell of " + array.name;
    }

    std::string whyNot(const ListedDisk& disk, DiskList& list) {
        const std::string folder = block(disk.name);
        if (attribute(folder + "/removable") == "1") {
            return "it is removable";
        }
        if (attribute(folder + "/ro") != "0") {
            return "it is read-only";
        }
        if (disk.bytes < scan_.leastBytes) {
            return "it is too small: " + sizeText(disk.bytes);
        }
        if (disk.id.empty()) {
            return "it has no name in /dev/disk/by-id";
        }
        for (const ListedDisk& other : list.disks) {
            if (!disk.serialNumber.empty() && other.name != disk.name &&
                other.serialNumber == disk.serialNumber && other.model == disk.model) {
                return "it has the serial number of " + other.name + ", too";
            }
            if (!disk.wwn.empty() && other.name != disk.name && other.wwn == disk.wwn) {
                return "it has the WWN of " + other.name + ", too";
            }
        }
        const ListedArray* const array = arrayOf(list.arrays, disk);
        if (array != nullptr && array->isShown) {
            if (!disk.arraySlot && !disk.isFailed() && (array->hasJournal || !disk.isSpare())) {
                return std::string("in use: ") + (disk.isSpare() ? "hot spare" : "write journal") +
                       " of the md array " + array->name;
            }
            const std::string why = disk.array.empty() ? whyUsedBeside(disk) : std::string();
            return why.empty() ? disk.why : "in use: " + why;
        }
        if (scan_.whole &&
            std::find(scan_.whole->begin(), scan_.whole->end(), disk.id) == scan_.whole->end()) {
            return "it is not looked at";
        }
        if (const std::string why = whyUsed(disk, array); !why.empty()) {
            return "in use: " + why;
        }
        if (const std::string fault = files_.whyNotOpened(device(disk.name)); !fault.empty()) {
            return "in use: it cannot be opened alone: " + fault;
        }
        return whyContent(disk);
    }

    /// What uses a drive of an array that does not run, or that it has dropped out of.
    std::string whyUsedBeside(const ListedDisk& disk) {
        if (std::string why = whyUsed(disk, nullptr); !why.empty()) {
            return why;
        }
        const std::string fault = files_.whyNotOpened(device(disk.name));
        return fault.empty() ? "" : "it cannot be opened alone: " + fault;
    }

    /// An array stays where a drive that once was of it serves something else now.
    static void holdArray(const ListedDisk& disk, DiskList& list) {
        const auto array =
            std::find_if(list.arrays.begin(), list.arrays.end(), [&disk](const ListedArray& one) {
                return one.isOurs && lists(one.members, disk.name);
            });
        if (array != list.arrays.end() && disk.array.empty() && !disk.why.empty() &&
            array->whyNotStopped.empty()) {
            array->whyNotStopped = (disk.id.empty() ? disk.name : disk.id) + ": " + disk.why;
        }
    }

    std::string whyUsed(const ListedDisk& disk, const ListedArray* array) {
        const std::string folder = block(disk.name);
        if (std::string why = devices_.useOf(disk.name); !why.empty()) {
            return why;
        }
        const std::vector<std::string>& partitions = devices_.partitionsOf(disk.name);
        if (!partitions.empty()) {
            return "it has partitions (" + partitions[0] + (partitions.size() > 1 ? ", ..)" : ")");
        }
        if (array != nullptr) {
            return "member of the md array " + (array->name.empty() ? array->node : array->name) +
                   (array->node.empty() ? ", which does not run" : "");
        }
        const std::vector<std::string> holders = files_.entries(folder + "/holders");
        return holders.empty() ? "" : "held by " + holders[0];
    }

    /// What stands on it.
    std::string whyContent(const ListedDisk& disk) {
        if (unreadable_.count(disk.name) != 0) {
            return "its first and last MiB cannot be read";
        }
        if (disk.superblock) {
            return "in use: it carries a superblock of md " + disk.superblock->version;
        }
        const std::vector<std::string>& signatures = signatures_[disk.name];
        return signatures.empty() ? whyProbed(disk.name) : carries(signatures[0]);
    }

    static std::string carries(const std::string& what) { return "in use: it carries " + what; }

    /// What a program of the system says of a drive; one that is not there has no answer and no
    /// fault.
    struct Probe {
        std::optional<std::string> answer; ///< what it found; empty: nothing
        std::string fault;
    };

    /// What the system's own programs find on a drive, where they are there. What one does not know
    /// the other may.
    std::string whyProbed(const std::string& name) {
        std::string fault;
        bool isAnswered = false;
        for (const auto ask : {&Lister::askBlkid, &Lister::askWipefs}) {
            const Probe probe = (this->*ask)(device(name));
            if (probe.answer && !probe.answer->empty()) {
                return carries(*probe.answer);
            }
            isAnswered = isAnswered || probe.answer.has_value();
            fault = fault.empty() ? probe.fault : fault;
        }
        if (isAnswered) {
            return {};
        }
        if (!fault.empty()) {
            return "what it carries cannot be told: " + fault;
        }
        return unknown_.count(name) == 0 ? "" : carries("unknown data in its first MiB");
    }

    /// Runs a program of several places, the first that is there.
    std::optional<ProgramAnswer> runSystem(std::string_view name,
                                           std::vector<std::string> arguments, Probe& probe) {
        for (const char* const folder : {"/usr/sbin/", "/sbin/", "/usr/bin/", "/bin/"}) {
            const std::string program = folder + std::string(name);
            if (scan_.run && !files_.resolved(program).empty()) {
                arguments.insert(arguments.begin(), program);
                auto answer = scan_.run(arguments);
                if (!answer) {
                    probe.fault = std::string(name) + " did not end";
                }
                return answer;
            }
        }
        return std::nullopt;
    }

    static std::string endedWith(std::string_view name, std::uint32_t exitCode) {
        return std::string(name) + " ended with " + std::to_string(exitCode);
    }

    Probe askBlkid(const std::string& path) {
        Probe probe;
        const auto told = runSystem("blkid", {"-p", "-o", "export", path}, probe);
        constexpr std::uint32_t notKnown = 1;
        constexpr std::uint32_t notThere = 127; // busybox was built without it
        constexpr std::uint32_t nothing = 2;
        constexpr std::uint32_t severalThings = 8;
        if (!told) {
            return probe;
        }
        if (told->exitCode == nothing) {
            probe.answer = std::string();
        } else if (told->exitCode == severalThings) {
            probe.answer = "several signatures (blkid)";
        } else if (told->exitCode == 0) {
            probe.answer = blkidType(told->output);
        } else if (told->exitCode != notKnown && told->exitCode != notThere) {
            probe.fault = endedWith("blkid", told->exitCode);
        }
        return probe;
    }

    Probe askWipefs(const std::string& path) {
        Probe probe;
        const auto told = runSystem("wipefs", {"-n", "-J", path}, probe);
        if (!told) {
            return probe;
        }
        if (told->exitCode != 0) {
            probe.fault = endedWith("wipefs", told->exitCode);
            return probe;
        }
        const std::size_t type = told->output.find("\"type\"");
        if (type == std::string::npos) {
            probe.answer = std::string();
            return probe;
        }
        const auto texts = parts(std::string_view(told->output).substr(type), "\"");
        probe.answer =
            texts.size() > 2 ? std::string(texts[2]) + " (wipefs)" : "a signature (wipefs)";
        return probe;
    }

    /// Of "TYPE=ext4" in lines of their own. A blkid that knows no options, and few signatures,
    /// prints "/dev/sda: TYPE="ext4"", and nothing where it finds nothing: that is no answer.
    static std::optional<std::string> blkidType(std::string_view output) {
        for (const std::string_view key : {"TYPE=", "PTTYPE="}) {
            for (const std::string_view line : parts(output, "\n")) {
                if (line.starts_with(key)) {
                    return std::string(line.substr(key.size())) + " (blkid)";
                }
            }
        }
        constexpr std::string_view quoted = " TYPE=\"";
        if (const std::size_t type = output.find(quoted); type != std::string_view::npos) {
            const std::string_view rest = output.substr(type + quoted.size());
            return std::string(rest.substr(0, rest.find('"'))) + " (blkid)";
        }
        return output.starts_with("/") || trimmed(output).empty()
                   ? std::nullopt
                   : std::optional<std::string>("a signature (blkid)");
    }

    const DiskScan& scan_;
    DiskFiles& files_;
    BlockDevices devices_;
    RoleTables roles_;
    std::set<std::string, std::less<>> unreadable_;
    std::set<std::string, std::less<>> unknown_; ///< something stands in their first MiB
    std::map<std::string, std::vector<std::string>, std::less<>> signatures_;
};

} // namespace

bool lists(const std::vector<std::string>& list, const std::string& text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

DiskList listDisks(const DiskScan& scan) {
    return scan.files == nullptr ? DiskList() : Lister(scan).list();
}

} // namespace zolex::companion::md
