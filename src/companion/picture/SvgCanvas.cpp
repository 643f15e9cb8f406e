#include "companion/picture/SvgCanvas.h"

#include "companion/picture/Markup.h"
#include "companion/picture/Palette.h"
#include "companion/text/Sizes.h"
#include "companion/text/Terminal.h"
#include "companion/text/Utf8.h"

#include <algorithm>

namespace zolex::companion {

namespace {

using svg_colours::black;
using svg_colours::grey;
using svg_colours::paleRed;
using svg_colours::red;
using svg_colours::white;

/// Colours of what lies outside slots and bars follow the reader's scheme. Those within are fixed:
/// their texts are drawn on their own ground.
constexpr std::string_view canvasStyle = R"(<style>
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

std::string number(std::int32_t value) {
    return std::to_string(value);
}

/// Attributes x, y, width, height.
std::string at(const Box& box) {
    return "x=\"" + number(box.x) + "\" y=\"" + number(box.y) + "\" width=\"" + number(box.width) +
           "\" height=\"" + number(box.height) + "\"";
}

std::string tooltip(const MachineDrive& drive, const SlotNote& note) {
    const DriveFacts& facts = drive.facts;
    std::string text = facts.location + ": ";
    text += drive.policyNumber ? "drive " + std::to_string(*drive.policyNumber) + " of policies"
                               : "policies have no number for it";
    const std::string model = modelOf(facts);
    text += model.empty() ? "" : ", " + model;
    text += facts.serialNumber.empty() ? ", serial not known" : ", serial " + facts.serialNumber;
    text += ", " + sizeText(facts.capacityBytes);
    text += facts.reportedState.empty() || note.isPlanned ? "" : ", " + facts.reportedState;
    switch (roleOf(drive)) {
    case Role::hotspare:
        text += facts.hotspare == HotspareKind::dedicated ? "; dedicated hot spare" : "; hot spare";
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
    text += note.text.empty() ? "" : "; " + note.text;
    const std::string trouble = troubleOf(facts);
    return trouble.empty() ? text : text + "; " + trouble;
}

std::string_view roleClass(Role role) {
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

/// What stands in the lowest part of a slot; of one with a sign before it no more than must be.
std::string bandText(const MachineDrive& drive, bool hasSign) {
    if (hasSign && !drive.array.empty()) {
        return drive.array;
    }
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

} // namespace

/// What fills a slot, and what is written on it. Text stands on a plate where lines are drawn over
/// the fill.
struct SvgCanvas::Look {
    std::string fill;
    std::string_view ink = svg_colours::black;
    std::string_view plate = {};
};

void SvgCanvas::begin(bool isDocument, std::int32_t width, std::int32_t height,
                      std::string_view title, std::string_view description,
                      const std::set<std::size_t>& colours, std::string_view moreStyle) {
    if (isDocument) {
        out_ += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    }
    out_ += "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"picture\" role=\"img\" width=\"" +
            number(width) + "\" height=\"" + number(height) + "\" viewBox=\"0 0 " + number(width) +
            " " + number(height) + "\">\n";
    out_ += "<title>" + escaped(title) + "</title>\n<desc>" + escaped(description) + "</desc>\n";
    out_ += canvasStyle;
    out_ += moreStyle;
    patterns(colours);
    out_ += "<rect class=\"paper\" " + at({0, 0, width, height}) + "/>\n";
}

std::string SvgCanvas::end() {
    out_ += "</svg>\n";
    return std::move(out_);
}

void SvgCanvas::open(std::string_view classes) {
    out_ += "<g class=\"" + std::string(classes) + "\">\n";
}

std::string SvgCanvas::patternName(std::size_t colour) const {
    return prefix_ + "array-" + std::to_string(colour % (2 * arrayColours.size()));
}

void SvgCanvas::pattern(const std::string& name, std::string_view ground, std::string_view lines) {
    out_ += "<pattern id=\"" + name +
            "\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\" "
            "patternTransform=\"rotate(45)\"><rect width=\"8\" height=\"8\" fill=\"";
    out_ += ground;
    out_ += "\"/><rect width=\"3\" height=\"8\" fill=\"";
    out_ += lines;
    out_ += "\"/></pattern>\n";
}

/// Those of spares, and those of the hatched arrays that there are.
void SvgCanvas::patterns(const std::set<std::size_t>& colours) {
    out_ += "<defs>\n";
    pattern(prefix_ + "spare", white, grey);
    std::set<std::size_t> made;
    for (const std::size_t colour : colours) {
        const std::size_t kind = colour % (2 * arrayColours.size());
        if (isHatched(colour) && made.insert(kind).second) {
            pattern(patternName(colour), arrayColour(colour).fill, arrayColour(colour).hatch);
        }
    }
    out_ += "</defs>\n";
}

SvgCanvas::Look SvgCanvas::arrayLook(std::size_t array) const {
    const ArrayColour& colour = arrayColour(array);
    if (isHatched(array)) {
        return {"url(#" + patternName(array) + ")", colour.ink, colour.fill};
    }
    return {std::string(colour.fill), colour.ink};
}

void SvgCanvas::text(const Box& box, std::int32_t down, std::string_view classes,
                     std::string_view fill, std::string_view content, std::int32_t size) {
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

void SvgCanvas::textAt(std::int32_t x, std::int32_t y, std::string_view classes,
                       std::string_view content) {
    out_ += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\" class=\"";
    out_ += classes;
    out_ += "\">" + escaped(content) + "</text>\n";
}

void SvgCanvas::rect(const Box& box, std::string_view classes, std::string_view fill) {
    out_ += "<rect ";
    out_ += at(box);
    out_ += " rx=\"3\" class=\"";
    out_ += classes;
    out_ += "\" fill=\"";
    out_ += fill;
    out_ += "\"";
}

void SvgCanvas::head(const Box& box, const ControllerSnapshot& controller) {
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
    below = controller.failed ? "could not be read: " + printable(controller.utility) + " failed"
                              : below;
    fittingText(box, 32, geometry::fontSize, "dim", below);
}

void SvgCanvas::fittingText(const Box& box, std::int32_t down, std::int32_t size,
                            std::string_view classes, std::string_view content) {
    const auto most =
        static_cast<std::size_t>(box.width) * 100 / (static_cast<std::size_t>(size) * 61);
    textAt(box.x, box.y + down, classes, shortened(content, most));
}

void SvgCanvas::absent(const PlacedSlot& placed, const std::string& rowTitle) {
    const std::string slot = placed.slot.number ? std::to_string(*placed.slot.number) : "";
    out_ += "<g class=\"slot absent\"><title>" + escaped(rowTitle + ", slot " + slot) +
            ": no drive</title>\n";
    rect(placed.box, "box frame", "none");
    out_ += " stroke-dasharray=\"4 3\"/>\n";
    text(placed.box, 14, "dim", "", slot);
    text(placed.box, 48, "dim", "", "empty");
    out_ += "</g>\n";
}

void SvgCanvas::drive(const Box& box, const MachineDrive& drive,
                      const std::map<std::string, std::size_t>& colours, const SlotNote& note) {
    const Role role = roleOf(drive);
    const auto array = colours.find(drive.array);
    const bool hasColour = !drive.array.empty() && array != colours.end();
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
    out_ += note.isLost ? " lost" : note.isNew ? " new" : "";
    out_ += "\" data-location=\"" + escaped(drive.facts.location) + "\"";
    if (!note.row.empty()) {
        out_ += " data-row=\"" + std::string(note.row) + "\"";
    }
    out_ += "><title>" + escaped(tooltip(drive, note)) + "</title>\n";
    const bool failed = role == Role::failed;
    const std::string_view frame = note.isLost  ? "box lost-frame"
                                   : note.isNew ? "box new-frame"
                                   : failed     ? "box"
                                                : "box frame";
    rect(box, frame, look.fill);
    const bool hasFailedFrame = failed && !note.isLost && !note.isNew;
    out_ += hasFailedFrame ? " stroke=\"#b00020\" stroke-width=\"2\"/>\n" : "/>\n";
    const std::string_view sign = note.isLost ? "- " : note.isNew ? "+ " : "";
    const std::string mark = std::string(sign) + bandText(drive, !sign.empty());
    if (!look.plate.empty()) {
        plate({box.x + 4, box.y + 4, box.width - 8, 59}, look.plate);
        const std::int32_t side = mark.size() > 3 ? 4 : mark.size() > 2 ? 12 : 16;
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
    text(band, 80, "mark", bandInk, mark, 15);
    out_ += "</g>\n";
}

void SvgCanvas::plate(const Box& box, std::string_view fill) {
    rect(box, "plate", fill);
    out_ += "/>\n";
}

void SvgCanvas::cross(const Box& box) {
    const std::int32_t left = box.x + 4;
    const std::int32_t right = box.x + box.width - 4;
    const std::int32_t top = box.y + 4;
    const std::int32_t bottom = box.y + box.height - 4;
    out_ += "<path class=\"cross\" d=\"M" + number(left) + " " + number(top) + "L" + number(right) +
            " " + number(bottom) + "M" + number(right) + " " + number(top) + "L" + number(left) +
            " " + number(bottom) + "\" stroke=\"";
    out_ += paleRed;
    out_ += "\" stroke-width=\"4\" fill=\"none\"/>\n";
}

void SvgCanvas::line(std::string_view classes, std::int32_t x, std::int32_t top,
                     std::int32_t bottom) {
    out_ += "<path class=\"" + std::string(classes) + "\" d=\"M" + number(x) + " " + number(top) +
            "V" + number(bottom) + "\"/>\n";
}

void SvgCanvas::bar(const PlacedArray& placed, const ControllerSnapshot& controller,
                    std::size_t colour) {
    const MachineArray& array = controller.arrays[placed.array];
    const Look look = arrayLook(colour);
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
                plate({segment.box.x + (segment.box.width - width) / 2, segment.box.y + 4, width,
                       segment.box.height - 8},
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

std::int32_t SvgCanvas::sample(std::int32_t x, std::int32_t y, std::string_view fill,
                               std::string_view sign, std::string_view meaning,
                               std::string_view classes) {
    const Box box{x, y + 4, 16, 18};
    const bool isAbsent = fill == "none";
    const bool isSpare = fill == "spare";
    const bool isFailed = sign == "x";
    const std::string own =
        classes.empty() ? (isFailed ? "sample" : "sample frame") : "sample " + std::string(classes);
    rect(box, own, isSpare ? "url(#" + prefix_ + "spare)" : std::string(fill));
    out_ += isAbsent ? " stroke-dasharray=\"4 3\"" : "";
    out_ += isFailed ? " stroke=\"#b00020\" stroke-width=\"2\"" : "";
    out_ += "/>\n";
    if (isSpare) {
        plate({box.x + 4, box.y + 4, 8, 10}, white);
    }
    text(box, 13, "strong", isFailed ? red : black, sign);
    textAt(x + 21, y + 17, "ink", meaning);
    return x + 21 + geometry::textWidth(meaning.size(), geometry::fontSize) + 18;
}

} // namespace zolex::companion
