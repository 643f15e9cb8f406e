#pragma once

#include "companion/families/md/DiskFiles.h"
#include "companion/families/md/Signatures.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::md {

/// Whether a state of a member is that of one that has failed.
[[nodiscard]] inline bool isFaulty(std::string_view state) {
    return state.find("faulty") != std::string_view::npos;
}

/// One drive of this machine.
struct ListedDisk {
    std::string name; ///< the kernel's: "sdb"
    /// In /dev/disk/by-id, which stays over a start of the machine; empty: it has none.
    std::string id;
    std::string path; ///< in /dev/disk/by-path; or empty
    std::string serialNumber;
    std::string manufacturer;
    std::string model;
    std::string revision;
    std::string wwn;
    std::string protocol;
    std::string mediaType;
    std::uint64_t bytes = 0;
    std::uint32_t blockBytes = 512;
    std::string function;                ///< of PCI, under which it is: "0000:03:00.0"; or empty
    std::optional<std::int32_t> channel; ///< SCSI host, or the place of its PCI function
    std::optional<std::int32_t> target;
    std::int32_t bus = 0;   ///< of the SCSI host
    std::uint64_t unit = 0; ///< of the SCSI target
    bool isLoose = false;   ///< a stick or another drive that is plugged in for a while
    std::optional<Superblock> superblock;
    std::string array;      ///< kernel's name of the running array that it is in: "md127"; or empty
    std::string arrayState; ///< what the array says of it: "in_sync", "spare", "faulty"
    std::optional<std::uint32_t> arraySlot; ///< its place there
    std::string why;     ///< why no array can be made of it, unless it is in one of ours; or empty
    std::string carries; ///< beside a superblock of one of ours: "the second table of a GPT"
    /// Whether it stands by for its array.
    [[nodiscard]] bool isSpare() const {
        return !arraySlot && arrayState.find("spare") != std::string::npos;
    }
    /// Whether it is in no running array, and a superblock on it calls it a spare of one.
    [[nodiscard]] bool isSpareApart() const {
        return array.empty() && superblock && superblock->part == Superblock::Part::spare;
    }
    /// Whether it has dropped out of its array.
    [[nodiscard]] bool isFailed() const { return isFaulty(arrayState) || arrayState == "removed"; }
    friend bool operator==(const ListedDisk&, const ListedDisk&) = default;
};

/// One array: one that runs, or one of which only the superblocks are there.
struct ListedArray {
    std::string node; ///< "md127"; empty: it does not run
    std::string name; ///< "zolex-data", "srv:data"; empty: not known
    std::string uuid;
    std::string level; ///< "raid5"
    std::string version;
    std::string state;      ///< of the array: "clean"; "stopped"
    std::string syncAction; ///< "idle", "recover", "resync", ..; or empty
    std::uint32_t raidDisks = 0;
    std::uint32_t degraded = 0;
    std::uint64_t chunkBytes = 0;
    std::uint64_t componentBytes = 0;
    std::uint64_t bytes = 0; ///< 0: not known
    bool hasJournal = false; ///< all is written to a drive of its own first
    bool isOurs = false;     ///< made by this program, and whole drives of this machine alone
    /// Ours, or it runs and only some of its members prove it, or it has what none of ours has.
    bool isShown = false;
    std::string whyNotStopped; ///< "mounted at /srv"; empty: it may be stopped
    /// Kernel's names of all its drives, spares and failed ones, but for those that were pulled.
    std::vector<std::string> members;
    friend bool operator==(const ListedArray&, const ListedArray&) = default;
};

struct DiskList {
    std::string kernel; ///< "6.1.0-18-amd64"
    std::vector<ListedDisk> disks;
    std::vector<ListedArray> arrays;
    friend bool operator==(const DiskList&, const DiskList&) = default;
};

/// What a program printed, and its exit code; nothing where it could not be run.
struct ProgramAnswer {
    std::uint32_t exitCode = 0;
    std::string output;
};
using RunProgram =
    std::function<std::optional<ProgramAnswer>(const std::vector<std::string>& arguments)>;

/// How drives are looked at.
struct DiskScan {
    DiskFiles* files = nullptr;
    Roots roots;
    std::uint64_t leastBytes = std::uint64_t{1} << 30U; ///< smaller drives are left alone
    RunProgram run; ///< programs by their whole path; may be empty
    /// Ids of the drives whose content is looked at whole; of others no more than where a
    /// superblock of ours would be, and what bars them else. Nothing: all.
    std::optional<std::vector<std::string>> whole;
};

/// Names of arrays that this program makes begin with it.
inline constexpr std::string_view ownPrefix = "zolex-";

/// Whether a list of names holds one.
[[nodiscard]] bool lists(const std::vector<std::string>& list, const std::string& text);

/// Looks at every drive and array of the machine.
[[nodiscard]] DiskList listDisks(const DiskScan& scan);

/// As a text, and back. A text that is none gives nothing.
[[nodiscard]] std::string toText(const DiskList& list);
[[nodiscard]] std::optional<DiskList> diskListFrom(std::string_view text);

} // namespace zolex::companion::md
