#include "companion/families/md/StoppedArrays.h"

#include <algorithm>
#include <set>
#include <vector>

namespace zolex::companion::md {

namespace {

/// As the kernel would call it, if its array ran.
const char* stateOf(Superblock::Part part) {
    return part == Superblock::Part::member    ? "in_sync"
           : part == Superblock::Part::spare   ? "spare"
           : part == Superblock::Part::journal ? "journal"
                                               : "removed";
}

void nameRunning(DiskList& list) {
    for (ListedArray& array : list.arrays) {
        for (const ListedDisk& disk : list.disks) {
            if (disk.array == array.node && disk.superblock && array.uuid.empty() &&
                !disk.isFailed()) {
                array.uuid = disk.superblock->uuid;
                array.name = disk.superblock->name;
            }
        }
    }
}

ListedArray stoppedArray(const Superblock& superblock) {
    ListedArray stopped;
    stopped.name = superblock.name;
    stopped.uuid = superblock.uuid;
    stopped.level = superblock.level == -1 ? "linear" : "raid" + std::to_string(superblock.level);
    stopped.version = superblock.version;
    stopped.state = "stopped";
    stopped.raidDisks = superblock.raidDisks;
    stopped.chunkBytes = superblock.chunkBytes;
    stopped.componentBytes = superblock.componentBytes;
    return stopped;
}

/// The drives of one array that does not run. The one that was written last knows of the others.
class Stopped {
  public:
    Stopped(std::vector<ListedDisk*> disks, const RoleTables& roles)
        : disks_(std::move(disks)), roles_(roles) {
        std::stable_sort(disks_.begin(), disks_.end(),
                         [](const ListedDisk* left, const ListedDisk* right) {
                             return left->superblock->events > right->superblock->events;
                         });
    }

    [[nodiscard]] const Superblock& freshest() const { return *disks_.front()->superblock; }

    void place() {
        std::set<std::uint32_t> taken;
        for (ListedDisk* const disk : disks_) {
            const std::optional<std::uint32_t> role = disk->superblock->role;
            const bool isIn = isKept(*disk) && (!role || taken.insert(*role).second);
            disk->arraySlot = isIn ? role : std::nullopt;
            disk->arrayState = isIn ? stateOf(disk->superblock->part) : "removed";
        }
    }

  private:
    /// Not all superblocks are written when an array stops, or when the power goes: one may be a
    /// step behind, for the kernel too.
    [[nodiscard]] bool isKept(const ListedDisk& disk) const {
        if (disk.superblock->events + 1 < freshest().events) {
            return false;
        }
        const auto own = roles_.find(disk.name);
        const auto told = roles_.find(disks_.front()->name);
        if (!disk.superblock->role || own == roles_.end() || told == roles_.end()) {
            return true;
        }
        const std::vector<std::uint32_t>& roles = told->second.roles;
        const std::uint32_t device = own->second.device;
        return device < roles.size() && roles[device] == *disk.superblock->role;
    }

    std::vector<ListedDisk*> disks_;
    const RoleTables& roles_;
};

} // namespace

void findStopped(DiskList& list, const RoleTables& roles) {
    nameRunning(list);
    std::map<std::string, std::vector<ListedDisk*>, std::less<>> stopped; // by UUID
    std::vector<std::string> order;
    for (ListedDisk& disk : list.disks) {
        if (!disk.array.empty() || !disk.superblock || disk.superblock->uuid.empty()) {
            continue;
        }
        const std::string& uuid = disk.superblock->uuid;
        const auto array =
            std::find_if(list.arrays.begin(), list.arrays.end(),
                         [&uuid](const ListedArray& one) { return one.uuid == uuid; });
        if (array != list.arrays.end()) {
            disk.arrayState = "removed";
            array->members.push_back(disk.name);
            continue;
        }
        if (stopped[uuid].empty()) {
            order.push_back(uuid);
        }
        stopped[uuid].push_back(&disk);
    }
    for (const std::string& uuid : order) {
        Stopped array(stopped[uuid], roles);
        array.place();
        ListedArray& listed = list.arrays.emplace_back(stoppedArray(array.freshest()));
        for (const ListedDisk* const disk : stopped[uuid]) {
            listed.members.push_back(disk->name);
        }
    }
}

} // namespace zolex::companion::md
