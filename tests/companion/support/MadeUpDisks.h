#pragma once

#include "companion/families/md/DiskFiles.h"
#include "companion/families/md/DiskList.h"
#include "companion/families/md/Signatures.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

inline constexpr std::uint64_t madeUpGibibyte = std::uint64_t{1} << 30U;

/// What stands on an empty drive. Not a text that the compiler would make.
inline std::string zeros() {
    std::string text;
    text.resize(md::DriveEnds::most);
    return text;
}

inline void put(std::string& bytes, std::size_t place, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i) {
        bytes[place + static_cast<std::size_t>(i)] = static_cast<char>(value >> (8 * i) & 255U);
    }
}

/// The first MiB of a drive with a superblock of version 1.2.
inline std::string superblockHead(const std::string& name, char uuid, int level, unsigned disks,
                                  unsigned role) {
    std::string head = zeros();
    constexpr std::size_t at = 4096;
    put(head, at, 0xa92b4efc, 4);
    put(head, at + 4, 1, 4);
    head.replace(at + 16, 16, std::string(16, uuid));
    head.replace(at + 32, name.size(), name);
    put(head, at + 72, static_cast<std::uint64_t>(level), 4);
    put(head, at + 80, madeUpGibibyte / 512, 8);
    put(head, at + 88, 128, 4);
    put(head, at + 92, disks, 4);
    put(head, at + 160, role, 4);
    put(head, at + 220, 8, 4);
    for (unsigned i = 0; i < 8; ++i) {
        put(head, at + 256 + 2 * i, i < disks ? i : 0xffff, 2);
    }
    return head;
}

/// Files and links of a machine, all in memory.
class MadeUpFiles : public md::DiskFiles {
  public:
    std::map<std::string, std::string> files;
    std::map<std::string, std::string> links;
    std::map<std::string, std::string> faults; ///< of opening a device
    struct Drive {
        std::uint64_t bytes = 2 * madeUpGibibyte;
        std::string head = zeros();
        std::string tail = zeros();
    };
    std::map<std::string, Drive> drives;

    void addDrive(const std::string& name, int target, std::uint64_t bytes = 2 * madeUpGibibyte) {
        const std::string block = "/sys/block/" + name;
        files[block + "/size"] = std::to_string(bytes / 512) + "\n";
        files[block + "/ro"] = "0\n";
        files[block + "/removable"] = "0\n";
        files[block + "/dev"] = "8:" + std::to_string(target * 16) + "\n";
        files[block + "/queue/rotational"] = "1\n";
        files[block + "/queue/logical_block_size"] = "512\n";
        files[block + "/device/vpd_pg80"] = std::string("\0\x80\0\x04", 4) + "S-" + name;
        files[block + "/device/vendor"] = "ATA     \n";
        files[block + "/device/model"] = "DISK\n";
        links[block + "/device"] = "/sys/devices/pci0/host3/3:0:" + std::to_string(target) + ":0";
        links["/dev/disk/by-id/ata-DISK_S-" + name] = "/dev/" + name;
        links["/dev/disk/by-id/wwn-0x5000" + name] = "/dev/" + name;
        drives[name].bytes = bytes;
    }

    void addArray(const std::string& node, const std::string& level,
                  const std::vector<std::string>& members) {
        const std::string folder = "/sys/block/" + node + "/md/";
        files[folder + "level"] = level + "\n";
        files[folder + "raid_disks"] = std::to_string(members.size()) + "\n";
        files[folder + "chunk_size"] = "65536\n";
        files[folder + "array_state"] = "clean\n";
        files[folder + "sync_action"] = "idle\n";
        files[folder + "metadata_version"] = "1.2\n";
        files[folder + "degraded"] = "0\n";
        files["/sys/block/" + node + "/size"] = std::to_string(madeUpGibibyte / 512) + "\n";
        files["/sys/block/" + node + "/dev"] = "9:127\n";
        int slot = 0;
        for (const std::string& member : members) {
            files[folder + "dev-" + member + "/state"] = "in_sync\n";
            files[folder + "dev-" + member + "/slot"] = std::to_string(slot++) + "\n";
            files["/sys/block/" + member + "/holders/" + node] = "";
            files["/sys/block/" + node + "/slaves/" + member] = "";
        }
    }

    std::vector<std::string> entries(const std::string& folder) override {
        std::set<std::string> found;
        const auto take = [&](const std::map<std::string, std::string>& all) {
            for (const auto& [path, content] : all) {
                if (path.starts_with(folder + "/")) {
                    const std::string rest = path.substr(folder.size() + 1);
                    found.insert(rest.substr(0, rest.find('/')));
                }
            }
        };
        take(files);
        take(links);
        return {found.begin(), found.end()};
    }

    std::optional<std::string> read(const std::string& file, std::uint64_t offset,
                                    std::size_t most) override {
        if (const auto found = files.find(file); found != files.end()) {
            return found->second.substr(0, most);
        }
        const auto drive = drives.find(file.substr(file.rfind('/') + 1));
        if (!file.starts_with("/dev/") || drive == drives.end()) {
            return std::nullopt;
        }
        const Drive& found = drive->second;
        return offset == 0 ? found.head.substr(0, most)
                           : found.tail.substr(offset - (found.bytes - found.tail.size()), most);
    }

    std::string resolved(const std::string& path) override {
        const auto found = links.find(path);
        return found != links.end() ? found->second : files.contains(path) ? path : "";
    }

    std::string whyNotOpened(const std::string& device) override {
        const auto found = faults.find(device);
        return found == faults.end() ? "" : found->second;
    }
};

} // namespace zolex::companion::test
