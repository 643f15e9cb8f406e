#include "companion/json/LayoutPieces.h"

#include "companion/json/MachinePieces.h"

namespace zolex::companion {

namespace {

void writeGroup(DocumentText& out, const LayoutGroup& group) {
    out.object();
    out.text("id", group.id);
    out.texts("drives", group.drives());
    out.json("spans", group.spans);
    out.truth("listed", group.isListed);
    out.end();
}

void writeVolume(DocumentText& out, const LayoutVolume& volume, const LayoutGroup& group) {
    const bool isLost = volume.health == Health::critical;
    const bool stands = volume.health != Health::unknown;
    out.object();
    out.text("id", volume.id);
    out.text("array", group.id);
    out.textOrNull("raid_type", volume.raidType);
    out.numberOrNull("capacity_bytes", volume.capacityBytes);
    out.size("capacity_tolerance_bytes", volume.toleranceBytes);
    out.truth("fills", volume.fills);
    out.numberOrNull("strip_size_bytes", volume.stripSizeBytes);
    out.textOrNull("write_cache_policy", volume.writeCache);
    out.textOrNull("read_cache_policy", volume.readCache);
    writeStatus(out, volume.health, isLost ? "Disabled" : stands ? "Enabled" : "");
    out.textOrNull("reported_state", volume.reportedState);
    writeIfTold(out, "name", volume.name);
    writeIfTold(out, "device", volume.device);
    writeIfTold(out, "unique_id", volume.uniqueId);
    out.end();
}

void writeSpare(DocumentText& out, const LayoutSpare& spare) {
    out.object();
    out.text("location", spare.location);
    out.text("hotspare_type", spare.isDedicated ? "Dedicated" : "Global");
    out.texts("covers", spare.covers);
    out.truth("listed", spare.isListed);
    out.end();
}

} // namespace

void writeLayoutNames(DocumentText& out, const Layout& layout) {
    out.list("arrays");
    for (const LayoutGroup& group : layout.groups) {
        writeGroup(out, group);
    }
    out.end();
    out.list("logical_drives");
    for (const LayoutGroup& group : layout.groups) {
        for (const LayoutVolume& volume : group.volumes) {
            writeVolume(out, volume, group);
        }
    }
    out.end();
    out.list("hotspares");
    for (const LayoutSpare& spare : layout.spares) {
        writeSpare(out, spare);
    }
    out.end();
    out.texts("foreign_drives", layout.foreignDrives);
}

void writeComparisonNames(DocumentText& out, const Comparison& comparison) {
    out.list("differences");
    for (const Difference& difference : comparison.differences) {
        out.object();
        out.text("attribute", difference.attribute);
        out.textOrNull("location", difference.location);
        out.textOrNull("logical_drive", difference.logicalDrive);
        out.textOrNull("wanted", difference.wanted);
        out.textOrNull("found", difference.found);
        out.end();
    }
    out.end();
    out.texts("equivalences", comparison.equivalences);
    out.texts("not_compared", comparison.notComparable);
    out.texts("health", comparison.health);
}

} // namespace zolex::companion
