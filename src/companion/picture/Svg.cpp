#include "companion/picture/Svg.h"

#include "companion/picture/Geometry.h"
#include "companion/picture/Markup.h"
#include "companion/picture/Palette.h"
#include "companion/picture/Roles.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"
#include "companion/text/Utf8.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace zolex::companion {

namespace {

/// Colours of what lies outside slots and bars follow the reader's scheme. Those within are fixed:
/// their texts are drawn on their own ground.
constexpr std::string_view style = R"(<style>
.picture text{font-family:"DejaVu Sans Mono",Consolas,Menlo,"Liberation Mono",monospace;font-size:10px}
.picture .head{font-size:14px;font-weight:bold}
.picture .number{font-size:17px;font-weight:bold}
.picture .mark{font-size:15px;font-weight:bold}
.picture .strong{font-weight:bold}
.picture .paper{fill:#ffffff}
.picture .ink{fill:#1a1a1a}
.picture .dim{fill:#555555}
.picture .frame{stroke:#404040}
@media (prefers-color-scheme:dark){
.picture .paper{fill:#16181d}
.picture .ink{fill:#e8e8e8}
.picture .dim{fill:#b4b4b4}
.picture .frame{stroke:#b4b4b4}
}
@media print{
.picture .paper{fill:#ffffff}
.picture .ink{fill:#1a1a1a}
.picture .dim{fill:#555555}
.picture .frame{stroke:#404040}
}
</style>
)";

constexpr std::string_view white = "#ffffff";
constexpr std::string_view black = "#000000";
constexpr std::string_view grey = "#c8c8c8";
constexpr std::string_view red = "#7a0016";
constexpr std::string_view paleRed = "#f4b0b0";

std::string number(std::int32_t value) {
    return std::to_string(value);
}

/// Attributes x, y, width, height.
std::string at(const Box& box) {
    return "x=\"" + number(box.x) + "\" y=\"" + number(box.y) + "\" width=\"" + number(box.width) +
           "\" height=\"" + number(box.height) + "\"";
}

/// What fills a slot, and what is written on it. Text stands on a plate where lines are drawn over
/// the fill.
struct Look {
    std::string fill;
    std::string_view ink = black;
    std::string_view plate = {};
};

class Writer {
  public:
    Writer(const Snapshot& snapshot, const Geometry& picture, std::string prefix)
        : snapshot_(snapshot), picture_(picture), prefix_(std::move(prefix)) {}

    std::string write(bool isDocument) {
        std::size_t slots = 0;
        for (const PlacedController& placed : picture_.controllers) {
            slots += snapshot_.details[placed.index].drives.size();
        }
        out_.reserve(4096 + slots * 1024);
        if (isDocument) {
            out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        }
        out_ +=
            "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"picture\" role=\"img\" width=\"" +
            number(picture_.width) + "\" height=\"" + number(picture_.height) +
            "\" viewBox=\"0 0 " + number(picture_.width) + " " + number(picture_.height) + "\">\n";
        out_ += "<title>" + escaped(title()) + "</title>\n<desc>" + escaped(description()) +
                "</desc>\n";
        out_ += style;
        patterns();
        out_ += "<rect class=\"paper\" " + at({0, 0, picture_.width, picture_.height}) + "/>\n";
        for (const PlacedController& placed : picture_.controllers) {
            controller(placed);
        }
        if (picture_.legend.height > 0) {
            legend();
        }
        out_ += "</svg>\n";
        return std::move(out_);
    }

  private:
    [[nodiscard]] std::string title() const {
        std::string text = machineTitle(snapshot_);
        if (picture_.controllers.size() == 1) {
            const ControllerSnapshot& only = snapshot_.details[picture_.controllers[0].index];
            text += ", controller " + std::to_string(only.number);
        }
        return text;
    }

    [[nodiscard]] std::string description() const {
        std::string text;
        for (const PlacedController& placed : picture_.controllers) {
            const ControllerSnapshot& controller = snapshot_.details[placed.index];
            std::size_t failed = 0;
            std::size_t free = 0;
            std::size_t spares = 0;
            for (const MachineDrive& drive : controller.drives) {
                failed += roleOf(drive) == Role::failed ? 1 : 0;
                free += roleOf(drive) == Role::free ? 1 : 0;
                spares += roleOf(drive) == Role::hotspare ? 1 : 0;
            }
            text += (text.empty() ? "" : " ") + ("Controller " + std::to_string(controller.number));
            text += ", " + productText(controller) + ": ";
            if (controller.failed) {
                text += "could not be read.";
                continue;
            }
            text += countText(controller.drives.size(), "drive", "drives") + " (" +
                    std::to_string(free) + " free, " +
                    countText(spares, "hot spare", "hot spares") + ", " + std::to_string(failed) +
                    " failed), " + countText(controller.arrays.size(), "array", "arrays") + ".";
            for (const LogicalDriveFacts& logicalDrive : controller.facts.logicalDrives) {
                text += " " + labelOf(logicalDrive) + " " + stateText(logicalDrive.reportedState);
                text += ".";
            }
        }
        return text.empty() ? "No RAID controller." : text;
    }

    [[nodiscard]] std::string patternName(std::size_t array) const {
        return prefix_ + "array-" + std::to_string(array % (2 * arrayColours.size()));
    }

    void pattern(const std::string& name, std::string_view ground, std::string_view lines) {
        out_ += "<pattern id=\"" + name +
                "\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
                "patternTransform=\"rotate(45)\"><rect width=\"8\" height=\"8\" fill=\"";
        out_ += ground;
        out_ += "\"/><rect width=\"3\" height=\"8\" fill=\"";
        out_ += lines;
        out_ += "\"/></pattern>\n";
    }

    /// Those of spares, and those of the hatched arrays that there are.
    void patterns() {
        out_ += "<defs>\n";
        pattern(prefix_ + "spare", white, grey);
        std::set<std::size_t> made;
        for (const PlacedController& placed : picture_.controllers) {
            for (std::size_t i = 0; i < snapshot_.details[placed.index].arrays.size(); ++i) {
                const std::size_t kind = i % (2 * arrayColours.size());
                if (isHatched(i) && made.insert(kind).second) {
                    pattern(patternName(i), arrayColour(i).fill, arrayColour(i).hatch);
                }
            }
        }
        out_ += "</defs>\n";
    }

    [[nodiscard]] Look arrayLook(std::size_t array) const {
        const ArrayColour& colour = arrayColour(array);
        if (isHatched(array)) {
            return {"url(#" + patternName(array) + ")", colour.ink, colour.fill};
        }
        return {std::string(colour.fill), colour.ink};
    }

    /// Text in the middle of a box, its base line `down` units below the box's upper edge. `fill`
    /// is a colour, or empty for that of the class.
    void text(const Box& box, std::int32_t down, std::string_view classes, std::string_view fill,
              std::string_view content, std::int32_t size = geometry::fontSize) {
        if (content.empty()) {
            return;
        }
        const auto room = static_cast<std::size_t>(std::max(box.width - 4, 8));
        std::string shown = printable(content);
        out_ += "<text x=\"" + number(box.x + box.width / 2) + "\" y=\"" + number(box.y + down) +
                "\" text-anchor=\"middle\"";
        if (geometry::textWidth(columnsOf(shown), size) > static_cast<std::int32_t>(room)) {
            // A narrower type down to half of the size; the rest is cut.
            shown = shortened(shown, room * 100 / 61 * 2 / static_cast<std::size_t>(size));
            const std::size_t tenths = room * 1000 / 61 / columnsOf(shown);
            const std::size_t most = static_cast<std::size_t>(size) * 10;
            const std::size_t used = std::min(tenths, most);
            out_ += " style=\"font-size:" + std::to_string(used / 10) + "." +
                    std::to_string(used % 10) + "px\"";
        }
        if (!classes.empty()) {
            out_ += " class=\"";
            out_ += classes;
            out_ += "\"";
        }
        if (!fill.empty()) {
            out_ += " fill=\"";
            out_ += fill;
            out_ += "\"";
        }
        out_ += ">" + escaped(shown) + "</text>\n";
    }

    void textAt(std::int32_t x, std::int32_t y, std::string_view classes,
                std::string_view content) {
        out_ += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" class=\"";
        out_ += classes;
        out_ += "\">" + escaped(content) + "</text>\n";
    }

    void rect(const Box& box, std::string_view classes, std::string_view fill) {
        out_ += "<rect ";
        out_ += at(box);
        out_ += " rx=\"3\" class=\"";
        out_ += classes;
        out_ += "\" fill=\"";
        out_ += fill;
        out_ += "\"";
    }

    void controller(const PlacedController& placed) {
        const ControllerSnapshot& controller = snapshot_.details[placed.index];
        out_ += "<g class=\"controller\">\n";
        if (picture_.hasHeads) {
            head(placed.box, controller);
        }
        const std::map<std::string, std::size_t> arrays = arrayIndices(controller);
        for (const PlacedRow& row : placed.rows) {
            if (!row.title.empty()) {
                textAt(row.titleBox.x, row.titleBox.y + 12, "strong ink", row.title);
            }
            for (const PlacedSlot& slot : row.slots) {
                if (slot.slot.drive) {
                    drive(slot.box, controller.drives[*slot.slot.drive], arrays);
                } else {
                    absent(slot, row.title);
                }
            }
        }
        for (const PlacedArray& array : placed.arrays) {
            bar(array, controller);
        }
        out_ += "</g>\n";
    }

    void head(const Box& box, const ControllerSnapshot& controller) {
        const std::string title =
            "Controller " + std::to_string(controller.number) + "  " + productText(controller);
        fittingText(box, 15, 14, "head ink", title);
        std::string below = controller.facts.serialNumber.empty()
                                ? std::string()
                                : "serial " + printable(controller.facts.serialNumber) + "  ";
        below += pciText(controller);
        if (!controller.facts.firmwareVersion.empty()) {
            below += "  firmware " + printable(controller.facts.firmwareVersion);
        }
        below = controller.failed
                    ? "could not be read: " + printable(controller.utility) + " failed"
                    : below;
        fittingText(box, 32, geometry::fontSize, "dim", below);
    }

    /// One line that is cut where the box ends.
    void fittingText(const Box& box, std::int32_t down, std::int32_t size, std::string_view classes,
                     std::string_view content) {
        const auto most =
            static_cast<std::size_t>(box.width) * 100 / (static_cast<std::size_t>(size) * 61);
        textAt(box.x, box.y + down, classes, shortened(content, most));
    }

    void absent(const PlacedSlot& placed, const std::string& rowTitle) {
        const std::string slot = placed.slot.number ? std::to_string(*placed.slot.number) : "";
        out_ += "<g class=\"slot absent\"><title>" + escaped(rowTitle + ", slot " + slot) +
                ": no drive</title>\n";
        rect(placed.box, "box frame", "none");
        out_ += " stroke-dasharray=\"4 3\"/>\n";
        text(placed.box, 14, "dim", "", slot);
        text(placed.box, 48, "dim", "", "empty");
        out_ += "</g>\n";
    }

    [[nodiscard]] static std::string tooltip(const MachineDrive& drive) {
        const DriveFacts& facts = drive.facts;
        std::string text = facts.location + ": ";
        text += drive.policyNumber ? "drive " + std::to_string(*drive.policyNumber) + " of policies"
                                   : "policies have no number for it";
        const std::string model = modelOf(facts);
        text += model.empty() ? "" : ", " + model;
        text +=
            facts.serialNumber.empty() ? ", serial not known" : ", serial " + facts.serialNumber;
        text += ", " + sizeText(facts.capacityBytes);
        text += facts.reportedState.empty() ? "" : ", " + facts.reportedState;
        switch (roleOf(drive)) {
        case Role::hotspare:
            text +=
                facts.hotspare == HotspareKind::dedicated ? "; dedicated hot spare" : "; hot spare";
            break;
        case Role::free:
            text += "; free";
            break;
        case Role::failed:
            text += drive.array.empty() ? "; not usable" : "; failed in array " + drive.array;
            break;
        case Role::member:
            text += "; in array " + drive.array;
            break;
        case Role::foreign:
            text += "; carries a configuration of another controller";
            break;
        case Role::jbod:
            text += "; shown to the system as it is";
            break;
        case Role::unknown:
            text += "; what it is there for is not known";
            break;
        }
        const std::string trouble = troubleOf(facts);
        return trouble.empty() ? text : text + "; " + trouble;
    }

    [[nodiscard]] static std::string_view roleClass(Role role) {
        switch (role) {
        case Role::member:
            return "member";
        case Role::hotspare:
            return "spare";
        case Role::free:
            return "free";
        case Role::failed:
            return "failed";
        case Role::foreign:
            return "foreign";
        case Role::jbod:
            return "jbod";
        case Role::unknown:
            return "unknown";
        }
        return {};
    }

    /// What stands in the lowest part of a slot.
    [[nodiscard]] static std::string bandText(const MachineDrive& drive) {
        switch (roleOf(drive)) {
        case Role::member:
            return drive.array + (drive.facts.state == DriveState::rebuilding ? " rebuild" : "");
        case Role::hotspare:
            return "*";
        case Role::free:
            return "free";
        case Role::failed:
            return drive.array.empty() ? "x" : drive.array + " failed";
        case Role::foreign:
            return "foreign";
        case Role::jbod:
            return "JBOD";
        case Role::unknown:
            return "?";
        }
        return {};
    }

    void drive(const Box& box, const MachineDrive& drive,
               const std::map<std::string, std::size_t>& arrays) {
        const Role role = roleOf(drive);
        const auto array = arrays.find(drive.array);
        const bool hasColour = !drive.array.empty() && array != arrays.end();
        Look look{std::string(white), black};
        if (role == Role::member && hasColour) {
            look = arrayLook(array->second);
        } else if (role == Role::hotspare) {
            look = {"url(#" + prefix_ + "spare)", black, white};
        } else if (role == Role::foreign || role == Role::jbod || role == Role::unknown) {
            look.fill = std::string(grey);
        }
        out_ += "<g class=\"slot ";
        out_ += roleClass(role);
        out_ += "\" data-location=\"" + escaped(drive.facts.location) + "\"><title>" +
                escaped(tooltip(drive)) + "</title>\n";
        const bool failed = role == Role::failed;
        rect(box, failed ? "box" : "box frame", look.fill);
        out_ += failed ? " stroke=\"#b00020\" stroke-width=\"2\"/>\n" : "/>\n";
        if (!look.plate.empty()) {
            plate({box.x + 4, box.y + 4, box.width - 8, 59}, look.plate);
            const std::int32_t side = bandText(drive).size() > 2 ? 4 : 16;
            plate({box.x + side, box.y + 66, box.width - 2 * side, 18}, look.plate);
        }
        std::string_view bandInk = look.ink;
        if (failed) {
            cross(box);
            bandInk = red;
            if (hasColour) {
                const Look band = arrayLook(array->second);
                rect({box.x + 3, box.y + 65, box.width - 6, 20}, "band", band.fill);
                out_ += "/>\n";
                if (!band.plate.empty()) {
                    plate({box.x + 6, box.y + 67, box.width - 12, 16}, band.plate);
                }
                bandInk = band.ink;
            }
        }
        text(box, 14, "strong", look.ink, drive.facts.location);
        const bool warns = !failed && !troubleOf(drive.facts).empty();
        text(box, 33, "number", look.ink, numberOf(drive) + (warns ? " !" : ""), 17);
        text(box, 47, "", look.ink, sizeText(drive.facts.capacityBytes));
        text(box, 59, "", look.ink, lastCharacters(drive.facts.serialNumber, 4));
        const Box band{box.x + 3, box.y, box.width - 6, box.height};
        text(band, 80, "mark", bandInk, bandText(drive), 15);
        out_ += "</g>\n";
    }

    void plate(const Box& box, std::string_view fill) {
        rect(box, "plate", fill);
        out_ += "/>\n";
    }

    void cross(const Box& box) {
        const std::int32_t left = box.x + 4;
        const std::int32_t right = box.x + box.width - 4;
        const std::int32_t top = box.y + 4;
        const std::int32_t bottom = box.y + box.height - 4;
        out_ += "<path class=\"cross\" d=\"M" + number(left) + " " + number(top) + "L" +
                number(right) + " " + number(bottom) + "M" + number(right) + " " + number(top) +
                "L" + number(left) + " " + number(bottom) + "\" stroke=\"";
        out_ += paleRed;
        out_ += "\" stroke-width=\"4\" fill=\"none\"/>\n";
    }

    void bar(const PlacedArray& placed, const ControllerSnapshot& controller) {
        const MachineArray& array = controller.arrays[placed.array];
        const Look look = arrayLook(placed.array);
        out_ += "<g class=\"array\"><title>" +
                escaped("Array " + array.letter + ": " +
                        countText(array.drives.size(), "drive", "drives")) +
                "</title>\n";
        text(placed.letter, 17, "mark ink", "", array.letter, 15);
        for (const PlacedSegment& segment : placed.segments) {
            if (!segment.logicalDrive) {
                out_ += "<g class=\"rest\"><title>not used by any logical drive</title>\n";
                rect(segment.box, "box frame", grey);
                out_ += "/>\n";
                if (segment.box.width >= geometry::textWidth(8, geometry::fontSize)) {
                    text(segment.box, 16, "", black, "unused");
                }
                out_ += "</g>\n";
                continue;
            }
            const LogicalDriveFacts& logicalDrive =
                controller.facts.logicalDrives[*segment.logicalDrive];
            const std::string state = stateText(logicalDrive.reportedState);
            out_ += "<g class=\"logical-drive\"><title>" +
                    escaped(labelOf(logicalDrive) + (state.empty() ? "" : ", " + state) +
                            (logicalDrive.name.empty() ? "" : ", " + logicalDrive.name)) +
                    "</title>\n";
            rect(segment.box, "box frame", look.fill);
            out_ += "/>\n";
            if (segment.hasLabel) {
                const std::string label = labelOf(logicalDrive);
                const std::int32_t width =
                    geometry::textWidth(columnsOf(label), geometry::fontSize) + 4;
                if (!look.plate.empty()) {
                    plate({segment.box.x + (segment.box.width - width) / 2, segment.box.y + 4,
                           width, segment.box.height - 8},
                          look.plate);
                }
                text(segment.box, 16, "strong", look.ink, label);
            }
            out_ += "</g>\n";
        }
        for (const PlacedLabel& label : placed.labels) {
            textAt(label.box.x, label.box.y + 11, "ink",
                   labelOf(controller.facts.logicalDrives[label.logicalDrive]));
        }
        out_ += "</g>\n";
    }

    /// What the signs mean.
    void legend() {
        const Box& box = picture_.legend;
        struct Entry {
            std::string_view fill;
            std::string_view sign;
            std::string_view text;
        };
        const std::string spare = "url(#" + prefix_ + "spare)";
        const Entry entries[] = {
            {arrayColours[0].fill, "A", "in array A"},
            {spare, "*", "hot spare"},
            {white, "x", "failed"},
            {white, "", "free"},
            {"none", "", "empty slot"},
        };
        std::int32_t x = box.x;
        out_ += "<g class=\"legend\">\n";
        for (const Entry& entry : entries) {
            const Box sample{x, box.y + 4, 16, 18};
            const bool isAbsent = entry.fill == "none";
            const bool isFailed = entry.sign == "x";
            rect(sample, isFailed ? "sample" : "sample frame", entry.fill);
            out_ += isAbsent ? " stroke-dasharray=\"4 3\"" : "";
            out_ += isFailed ? " stroke=\"#b00020\" stroke-width=\"2\"" : "";
            out_ += "/>\n";
            if (entry.sign == "*") {
                plate({sample.x + 4, sample.y + 4, 8, 10}, white);
            }
            text(sample, 13, "strong", isFailed ? red : black, entry.sign);
            textAt(x + 21, box.y + 17, "ink", entry.text);
            x += 21 + geometry::textWidth(entry.text.size(), geometry::fontSize) + 18;
        }
        textAt(box.x, box.y + 38, "dim",
               "In a slot: location, the number that policies use (- none, ! errors), size, end of "
               "the serial number.");
        textAt(box.x, box.y + 52, "dim",
               "The bars are the arrays, to scale, cut into logical drives; grey is not used.");
        out_ += "</g>\n";
    }

    const Snapshot& snapshot_;
    const Geometry& picture_;
    std::string prefix_; ///< of ids, which are unique in a page
    std::string out_;
};

} // namespace

std::string machineSvg(const Snapshot& snapshot) {
    const Geometry picture = geometryOf(snapshot);
    return Writer(snapshot, picture, "").write(true);
}

std::string controllerSvg(const Snapshot& snapshot, std::size_t index, bool withLegend) {
    const Geometry picture = geometryOf(snapshot, {index, false, withLegend});
    return Writer(snapshot, picture, "c" + std::to_string(index) + "-").write(false);
}

} // namespace zolex::companion
