#include "companion/families/md/VolumeUses.h"

#include "companion/families/md/BlockDevices.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

namespace zolex::companion::md {

namespace {

/// The digits of "naa.600AAA..", "0x600aaa.." and "600aaa..".
std::string idDigits(std::string_view id) {
    for (const std::string_view prefix : {"naa.", "eui.", "0x"}) {
        if (id.size() > prefix.size() && text::equalsNoCase(id.substr(0, prefix.size()), prefix)) {
            id.remove_prefix(prefix.size());
        }
    }
    std::string digits(id);
    std::transform(digits.begin(), digits.end(), digits.begin(), text::lower);
    return digits;
}

/// What the kernel tells of the id of a device; empty: nothing.
std::string idOf(const BlockDevices& devices, const std::string& name) {
    return idDigits(devices.attribute(devices.folderOf(name) + "/device/wwid"));
}

/// The kernel's name of a logical drive; empty: it is none of its devices.
std::string deviceOf(const BlockDevices& devices, const LogicalDriveFacts& volume) {
    const std::vector<std::string>& names = devices.names();
    const std::string id = idDigits(volume.uniqueId);
    const auto byId = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
        return !id.empty() && idOf(devices, name) == id;
    });
    if (byId != names.end()) {
        return *byId;
    }
    const std::string name = devices.nameOf(volume.device);
    const bool isThere = std::find(names.begin(), names.end(), name) != names.end();
    return isThere && (id.empty() || idOf(devices, name).empty()) ? name : std::string();
}

/// Why a device that nothing is known to use must not be taken away; empty: it may be.
std::string heldAs(DiskFiles& files, const BlockDevices& devices, const std::string& name) {
    const std::string fault = files.whyNotOpened(devices.fileOf(name));
    if (fault == std::strerror(EBUSY)) {
        return "opened by somebody";
    }
    // One that is there, and of which nothing can be told.
    return fault.empty() || devices.knowsMounts() ? std::string()
                                                  : "whether it is mounted cannot be told";
}

void note(DiskFiles& files, const Roots& roots, Facts& facts, bool opens) {
    if (facts.logicalDrives.empty()) {
        return;
    }
    const BlockDevices devices(files, roots);
    for (LogicalDriveFacts& volume : facts.logicalDrives) {
        if (const std::string name = deviceOf(devices, volume); !name.empty()) {
            volume.usedAs = devices.useOrHolderOf(name);
            volume.device = "/dev/" + name; // where it is now
            if (opens && volume.usedAs.empty()) {
                volume.usedAs = heldAs(files, devices, name);
            }
        }
    }
}

} // namespace

void noteUses(DiskFiles& files, const Roots& roots, Facts& facts) {
    note(files, roots, facts, false);
}

void noteHolders(DiskFiles& files, const Roots& roots, Facts& facts) {
    note(files, roots, facts, true);
}

} // namespace zolex::companion::md
