#include "companion/picture/PlanPicture.h"

#include "companion/picture/Changes.h"
#include "companion/picture/Geometry.h"
#include "companion/picture/Palette.h"
#include "companion/picture/SvgCanvas.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"

#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Frames of what is lost and of what is new, and the lines between the rows.
constexpr std::string_view changeStyle = R"(<style>
.picture .lost-frame{stroke:#b00020;stroke-width:4}
.picture .new-frame{stroke:#00703c;stroke-width:4}
.picture .link{stroke:#606060;stroke-width:1.5;fill:none}
@media (prefers-color-scheme:dark){
.picture .lost-frame{stroke:#ff5c6c}
.picture .new-frame{stroke:#3fd684}
.picture .link{stroke:#b4b4b4}
}
@media print{
.picture .lost-frame{stroke:#b00020}
.picture .new-frame{stroke:#00703c}
.picture .link{stroke:#606060}
}
</style>
)";

/// What the two rows and their frames are called.
struct Words {
    std::string_view now;
    std::string_view after;
    std::string_view lost;
    std::string_view isNew;
    std::string_view rows;
};
constexpr Words planWords{"now", "planned", "lost", "new",
                          "Upper row: now. Lower row: as planned. A line joins a drive whose role "
                          "changes."};
constexpr Words diffWords{"machine", "wanted", "not as wanted", "missing",
                          "Upper row: the machine. Lower row: what is wanted. A line joins a drive "
                          "whose role differs."};

std::string machineTitleOf(const Fingerprint& fingerprint) {
    const std::string type = printable(fingerprint.machineType);
    const std::string serial = printable(fingerprint.serialNumber);
    return (type.empty() ? "Machine of unknown type" : "Machine " + type) +
           (serial.empty() ? ", serial not known" : ", serial " + serial);
}

class PlanSvgWriter {
  public:
    PlanSvgWriter(const std::vector<ControllerChange>& changes, const Words& words,
                  std::string prefix)
        : changes_(changes), words_(words), canvas_(std::move(prefix)) {}

    std::string write(const std::string& title, const std::string& description,
                      const PictureContent& content, bool isDocument) {
        std::vector<NowAndAfter> controllers;
        std::set<std::size_t> colours;
        std::size_t slots = 0;
        for (const ControllerChange& change : changes_) {
            controllers.push_back({&change.now, change.hasAfter ? &change.after : nullptr});
            for (const auto* map : {&change.nowColours, &change.afterColours}) {
                for (const auto& [letter, colour] : *map) {
                    colours.insert(colour);
                }
            }
            slots += 2 * change.drives.size();
        }
        const PlanGeometry picture = planGeometryOf(controllers, content);
        canvas_.reserve(slots);
        canvas_.begin(isDocument, picture.width, picture.height, title, description, colours,
                      changeStyle);
        for (const PlacedPlan& placed : picture.controllers) {
            controller(placed, changes_[placed.index], picture.hasHeads);
        }
        if (picture.legend.height > 0) {
            legend(picture.legend);
        }
        return canvas_.end();
    }

  private:
    void controller(const PlacedPlan& placed, const ControllerChange& change, bool hasHead) {
        canvas_.open("controller");
        if (hasHead) {
            canvas_.head(placed.box, change.now);
        }
        for (const PlacedPlanRow& row : placed.rows) {
            if (!row.title.empty()) {
                canvas_.textAt(row.titleBox.x, row.titleBox.y + 12, "strong ink", row.title);
            }
            links(row, change);
            label(row.nowLabel, words_.now);
            slots(row.now, row.title, change, true);
            if (row.afterLabel.height > 0) {
                label(row.afterLabel, words_.after);
                slots(row.after, row.title, change, false);
            }
        }
        bars(placed.now, placed.nowLabel, words_.now, change.now, change.nowColours);
        if (change.hasAfter) {
            bars(placed.after, placed.afterLabel, words_.after, change.after, change.afterColours);
        }
        canvas_.close();
    }

    void label(const Box& box, std::string_view word) {
        canvas_.textAt(box.x, box.y + box.height / 2 + 4, "strong ink", word);
    }

    void links(const PlacedPlanRow& row, const ControllerChange& change) {
        for (std::size_t i = 0; i < row.after.size(); ++i) {
            const std::optional<std::size_t>& drive = row.now[i].slot.drive;
            if (drive && (change.drives[*drive].isLost || change.drives[*drive].isNew)) {
                const Box& upper = row.now[i].box;
                canvas_.line("link", upper.x + upper.width / 2, upper.y + upper.height,
                             row.after[i].box.y);
            }
        }
    }

    void slots(const std::vector<PlacedSlot>& slots, const std::string& rowTitle,
               const ControllerChange& change, bool isNow) {
        for (const PlacedSlot& slot : slots) {
            if (!slot.slot.drive) {
                canvas_.absent(slot, rowTitle);
                continue;
            }
            const std::size_t index = *slot.slot.drive;
            const DriveChange& fate = change.drives[index];
            SlotNote note;
            note.row = isNow ? words_.now : words_.after;
            note.isLost = isNow && fate.isLost;
            note.isNew = !isNow && fate.isNew;
            note.isPlanned = !isNow;
            note.text = isNow ? std::string() : fate.reason;
            if (note.isLost) {
                note.text = std::string(words_.lost);
            } else if (note.isNew) {
                note.text = std::string(words_.isNew) + (note.text.empty() ? "" : "; ") + note.text;
            }
            canvas_.drive(slot.box, (isNow ? change.now : change.after).drives[index],
                          isNow ? change.nowColours : change.afterColours, note);
        }
    }

    void bars(const std::vector<PlacedArray>& arrays, const Box& box, std::string_view word,
              const ControllerSnapshot& controller,
              const std::map<std::string, std::size_t>& colours) {
        if (box.height > 0) {
            canvas_.textAt(box.x, box.y + 12, "strong ink", "Arrays, " + std::string(word));
        }
        for (const PlacedArray& array : arrays) {
            const auto colour = colours.find(controller.arrays[array.array].letter);
            canvas_.bar(array, controller, colour == colours.end() ? 0 : colour->second);
        }
    }

    void legend(const Box& box) {
        canvas_.open("legend");
        std::int32_t x =
            canvas_.sample(box.x, box.y, svg_colours::white, "-", words_.lost, "lost-frame");
        x = canvas_.sample(x, box.y, svg_colours::white, "+", words_.isNew, "new-frame");
        x = canvas_.sample(x, box.y, arrayColours[0].fill, "A", "in array A");
        x = canvas_.sample(x, box.y, "spare", "*", "hot spare");
        x = canvas_.sample(x, box.y, svg_colours::white, "x", "failed");
        canvas_.sample(x, box.y, svg_colours::white, "", "free");
        canvas_.textAt(box.x, box.y + 38, "dim", words_.rows);
        canvas_.textAt(box.x, box.y + 52, "dim",
                       "In a slot: location, the number that policies use, size, end of the serial "
                       "number.");
        canvas_.close();
    }

    const std::vector<ControllerChange>& changes_;
    const Words& words_;
    SvgCanvas canvas_;
};

std::string nameOf(const ControllerSnapshot& controller) {
    return "Controller " + std::to_string(controller.number) + ", " + productText(controller) +
           ": ";
}

std::string descriptionOf(const ControllerPlanning& planning, const ControllerChange& change) {
    std::string text = nameOf(planning.controller);
    if (planning.disposition != Disposition::planned) {
        return text + dispositionText(planning) + ".";
    }
    text += planning.losses.empty() ? "nothing is lost" : lossesText(planning.losses) + " lost";
    text += ", " + countText(change.newLogicalDrives.size(), "logical drive", "logical drives");
    return text + " created.";
}

std::string descriptionOf(const MachinePlan& plan, const std::vector<ControllerChange>& changes) {
    std::string text = plan.isApplicable() ? "" : "Nothing would run: " + faultsText(plan) + ".";
    for (std::size_t i = 0; i < changes.size(); ++i) {
        text += (text.empty() ? "" : " ") + descriptionOf(plan.controllers[i], changes[i]);
    }
    return text.empty() ? "No RAID controller." : text;
}

const ControllerSnapshot* controllerOf(const Snapshot& snapshot, std::int32_t number) {
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (controller.number == number) {
            return &controller;
        }
    }
    return nullptr;
}

} // namespace

std::string planSvg(const MachinePlan& plan) {
    std::vector<ControllerChange> changes;
    for (const ControllerPlanning& planning : plan.controllers) {
        changes.push_back(changeOf(planning));
    }
    return PlanSvgWriter(changes, planWords, "")
        .write("Plan of " + machineTitleOf(plan.fingerprint), descriptionOf(plan, changes), {},
               true);
}

std::string planControllerSvg(const MachinePlan& plan, std::size_t index, bool withLegend,
                              const std::string& prefix) {
    const ControllerPlanning& planning = plan.controllers[index];
    const std::vector<ControllerChange> changes{changeOf(planning)};
    return PlanSvgWriter(changes, planWords, prefix + "c" + std::to_string(index) + "-")
        .write("Plan of controller " + std::to_string(planning.controller.number),
               descriptionOf(planning, changes[0]), {std::nullopt, false, withLegend}, false);
}

std::string diffSvg(const MachineDiff& diff, const Snapshot& snapshot) {
    std::vector<ControllerChange> changes;
    std::string description;
    for (const ControllerDiff& row : diff.controllers) {
        if (const ControllerSnapshot* const controller = controllerOf(snapshot, row.number)) {
            changes.push_back(changeOf(row, *controller));
            description += (description.empty() ? "" : " ") + nameOf(*controller) +
                           std::string(diffResultWord(row.result)) + ".";
        }
    }
    return PlanSvgWriter(changes, diffWords, "")
        .write(machineTitleOf(diff.fingerprint) + " against " + printable(diff.wantedBy),
               description.empty() ? "No RAID controller." : description, {}, true);
}

std::string diffControllerSvg(const ControllerDiff& diff, const ControllerSnapshot& controller,
                              std::size_t index, bool withLegend) {
    const std::vector<ControllerChange> changes{changeOf(diff, controller)};
    return PlanSvgWriter(changes, diffWords, "c" + std::to_string(index) + "-")
        .write("Controller " + std::to_string(diff.number),
               nameOf(controller) + std::string(diffResultWord(diff.result)) + ".",
               {std::nullopt, false, withLegend}, false);
}

} // namespace zolex::companion
