#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/picture/Geometry.h"
#include "companion/picture/Roles.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace zolex::companion {

namespace svg_colours {
inline constexpr std::string_view white = "#ffffff";
inline constexpr std::string_view black = "#000000";
inline constexpr std::string_view grey = "#c8c8c8";
inline constexpr std::string_view red = "#7a0016";
inline constexpr std::string_view paleRed = "#f4b0b0";
} // namespace svg_colours

/// What is said of a slot besides its drive.
struct SlotNote {
    std::string_view row;   ///< "now", "planned"; empty: the only one
    bool isLost = false;    ///< a red frame and "-"
    bool isNew = false;     ///< a green frame and "+"
    bool isPlanned = false; ///< the state that its utility tells is not that of this row
    std::string text;       ///< of the tooltip; may be empty
};

/// Pieces of pictures: slots, bars of arrays, texts. They are the same in all pictures.
class SvgCanvas {
  public:
    /// `prefix` stands before all ids, which are unique in a page.
    explicit SvgCanvas(std::string prefix) : prefix_(std::move(prefix)) {}

    /// The head of the element, up to its ground. `moreStyle` are rules besides the common ones.
    void begin(bool isDocument, std::int32_t width, std::int32_t height, std::string_view title,
               std::string_view description, const std::set<std::size_t>& colours,
               std::string_view moreStyle = {});
    [[nodiscard]] std::string end();
    void reserve(std::size_t slots) { out_.reserve(4096 + slots * 1024); }
    void open(std::string_view classes);
    void close() { out_ += "</g>\n"; }

    /// Text in the middle of a box, its base line `down` units below the box's upper edge. `fill`
    /// is a colour, or empty for that of the class.
    void text(const Box& box, std::int32_t down, std::string_view classes, std::string_view fill,
              std::string_view content, std::int32_t size = geometry::fontSize);
    void textAt(std::int32_t x, std::int32_t y, std::string_view classes, std::string_view content);
    /// One line that is cut where the box ends.
    void fittingText(const Box& box, std::int32_t down, std::int32_t size, std::string_view classes,
                     std::string_view content);
    /// Up to the end of its attributes.
    void rect(const Box& box, std::string_view classes, std::string_view fill);
    void plate(const Box& box, std::string_view fill);
    void line(std::string_view classes, std::int32_t x, std::int32_t top, std::int32_t bottom);

    /// The lines of text above a controller.
    void head(const Box& box, const ControllerSnapshot& controller);
    /// `colours`: of the arrays, by their letters.
    void drive(const Box& box, const MachineDrive& drive,
               const std::map<std::string, std::size_t>& colours, const SlotNote& note = {});
    void absent(const PlacedSlot& placed, const std::string& rowTitle);
    void bar(const PlacedArray& placed, const ControllerSnapshot& controller, std::size_t colour);
    /// One sign and its meaning; returns where the next one may stand. `fill` "spare": the hatch of
    /// spares; "none": an empty slot.
    std::int32_t sample(std::int32_t x, std::int32_t y, std::string_view fill,
                        std::string_view sign, std::string_view meaning,
                        std::string_view classes = {});

  private:
    struct Look;
    [[nodiscard]] Look arrayLook(std::size_t colour) const;
    [[nodiscard]] std::string patternName(std::size_t colour) const;
    void pattern(const std::string& name, std::string_view ground, std::string_view lines);
    void patterns(const std::set<std::size_t>& colours);
    void cross(const Box& box);

    std::string prefix_;
    std::string out_;
};

} // namespace zolex::companion
