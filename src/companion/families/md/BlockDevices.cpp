#include "companion/families/md/BlockDevices.h"

#include "companion/families/md/DeviceText.h"

#include <algorithm>
#include <utility>

namespace zolex::companion::md {

BlockDevices::BlockDevices(DiskFiles& files, const Roots& roots) : files_(files), roots_(roots) {
    names_ = files_.entries(folderOf(""));
    readPartitions();
    readUses();
}

const std::vector<std::string>& BlockDevices::partitionsOf(const std::string& name) const {
    static const std::vector<std::string> none;
    const auto found = partitions_.find(name);
    return found == partitions_.end() ? none : found->second;
}

bool BlockDevices::isThere(const std::string& name) const {
    return wholeOf_.count(name) != 0 ||
           std::find(names_.begin(), names_.end(), name) != names_.end();
}

std::string BlockDevices::folderOf(const std::string& name) const {
    return roots_.sys + "/block" + (name.empty() ? "" : "/" + name);
}

std::string BlockDevices::fileOf(const std::string& name) const {
    return roots_.dev + "/" + name;
}

std::string BlockDevices::attribute(const std::string& file) const {
    return std::string(trimmed(files_.read(file, 0, mostAttribute).value_or("")));
}

std::string BlockDevices::nameOf(const std::string& path) const {
    constexpr std::string_view folder = "/dev/";
    if (!path.starts_with(folder)) {
        return {};
    }
    const std::string resolved = files_.resolved(fileOf(path.substr(folder.size())));
    return std::string(baseName(resolved.empty() ? path : resolved));
}

std::string BlockDevices::useOf(const std::string& name) const {
    const auto found = uses_.find(name);
    return found == uses_.end() ? std::string() : found->second;
}

std::string BlockDevices::useOrHolderOf(const std::string& name) const {
    if (std::string use = useOf(name); !use.empty()) {
        return use;
    }
    std::vector<std::string> devices = partitionsOf(name);
    devices.insert(devices.begin(), name);
    for (const std::string& each : devices) {
        if (std::string use = useOf(each); !use.empty()) {
            return use;
        }
        const std::string folder = each == name ? folderOf(name) : folderOf(name) + "/" + each;
        const std::vector<std::string> holders = files_.entries(folder + "/holders");
        if (!holders.empty()) {
            return "held by " + holders[0];
        }
    }
    return {};
}

void BlockDevices::readPartitions() {
    for (const std::string& name : names_) {
        numbers_.emplace(attribute(folderOf(name) + "/dev"), name);
        for (const std::string& entry : files_.entries(folderOf(name))) {
            const std::string folder = folderOf(name) + "/" + entry;
            if (entry.starts_with(name) && !attribute(folder + "/partition").empty()) {
                partitions_[name].push_back(entry);
                wholeOf_[entry] = name;
                numbers_.emplace(attribute(folder + "/dev"), entry);
            }
        }
    }
}

/// Notes what a device is used for, and so is everything that it lies on.
void BlockDevices::use(const std::string& name, const std::string& why, int depth) {
    constexpr int deepest = 16;
    if (name.empty() || depth > deepest) {
        return;
    }
    uses_.emplace(name, why);
    if (const auto whole = wholeOf_.find(name); whole != wholeOf_.end()) {
        use(whole->second, why, depth + 1);
    }
    for (const std::string& slave : files_.entries(folderOf(name) + "/slaves")) {
        use(slave, why, depth + 1);
    }
}

void BlockDevices::readUses() {
    const auto read = files_.read(roots_.proc + "/self/mountinfo", 0, mostTable);
    knowsMounts_ = read.has_value();
    const std::string mounts = read.value_or("");
    std::vector<std::pair<std::string, std::string>> found;
    for (const std::string_view line : parts(mounts, "\n")) {
        const std::vector<std::string_view> fields = parts(line, " ");
        const auto dash = std::find(fields.begin(), fields.end(), "-");
        if (fields.size() < 6 || fields.end() - dash < 3) {
            continue;
        }
        const std::string place = unescaped(fields[4]);
        const std::string why = place == "/" ? "it holds the system's root" : "mounted at " + place;
        if (const auto name = numbers_.find(fields[2]); name != numbers_.end()) {
            found.emplace_back(name->second, why);
        }
        // Some file systems have a number of their own.
        found.emplace_back(nameOf(unescaped(dash[2])), why);
    }
    // A drive of the root is told as such, wherever else it is mounted.
    std::stable_partition(found.begin(), found.end(),
                          [](const auto& one) { return !one.second.starts_with("mounted"); });
    for (const auto& [name, why] : found) {
        use(name, why);
    }
    const std::string swaps = files_.read(roots_.proc + "/swaps", 0, mostTable).value_or("");
    for (const std::string_view line : parts(swaps, "\n")) {
        const std::vector<std::string_view> fields = parts(line, " \t");
        if (!fields.empty()) {
            use(nameOf(unescaped(fields[0])), "the system swaps to it");
        }
    }
    readLoops();
}

/// A loop device tells in no other way what it lies on. A file of it is one of a mounted drive.
void BlockDevices::readLoops() {
    constexpr std::string_view gone = " (deleted)"; // its file in /dev was made anew
    for (const std::string& name : names_) {
        std::string under = attribute(folderOf(name) + "/loop/backing_file");
        if (under.ends_with(gone)) {
            under.resize(under.size() - gone.size());
        }
        if (!under.empty()) {
            use(nameOf(under), name + " is over it");
        }
    }
}

} // namespace zolex::companion::md
