#include "companion/layout/NormalForm.h"

#include "companion/facts/Bytes.h"
#include "companion/layout/Layout.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zolex::companion {

namespace {

std::string sizeInMb(const LayoutVolume& volume) {
    if (!volume.capacityBytes) {
        return "size not told";
    }
    const std::uint64_t unit = std::max(volume.toleranceBytes, bytesOfMb);
    const std::uint64_t rounded = (*volume.capacityBytes + unit / 2) / unit * unit;
    return std::to_string(rounded / bytesOfMb) + " MB";
}

std::string volumeText(const LayoutVolume& volume) {
    std::string text = volume.raidType + " " + (volume.fills ? "fill" : sizeInMb(volume));
    if (volume.stripSizeBytes) {
        text += ", strip " + std::to_string(*volume.stripSizeBytes / bytesOfKb) + " KB";
    }
    if (!volume.writeCache.empty()) {
        text += ", write " + volume.writeCache;
    }
    if (!volume.readCache.empty()) {
        text += ", read " + volume.readCache;
    }
    return text;
}

std::string groupText(const LayoutGroup& group) {
    std::string text = "drives ";
    for (std::size_t i = 0; i < group.spans.size(); ++i) {
        text += (i == 0 ? "(" : " (") + locationsLine(group.spans[i]) + ")";
    }
    text += ":";
    for (std::size_t i = 0; i < group.volumes.size(); ++i) {
        text += (i == 0 ? " " : "; ") + volumeText(group.volumes[i]);
    }
    return text + "\n";
}

} // namespace

std::string normalForm(const Facts& facts) {
    const Layout layout = capturedLayout(facts);
    std::string text;
    for (const LayoutGroup& group : layout.groups) {
        text += groupText(group);
    }
    for (const LayoutSpare& spare : layout.spares) {
        text += (spare.isDedicated ? "dedicated hot spare " : "hot spare ") + spare.location + "\n";
    }
    for (const std::string& location : layout.foreignDrives) {
        text += "foreign " + location + "\n";
    }
    for (const std::string& foreign : facts.foreignConfigurations) {
        text += "foreign configuration " + foreign + "\n";
    }
    return text;
}

} // namespace zolex::companion
