#include "companion/picture/DiffText.h"

#include "companion/lint/Entries.h"
#include "companion/picture/Changes.h"
#include "companion/picture/Roles.h"
#include "companion/picture/TextLines.h"
#include "companion/planning/PlanFaults.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

using Result = ControllerDiff::Result;

Emphasis emphasisOf(Result result) {
    switch (result) {
    case Result::same:
    case Result::equivalent:
        return Emphasis::good;
    case Result::different:
        return Emphasis::changed;
    case Result::skipped:
        return Emphasis::warning;
    case Result::unknown:
        break;
    }
    return Emphasis::bad;
}

std::string locationsText(const std::vector<std::string>& locations) {
    std::string text;
    for (const std::string& range : locationRanges(locations)) {
        text += (text.empty() ? "" : " ") + range;
    }
    return text;
}

/// What is said of one controller.
class ControllerDiffWriter {
  public:
    ControllerDiffWriter(const MachineDiff& all, const ControllerDiff& diff, const TextStyle& style,
                         bool verbose)
        : all_(all), diff_(diff), style_(style), verbose_(verbose),
          isTold_(diff.comparison.differences.size(), false) {}

    std::string write() {
        head();
        const bool isDifferent = diff_.result == Result::different;
        const bool isAsWanted = diff_.result == Result::same || diff_.result == Result::equivalent;
        if (isAsWanted && !verbose_) {
            same();
        } else if (isDifferent || isAsWanted) {
            captured();
            others();
            if (isAsWanted) {
                same();
            }
        } else if (!diff_.because.empty()) {
            out_ += signedLine("  ", printable(diff_.because), emphasisOf(diff_.result), style_);
        }
        if (isDifferent && all_.isByCertificate) {
            for (const std::string& change : diff_.comparison.equivalences) {
                out_ += signedLine("  ! ", printable(change), Emphasis::warning, style_);
            }
        }
        for (const std::string& health : diff_.comparison.health) {
            out_ += signedLine("  ! ", printable(health), Emphasis::warning, style_);
        }
        if (verbose_ && !diff_.comparison.notComparable.empty()) {
            std::string text;
            for (const std::string& attribute : diff_.comparison.notComparable) {
                text += (text.empty() ? "" : ", ") + attributeText(attribute);
            }
            out_ +=
                signedLine("    ", "not compared, because the utility does not list it: " + text,
                           Emphasis::dim, style_);
        }
        for (const Finding& finding : diff_.diagnostics) {
            out_ += diagnosticsText({&finding, 1}, {}, style_);
        }
        return std::move(out_);
    }

  private:
    /// The name of the controller and its policy, with the result at the right edge.
    void head() {
        const std::string name = "Controller " + std::to_string(diff_.number);
        std::string what = printable(diff_.model);
        if (!diff_.policy.empty()) {
            what += (what.empty() ? "" : "  ") + printable(diff_.policy);
        }
        const std::string result(diffResultWord(diff_.result));
        const auto width = std::min<std::size_t>(static_cast<std::size_t>(style_.width), 80);
        if (!diff_.policy.empty() && diff_.policyLine > 0 && !all_.isByPlan &&
            !all_.wantedBy.empty()) {
            const std::string line = std::to_string(diff_.policyLine);
            const std::string place = " (" + printable(all_.wantedBy) + ":" + line + ")";
            const std::size_t rest = name.size() + columnsOf(what) + result.size() + 4;
            const std::string onlyLine = " (line " + line + ")";
            const bool isShort =
                rest + columnsOf(place) > width && rest + columnsOf(onlyLine) <= width;
            what += isShort ? onlyLine : place;
        }
        const std::size_t used = name.size() + 2 + columnsOf(what);
        out_ += emphasized(name, Emphasis::heading, style_) + "  ";
        if (used + 2 + result.size() <= width) {
            out_ += emphasized(what, Emphasis::bold, style_) +
                    std::string(width - used - result.size(), ' ');
        } else {
            const std::size_t indent = name.size() + 2;
            out_ += emphasized(foldedWords(what, indent, indent, width), Emphasis::bold, style_) +
                    "\n" + std::string(indent, ' ');
        }
        out_ += emphasized(result, emphasisOf(diff_.result), style_) + "\n";
    }

    void same() {
        const std::vector<std::string>& equivalences = diff_.comparison.equivalences;
        if (equivalences.empty()) {
            out_ += "  = the same layout\n";
            return;
        }
        for (std::size_t i = 0; i < equivalences.size(); ++i) {
            const std::string text =
                (i == 0 ? "the same layout; " : "") + printable(equivalences[i]);
            out_ += signedLine(i == 0 ? "  = " : "    ", text, Emphasis::plain, style_);
        }
    }

    /// Whether the captured group is one that is not wanted as it is.
    [[nodiscard]] bool isInTheWay(std::size_t group) const {
        const std::vector<std::size_t>& groups = diff_.comparison.groupsInTheWay;
        return std::find(groups.begin(), groups.end(), group) != groups.end();
    }

    /// The differences of a logical drive or of a drive that have not been told yet.
    template <typename Is>
    std::vector<const Difference*> take(const Is& is) {
        std::vector<const Difference*> found;
        for (std::size_t i = 0; i < isTold_.size(); ++i) {
            const Difference& difference = diff_.comparison.differences[i];
            if (!isTold_[i] && is(difference)) {
                isTold_[i] = true;
                found.push_back(&difference);
            }
        }
        return found;
    }

    [[nodiscard]] FieldLine attributeLine(const Difference& difference,
                                          const std::string& name) const {
        const auto said = [](const std::string& value) {
            return value.empty() ? "nothing" : printable(withRanges(value));
        };
        return {6,
                {{name, Emphasis::changed},
                 {std::string(all_.wisher()) + " " + said(difference.wanted)},
                 {"machine " + said(difference.found)}}};
    }

    void captured() {
        std::vector<FieldLine> lines;
        for (std::size_t i = 0; i < diff_.captured.groups.size(); ++i) {
            const LayoutGroup& group = diff_.captured.groups[i];
            for (const LayoutVolume& volume : group.volumes) {
                const std::vector<const Difference*> differences =
                    take([&](const Difference& difference) {
                        return difference.logicalDrive == volume.id &&
                               difference.attribute != "missing";
                    });
                const bool isSurplus =
                    differences.size() == 1 && differences[0]->attribute == "surplus";
                const bool isAsIs = differences.empty() && !isInTheWay(i);
                const Emphasis emphasis = isAsIs ? Emphasis::plain : Emphasis::changed;
                const std::string sign = isSurplus ? "+ " : isAsIs ? "= " : "~ ";
                LogicalDriveFacts facts;
                facts.raidType = volume.raidType;
                facts.spans = group.spans;
                lines.push_back({2,
                                 {{sign + "LD " + printable(volume.id), emphasis},
                                  {levelOf(facts), emphasis},
                                  {sizeText(volume.capacityBytes), emphasis, true},
                                  {locationsText(group.drives()), emphasis},
                                  {isSurplus                        ? "not wanted"
                                   : differences.empty() && !isAsIs ? "in the way of what is wanted"
                                                                    : "",
                                   emphasis}}});
                if (!isSurplus) {
                    for (const Difference* difference : differences) {
                        lines.push_back(
                            attributeLine(*difference, attributeText(difference->attribute)));
                    }
                }
            }
        }
        for (const LayoutSpare& spare : diff_.captured.spares) {
            const std::vector<std::string>& inTheWay = diff_.comparison.sparesInTheWay;
            if (std::find(inTheWay.begin(), inTheWay.end(), spare.location) == inTheWay.end()) {
                lines.push_back({2, {{"= spare"}, {}, {}, {printable(spare.location)}, {}}});
            }
        }
        for (const std::string& line : fieldLines(lines, style_)) {
            out_ += line;
        }
    }

    /// "Logical.1"; "LD 1" of one that a utility has numbered.
    static std::string logicalDriveName(const Difference& difference) {
        const bool isNumber =
            difference.logicalDrive.find_first_not_of("0123456789") == std::string::npos;
        return (isNumber ? "LD " : "") + printable(difference.logicalDrive);
    }

    /// "- Logical.1  missing  32:0 32:1  RAID1 fill, strip 64 KB".
    static FieldLine missingLine(const Difference& difference) {
        const bool isSpare = difference.logicalDrive.empty();
        const std::string wanted = withRanges(difference.wanted);
        const std::size_t colon = isSpare ? std::string::npos : wanted.rfind(": ");
        std::string what = wanted.substr(0, colon);
        constexpr std::string_view none = "none";
        if (difference.found.substr(0, none.size()) == none) {
            what += difference.found.substr(none.size());
        }
        const std::string where = isSpare                      ? difference.location
                                  : colon == std::string::npos ? ""
                                                               : wanted.substr(colon + 2);
        return {2,
                {{"- " + (isSpare ? "spare" : logicalDriveName(difference)), Emphasis::changed},
                 {"missing", Emphasis::changed},
                 {printable(where)},
                 {printable(what)}}};
    }

    /// Differences of what is not there, and of drives.
    void others() {
        std::vector<FieldLine> lines;
        for (std::size_t i = 0; i < isTold_.size(); ++i) {
            if (isTold_[i]) {
                continue;
            }
            const Difference& difference = diff_.comparison.differences[i];
            if (difference.attribute == "missing") {
                lines.push_back(missingLine(difference));
                continue;
            }
            const std::string sign = difference.attribute == "surplus" ? "+ " : "~ ";
            const std::string name = difference.logicalDrive.empty()
                                         ? printable(difference.location)
                                         : logicalDriveName(difference);
            FieldLine line = attributeLine(difference, sign + name);
            line.indent = 2;
            line.fields.insert(line.fields.begin() + 1,
                               {attributeText(difference.attribute), Emphasis::changed});
            lines.push_back(std::move(line));
        }
        for (const std::string& line : fieldLines(lines, style_)) {
            out_ += line;
        }
    }

    const MachineDiff& all_;
    const ControllerDiff& diff_;
    const TextStyle& style_;
    bool verbose_;
    std::vector<bool> isTold_;
    std::string out_;
};

std::string countOf(std::size_t count, std::size_t all, std::string_view one,
                    std::string_view many) {
    if (all == 1) {
        return "The controller " + std::string(one);
    }
    std::string text = std::to_string(count);
    text += " of " + std::to_string(all) + " controllers ";
    return text + std::string(count == 1 ? one : many);
}

bool isAnyRefused(const MachineDiff& diff) {
    return std::any_of(diff.controllers.begin(), diff.controllers.end(),
                       [](const ControllerDiff& controller) { return controller.isRefused; });
}

/// What to do about it.
std::string nextCommand(const MachineDiff& diff) {
    if (diff.isByPlan) {
        return "zolexctl show " + printable(diff.wantedBy) + " shows the plan.";
    }
    if (diff.isByCertificate) {
        return "zolexctl show " + printable(diff.wantedBy) + " shows what was left there.";
    }
    return isAnyRefused(diff) ? planRefusedText(diff)
                              : "zolexctl plan " + printable(policiesArgument(diff.wantedBy)) +
                                    " shows what it takes.";
}

/// Whether cache modes are to be set, which is more than adding.
bool differsInCaches(const ControllerDiff& controller) {
    const std::vector<Difference>& differences = controller.comparison.differences;
    return std::any_of(differences.begin(), differences.end(), [](const Difference& each) {
        return each.attribute == "write_cache_policy" || each.attribute == "read_cache_policy";
    });
}

/// Where nothing has to go.
std::string addingText(const std::vector<const ControllerDiff*>& controllers) {
    const bool setsCaches =
        std::any_of(controllers.begin(), controllers.end(),
                    [](const ControllerDiff* controller) { return differsInCaches(*controller); });
    return setsCaches ? "Nothing that stands has to go for it."
                      : "Adding what is missing is enough.";
}

/// What it takes, controller by controller where several differ.
std::string whatItTakes(const std::vector<const ControllerDiff*>& different) {
    const bool addingIsEnough =
        std::all_of(different.begin(), different.end(),
                    [](const ControllerDiff* controller) { return controller->addingIsEnough; });
    if (addingIsEnough) {
        return addingText(different) + " ";
    }
    std::string text;
    for (const ControllerDiff* const controller : different) {
        const std::string rebuild =
            controller->addingIsEnough ? addingText({controller}) : rebuildText(*controller);
        if (!rebuild.empty()) {
            text +=
                (different.size() > 1 ? "Controller " + std::to_string(controller->number) + ": "
                                      : std::string()) +
                rebuild + " ";
        }
    }
    return text;
}

/// In what the machine is not as its certificate says, though its layouts are: ", but for drives".
std::string butFor(const MachineDiff& diff) {
    const auto isAny = [&diff](bool ControllerDiff::*what) {
        return std::any_of(diff.controllers.begin(), diff.controllers.end(),
                           [what](const ControllerDiff& each) { return each.*what; });
    };
    std::vector<std::string> all;
    if (isAny(&ControllerDiff::hasOtherDrives)) {
        all.emplace_back("drives");
    }
    if (isAny(&ControllerDiff::hasVolumesMadeAnew)) {
        all.emplace_back("logical drives that were made anew");
    }
    if (isAny(&ControllerDiff::hasVolumesUntold)) {
        all.emplace_back("logical drives whose ids are not told");
    }
    return all.empty() ? std::string() : ", but for " + joinWords(all);
}

/// The closing sentences.
std::string closing(const MachineDiff& diff) {
    std::vector<const ControllerDiff*> different;
    std::size_t equivalent = 0;
    std::size_t skipped = 0;
    std::size_t unknown = 0;
    for (const ControllerDiff& controller : diff.controllers) {
        equivalent += controller.result == Result::equivalent ? 1 : 0;
        skipped += controller.result == Result::skipped ? 1 : 0;
        unknown += controller.result == Result::unknown ? 1 : 0;
        if (controller.result == Result::different) {
            different.push_back(&controller);
        }
    }
    const std::size_t all = diff.controllers.size();
    std::string text;
    if (unknown > 0) {
        text += countOf(unknown, all, "could not be compared. ", "could not be compared. ");
    }
    if (!different.empty()) {
        text += countOf(different.size(), all, "differs. ", "differ. ");
        return text + whatItTakes(different) + nextCommand(diff);
    }
    if (unknown > 0) {
        return isAnyRefused(diff) ? text + planRefusedText(diff) : text.substr(0, text.size() - 1);
    }
    if (all == skipped) {
        return all == 0 ? "No controller to compare." : "Every controller is skipped.";
    }
    const std::size_t compared = all - skipped;
    text = compared == 1 ? "The controller is "
                         : "All " + std::to_string(compared) + " controllers are ";
    text += std::string("as the ") + (diff.isByPlan || diff.isByCertificate
                                          ? std::string(diff.wisher()) + " says"
                                          : "policies say");
    text += equivalent == 0        ? "."
            : diff.isByCertificate ? butFor(diff) + "."
                                   : ", on equal drives.";
    text += skipped > 0 ? " " + countOf(skipped, all, "is skipped.", "are skipped.") : "";
    return text;
}

} // namespace

std::string diffText(const MachineDiff& diff, const TextStyle& style, bool verbose) {
    std::string text;
    for (const Finding& finding : diff.diagnostics) {
        text += finding.severity == Severity::error ? diagnosticsText({&finding, 1}, {}, style)
                                                    : findingLine(finding, 0, style);
    }
    for (const ControllerDiff& controller : diff.controllers) {
        text += ControllerDiffWriter(diff, controller, style, verbose).write();
    }
    text += text.empty() ? "" : "\n";
    return text + signedLine("", closing(diff), Emphasis::bold, style);
}

} // namespace zolex::companion
