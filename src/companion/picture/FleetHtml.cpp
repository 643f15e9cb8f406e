#include "companion/picture/FleetHtml.h"

#include "companion/facts/Bytes.h"
#include "companion/picture/FleetText.h"
#include "companion/picture/Markup.h"
#include "companion/picture/PageParts.h"
#include "companion/picture/PlanPicture.h"
#include "companion/picture/Roles.h"
#include "companion/text/Sizes.h"

#include <utility>

namespace zolex::companion {

namespace {

/// Besides the rules that all pages have. The page may load nothing at all.
constexpr std::string_view fleetHead =
    R"(<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'; base-uri 'none'; form-action 'none'"/>
<style>
.lost,td.lost{color:#a8001e}
.good{color:#00603a}
.box{margin:.8rem 0;padding:.5rem .75rem;border-left:4px solid #00603a}
.box.lost{border-color:#a8001e}
td.wide{white-space:normal;overflow-wrap:anywhere}
a{color:#0b57a4}
.tools{display:flex;flex-wrap:wrap;gap:.6rem;align-items:center;margin:.6rem 0}
.tools[hidden],tr[hidden],section[hidden]{display:none}
.tools input,.tools select,th button{font:inherit;color:inherit;background:transparent;border:1px solid #6b6b6b;border-radius:3px;padding:.15rem .4rem}
.tools select option{color:#1a1a1a;background:#ffffff}
.tools input{min-width:16rem}
th button{border:0;padding:0;font-weight:600;cursor:pointer}
th[aria-sort=ascending] button::after{content:" \25B2"}
th[aria-sort=descending] button::after{content:" \25BC"}
@media (prefers-color-scheme:dark){
.lost,td.lost{color:#ff9d9d}
.good{color:#7be0a8}
.box{border-color:#7be0a8}
.box.lost{border-color:#ff9d9d}
a{color:#8fc2ff}
.tools input,.tools select{border-color:#b4b4b4}
}
@media print{
.lost,td.lost{color:#a8001e}
.good{color:#00603a}
.box{border-color:#00603a}
.box.lost{border-color:#a8001e}
a{color:#1a1a1a;text-decoration:none}
.tools{display:none}
section.server{break-inside:avoid}
details::details-content{content-visibility:visible;block-size:auto}
}
</style>
)";

/// Rows that hold every word of the search field are shown; a click on a heading sorts by it, a
/// second one the other way round. Sections follow their rows.
constexpr std::string_view script = R"(<script>
"use strict";
(() => {
const table = document.getElementById("fleet"), body = table.tBodies[0];
const rows = [...body.rows], heads = [...table.tHead.rows[0].cells];
const section = row => document.getElementById(row.dataset.server);
const search = document.getElementById("search"), result = document.getElementById("result");
const shown = document.getElementById("shown");
const texts = rows.map(row => (row.textContent + " " + row.dataset.more).toLowerCase());
const show = () => {
  const words = search.value.toLowerCase().split(/\s+/).filter(word => word);
  let count = 0;
  rows.forEach((row, i) => {
    const fits = words.every(word => texts[i].includes(word)) &&
      (!result.value || row.dataset.result === result.value);
    row.hidden = section(row).hidden = !fits;
    count += fits ? 1 : 0;
  });
  shown.textContent = count + " of " + rows.length + " servers";
};
const sort = column => {
  const down = heads[column].getAttribute("aria-sort") === "ascending";
  heads.forEach(head => head.removeAttribute("aria-sort"));
  heads[column].setAttribute("aria-sort", down ? "descending" : "ascending");
  const value = row => row.cells[column].dataset.value;
  const text = row => row.cells[column].textContent;
  const byText = new Intl.Collator("en", {numeric: true}).compare;
  const compare = (a, b) => value(a) !== undefined ?
    Number(value(a)) - Number(value(b)) : byText(text(a), text(b));
  const first = section(rows[0]).parentNode;
  rows.map((row, i) => [row, i])
    .sort((a, b) => (down ? -1 : 1) * compare(a[0], b[0]) || a[1] - b[1])
    .forEach(([row]) => { body.append(row); first.append(section(row)); });
};
heads.forEach((head, column) => {
  const button = document.createElement("button");
  button.type = "button";
  button.textContent = head.textContent;
  button.addEventListener("click", () => sort(column));
  head.replaceChildren(button);
});
search.addEventListener("input", show);
result.addEventListener("change", show);
document.querySelector(".tools").hidden = false;
show();
})();
</script>
)";

std::string_view classOf(ServerResult result) {
    switch (result) {
    case ServerResult::asPlanned:
    case ServerResult::same:
        return "good";
    case ServerResult::skipped:
        return "warning";
    case ServerResult::error:
        break;
    }
    return "bad";
}

std::string idOf(std::size_t index) {
    return "server-" + std::to_string(index + 1);
}

/// A cell that is sorted by a number.
std::string numberCell(const std::string& text, std::uint64_t value, std::string_view classes) {
    return "<td class=\"" + std::string(classes) + "\" data-value=\"" + std::to_string(value) +
           "\">" + escaped(text) + "</td>";
}

/// By what is lost: first logical drives by their size, then the rest. Where it is not known, least
/// of all.
std::string lossCell(const FleetServer& server) {
    const FleetLosses& losses = server.losses;
    if (!server.hasPlan) {
        return "<td data-value=\"-1\">-</td>";
    }
    const std::uint64_t weight =
        losses.capacityBytes / bytesOfKb + losses.logicalDrives + losses.hotspares + losses.foreign;
    return numberCell(lossesText(server), weight, losses.any() ? "lost" : "");
}

/// What is searched besides the cells of a row: what is said below.
std::string moreOf(const FleetServer& server) {
    std::string more = server.machineType;
    for (const std::string& reason : server.reasons) {
        more += " " + reason;
    }
    for (const ServerFinding& each : server.findings) {
        more += " " + serverFindingText(server, each);
    }
    return more;
}

std::string rowOf(const FleetServer& server, std::size_t index) {
    const std::string commands =
        server.hasPlan ? numberCell(std::to_string(server.commands), server.commands, "right")
                       : "<td class=\"right\" data-value=\"-1\">-</td>";
    return "<tr data-server=\"" + idOf(index) + "\" data-result=\"" +
           std::string(serverResultWord(server.result)) + "\" data-more=\"" +
           escaped(moreOf(server)) + "\"><td class=\"wide\"><a href=\"#" + idOf(index) + "\">" +
           escaped(server.name) + "</a></td><td class=\"code wide\">" +
           orDash(server.serialNumber) + "</td><td class=\"wide\">" +
           escaped(usedPoliciesText(server)) + "</td><td class=\"" +
           std::string(classOf(server.result)) + "\">" +
           std::string(serverResultText(server.result)) + "</td>" + lossCell(server) + commands +
           "</tr>\n";
}

std::string listOf(const std::string& title, const std::vector<std::string>& items) {
    if (items.empty()) {
        return {};
    }
    std::string out = paragraph(title + ":") + "<ul>\n";
    for (const std::string& item : items) {
        out += "<li>" + escaped(item) + "</li>\n";
    }
    return out + "</ul>\n";
}

std::string tools() {
    std::string out = "<div class=\"tools\" hidden=\"\"><label>Search <input type=\"search\" "
                      "id=\"search\" autocomplete=\"off\"/></label> <label>Result <select "
                      "id=\"result\"><option value=\"\">all</option>";
    for (const ServerResult result : {ServerResult::asPlanned, ServerResult::same,
                                      ServerResult::skipped, ServerResult::error}) {
        out += "<option value=\"" + std::string(serverResultWord(result)) + "\">" +
               std::string(serverResultText(result)) + "</option>";
    }
    return out + "</select></label> <span id=\"shown\" aria-live=\"polite\"></span></div>\n";
}

std::string table(const Fleet& fleet) {
    std::string rows;
    for (std::size_t i = 0; i < fleet.servers.size(); ++i) {
        rows += rowOf(fleet.servers[i], i);
    }
    return "<div class=\"table-box\"><table id=\"fleet\">\n<thead>" +
           htmlRow("th", {{"server"},
                          {"serial"},
                          {"policies used"},
                          {"result"},
                          {"loses"},
                          {"commands", "right"}}) +
           "</thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
}

/// Findings as the lists of pages have them, the controller named where there are several.
std::string findingsOf(const FleetServer& server) {
    std::vector<Finding> findings;
    for (const ServerFinding& each : server.findings) {
        findings.push_back(each.finding);
        if (each.controller > 0) {
            findings.back().summary.insert(0,
                                           "controller " + std::to_string(each.controller) + ": ");
        }
    }
    return findingsList(findings);
}

std::string commandsOf(const MachinePlan& plan) {
    const std::vector<PlanStep> steps = plan.steps();
    if (steps.empty()) {
        return {};
    }
    std::string rows;
    for (const PlanStep& step : steps) {
        rows += htmlRow("td",
                        {{std::to_string(step.step), "right"},
                         {escaped(step.command), "code wide"},
                         {orDash(step.summary), "wide"}},
                        step.deletes ? "lost" : "");
    }
    return "<details><summary>Commands (" + std::to_string(steps.size()) +
           ")</summary>\n<div class=\"table-box\"><table>\n<thead>" +
           htmlRow("th", {{"step", "right"}, {"command"}, {"what it does"}}) +
           "</thead>\n<tbody>\n" + rows + "</tbody></table></div>\n</details>\n";
}

} // namespace

std::string serverSection(const FleetServer& server, std::size_t index) {
    std::string title = escaped(server.name);
    title += server.serialNumber.empty() ? "" : " " + escaped(server.serialNumber);
    std::string out = "<section class=\"server\" id=\"" + idOf(index) + "\">\n<h2>" + title +
                      ": <span class=\"" + std::string(classOf(server.result)) + "\">" +
                      std::string(serverResultText(server.result)) + "</span></h2>\n";
    std::string policies = "Policies used: " + usedPoliciesText(server);
    if (server.losses.any()) {
        out += "<p>" + escaped(policies) + "; loses <strong class=\"lost\">" +
               escaped(lossesText(server)) + "</strong></p>\n";
    } else {
        out += paragraph(policies + (server.hasPlan ? "; loses nothing" : ""));
    }
    for (const std::string& reason : server.reasons) {
        out += paragraph(reason);
    }
    out += findingsOf(server);
    if (!server.plan) {
        return out + "</section>\n";
    }
    const MachinePlan& plan = *server.plan;
    for (std::size_t i = 0; i < plan.controllers.size(); ++i) {
        const ControllerSnapshot& controller = plan.controllers[i].controller;
        if (controller.drives.empty()) {
            continue;
        }
        out += "<section class=\"controller\">\n" +
               paragraph("Controller " + std::to_string(controller.number) + ": " +
                         productText(controller)) +
               "<div class=\"picture-box\">\n" +
               planControllerSvg(plan, i, i == 0, "s" + std::to_string(index) + "-") +
               "</div>\n</section>\n";
    }
    return out + commandsOf(plan) + "</section>\n";
}

std::string fleetHtml(const Fleet& fleet, const std::vector<std::string>& sections,
                      std::string_view madeAt) {
    const std::string title = "Rehearsal of " + fleet.policiesFile + " on " +
                              countText(fleet.servers.size(), "server", "servers");
    std::string out = pageHead(title, fleetHead);
    out += "<header>\n<h1>" + escaped(title) + "</h1>\n<p class=\"dim\">" + escaped(madeAt) +
           "; of recordings, no server was touched</p>\n</header>\n<main>\n";
    out += listOf("Supposed", suppositionTexts(fleet));
    out += "<p><strong>" + escaped(fleetCountsText(fleet)) + "</strong></p>\n";
    const bool isLosing = fleet.losses().any();
    out += std::string("<div class=\"box") + (isLosing ? " lost" : "") + "\">" +
           "What is lost: " + escaped(fleetLossesText(fleet)) + "</div>\n";
    out += listOf(unusedTitle(fleet), unusedTexts(fleet));
    if (const std::string drill = drillText(fleet); !drill.empty()) {
        out += paragraph(drill);
    }
    out += findingsList(fleet.policiesFindings) + findingsList(fleet.findings);
    out += tools() + table(fleet) + "<div id=\"servers\">\n";
    for (const std::string& section : sections) {
        out += section;
    }
    out += "</div>\n</main>\n";
    out += script;
    return out + pageEnd();
}

} // namespace zolex::companion
