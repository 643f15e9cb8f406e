#include "companion/picture/Html.h"

#include "companion/picture/Markup.h"
#include "companion/picture/PageParts.h"
#include "companion/picture/Roles.h"
#include "companion/picture/Svg.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"

#include <initializer_list>
#include <map>
#include <string>
#include <vector>

namespace zolex::companion {

namespace {

/// The letter of an array on its colour, or what else the drive does.
std::string chip(const MachineDrive& drive, const std::map<std::string, std::size_t>& arrays) {
    const auto array = arrays.find(drive.array);
    if (drive.array.empty() || array == arrays.end()) {
        return escaped(jobOf(drive));
    }
    return arrayChip(drive.array, array->second);
}

/// The drives as they stand in their enclosures.
std::vector<std::size_t> drivesInRows(const ControllerSnapshot& controller) {
    std::vector<std::size_t> drives;
    for (const DriveRow& row : driveRowsOf(controller)) {
        for (const DriveRow::Slot& slot : row.slots) {
            if (slot.drive) {
                drives.push_back(*slot.drive);
            }
        }
    }
    return drives;
}

std::string drivesTable(const ControllerSnapshot& controller) {
    if (controller.drives.empty()) {
        return "<p>No drives.</p>\n";
    }
    const std::map<std::string, std::size_t> arrays = arrayIndices(controller);
    std::string out = "<div class=\"table-box\"><table class=\"drives\">\n"
                      "<caption>Drives</caption>\n<thead>" +
                      htmlRow("th", {{"no", "right"},
                                     {"location"},
                                     {"in"},
                                     {"size", "right"},
                                     {"drive"},
                                     {"serial"},
                                     {"type"},
                                     {"state"},
                                     {"trouble"}}) +
                      "</thead>\n<tbody>\n";
    for (const std::size_t index : drivesInRows(controller)) {
        const MachineDrive& drive = controller.drives[index];
        const DriveFacts& facts = drive.facts;
        std::string kind = facts.protocol;
        kind += (kind.empty() || facts.mediaType.empty() ? "" : " ") + facts.mediaType;
        const bool failed = roleOf(drive) == Role::failed;
        const std::string trouble = failed ? "failed" : troubleOf(facts);
        out += htmlRow("td", {{numberOf(drive), "right"},
                              {escaped(facts.location), "code"},
                              {chip(drive, arrays)},
                              {sizeText(facts.capacityBytes), "right"},
                              {orDash(modelOf(facts))},
                              {orDash(facts.serialNumber), "code"},
                              {orDash(kind)},
                              {orDash(facts.reportedState)},
                              {trouble.empty() ? "-" : "! " + escaped(trouble), failed ? "bad"
                                                                                : trouble.empty()
                                                                                    ? ""
                                                                                    : "warning"}});
    }
    return out + "</tbody></table></div>\n";
}

std::string rangesText(const std::vector<std::string>& locations) {
    std::string text;
    for (const std::string& range : locationRanges(locations)) {
        text += (text.empty() ? "" : " ") + range;
    }
    return text;
}

std::string logicalDrivesTable(const ControllerSnapshot& controller) {
    if (controller.facts.logicalDrives.empty()) {
        return {};
    }
    std::string out = "<div class=\"table-box\"><table class=\"logical-drives\">\n"
                      "<caption>Logical drives</caption>\n<thead>" +
                      htmlRow("th", {{"array"},
                                     {"LD"},
                                     {"name"},
                                     {"level"},
                                     {"size", "right"},
                                     {"state"},
                                     {"write cache"},
                                     {"strip"},
                                     {"drives"}}) +
                      "</thead>\n<tbody>\n";
    for (std::size_t i = 0; i < controller.arrays.size(); ++i) {
        const MachineArray& array = controller.arrays[i];
        for (const std::size_t index : array.logicalDrives) {
            const LogicalDriveFacts& logicalDrive = controller.facts.logicalDrives.at(index);
            const bool isBad = logicalDrive.health == Health::critical;
            const bool warns = logicalDrive.health == Health::warning;
            out += htmlRow(
                "td",
                {{arrayChip(array.letter, i)},
                 {escaped(logicalDrive.id)},
                 {orDash(logicalDrive.name)},
                 {escaped(levelOf(logicalDrive))},
                 {sizeText(logicalDrive.capacityBytes), "right"},
                 {(isBad || warns ? "! " : "") + orDash(stateText(logicalDrive.reportedState)),
                  isBad   ? "bad"
                  : warns ? "warning"
                          : ""},
                 {orDash(cacheOf(logicalDrive))},
                 {logicalDrive.stripSizeBytes ? sizeText(*logicalDrive.stripSizeBytes) : "-"},
                 {escaped(rangesText(array.drives)), "code"}});
        }
    }
    return out + "</tbody></table></div>\n";
}

std::string readingDetails(const ControllerSnapshot& controller) {
    if (controller.commands.empty()) {
        return {};
    }
    std::string out = "<details><summary>How it was read</summary>\n<div class=\"table-box\">"
                      "<table>\n<thead>" +
                      htmlRow("th", {{"command"}, {"end"}, {"ms", "right"}}) +
                      "</thead>\n<tbody>\n";
    for (const CapturedListing& listing : controller.commands) {
        out += htmlRow("td", {{escaped(listing.command), "code"},
                              {escaped(outcomeText(listing))},
                              {std::to_string(listing.duration.count()), "right"}});
    }
    return out + "</tbody></table></div>\n</details>\n";
}

std::string controllerSection(const Snapshot& snapshot, std::size_t index) {
    const ControllerSnapshot& controller = snapshot.details[index];
    std::string out = "<section class=\"controller\">\n<h2>Controller " +
                      std::to_string(controller.number) + ": " + escaped(productText(controller)) +
                      "</h2>\n";
    std::vector<std::string> facts;
    if (!controller.facts.serialNumber.empty()) {
        facts.push_back("serial " + controller.facts.serialNumber);
    }
    if (const std::string pci = pciText(controller); !pci.empty()) {
        facts.push_back(pci);
    }
    if (!controller.facts.firmwareVersion.empty()) {
        facts.push_back("firmware " + controller.facts.firmwareVersion);
    }
    for (const std::string& ability : abilitiesOf(controller.facts)) {
        facts.push_back(ability);
    }
    std::string line;
    for (const std::string& fact : facts) {
        line += (line.empty() ? "" : ", ") + escaped(fact);
    }
    out += line.empty() ? "" : "<p class=\"dim\">" + line + "</p>\n";
    out += findingsList(controller.findings);
    if (controller.failed) {
        out += "<p class=\"bad\">It could not be read: " + escaped(controller.utility) +
               " failed.</p>\n";
    } else {
        out += "<div class=\"picture-box\">\n" + controllerSvg(snapshot, index, index == 0) +
               "</div>\n";
        out += logicalDrivesTable(controller) + drivesTable(controller);
    }
    for (const std::string& foreign : controller.facts.foreignConfigurations) {
        out += "<p class=\"warning\">Foreign configuration: " + escaped(foreign) + "</p>\n";
    }
    return out + readingDetails(controller) + "</section>\n";
}

} // namespace

std::string machineHtml(const Snapshot& snapshot, std::string_view madeAt) {
    const std::string title = machineTitle(snapshot);
    std::string out = pageHead(title);
    out += "<header>\n<h1>" + escaped(title) + "</h1>\n<p class=\"dim\">";
    std::size_t drives = 0;
    std::size_t logicalDrives = 0;
    for (const ControllerSnapshot& controller : snapshot.details) {
        drives += controller.drives.size();
        logicalDrives += controller.facts.logicalDrives.size();
    }
    out += countText(snapshot.details.size(), "controller", "controllers") + ", " +
           countText(drives, "drive", "drives") + ", " +
           countText(logicalDrives, "logical drive", "logical drives");
    out += madeAt.empty() ? "" : ", read " + escaped(madeAt);
    out += "</p>\n</header>\n<main>\n" + findingsList(snapshot.findings);
    for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
        out += controllerSection(snapshot, i);
    }
    if (snapshot.details.empty()) {
        out += "<p>No RAID controller.</p>\n";
    }
    if (!snapshot.coreMessages.empty()) {
        out += "<details><summary>Messages of the core</summary>\n<pre>";
        for (const std::string& message : snapshot.coreMessages) {
            out += escaped(message) + "\n";
        }
        out += "</pre>\n</details>\n";
    }
    return out + "</main>\n" + pageEnd();
}

} // namespace zolex::companion
