#pragma once

#include "companion/families/md/DiskFiles.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::md {

/// The block devices of this machine, and what the running system uses each for. Looked at once.
class BlockDevices {
  public:
    BlockDevices(DiskFiles& files, const Roots& roots);

    /// The kernel's names, sorted, without partitions.
    [[nodiscard]] const std::vector<std::string>& names() const { return names_; }
    /// Of a device; none where it has no partitions.
    [[nodiscard]] const std::vector<std::string>& partitionsOf(const std::string& name) const;
    /// Whether it is a device or a partition of one.
    [[nodiscard]] bool isThere(const std::string& name) const;
    /// Its folder in /sys; that of all devices of an empty name.
    [[nodiscard]] std::string folderOf(const std::string& name) const;
    /// Its file in /dev.
    [[nodiscard]] std::string fileOf(const std::string& name) const;
    /// What a small file tells, without blanks around it.
    [[nodiscard]] std::string attribute(const std::string& file) const;
    /// The kernel's name of a device such as "/dev/md/data"; empty for what is none.
    [[nodiscard]] std::string nameOf(const std::string& path) const;

    /// "mounted at /srv", "the system swaps to it": of it, of its partitions and of all that lies
    /// on them; empty: nothing.
    [[nodiscard]] std::string useOf(const std::string& name) const;
    /// The same, or what holds it or a partition of it: "held by dm-0".
    [[nodiscard]] std::string useOrHolderOf(const std::string& name) const;

    /// Whether the system tells what is mounted.
    [[nodiscard]] bool knowsMounts() const { return knowsMounts_; }

  private:
    void readPartitions();
    void readUses();
    void readLoops();
    void use(const std::string& name, const std::string& why, int depth = 0);

    DiskFiles& files_;
    Roots roots_;
    std::vector<std::string> names_;
    std::map<std::string, std::vector<std::string>, std::less<>> partitions_;
    std::map<std::string, std::string, std::less<>> wholeOf_; ///< of a partition
    std::map<std::string, std::string, std::less<>> numbers_; ///< "8:16" -> "sdb"
    std::map<std::string, std::string, std::less<>> uses_;
    bool knowsMounts_ = false;
};

} // namespace zolex::companion::md
