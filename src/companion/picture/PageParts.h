#pragma once

#include "companion/findings/Finding.h"

#include <string>
#include <string_view>
#include <vector>

/// Pieces of pages. All texts that are no markup are escaped by those who make a piece of them.
namespace zolex::companion {

/// A cell of a table: its markup, and its classes.
struct HtmlCell {
    std::string markup;
    std::string_view classes = {};
};

/// From the doctype to the beginning of `body`. `moreStyle` are rules besides the common ones.
[[nodiscard]] std::string pageHead(const std::string& title, std::string_view moreStyle = {});
[[nodiscard]] std::string pageEnd();
/// A row of a table, of `th` or `td`.
[[nodiscard]] std::string htmlRow(std::string_view tag, const std::vector<HtmlCell>& cells,
                                  std::string_view classes = {});
/// The text escaped, or "-".
[[nodiscard]] std::string orDash(const std::string& text);
/// A paragraph of a text, which is escaped.
[[nodiscard]] std::string paragraph(const std::string& text, std::string_view classes = {});
/// A list of findings with what helps; empty without any.
[[nodiscard]] std::string findingsList(const std::vector<Finding>& findings);
/// A letter on the colour of its array.
[[nodiscard]] std::string arrayChip(const std::string& letter, std::size_t colour);

} // namespace zolex::companion
