#pragma once

#include "model/Configuration.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

/// Lines and values that the readers of several utilities take apart in the same way.
namespace zolex {

/// A word that a utility prints and the code that it stands for.
struct WordCode {
    std::string_view word;
    std::int32_t code;
};

/// Whether no word of a table is empty and none stands there twice.
template <typename Row>
[[nodiscard]] constexpr bool hasDistinctWords(std::span<const Row> table) {
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (table[i].word == table[j].word) {
                return false;
            }
        }
        if (table[i].word.empty()) {
            return false;
        }
    }
    return true;
}

/// The code of the row whose word is the whole of `value`, exact case; none without such a row.
[[nodiscard]] std::optional<std::int32_t> findCode(std::span<const WordCode> words,
                                                   std::string_view value);

/// Whether the line holds one of the keys, exact case.
[[nodiscard]] bool holdsAny(std::string_view line, std::span<const std::string_view> keys);
/// The same with letter case ignored.
[[nodiscard]] bool holdsAnyNoCase(std::string_view line, std::span<const std::string_view> keys);

/// The text between the first ":" and the second, trimmed; empty without a ":".
[[nodiscard]] std::string_view valueBetweenColons(std::string_view line);

/// The channel and the id of "1,0", with "," or another delimiter between them, numbered as they
/// stand. None when the text is not two numbers, each followed by anything.
[[nodiscard]] std::optional<DrivePosition> parsePosition(std::string_view text,
                                                         std::string_view delimiter);
/// The positions of a blank-separated list, in its order; what is no position is passed over.
[[nodiscard]] std::vector<DrivePosition> parsePositions(std::string_view list,
                                                        std::string_view delimiter);
/// The non-empty pieces of a blank-separated list.
[[nodiscard]] std::vector<std::string_view> splitAtBlanks(std::string_view list);

} // namespace zolex
