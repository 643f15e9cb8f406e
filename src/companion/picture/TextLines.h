#pragma once

#include "companion/findings/Finding.h"
#include "companion/text/Table.h"
#include "companion/text/Terminal.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Lines of the texts about plans and comparisons.
namespace zolex::companion {

/// One line of fields; the last one is folded in its column, or all of them where there is no room.
struct FieldLine {
    std::size_t indent = 0;
    std::vector<TableCell> fields;
};

/// The lines as texts with their newlines; fields stand below each other in lines with the same
/// indent.
[[nodiscard]] std::vector<std::string> fieldLines(const std::vector<FieldLine>& lines,
                                                  const TextStyle& style);

/// A text behind its sign, folded.
[[nodiscard]] std::string signedLine(std::string_view sign, std::string_view text,
                                     Emphasis emphasis, const TextStyle& style);

/// A command line, folded at its blanks; a word that no line holds (a long list of drives) is
/// folded behind its commas, too. The lines from the second on are indented.
[[nodiscard]] std::string foldedCommand(std::string_view command, std::size_t indent,
                                        std::size_t width);

/// A finding as a line behind "! ", with its code and, below, what helps.
[[nodiscard]] std::string findingLine(const Finding& finding, std::size_t indent,
                                      const TextStyle& style);

/// Lines of a controller's name: "Controller 1  LSI-MegaRAID-8480  serial 1122334455".
[[nodiscard]] std::string controllerHead(std::int32_t number, const std::vector<std::string>& what,
                                         const TextStyle& style);

} // namespace zolex::companion
