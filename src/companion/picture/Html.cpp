#include "companion/picture/Html.h"

#include "companion/picture/Markup.h"
#include "companion/picture/Palette.h"
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

/// Every pair of colours has a contrast of 4.5 at least, in the light and in the dark scheme.
constexpr std::string_view style = R"(<style>
:root{color-scheme:light dark}
body{margin:0 auto;padding:1rem;max-width:100rem;background:#ffffff;color:#1a1a1a;font:15px/1.45 system-ui,"Segoe UI","DejaVu Sans",sans-serif}
h1{font-size:1.5rem;margin:0}
h2{font-size:1.2rem;margin:2rem 0 0}
p{margin:.3rem 0}
.dim{color:#555555}
.warning{color:#7a4100}
.bad{color:#a8001e}
ul.findings{margin:.6rem 0;padding:.5rem .75rem;list-style:none;border-left:4px solid #7a4100;background:#fff6e5}
ul.findings.bad{border-color:#a8001e;background:#fdecee}
ul.findings .help{display:block;color:#555555;padding-left:1.2rem}
.picture-box{overflow-x:auto;margin:.6rem 0}
.picture-box svg{display:block;max-width:100%;height:auto}
table{border-collapse:collapse;margin:.6rem 0;font-variant-numeric:tabular-nums}
caption{text-align:left;font-weight:bold;padding:.2rem 0}
th,td{text-align:left;padding:.2rem .7rem;border-bottom:1px solid #c8c8c8;vertical-align:top;white-space:nowrap}
th{color:#555555;font-weight:600}
td.right,th.right{text-align:right}
td.code,code{font-family:"DejaVu Sans Mono",Consolas,Menlo,monospace;font-size:.9em}
.chip{display:inline-block;min-width:1.3em;text-align:center;font-weight:bold;border:1px solid #404040;border-radius:3px;padding:0 .2em}
.table-box{overflow-x:auto}
details{margin:.6rem 0}
summary{cursor:pointer}
@media (prefers-color-scheme:dark){
body{background:#16181d;color:#e8e8e8}
.dim,th,ul.findings .help{color:#b4b4b4}
.warning{color:#ffc266}
.bad{color:#ff9d9d}
ul.findings{border-color:#ffc266;background:#2c2517}
ul.findings.bad{border-color:#ff9d9d;background:#33191c}
th,td{border-color:#4a4d55}
.chip{border-color:#b4b4b4}
}
@page{size:A4;margin:12mm}
@media print{
:root{color-scheme:light}
body{background:#ffffff;color:#1a1a1a;padding:0;max-width:none;font-size:10pt}
.dim,th,ul.findings .help{color:#555555}
.warning{color:#7a4100}
.bad{color:#a8001e}
ul.findings{border-color:#7a4100;background:#ffffff}
ul.findings.bad{border-color:#a8001e;background:#ffffff}
.chip{border-color:#404040}
.picture-box,.table-box{overflow:visible}
.picture-box svg{min-width:0!important}
table{font-size:7.5pt;max-width:100%}
th,td{padding:.1rem .35rem;white-space:normal;overflow-wrap:break-word;border-color:#c8c8c8}
.right,.code{white-space:nowrap}
tr,ul.findings,.picture-box{break-inside:avoid}
h2{break-after:avoid}
}
</style>
)";

/// A cell of a table: its markup, and its classes.
struct Cell {
    std::string markup;
    std::string_view classes = {};
};

std::string row(std::string_view tag, const std::vector<Cell>& cells,
                std::string_view classes = {}) {
    std::string out = "<tr";
    if (!classes.empty()) {
        out += " class=\"" + std::string(classes) + "\"";
    }
    out += ">";
    for (const Cell& cell : cells) {
        out += "<" + std::string(tag);
        if (!cell.classes.empty()) {
            out += " class=\"" + std::string(cell.classes) + "\"";
        }
        out += ">" + cell.markup + "</" + std::string(tag) + ">";
    }
    return out + "</tr>\n";
}

std::string orDash(const std::string& text) {
    return text.empty() ? "-" : escaped(text);
}

std::string findingsList(const std::vector<Finding>& findings) {
    if (findings.empty()) {
        return {};
    }
    bool isBad = false;
    std::string items;
    for (const Finding& finding : findings) {
        isBad = isBad || finding.severity == Severity::error;
        items += "<li>! " + escaped(finding.summary);
        items += finding.detail.empty() ? "" : ": " + escaped(finding.detail);
        items += " <span class=\"dim\">" + escaped(finding.code) + "</span>";
        for (const std::string& help : finding.help) {
            items += "<span class=\"help\">" + escaped(help) + "</span>";
        }
        items += "</li>\n";
    }
    return std::string("<ul class=\"findings") + (isBad ? " bad" : "") + "\">\n" + items +
           "</ul>\n";
}

/// The letter of an array on its colour, or what else the drive does.
std::string chip(const MachineDrive& drive, const std::map<std::string, std::size_t>& arrays) {
    const auto array = arrays.find(drive.array);
    if (drive.array.empty() || array == arrays.end()) {
        return escaped(jobOf(drive));
    }
    const ArrayColour& colour = arrayColour(array->second);
    return "<span class=\"chip\" style=\"background:" + std::string(colour.fill) +
           ";color:" + std::string(colour.ink) + "\">" + escaped(drive.array) + "</span>";
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
                      row("th", {{"no", "right"},
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
        out += row("td", {{numberOf(drive), "right"},
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
                      row("th", {{"array"},
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
        const ArrayColour& colour = arrayColour(i);
        for (const std::size_t index : array.logicalDrives) {
            const LogicalDriveFacts& logicalDrive = controller.facts.logicalDrives.at(index);
            const bool isBad = logicalDrive.health == Health::critical;
            const bool warns = logicalDrive.health == Health::warning;
            out += row(
                "td",
                {{"<span class=\"chip\" style=\"background:" + std::string(colour.fill) +
                  ";color:" + std::string(colour.ink) + "\">" + escaped(array.letter) + "</span>"},
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
                      row("th", {{"command"}, {"end"}, {"ms", "right"}}) + "</thead>\n<tbody>\n";
    for (const CapturedListing& listing : controller.commands) {
        out += row("td", {{escaped(listing.command), "code"},
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
    const std::string title = escaped(machineTitle(snapshot));
    std::string out = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
                      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
                      "<title>" +
                      title + "</title>\n";
    out += style;
    out += "</head>\n<body>\n<header>\n<h1>" + title + "</h1>\n<p class=\"dim\">";
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
    return out + "</main>\n</body>\n</html>\n";
}

} // namespace zolex::companion
