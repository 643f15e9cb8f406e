#include "companion/picture/PlanText.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/picture/Changes.h"
#include "companion/picture/Roles.h"
#include "companion/picture/TextLines.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Sizes.h"
#include "companion/text/Utf8.h"
#include "companion/text/Words.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::size_t mostPolicies = 6;     ///< that are shown when not everything is asked for
constexpr std::size_t mostReasons = 3;      ///< of a strategy, likewise
constexpr std::size_t mostDifferences = 3;  ///< from zolex, likewise
constexpr std::size_t rowTitleColumns = 15; ///< as wide as "    planned    "

std::string placeText(const std::string& file, std::int32_t line) {
    return line > 0 && !file.empty() ? printable(file) + ":" + std::to_string(line) : "";
}

/// The text with one blank in the place of several.
std::string singleBlanks(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c != ' ' || (!result.empty() && result.back() != ' ')) {
            result += c;
        }
    }
    return result.substr(0, result.find_last_not_of(' ') + 1);
}

std::string timeText(std::chrono::milliseconds time) {
    if (time < std::chrono::milliseconds(950)) {
        return std::to_string(time.count()) + " ms";
    }
    if (time < std::chrono::milliseconds(9950)) {
        const auto tenths = (time.count() + 50) / 100;
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s";
    }
    return std::to_string((time.count() + 500) / 1000) + " s";
}

/// Numbers that follow each other as "3-7".
std::string numberRanges(const std::vector<std::int32_t>& numbers) {
    std::string text;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) {
            ++last;
        }
        text += (text.empty() ? "" : ",") + std::to_string(numbers[i]);
        if (last > i) {
            text += (last == i + 1 ? "," : "-") + std::to_string(numbers[last]);
        }
        i = last + 1;
    }
    return text;
}

std::string_view boundBy(Strength strength) {
    switch (strength) {
    case Strength::serials:
        return "the serial numbers of controllers and drives";
    case Strength::drives:
        return "the serial numbers of drives";
    case Strength::machine:
        return "its own serial number";
    case Strength::positions:
        break;
    }
    return "positions alone: no serial number is told";
}

/// What is said of one controller.
class ControllerWriter {
  public:
    ControllerWriter(const MachinePlan& plan, const ControllerPlanning& planning,
                     const TextStyle& style, const PlanTextTerms& terms)
        : plan_(plan), planning_(planning), change_(changeOf(planning)), style_(style),
          terms_(terms), width_(static_cast<std::size_t>(style.width)) {}

    std::string write() {
        const bool inOneLine = planning_.disposition == Disposition::already ||
                               planning_.disposition == Disposition::skipped;
        if (inOneLine) {
            outcome();
        } else {
            out_ += controllerHead(planning_.controller.number, names(), style_);
            policies();
            enclosures();
            bindings();
            if (planning_.disposition == Disposition::planned) {
                layout();
                strategy();
            }
        }
        if (planning_.disposition == Disposition::refused) {
            errors();
        }
        const bool isTold =
            std::any_of(planning_.warnings.begin(), planning_.warnings.end(),
                        [](const Finding& each) { return each.code == problem::degraded; });
        for (const std::string& health : planning_.comparison.health) {
            if (isTold) {
                break;
            }
            out_ += signedLine("  ! ", printable(health), Emphasis::warning, style_);
        }
        warnings(inOneLine);
        if (out_.size() > 1 && out_.substr(out_.size() - 2) == "\n\n") {
            out_.pop_back();
        }
        return std::move(out_);
    }

    [[nodiscard]] std::size_t createdVolumes() const { return change_.newLogicalDrives.size(); }

  private:
    [[nodiscard]] std::vector<std::string> names() const {
        const ControllerSnapshot& controller = planning_.controller;
        std::vector<std::string> what{printable(controller.model)};
        if (!controller.facts.serialNumber.empty()) {
            what.push_back("serial " + printable(controller.facts.serialNumber));
        }
        if (!controller.pci.empty()) {
            const std::string pci = printable(controller.pci);
            constexpr std::string_view domain = "0000:";
            const bool usual = pci.substr(0, domain.size()) == domain;
            what.push_back("PCI " + (usual ? pci.substr(domain.size()) : pci));
        }
        return what;
    }

    void outcome() {
        const std::string name = "Controller " + std::to_string(planning_.controller.number);
        const bool isSkipped = planning_.disposition == Disposition::skipped;
        out_ += emphasized(name, Emphasis::heading, style_) + "  ";
        out_ += emphasized(foldedWords(dispositionText(planning_), name.size() + 2, name.size() + 2,
                                       width_),
                           isSkipped ? Emphasis::warning : Emphasis::good, style_) +
                "\n";
        // Of a few policies the outcome tells already why none of them fits.
        constexpr std::size_t told = 3;
        const bool isTold = planning_.because.find(": ") != std::string::npos &&
                            planning_.considered.size() <= told;
        if ((isSkipped && !isTold && planning_.policy.empty()) || terms_.verbose) {
            policies();
        }
        if (terms_.verbose) {
            bindings();
        }
    }

    void policies() {
        std::vector<const PolicyMatch*> matches;
        for (const PolicyMatch& match : planning_.considered) {
            matches.push_back(&match);
        }
        std::stable_partition(matches.begin(), matches.end(), [](const PolicyMatch* match) {
            return match->matched.value_or(false);
        });
        std::vector<FieldLine> lines;
        // Those that were not asked have one reason.
        const auto notAsked =
            std::stable_partition(matches.begin(), matches.end(), [](const PolicyMatch* match) {
                return match->matched.has_value();
            });
        const auto notAskedCount = static_cast<std::size_t>(matches.end() - notAsked);
        const bool isShort = !terms_.verbose && notAskedCount > 1;
        if (isShort) {
            matches.erase(notAsked, matches.end());
        }
        const std::size_t shown =
            terms_.verbose || matches.size() <= mostPolicies + 1 ? matches.size() : mostPolicies;
        for (std::size_t i = 0; i < shown; ++i) {
            const PolicyMatch& match = *matches[i];
            const std::string place = placeText(plan_.policiesFile, match.line);
            lines.push_back({2,
                             {{i == 0 ? "Policy" : "", Emphasis::plain},
                              {printable(match.name),
                               match.matched.value_or(false) ? Emphasis::bold : Emphasis::plain},
                              {place.empty() ? "" : "(" + place + ")"},
                              {matchText(match), Emphasis::dim}}});
        }
        if (shown < matches.size()) {
            lines.push_back({2,
                             {{""},
                              {"and " + std::to_string(matches.size() - shown) + " more"},
                              {""},
                              {"-v shows them", Emphasis::dim}}});
        }
        if (isShort) {
            lines.push_back({2,
                             {{lines.empty() ? "Policy" : ""},
                              {std::to_string(notAskedCount) + " more"},
                              {""},
                              {"not asked: an earlier policy matched", Emphasis::dim}}});
        }
        if (planning_.considered.empty() && !planning_.policy.empty()) {
            lines.push_back({2, {{"Policy"}, {printable(planning_.policy), Emphasis::bold}}});
        } else if (planning_.considered.empty() && plan_.policiesFile.empty()) {
            lines.push_back({2, {{"Policy"}, {"the defaults of its class"}}});
        }
        add(lines);
        if (terms_.verbose) {
            specifiers();
        }
    }

    /// All entries with all that they ask for.
    void specifiers() {
        std::vector<FieldLine> lines;
        for (const PolicyMatch& match : planning_.considered) {
            for (const EntryMatch& entry : match.entries) {
                for (const SpecifierMatch& specifier : entry.specifiers) {
                    const std::string actual =
                        specifier.actual.empty() ? "" : ", is " + printable(specifier.actual);
                    lines.push_back({10,
                                     {{printable(match.name)},
                                      {printable(entry.keyword)},
                                      {printable(specifier.specifier)},
                                      {(specifier.holds ? "holds" : "does not hold") + actual,
                                       Emphasis::dim}}});
                }
            }
        }
        add(lines);
    }

    void add(const std::vector<FieldLine>& lines) {
        for (const std::string& line : fieldLines(lines, style_)) {
            out_ += line;
        }
    }

    /// What stands above a slot: its number, or the last one of the location.
    [[nodiscard]] std::string slotName(const DriveRow::Slot& slot) const {
        if (slot.number) {
            return std::to_string(*slot.number);
        }
        const std::string location = printable(change_.now.drives[*slot.drive].facts.location);
        return location.substr(location.rfind(':') + 1);
    }

    [[nodiscard]] static std::string slotMark(const DriveRow::Slot& slot,
                                              const ControllerSnapshot& controller) {
        return slot.drive ? markOf(controller.drives[*slot.drive]) : std::string();
    }

    [[nodiscard]] Emphasis emphasisOf(const DriveRow::Slot& slot, bool isNow) const {
        if (!slot.drive) {
            return Emphasis::plain;
        }
        const DriveChange& change = change_.drives[*slot.drive];
        if (roleOf(change_.now.drives[*slot.drive]) == Role::failed) {
            return Emphasis::bad;
        }
        return isNow && change.isLost   ? Emphasis::bad
               : !isNow && change.isNew ? Emphasis::good
                                        : Emphasis::plain;
    }

    /// Enclosure after enclosure, with what each drive is now and what it will be; in several rows
    /// where there is no room.
    void enclosures() {
        const std::vector<DriveRow> rows = driveRowsOf(change_.now);
        std::size_t columns = 1;
        for (const DriveRow& row : rows) {
            for (const DriveRow::Slot& slot : row.slots) {
                columns =
                    std::max({columns, slotName(slot).size(), slotMark(slot, change_.now).size(),
                              change_.hasAfter ? slotMark(slot, change_.after).size() : 0});
            }
        }
        columns += 2;
        if (!rows.empty()) {
            out_ += "\n";
        }
        bool isFirst = true;
        for (const DriveRow& row : rows) {
            const std::size_t most = std::max<std::size_t>((width_ - rowTitleColumns) / columns, 1);
            const std::size_t pieces = (row.slots.size() + most - 1) / most;
            const std::size_t size =
                (row.slots.size() + pieces - 1) / std::max<std::size_t>(pieces, 1);
            for (std::size_t first = 0; first < row.slots.size(); first += size) {
                const std::size_t last = std::min(first + size, row.slots.size());
                std::string title = first == 0 ? row.title : "";
                if (columnsOf(title) + 2 > rowTitleColumns) {
                    out_ += "  " + emphasized(title, Emphasis::heading, style_) + "\n";
                    title.clear();
                }
                out_ += "  " + emphasized(title, Emphasis::heading, style_) +
                        std::string(rowTitleColumns - 2 - columnsOf(title), ' ');
                line(row, first, last, columns, [&](const DriveRow::Slot& slot) {
                    return TableCell{slotName(slot), Emphasis::dim};
                });
                out_ += "    now        ";
                line(row, first, last, columns, [&](const DriveRow::Slot& slot) {
                    return TableCell{slotMark(slot, change_.now), emphasisOf(slot, true)};
                });
                if (change_.hasAfter) {
                    out_ += "    planned    ";
                    line(row, first, last, columns, [&](const DriveRow::Slot& slot) {
                        return TableCell{slotMark(slot, change_.after), emphasisOf(slot, false)};
                    });
                }
            }
            isFirst = false;
        }
        if (!isFirst) {
            legend();
            out_ += "\n";
        }
    }

    template <typename CellOf>
    void line(const DriveRow& row, std::size_t first, std::size_t last, std::size_t columns,
              const CellOf& cellOf) {
        std::string text;
        std::size_t blanks = 0;
        for (std::size_t i = first; i < last; ++i) {
            const TableCell cell = cellOf(row.slots[i]);
            blanks += columns - cell.text.size();
            if (!cell.text.empty()) {
                text.append(blanks, ' ');
                text += emphasized(cell.text, cell.emphasis, style_);
                blanks = 0;
            }
        }
        out_ += text + "\n";
    }

    [[nodiscard]] static std::string levelsOf(const ControllerSnapshot& controller,
                                              const MachineArray& array) {
        std::vector<std::string> levels;
        for (const std::size_t index : array.logicalDrives) {
            const std::string level = levelOf(controller.facts.logicalDrives[index]);
            if (levels.empty() || levels.back() != level) {
                levels.push_back(level);
            }
        }
        return levels.empty() ? "no logical drive" : joined(levels, "+");
    }

    /// What the marks mean, of those that there are.
    void legend() {
        std::vector<std::string> pieces;
        const auto arrays = [&](const ControllerSnapshot& controller) {
            for (std::size_t i = 0; i < controller.arrays.size();) {
                const std::string levels = levelsOf(controller, controller.arrays[i]);
                std::size_t last = i;
                while (last + 1 < controller.arrays.size() &&
                       levelsOf(controller, controller.arrays[last + 1]) == levels) {
                    ++last;
                }
                std::string letters = printable(controller.arrays[i].letter);
                letters +=
                    last > i ? "-" + printable(controller.arrays[last].letter) : std::string();
                letters += " ";
                letters += levels;
                pieces.push_back(std::move(letters));
                i = last + 1;
            }
        };
        arrays(change_.now);
        if (change_.hasAfter) {
            arrays(change_.after);
        }
        std::set<std::string> marks;
        for (const ControllerSnapshot* controller : {&change_.now, &change_.after}) {
            for (const MachineDrive& drive : controller->drives) {
                marks.insert(markOf(drive));
            }
        }
        constexpr std::pair<std::string_view, std::string_view> meanings[] = {
            {"*", "hot spare"}, {".", "free"},           {"x", "failed"},
            {"~", "foreign"},   {"=", "shown as it is"}, {"?", "unknown"}};
        for (const auto& [mark, meaning] : meanings) {
            if (marks.count(std::string(mark)) > 0) {
                pieces.push_back(std::string(mark) + " " + std::string(meaning));
            }
        }
        out_ += "    " + foldedText(pieces, "   ", 4, 4, width_) + "\n";
    }

    /// Why a drive was taken; which of several it is only when everything is asked for.
    [[nodiscard]] std::string bindingReason(const BoundDrive& drive) const {
        const std::size_t end = terms_.verbose ? std::string::npos : drive.why.find(": drive ");
        return drive.why.substr(0, end);
    }

    void bindings() {
        std::vector<FieldLine> lines;
        for (const Binding& binding : planning_.bindings) {
            const std::string head = printable(binding.keyword) + " = " + printable(binding.value);
            const std::size_t before = lines.size();
            for (std::size_t i = 0; i < binding.drives.size();) {
                std::vector<std::string> locations;
                const std::string why = bindingReason(binding.drives[i]);
                for (; i < binding.drives.size() && bindingReason(binding.drives[i]) == why; ++i) {
                    locations.push_back(printable(binding.drives[i].location));
                }
                lines.push_back(
                    {2,
                     {{lines.size() == before ? head : "", Emphasis::bold},
                      {joined(locationRanges(locations), " ")},
                      {why.empty() ? "" : "because " + printable(why), Emphasis::dim}}});
            }
            if (lines.size() == before) {
                lines.push_back({2,
                                 {{head, Emphasis::bold},
                                  {printable(binding.becomes)},
                                  {binding.why.empty() ? "" : "because " + printable(binding.why),
                                   Emphasis::dim}}});
            } else if (terms_.verbose && !binding.becomes.empty()) {
                lines.push_back({4, {{"becomes " + printable(binding.becomes), Emphasis::dim}}});
            }
        }
        add(lines);
        if (!planning_.bindings.empty()) {
            out_ += "\n";
        }
    }

    /// What goes, what stays and what comes.
    void layout() {
        std::vector<FieldLine> lines;
        standing(lines, true);
        standing(lines, false);
        coming(lines);
        if (!lines.empty()) {
            add(lines);
            out_ += "\n";
        }
    }

    [[nodiscard]] std::string locationsText(const std::vector<std::string>& locations) const {
        return joined(locationRanges(locations), " ");
    }

    /// Captured logical drives, spares and foreign drives: those that stay, or those that go.
    void standing(std::vector<FieldLine>& lines, bool stays) {
        const std::string sign = stays ? "= " : "- ";
        const Emphasis emphasis = stays ? Emphasis::plain : Emphasis::bad;
        for (const MachineArray& array : change_.now.arrays) {
            for (const std::size_t index : array.logicalDrives) {
                const LogicalDriveFacts& row = change_.now.facts.logicalDrives[index];
                if ((change_.lostLogicalDrives.count(row.id) == 0) != stays) {
                    continue;
                }
                std::string what = stateText(row.reportedState);
                if (const std::string alias = volumeAliasText(row.name, row.device);
                    !alias.empty()) {
                    what += (what.empty() ? "" : ", ") + alias;
                }
                if (stays) {
                    const std::string as = staysAs(array);
                    what += (what.empty() ? "" : ", ") + std::string("stays") +
                            (as.empty() ? "" : " as array " + as);
                }
                lines.push_back({2,
                                 {{sign + "LD " + printable(row.id), emphasis},
                                  {levelOf(row), emphasis},
                                  {sizeText(row.capacityBytes), emphasis, true},
                                  {locationsText(array.drives), emphasis},
                                  {what, stays ? Emphasis::dim : emphasis}}});
            }
        }
        const auto isLost = [&](std::string_view kind, const std::string& location) {
            return std::any_of(
                planning_.losses.begin(), planning_.losses.end(),
                [&](const Loss& loss) { return loss.kind == kind && loss.id == location; });
        };
        for (const LayoutSpare& spare : planning_.before.spares) {
            if (isLost("hotspare", spare.location) != stays) {
                lines.push_back(
                    {2,
                     {{sign + "Spare", emphasis},
                      {""},
                      {""},
                      {printable(spare.location), emphasis},
                      {stays ? "stays" : "no longer a spare", stays ? Emphasis::dim : emphasis}}});
            }
        }
        for (const Loss& loss : planning_.losses) {
            if (!stays && loss.kind == "foreign") {
                const std::vector<std::string> drives =
                    loss.drives.empty() ? std::vector<std::string>{loss.id} : loss.drives;
                lines.push_back(
                    {2,
                     {{sign + "Foreign", emphasis},
                      {printable(loss.raidType), emphasis},
                      {loss.capacityBytes > 0 ? sizeText(loss.capacityBytes) : "", emphasis, true},
                      {locationsText(drives), emphasis},
                      {"a configuration of another controller", emphasis}}});
            }
        }
    }

    /// The letter that the plan gives to the drives of an array that stands.
    [[nodiscard]] std::string staysAs(const MachineArray& array) const {
        for (const PlannedArray& planned : planning_.arrays) {
            const bool isIt = std::any_of(
                planned.drives.begin(), planned.drives.end(), [&](const PlannedDrive& drive) {
                    return !array.drives.empty() && drive.location == array.drives.front();
                });
            if (isIt) {
                return printable(planned.id);
            }
        }
        return {};
    }

    /// Why a drive was taken; which of several it is only when everything is asked for.
    [[nodiscard]] std::string driveReason(const PlanReason& reason) const {
        std::string text = reasonText(reason);
        const std::size_t which = text.rfind(": drive ");
        if (!terms_.verbose && which != std::string::npos) {
            text.replace(which, std::min(text.find(')', which), text.size()) - which, "");
        }
        return text;
    }

    /// The drives of an array and where they come from: the same reason is said once.
    [[nodiscard]] std::string reasonsText(const PlannedArray& array) const {
        std::vector<std::pair<std::string, std::vector<std::string>>> reasons;
        for (const PlannedDrive& drive : array.drives) {
            const std::string text = driveReason(drive.reason);
            const auto known = std::find_if(reasons.begin(), reasons.end(),
                                            [&](const auto& row) { return row.first == text; });
            if (known == reasons.end()) {
                reasons.push_back({text, {drive.location}});
            } else {
                known->second.push_back(drive.location);
            }
        }
        if (reasons.size() == 1) {
            return reasons[0].first;
        }
        const bool growsFromFirst =
            reasons.size() == 2 && array.drives.front().reason.code == "first-free" &&
            array.drives.back().reason.code == "like-first" && reasons[0].second.size() == 1;
        if (growsFromFirst) {
            return reasons[0].first + " and those as large";
        }
        std::vector<std::string> pieces;
        pieces.reserve(reasons.size());
        for (const auto& [text, locations] : reasons) {
            pieces.push_back(locationsText(locations) + " " + text);
        }
        return joined(pieces, "; ");
    }

    /// "drives 3-7"; "2 drives" where some has no number.
    [[nodiscard]] std::string numbersText(const std::vector<std::string>& locations) const {
        std::vector<std::int32_t> numbers;
        for (const MachineDrive& drive : change_.now.drives) {
            const bool isIn = std::find(locations.begin(), locations.end(), drive.facts.location) !=
                              locations.end();
            if (isIn && drive.policyNumber) {
                numbers.push_back(*drive.policyNumber);
            }
        }
        if (numbers.size() != locations.size() || numbers.empty()) {
            return countText(locations.size(), "drive", "drives");
        }
        std::sort(numbers.begin(), numbers.end());
        return (numbers.size() == 1 ? "drive " : "drives ") + numberRanges(numbers);
    }

    void coming(std::vector<FieldLine>& lines) {
        for (const PlannedArray& array : planning_.arrays) {
            const bool isNew = change_.newArrays.count(array.id) > 0;
            std::vector<std::string> locations;
            for (const PlannedDrive& drive : array.drives) {
                locations.push_back(drive.location);
            }
            if (isNew) {
                lines.push_back({2,
                                 {{"+ Array " + printable(array.id), Emphasis::good},
                                  {numbersText(locations), Emphasis::good},
                                  {},
                                  {locationsText(locations), Emphasis::good},
                                  {reasonsText(array), Emphasis::dim}}});
            }
            for (const PlannedVolume& volume : planning_.volumes) {
                if (volume.array == array.id && change_.newLogicalDrives.count(volume.id) > 0) {
                    this->volume(lines, volume, isNew);
                }
            }
        }
        for (const PlannedSpare& spare : planning_.spares) {
            const bool isNew = std::any_of(
                planning_.steps.begin(), planning_.steps.end(), [&](const PlanStep& step) {
                    return std::find(step.creates.begin(), step.creates.end(), spare.location) !=
                           step.creates.end();
                });
            if (!isNew) {
                continue;
            }
            const std::string covers =
                spare.covers.empty() ? "covers no array" : "covers " + joined(spare.covers, ", ");
            lines.push_back({2,
                             {{"+ Spare", Emphasis::good},
                              {numbersText({spare.location}), Emphasis::good},
                              {},
                              {printable(spare.location), Emphasis::good},
                              {reasonText(spare.reason) + "; " + covers, Emphasis::dim}}});
        }
    }

    void volume(std::vector<FieldLine>& lines, const PlannedVolume& volume, bool isInNewArray) {
        std::string settings =
            settingsText(volume.writeCache, volume.readCache, volume.stripSizeBytes);
        settings = settings.empty() ? "as the controller does it" : settings;
        if (!isInNewArray) {
            settings += "; on array " + printable(volume.array) + ", which stays";
        }
        lines.push_back(
            {4,
             {{"+ " + printable(volume.id), Emphasis::good},
              {volume.raidType == "None" ? "VOLUME" : printable(volume.raidType), Emphasis::good},
              {volume.capacityBytes > 0 ? sizeText(volume.capacityBytes) : "?", Emphasis::good,
               true},
              {settings, Emphasis::good}}});
        if (terms_.verbose) {
            for (const auto& [attribute, reason] : volume.reasons) {
                const std::string place = placeText(plan_.policiesFile, reason.line);
                lines.push_back({8,
                                 {{attributeText(attribute), Emphasis::dim},
                                  {reasonText(reason) + (place.empty() ? "" : " (" + place + ")"),
                                   Emphasis::dim}}});
            }
        }
    }

    void strategy() {
        if (terms_.verbose && !(planning_.rebuildRate + planning_.initializeType).empty()) {
            std::vector<std::string> pieces;
            if (!planning_.rebuildRate.empty()) {
                pieces.push_back("rebuild rate " + printable(planning_.rebuildRate));
            }
            if (!planning_.initializeType.empty()) {
                pieces.push_back("initialization " + printable(planning_.initializeType));
            }
            out_ += signedLine("  Settings ", joined(pieces, ", "), Emphasis::plain, style_);
        }
        std::vector<std::string> reasons;
        const std::vector<StrategyReason>& all = planning_.strategyBecause;
        const std::size_t shown =
            terms_.verbose || all.size() <= mostReasons + 1 ? all.size() : mostReasons;
        for (std::size_t i = 0; i < shown; ++i) {
            reasons.push_back(
                withRanges(printable(all[i].text.empty() ? all[i].code : all[i].text)));
        }
        if (shown < all.size()) {
            reasons.push_back("and " + std::to_string(all.size() - shown) +
                              " more reasons, which -v shows");
        }
        const std::string name = "Strategy " + std::string(strategyWord(planning_.strategy)) +
                                 (reasons.empty() ? "" : ": ");
        out_ += signedLine("  ", name + joined(reasons, "; "), Emphasis::plain, style_);
    }

    void warnings(bool inOneLine) {
        std::set<std::string> told; // each is said once, however many entries it is of
        for (const Finding& warning : planning_.warnings) {
            // What is as it should be needs no hints on its policy.
            const bool isShown = !inOneLine || terms_.verbose || warning.severity != Severity::note;
            Finding shown = warning;
            shown.summary = withRanges(warning.summary);
            const std::string line = isShown ? findingLine(shown, 2, style_) : std::string();
            if (told.insert(line).second) {
                out_ += line;
            }
        }
    }

    void errors() {
        for (const Finding& error : planning_.diagnostics) {
            out_ += diagnosticsText({&error, 1}, {}, style_);
        }
    }

    const MachinePlan& plan_;
    const ControllerPlanning& planning_;
    ControllerChange change_;
    const TextStyle& style_;
    const PlanTextTerms& terms_;
    std::size_t width_;
    std::string out_;
};

class PlanTextWriter {
  public:
    PlanTextWriter(const MachinePlan& plan, const TextStyle& style, const PlanTextTerms& terms)
        : plan_(plan), style_(style), terms_(terms), width_(static_cast<std::size_t>(style.width)),
          isApplicable_(plan.isApplicable()), steps_(plan.steps()), losses_(plan.losses()) {}

    std::string write() {
        machine();
        policies();
        if (!isApplicable_) {
            out_ += signedLine("! ", "Nothing would run: " + faultsText(plan_) + ".", Emphasis::bad,
                               style_);
        }
        findings();
        for (const ControllerPlanning& planning : plan_.controllers) {
            const bool isShort =
                planning.disposition == Disposition::already ||
                (planning.disposition == Disposition::skipped && planning.considered.empty());
            if (!isShort || !lastIsShort_) {
                out_ += "\n";
            }
            lastIsShort_ = isShort;
            ControllerWriter writer(plan_, planning, style_, terms_);
            out_ += writer.write();
            created_ += writer.createdVolumes();
        }
        if (plan_.controllers.empty()) {
            out_ += "\nNo RAID controller\n";
        }
        commands();
        rehearsal();
        accepted();
        oldCommand();
        destroys();
        messages();
        summary();
        return std::move(out_);
    }

  private:
    void machine() {
        const std::string type = printable(plan_.fingerprint.machineType);
        const std::string serial = printable(plan_.fingerprint.serialNumber);
        std::string title = type.empty() ? "Machine of unknown type" : "Machine " + type;
        title += serial.empty() ? ", serial not known" : ", serial " + serial;
        std::size_t drives = 0;
        for (const ControllerPlanning& planning : plan_.controllers) {
            drives += planning.controller.drives.size();
        }
        std::string counts = countText(plan_.controllers.size(), "controller", "controllers") +
                             ", " + countText(drives, "drive", "drives");
        counts += terms_.captureTime ? ", captured in " + timeText(*terms_.captureTime) : "";
        out_ += emphasized(title, Emphasis::bold, style_);
        out_ += title.size() + 4 + counts.size() <= width_ ? "    " : "\n  ";
        out_ += counts + "\n";
        if (terms_.verbose && !plan_.id.empty()) {
            out_ += signedLine("",
                               "Plan " + printable(plan_.id) + ", bound to this machine by " +
                                   std::string(boundBy(plan_.fingerprint.strength)),
                               Emphasis::plain, style_);
        }
    }

    void policies() {
        if (plan_.policiesFile.empty()) {
            out_ += "Policies: none, the defaults of each controller's class\n";
            return;
        }
        const FindingCounts counts = countFindings(plan_.policiesFindings);
        std::string text = "Policies " + printable(plan_.policiesFile) + ": " +
                           countText(plan_.policiesCount, "policy", "policies") + ", " +
                           (counts.errors + counts.warnings == 0
                                ? "no faults"
                                : countsText({counts.errors, counts.warnings, 0}));
        if (counts.errors == 0 && counts.warnings > 0) {
            text += ": zolexctl check " + printable(plan_.policiesFile);
        }
        out_ += signedLine("", text, Emphasis::plain, style_);
    }

    void findings() {
        for (const Finding& finding : plan_.diagnostics) {
            if (finding.severity == Severity::error) {
                out_ += diagnosticsText({&finding, 1}, {}, style_);
            } else {
                out_ += findingLine(finding, 0, style_);
            }
        }
        for (const Finding& finding : plan_.policiesFindings) {
            if (finding.severity == Severity::error) {
                out_ += diagnosticsText({&finding, 1}, {}, style_);
            } else if (terms_.verbose) {
                out_ += findingLine(finding, 0, style_);
            }
        }
    }

    /// The utility that a step starts.
    [[nodiscard]] const std::string* utilityOf(const PlanStep& step) const {
        for (const ControllerPlanning& planning : plan_.controllers) {
            if (planning.controller.number == step.controller) {
                return &planning.controller.utility;
            }
        }
        return nullptr;
    }

    [[nodiscard]] std::string usualTime(const PlanStep& step) const {
        const std::string* const utility = utilityOf(step);
        const auto known =
            utility == nullptr ? terms_.usualTimes.end() : terms_.usualTimes.find(*utility);
        if (known == terms_.usualTimes.end()) {
            return {};
        }
        return timeText(known->second + std::chrono::seconds(step.pauseBeforeSeconds));
    }

    void commands() {
        if (steps_.empty()) {
            return;
        }
        constexpr std::size_t timeColumns = 10;
        const bool hasTimes =
            std::any_of(steps_.begin(), steps_.end(),
                        [this](const PlanStep& step) { return !usualTime(step).empty(); });
        const std::size_t digits = std::to_string(steps_.back().step).size();
        const std::size_t lead = 2 + digits + 1;
        const std::size_t room = width_ - lead - (hasTimes ? timeColumns + 1 : 0);
        const std::string title = "Commands (" + std::to_string(steps_.size()) + ")";
        out_ += "\n" + emphasized(title, Emphasis::heading, style_);
        if (hasTimes) {
            out_ += std::string(width_ - title.size() - timeColumns, ' ') +
                    emphasized("usual time", Emphasis::dim, style_);
        }
        out_ += "\n";
        const bool several =
            std::any_of(steps_.begin(), steps_.end(), [this](const PlanStep& step) {
                return step.controller != steps_.front().controller;
            });
        std::int32_t controller = 0;
        std::int32_t pause = 0;
        for (const PlanStep& step : steps_) {
            if (several && step.controller != controller) {
                out_ += " controller " + std::to_string(step.controller) + "\n";
                controller = step.controller;
            }
            const std::string number = std::to_string(step.step);
            const std::string whole = printable(step.command);
            const std::string folded =
                terms_.verbose ? whole : foldedCommand(singleBlanks(whole), 2, room);
            const std::string shown = folded.substr(0, folded.find('\n'));
            const Emphasis emphasis = step.deletes ? Emphasis::bad : Emphasis::plain;
            out_ += std::string(lead - 1 - number.size(), ' ') + number + " " +
                    emphasized(shown, emphasis, style_);
            if (const std::string time = usualTime(step); !time.empty()) {
                const std::size_t used = std::min(columnsOf(shown), room);
                out_ += std::string(room - used + 1 + timeColumns - time.size(), ' ') + time;
            }
            out_ += "\n";
            for (std::size_t at = shown.size(); at < folded.size();) {
                const std::size_t end = std::min(folded.find('\n', at + 1), folded.size());
                out_ += std::string(lead, ' ') +
                        emphasized(folded.substr(at + 1, end - at - 1), emphasis, style_) + "\n";
                at = end;
            }
            if (terms_.verbose) {
                const std::string blanks(lead + 2, ' ');
                out_ += signedLine(blanks, printable(step.summary), Emphasis::dim, style_);
                if (!step.differsFromZolex.empty()) {
                    out_ +=
                        signedLine(blanks, printable(step.differsFromZolex), Emphasis::dim, style_);
                }
            }
            pause += step.pauseBeforeSeconds;
        }
        if (pause > 0 && !hasTimes) {
            out_ += signedLine(
                "  ", "Pauses before the commands take " + std::to_string(pause) + " s in all.",
                Emphasis::dim, style_);
        }
    }

    void rehearsal() {
        const std::vector<RehearsalSentence> sentences = rehearsalSentences(plan_);
        if (!sentences.empty() && (isApplicable_ || plan_.rehearsal.done)) {
            out_ += "\n";
            for (const RehearsalSentence& sentence : sentences) {
                out_ += signedLine(sentence.isBad ? "! " : "", sentence.text,
                                   sentence.isBad ? Emphasis::warning : Emphasis::plain, style_);
            }
        }
    }

    void accepted() {
        if (!plan_.accepted.empty()) {
            std::string ids;
            for (const std::string& id : plan_.accepted) {
                ids += (ids.empty() ? "" : ", ") + printable(id);
            }
            out_ += signedLine("! ",
                               "Accepted all the same: " + ids + ". zolexctl explain " +
                                   printable(plan_.accepted.front()) + " says what it means.",
                               Emphasis::warning, style_);
        }
    }

    void oldCommand() {
        const std::vector<std::string>& differences = plan_.oldCommand.differences;
        const bool isTold = plan_.oldCommand.wouldRun.empty()
                                ? !differences.empty()
                                : !differences.empty() || terms_.verbose;
        if (!isTold || !isApplicable_ || steps_.empty()) {
            return;
        }
        std::vector<std::string> commands;
        for (const std::string& command : plan_.oldCommand.wouldRun) {
            commands.push_back(printable(command));
        }
        const std::string command = commands.empty() ? "zolex" : joined(commands, "; ");
        out_ += "\n";
        out_ += signedLine(
            "", command + (differences.empty() ? " would do the same." : " would do otherwise:"),
            Emphasis::plain, style_);
        const std::size_t shown = terms_.verbose || differences.size() <= mostDifferences + 1
                                      ? differences.size()
                                      : mostDifferences;
        for (std::size_t i = 0; i < shown; ++i) {
            out_ += signedLine("  ~ ", printable(differences[i]), Emphasis::changed, style_);
        }
        if (shown < differences.size()) {
            out_ +=
                "    and " + std::to_string(differences.size() - shown) + " more, which -v shows\n";
        }
        if (const std::string warning = oldWarning(plan_); !warning.empty()) {
            out_ += signedLine("! ", warning, Emphasis::bad, style_);
        }
    }

    void destroys() {
        if (!isApplicable_ || steps_.empty()) {
            return;
        }
        out_ += "\n";
        if (losses_.empty()) {
            out_ += "This destroys nothing.\n";
        } else {
            out_ +=
                signedLine("", "This destroys " + lossesText(losses_) + ".", Emphasis::bad, style_);
            if (plan_.controllers.size() > 1) {
                lostByController();
            }
        }
        const CarryOut way = carryOutOf(plan_, terms_.savedTo);
        out_ += signedLine("", way.sentence, Emphasis::plain, style_);
        for (const std::string& command : way.commands) {
            out_ += "  " + emphasized(printable(command), Emphasis::bold, style_) + "\n";
        }
    }

    void lostByController() {
        for (const ControllerPlanning& planning : plan_.controllers) {
            std::vector<std::string> names;
            for (const Loss& loss : planning.losses) {
                const std::string id = printable(loss.id);
                names.push_back(loss.kind == "logical_drive"
                                    ? volumeNameText(loss.id, loss.name, loss.device)
                                : loss.kind == "hotspare" ? "spare " + id
                                                          : "foreign " + id);
            }
            if (!names.empty()) {
                out_ += signedLine("  - ",
                                   "controller " + std::to_string(planning.controller.number) +
                                       ": " + joined(names, ", "),
                                   Emphasis::bad, style_);
            }
        }
    }

    void messages() {
        if (terms_.verbose && !plan_.coreMessages.empty()) {
            out_ += "\n" + emphasized("Messages of the core", Emphasis::heading, style_) + "\n";
            for (const std::string& message : plan_.coreMessages) {
                out_ += signedLine("  ", printable(message), Emphasis::plain, style_);
            }
        }
    }

    void summary() {
        const std::string saved =
            !terms_.savedTo.empty()     ? "Plan saved to " + printable(terms_.savedTo) + ". "
            : !terms_.writtenTo.empty() ? "Written to " + printable(terms_.writtenTo) + ". "
                                        : "";
        if (!isApplicable_) {
            out_ += "\n";
            out_ += signedLine(
                "! ", "Nothing would run: " + faultsText(plan_) + ". All faults are listed above.",
                Emphasis::bad, style_);
            return;
        }
        if (steps_.empty()) {
            out_ += "\n";
            const bool allSkipped = std::all_of(plan_.controllers.begin(), plan_.controllers.end(),
                                                [](const ControllerPlanning& row) {
                                                    return row.disposition == Disposition::skipped;
                                                });
            out_ += signedLine("",
                               saved + (allSkipped && !plan_.controllers.empty()
                                            ? "Nothing to do: every controller is skipped."
                                            : "Nothing to do."),
                               Emphasis::bold, style_);
            return;
        }
        std::size_t spares = 0;
        std::size_t settings = 0;
        for (const PlanStep& step : steps_) {
            spares += step.action == "create-spare" ? step.creates.size() : 0;
            settings += step.action == "set" && created_ == 0 ? 1 : 0;
        }
        const auto lost = static_cast<std::size_t>(
            std::count_if(losses_.begin(), losses_.end(),
                          [](const Loss& loss) { return loss.kind == "logical_drive"; }));
        std::string counts = countText(created_, "logical drive", "logical drives") +
                             " to create, " + std::to_string(lost) + " to destroy";
        counts += spares > 0 ? ", " + countText(spares, "spare", "spares") : "";
        counts +=
            settings > 0 ? ", " + countText(settings, "cache mode", "cache modes") + " to set" : "";
        out_ += signedLine("", saved + counts + ".", Emphasis::bold, style_);
    }

    const MachinePlan& plan_;
    const TextStyle& style_;
    const PlanTextTerms& terms_;
    std::size_t width_;
    bool isApplicable_;
    std::vector<PlanStep> steps_;
    std::vector<Loss> losses_;
    bool lastIsShort_ = false;
    std::size_t created_ = 0; ///< logical drives
    std::string out_;
};

} // namespace

std::string planText(const MachinePlan& plan, const TextStyle& style, const PlanTextTerms& terms) {
    return PlanTextWriter(plan, style, terms).write();
}

} // namespace zolex::companion
