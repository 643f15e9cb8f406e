#include "companion/picture/Svg.h"

#include "companion/picture/Geometry.h"
#include "companion/picture/Palette.h"
#include "companion/picture/Roles.h"
#include "companion/picture/SvgCanvas.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>

namespace zolex::companion {

namespace {

class SvgWriter {
  public:
    SvgWriter(const Snapshot& snapshot, const Geometry& picture, std::string prefix)
        : snapshot_(snapshot), picture_(picture), canvas_(std::move(prefix)) {}

    std::string write(bool isDocument) {
        std::size_t slots = 0;
        std::size_t arrays = 0;
        for (const PlacedController& placed : picture_.controllers) {
            slots += snapshot_.details[placed.index].drives.size();
            arrays = std::max(arrays, snapshot_.details[placed.index].arrays.size());
        }
        std::set<std::size_t> colours;
        for (std::size_t i = 0; i < arrays; ++i) {
            colours.insert(i);
        }
        canvas_.reserve(slots);
        canvas_.begin(isDocument, picture_.width, picture_.height, title(), description(), colours);
        for (const PlacedController& placed : picture_.controllers) {
            controller(placed);
        }
        if (picture_.legend.height > 0) {
            legend();
        }
        return canvas_.end();
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

    void controller(const PlacedController& placed) {
        const ControllerSnapshot& controller = snapshot_.details[placed.index];
        canvas_.open("controller");
        if (picture_.hasHeads) {
            canvas_.head(placed.box, controller);
        }
        const std::map<std::string, std::size_t> arrays = arrayIndices(controller);
        for (const PlacedRow& row : placed.rows) {
            if (!row.title.empty()) {
                canvas_.textAt(row.titleBox.x, row.titleBox.y + 12, "strong ink", row.title);
            }
            for (const PlacedSlot& slot : row.slots) {
                if (slot.slot.drive) {
                    canvas_.drive(slot.box, controller.drives[*slot.slot.drive], arrays);
                } else {
                    canvas_.absent(slot, row.title);
                }
            }
        }
        for (const PlacedArray& array : placed.arrays) {
            canvas_.bar(array, controller, array.array);
        }
        canvas_.close();
    }

    /// What the signs mean.
    void legend() {
        const Box& box = picture_.legend;
        canvas_.open("legend");
        std::int32_t x = canvas_.sample(box.x, box.y, arrayColours[0].fill, "A", "in array A");
        x = canvas_.sample(x, box.y, "spare", "*", "hot spare");
        x = canvas_.sample(x, box.y, svg_colours::white, "x", "failed");
        x = canvas_.sample(x, box.y, svg_colours::white, "", "free");
        canvas_.sample(x, box.y, "none", "", "empty slot");
        canvas_.textAt(
            box.x, box.y + 38, "dim",
            "In a slot: location, the number that policies use (- none, ! errors), size, end of "
            "the serial number.");
        canvas_.textAt(
            box.x, box.y + 52, "dim",
            "The bars are the arrays, to scale, cut into logical drives; grey is not used.");
        canvas_.close();
    }

    const Snapshot& snapshot_;
    const Geometry& picture_;
    SvgCanvas canvas_;
};

} // namespace

std::string machineSvg(const Snapshot& snapshot) {
    const Geometry picture = geometryOf(snapshot);
    return SvgWriter(snapshot, picture, "").write(true);
}

std::string controllerSvg(const Snapshot& snapshot, std::size_t index, bool withLegend) {
    const Geometry picture = geometryOf(snapshot, {index, false, withLegend});
    return SvgWriter(snapshot, picture, "c" + std::to_string(index) + "-").write(false);
}

} // namespace zolex::companion
