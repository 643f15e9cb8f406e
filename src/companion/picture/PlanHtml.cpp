#include "companion/picture/PlanPicture.h"

#include "companion/picture/Changes.h"
#include "companion/picture/Markup.h"
#include "companion/picture/PageParts.h"
#include "companion/picture/Roles.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Besides the rules that all pages have.
constexpr std::string_view planStyle = R"(<style>
.lost{color:#a8001e}
.new{color:#00603a}
.box{margin:.8rem 0;padding:.5rem .75rem;border-left:4px solid #00603a}
.box.lost{border-color:#a8001e}
.box h2{margin:0}
.box p,.box li,.box td{color:#1a1a1a}
ul.plain{margin:.3rem 0;padding:0;list-style:none}
td.wide,td.code.wide{white-space:normal;overflow-wrap:anywhere}
@media (prefers-color-scheme:dark){
.lost{color:#ff9d9d}
.new{color:#7be0a8}
.box{border-color:#7be0a8}
.box.lost{border-color:#ff9d9d}
.box p,.box li,.box td{color:#e8e8e8}
}
@media print{
.lost{color:#a8001e}
.new{color:#00603a}
.box{border-color:#00603a;break-inside:avoid}
.box.lost{border-color:#a8001e}
.box p,.box li,.box td{color:#1a1a1a}
td.code.wide{white-space:normal}
details::details-content{content-visibility:visible;block-size:auto}
}
</style>
)";

std::string rangesOf(const std::vector<std::string>& locations) {
    std::string text;
    for (const std::string& range : locationRanges(locations)) {
        text += (text.empty() ? "" : " ") + range;
    }
    return text;
}

std::string table(const std::string& caption, const std::vector<HtmlCell>& head,
                  const std::string& rows) {
    return "<div class=\"table-box\"><table>\n" +
           (caption.empty() ? "" : "<caption>" + escaped(caption) + "</caption>\n") + "<thead>" +
           htmlRow("th", head) + "</thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
}

std::string details(const std::string& summary, const std::string& content) {
    return "<details><summary>" + escaped(summary) + "</summary>\n" + content + "</details>\n";
}

std::string commandLine(const std::string& text) {
    return "<p><code>" + escaped(text) + "</code></p>\n";
}

std::string linePlace(const std::string& file, std::int32_t line) {
    return line > 0 && !file.empty() ? file + ":" + std::to_string(line) : "";
}

std::string titleOf(const Fingerprint& fingerprint) {
    std::string title = fingerprint.machineType.empty() ? "machine of unknown type"
                                                        : "machine " + fingerprint.machineType;
    return title + (fingerprint.serialNumber.empty() ? ", serial not known"
                                                     : ", serial " + fingerprint.serialNumber);
}

/// The section of one controller of a plan.
class PlanSection {
  public:
    PlanSection(const MachinePlan& plan, std::size_t index, bool withLegend)
        : plan_(plan), planning_(plan.controllers[index]), change_(changeOf(planning_)),
          index_(index), withLegend_(withLegend) {}

    std::string write() {
        out_ = "<section class=\"controller\">\n<h2>Controller " +
               std::to_string(planning_.controller.number) + ": " +
               escaped(productText(planning_.controller)) + "</h2>\n";
        if (planning_.disposition != Disposition::planned) {
            const bool isBad = planning_.disposition == Disposition::refused;
            out_ += paragraph(dispositionText(planning_), isBad ? "bad" : "");
        }
        out_ += findingsList(planning_.diagnostics);
        policy();
        if (!planning_.controller.drives.empty()) {
            out_ += "<div class=\"picture-box\">\n" +
                    planControllerSvg(plan_, index_, withLegend_) + "</div>\n";
        }
        if (planning_.disposition == Disposition::planned) {
            changes();
            strategy();
        }
        bindings();
        health();
        out_ += findingsList(planning_.warnings);
        drives();
        settings();
        commands();
        return out_ + "</section>\n";
    }

  private:
    void policy() {
        std::string rows;
        for (const PolicyMatch& match : planning_.considered) {
            if (match.matched.value_or(false)) {
                const std::string place = linePlace(plan_.policiesFile, match.line);
                out_ += "<p><strong>" + escaped(match.name) + "</strong>" +
                        (place.empty() ? "" : " (" + escaped(place) + ")") + " " +
                        escaped(matchText(match)) + "</p>\n";
            }
            rows += htmlRow("td", {{escaped(match.name)},
                                   {std::to_string(match.line), "right"},
                                   {escaped(matchText(match)), "wide"}});
        }
        if (planning_.considered.empty() && plan_.policiesFile.empty()) {
            out_ += paragraph("The defaults of its class");
        }
        if (!rows.empty()) {
            out_ += details(countText(planning_.considered.size(), "policy", "policies") + " asked",
                            table("", {{"policy"}, {"line", "right"}, {"applies"}}, rows));
        }
    }

    /// What goes, what stays and what comes.
    void changes() {
        std::string rows;
        for (const bool stays : {true, false}) {
            standing(rows, stays);
        }
        coming(rows);
        if (!rows.empty()) {
            out_ +=
                table("What changes",
                      {{""}, {"what"}, {"level"}, {"size", "right"}, {"drives"}, {"how"}}, rows);
        }
    }

    static std::string changeRow(std::string_view sign, const std::vector<std::string>& cells) {
        const std::string_view classes = sign == "-" ? "lost" : sign == "+" ? "new" : "";
        return htmlRow("td",
                       {{std::string(sign), "code"},
                        {escaped(cells[0])},
                        {orDash(cells[1])},
                        {orDash(cells[2]), "right"},
                        {orDash(cells[3]), "code wide"},
                        {orDash(cells[4]), "wide"}},
                       classes);
    }

    void standing(std::string& rows, bool stays) {
        const std::string_view sign = stays ? "=" : "-";
        for (const MachineArray& array : change_.now.arrays) {
            for (const std::size_t index : array.logicalDrives) {
                const LogicalDriveFacts& row = change_.now.facts.logicalDrives[index];
                if ((change_.lostLogicalDrives.count(row.id) == 0) == stays) {
                    rows +=
                        changeRow(sign, {"LD " + row.id, levelOf(row), sizeText(row.capacityBytes),
                                         rangesOf(array.drives), stays ? "stays" : "is deleted"});
                }
            }
        }
        for (const LayoutSpare& spare : planning_.before.spares) {
            const bool goes = std::any_of(
                planning_.losses.begin(), planning_.losses.end(), [&](const Loss& loss) {
                    return loss.kind == "hotspare" && loss.id == spare.location;
                });
            if (goes != stays) {
                rows += changeRow(sign, {"hot spare", "", "", spare.location,
                                         stays ? "stays" : "is no longer a spare"});
            }
        }
        for (const Loss& loss : planning_.losses) {
            if (!stays && loss.kind == "foreign") {
                rows += changeRow(sign, {"foreign configuration", loss.raidType,
                                         loss.capacityBytes > 0 ? sizeText(loss.capacityBytes) : "",
                                         loss.drives.empty() ? loss.id : rangesOf(loss.drives),
                                         "is cleared"});
            }
        }
    }

    void coming(std::string& rows) {
        for (const PlannedArray& array : planning_.arrays) {
            std::vector<std::string> locations;
            for (const PlannedDrive& drive : array.drives) {
                locations.push_back(drive.location);
            }
            if (change_.newArrays.count(array.id) > 0) {
                rows += changeRow("+", {"array " + array.id, "", sizeText(array.capacityBytes),
                                        rangesOf(locations), "is made"});
            }
            for (const PlannedVolume& volume : planning_.volumes) {
                if (volume.array == array.id && change_.newLogicalDrives.count(volume.id) > 0) {
                    rows += changeRow(
                        "+",
                        {volume.id, volume.raidType == "None" ? "VOLUME" : volume.raidType,
                         volume.capacityBytes > 0 ? sizeText(volume.capacityBytes) : "?",
                         "on array " + volume.array,
                         settingsText(volume.writeCache, volume.readCache, volume.stripSizeBytes)});
                }
            }
        }
        for (std::size_t i = 0; i < change_.now.drives.size(); ++i) {
            const std::string& location = change_.now.drives[i].facts.location;
            const auto spare =
                std::find_if(planning_.spares.begin(), planning_.spares.end(),
                             [&](const PlannedSpare& row) { return row.location == location; });
            if (spare != planning_.spares.end() && change_.drives[i].isNew) {
                std::string covers;
                for (const std::string& letter : spare->covers) {
                    covers += (covers.empty() ? "covers " : ", ") + letter;
                }
                rows += changeRow("+", {"hot spare", "",
                                        sizeText(change_.now.drives[i].facts.capacityBytes),
                                        location, covers.empty() ? "covers no array" : covers});
            }
        }
    }

    void strategy() {
        std::string reasons;
        for (const StrategyReason& reason : planning_.strategyBecause) {
            reasons +=
                (reasons.empty() ? "" : "; ") + (reason.text.empty() ? reason.code : reason.text);
        }
        out_ += "<p>Strategy <strong>" + std::string(strategyWord(planning_.strategy)) +
                "</strong>" + (reasons.empty() ? "" : ": " + escaped(reasons)) + "</p>\n";
    }

    void bindings() {
        std::string rows;
        for (const Binding& binding : planning_.bindings) {
            const std::string entry = binding.keyword + " = " + binding.value;
            if (binding.drives.empty()) {
                rows += htmlRow("td", {{escaped(entry), "code wide"},
                                       {orDash(binding.becomes), "code wide"},
                                       {orDash(binding.why), "wide"}});
            }
            for (const BoundDrive& drive : binding.drives) {
                rows += htmlRow("td", {{escaped(entry), "code wide"},
                                       {escaped(drive.location), "code"},
                                       {orDash(drive.why), "wide"}});
            }
        }
        if (!rows.empty()) {
            out_ +=
                table("Drives told by what they are", {{"entry"}, {"drive"}, {"because"}}, rows);
        }
    }

    void health() {
        std::string items;
        for (const std::string& line : planning_.comparison.health) {
            items += "<li>! " + escaped(line) + "</li>\n";
        }
        out_ += items.empty() ? "" : "<ul class=\"findings\">\n" + items + "</ul>\n";
    }

    [[nodiscard]] static std::string job(const MachineDrive& drive,
                                         const std::map<std::string, std::size_t>& colours) {
        const auto colour = colours.find(drive.array);
        if (drive.array.empty() || colour == colours.end()) {
            return escaped(roleOf(drive) == Role::failed ? "failed" : jobOf(drive));
        }
        return arrayChip(drive.array, colour->second);
    }

    void drives() {
        if (!change_.hasAfter) {
            return;
        }
        std::string rows;
        for (std::size_t i = 0; i < change_.now.drives.size(); ++i) {
            const MachineDrive& now = change_.now.drives[i];
            const DriveChange& fate = change_.drives[i];
            rows += htmlRow("td", {{numberOf(now), "right"},
                                   {escaped(now.facts.location), "code"},
                                   {orDash(now.facts.serialNumber), "code"},
                                   {sizeText(now.facts.capacityBytes), "right"},
                                   {(fate.isLost ? "- " : "") + job(now, change_.nowColours),
                                    fate.isLost ? "lost" : ""},
                                   {(fate.isNew ? "+ " : "") +
                                        job(change_.after.drives[i], change_.afterColours),
                                    fate.isNew ? "new" : ""},
                                   {orDash(fate.reason), "wide"}});
        }
        if (!rows.empty()) {
            out_ += details("Why each drive is where it is", table("",
                                                                   {{"no", "right"},
                                                                    {"location"},
                                                                    {"serial"},
                                                                    {"size", "right"},
                                                                    {"now"},
                                                                    {"planned"},
                                                                    {"because"}},
                                                                   rows));
        }
    }

    void settings() {
        std::string rows;
        for (const PlannedVolume& volume : planning_.volumes) {
            for (const auto& [attribute, reason] : volume.reasons) {
                const std::string place = linePlace(plan_.policiesFile, reason.line);
                rows += htmlRow("td", {{escaped(volume.id)},
                                       {escaped(attributeText(attribute))},
                                       {escaped(reasonText(reason)) +
                                            (place.empty() ? "" : " (" + escaped(place) + ")"),
                                        "wide"}});
            }
        }
        if (!rows.empty()) {
            out_ += details("Why each logical drive is as it is",
                            table("", {{"logical drive"}, {"what"}, {"because"}}, rows));
        }
    }

    void commands() {
        if (planning_.steps.empty() || !plan_.isApplicable()) {
            return;
        }
        std::string rows;
        for (const PlanStep& step : planning_.steps) {
            rows += htmlRow("td",
                            {{std::to_string(step.step), "right"},
                             {escaped(step.command), "code wide"},
                             {orDash(step.summary), "wide"},
                             {orDash(step.differsFromZolex), "wide"}},
                            step.deletes ? "lost" : "");
        }
        out_ += details(
            "Commands (" + std::to_string(planning_.steps.size()) + ")",
            table("",
                  {{"step", "right"}, {"command"}, {"what it does"}, {"how it differs from zolex"}},
                  rows));
    }

    const MachinePlan& plan_;
    const ControllerPlanning& planning_;
    ControllerChange change_;
    std::size_t index_;
    bool withLegend_;
    std::string out_;
};

std::string lossesTable(const std::vector<Loss>& losses) {
    std::string rows;
    for (const Loss& loss : losses) {
        const std::string what = loss.kind == "logical_drive" ? "LD " + loss.id
                                 : loss.kind == "hotspare"    ? "hot spare " + loss.id
                                                              : "foreign configuration " + loss.id;
        rows +=
            htmlRow("td", {{std::to_string(loss.controller), "right"},
                           {escaped(what)},
                           {orDash(loss.raidType)},
                           {loss.capacityBytes > 0 ? sizeText(loss.capacityBytes) : "-", "right"},
                           {orDash(rangesOf(loss.drives)), "code wide"},
                           {orDash(stateText(loss.status))}});
    }
    return table(
        "",
        {{"controller", "right"}, {"what"}, {"level"}, {"size", "right"}, {"drives"}, {"state"}},
        rows);
}

/// How the plan is carried out.
std::string carryOutPart(const MachinePlan& plan, const std::string& savedTo) {
    const CarryOut way = carryOutOf(plan, savedTo);
    std::string out = paragraph(way.sentence);
    for (const std::string& command : way.commands) {
        out += commandLine(command);
    }
    return out;
}

/// What is lost, the code of just this, and how it is carried out.
std::string consentBox(const MachinePlan& plan, const std::string& savedTo) {
    if (!plan.changesSomething()) {
        return "<div class=\"box\">\n<h2>Nothing to do</h2>\n</div>\n";
    }
    const std::vector<Loss> losses = plan.losses();
    if (losses.empty()) {
        return "<div class=\"box\">\n<h2>Nothing is lost</h2>\n" + carryOutPart(plan, savedTo) +
               "</div>\n";
    }
    return "<div class=\"box lost\">\n<h2>- This destroys " + escaped(lossesText(losses)) +
           "</h2>\n" + lossesTable(losses) + carryOutPart(plan, savedTo) + "</div>\n";
}

std::string faultBox(const MachinePlan& plan) {
    return "<ul class=\"findings bad\">\n<li>! Nothing would run: " + escaped(faultsText(plan)) +
           "</li>\n</ul>\n";
}

std::string closingOf(const MachinePlan& plan) {
    std::string out;
    for (const RehearsalSentence& sentence : rehearsalSentences(plan)) {
        out += paragraph((sentence.isBad ? "! " : "") + sentence.text,
                         sentence.isBad ? "warning" : "");
    }
    if (!plan.accepted.empty()) {
        std::string ids;
        for (const std::string& id : plan.accepted) {
            ids += (ids.empty() ? "" : ", ") + id;
        }
        out += paragraph("! Accepted all the same: " + ids, "warning");
    }
    const OldCommand& old = plan.oldCommand;
    if (!old.wouldRun.empty() && plan.isApplicable()) {
        std::string items;
        for (const std::string& difference : old.differences) {
            items += "<li>~ " + escaped(difference) + "</li>\n";
        }
        std::string commands;
        for (const std::string& command : old.wouldRun) {
            commands += commandLine(command);
        }
        const std::string warning = oldWarning(plan);
        out += details("What zolex would do",
                       commands + (warning.empty() ? "" : paragraph("! " + warning, "warning")) +
                           (items.empty() ? "<p>The same.</p>\n"
                                          : "<ul class=\"plain\">\n" + items + "</ul>\n"));
    }
    if (!plan.coreMessages.empty()) {
        std::string messages = "<pre>";
        for (const std::string& message : plan.coreMessages) {
            messages += escaped(message) + "\n";
        }
        out += details("Messages of the core", messages + "</pre>\n");
    }
    return out;
}

std::string diffSection(const MachineDiff& all, const ControllerDiff& diff,
                        const ControllerSnapshot* controller, std::size_t index) {
    const std::string word(diffResultWord(diff.result));
    const bool isDifferent = diff.result == ControllerDiff::Result::different;
    std::string out = "<section class=\"controller\">\n<h2>Controller " +
                      std::to_string(diff.number) + ": " + escaped(diff.model) +
                      ": <span class=\"" +
                      (isDifferent                                      ? "warning"
                       : diff.result == ControllerDiff::Result::unknown ? "bad"
                                                                        : "new") +
                      "\">" + word + "</span></h2>\n";
    if (!diff.policy.empty()) {
        const std::string place = all.isByPlan ? "" : linePlace(all.wantedBy, diff.policyLine);
        out += paragraph(diff.policy + (place.empty() ? "" : " (" + place + ")"), "dim");
    }
    out += diff.because.empty() ? "" : paragraph(diff.because);
    out += findingsList(diff.diagnostics);
    if (controller != nullptr && !controller->drives.empty()) {
        out += "<div class=\"picture-box\">\n" +
               diffControllerSvg(diff, *controller, index, index == 0) + "</div>\n";
    }
    std::string rows;
    for (const Difference& row : diff.comparison.differences) {
        const std::string where = row.logicalDrive.empty() ? row.location : row.logicalDrive;
        const bool isNumber =
            !row.logicalDrive.empty() && where.find_first_not_of("0123456789") == std::string::npos;
        rows += htmlRow("td", {{escaped((isNumber ? "LD " : "") + where)},
                               {escaped(attributeText(row.attribute))},
                               {orDash(withRanges(row.wanted)), "wide"},
                               {orDash(withRanges(row.found)), "wide"}});
    }
    if (!rows.empty()) {
        out += table("Differences",
                     {{"what"}, {"attribute"}, {std::string(all.wisher())}, {"machine"}}, rows);
    }
    std::string items;
    for (const std::string& line : diff.comparison.health) {
        items += "<li>! " + escaped(line) + "</li>\n";
    }
    out += items.empty() ? "" : "<ul class=\"findings\">\n" + items + "</ul>\n";
    for (const std::string& line : diff.comparison.equivalences) {
        out += paragraph("= " + line);
    }
    const std::string rebuild = diff.isRefused ? planRefusedText(all) : rebuildText(diff);
    out += rebuild.empty() ? "" : paragraph("! " + rebuild, "warning");
    if (!diff.comparison.notComparable.empty()) {
        std::string names;
        for (const std::string& attribute : diff.comparison.notComparable) {
            names += (names.empty() ? "" : ", ") + attributeText(attribute);
        }
        out += details("Not compared", paragraph("The utility does not list: " + names));
    }
    return out + "</section>\n";
}

} // namespace

std::string planHtml(const MachinePlan& plan, std::string_view madeAt, const std::string& savedTo) {
    const std::string title = "Plan of " + titleOf(plan.fingerprint);
    std::string out = pageHead(title, planStyle);
    out += "<header>\n<h1>" + escaped(title) + "</h1>\n<p class=\"dim\">";
    std::size_t drives = 0;
    for (const ControllerPlanning& planning : plan.controllers) {
        drives += planning.controller.drives.size();
    }
    out += countText(plan.controllers.size(), "controller", "controllers") + ", " +
           countText(drives, "drive", "drives") + ", ";
    out += plan.policiesFile.empty() ? "the defaults of each controller's class"
                                     : escaped(plan.policiesFile) + ": " +
                                           countText(plan.policiesCount, "policy", "policies");
    out += plan.id.empty() ? "" : ", plan " + escaped(plan.id);
    out += madeAt.empty() ? "" : ", made " + escaped(madeAt);
    out += "</p>\n</header>\n<main>\n";
    out += plan.isApplicable() ? consentBox(plan, savedTo) : faultBox(plan);
    out += findingsList(plan.diagnostics) + findingsList(plan.policiesFindings);
    for (std::size_t i = 0; i < plan.controllers.size(); ++i) {
        out += PlanSection(plan, i, i == 0).write();
    }
    if (plan.controllers.empty()) {
        out += "<p>No RAID controller.</p>\n";
    }
    return out + closingOf(plan) + "</main>\n" + pageEnd();
}

std::string diffHtml(const MachineDiff& diff, const Snapshot& snapshot, std::string_view madeAt) {
    const std::string title = "Comparison of " + titleOf(diff.fingerprint);
    std::string out = pageHead(title, planStyle);
    out += "<header>\n<h1>" + escaped(title) + "</h1>\n<p class=\"dim\">";
    out +=
        escaped(diff.wantedBy.empty() ? "the defaults of each controller's class" : diff.wantedBy);
    out += ": " + std::string(diffResultWord(diff.result));
    out += madeAt.empty() ? "" : ", read " + escaped(madeAt);
    out += "</p>\n</header>\n<main>\n" + findingsList(diff.diagnostics);
    for (std::size_t i = 0; i < diff.controllers.size(); ++i) {
        const ControllerDiff& row = diff.controllers[i];
        const auto controller =
            std::find_if(snapshot.details.begin(), snapshot.details.end(),
                         [&](const ControllerSnapshot& each) { return each.number == row.number; });
        out += diffSection(diff, row, controller == snapshot.details.end() ? nullptr : &*controller,
                           i);
    }
    return out + "</main>\n" + pageEnd();
}

} // namespace zolex::companion
