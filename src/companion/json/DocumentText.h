#pragma once

#include "companion/json/DocumentHead.h"
#include "companion/json/Pieces.h"

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// Writes a document name by name, as text at once: a large one is never in memory but as its text.
/// Indented by two blanks, as textOf does it. Names are given as they are to be written.
class DocumentText {
  public:
    /// Begins the document: format, format_version, tool, made_at.
    DocumentText(std::string_view format, const DocumentHead& head);

    // Containers: under a name of an object, or as the next element of a list.
    void object(std::string_view name);
    void object();
    void list(std::string_view name);
    void list();
    /// Ends the last one that was begun.
    void end();

    // Values under a name. Bytes of a text that are not UTF-8 become U+FFFD.
    void text(std::string_view name, std::string_view value);
    /// null for an empty text.
    void textOrNull(std::string_view name, std::string_view value);
    void texts(std::string_view name, const std::vector<std::string>& values);
    void truth(std::string_view name, bool value);
    void null(std::string_view name);
    void number(std::string_view name, std::integral auto value) {
        write(name);
        writeNumber(value);
    }
    /// null without a number, and for one beyond 2^53: see orNull.
    template <typename Number>
    void numberOrNull(std::string_view name, const std::optional<Number>& value) {
        constexpr auto most = std::int64_t{1} << 53U;
        if (value && !std::cmp_greater(*value, most)) {
            number(name, *value);
        } else {
            null(name);
        }
    }
    /// A size or count that is always told; one beyond 2^53 is written as 2^53.
    void size(std::string_view name, std::uint64_t value);
    void json(std::string_view name, const Json& value);

    // The next element of a list.
    void text(std::string_view value);
    void json(const Json& value);

    /// Ends the document, which is then a text that ends with a newline.
    [[nodiscard]] std::string finish();

  private:
    void write(std::string_view name);
    void nextElement();
    void begin(char bracket);
    void newLine();
    void writeText(std::string_view value);
    void writeNumber(std::integral auto value) { text_ += std::to_string(value); }

    std::string text_;
    std::vector<char> open_; ///< the closing bracket of each container that is open
    bool isFirst_ = true;    ///< nothing stands in the innermost one so far
};

} // namespace zolex::companion
