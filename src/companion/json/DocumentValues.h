#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/Pieces.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Documents from outside: read with bounds, and each value with its type and its place in the
/// document. For the files of this folder alone.
namespace zolex::companion {

// Bounds of what is taken.
inline constexpr std::size_t mostWordBytes = 4096;
inline constexpr std::size_t mostTextBytes = std::size_t{64} << 10U;
inline constexpr std::size_t mostDocumentDepth = 32;
inline constexpr std::size_t mostDocumentValues = std::size_t{2} << 20U;
/// The largest number of the programs' own counts and places.
inline constexpr std::int64_t mostNumber = std::numeric_limits<std::int32_t>::max();
/// The largest whole number that every reader of JSON keeps exact.
inline constexpr std::int64_t mostJsonNumber = std::int64_t{1} << 53U;

/// What is wrong with a document. It is thrown: a document has many values, and none is of use
/// without the others.
struct DocumentFault {
    enum class Kind { notJson, tooLarge, otherDocument, otherVersion, wrongValue };
    Kind kind = Kind::wrongValue;
    std::string text;
    std::optional<std::size_t> byte = std::nullopt; ///< place in the text
};

/// The value of the whole text. Throws DocumentFault when it is no JSON, when a name stands twice
/// in an object, and when it is nested deeper or has more values than the bounds let.
[[nodiscard]] Json parseDocument(std::string_view text);

/// A value of the document with its place, such as "controllers[0].drives[3]". Every function
/// throws DocumentFault with the place when what it is to give is missing or another thing.
class Part {
  public:
    explicit Part(const Json& value, std::string place = {})
        : value_(&value), place_(std::move(place)) {}

    [[nodiscard]] const std::string& place() const { return place_; }
    [[nodiscard]] const Json& json() const { return *value_; }
    [[nodiscard]] bool has(std::string_view name) const { return find(name) != nullptr; }
    [[nodiscard]] bool isNull(std::string_view name) const { return required(name).is_null(); }

    // Under a name of this object:
    [[nodiscard]] Part object(std::string_view name) const;
    /// The elements of a list of objects.
    [[nodiscard]] std::vector<Part> objects(std::string_view name, std::size_t most) const;
    /// A list of lists of words.
    [[nodiscard]] std::vector<std::vector<std::string>> wordLists(std::string_view name,
                                                                  std::size_t most) const;

    /// A text of one line without control characters, as commands and tables take it.
    [[nodiscard]] std::string word(std::string_view name, std::size_t most = mostWordBytes) const;
    /// Empty for null.
    [[nodiscard]] std::string wordOrNull(std::string_view name,
                                         std::size_t most = mostWordBytes) const;
    [[nodiscard]] std::vector<std::string> words(std::string_view name, std::size_t most,
                                                 std::size_t mostBytes = mostWordBytes) const;
    /// A text for people: without the character 0.
    [[nodiscard]] std::string text(std::string_view name) const;
    [[nodiscard]] std::string textOrNull(std::string_view name) const;
    [[nodiscard]] std::vector<std::string> texts(std::string_view name, std::size_t most) const;
    /// The names of this object, words all.
    [[nodiscard]] std::vector<std::string> names(std::size_t most) const;
    /// 64 hexadecimal digits.
    [[nodiscard]] std::string hash(std::string_view name) const;
    [[nodiscard]] std::string hashOrNull(std::string_view name) const;

    [[nodiscard]] bool truth(std::string_view name) const;
    template <typename Number = std::int64_t>
    [[nodiscard]] Number number(std::string_view name, std::int64_t least = 0,
                                std::int64_t most = mostJsonNumber) const {
        return static_cast<Number>(numberOf(required(name), name, least, most));
    }
    template <typename Number = std::int64_t>
    [[nodiscard]] std::optional<Number> numberOrNull(std::string_view name, std::int64_t least = 0,
                                                     std::int64_t most = mostJsonNumber) const {
        return isNull(name) ? std::nullopt : std::optional(number<Number>(name, least, most));
    }
    [[nodiscard]] std::vector<std::int32_t> numbers(std::string_view name, std::size_t most,
                                                    std::int64_t least, std::int64_t largest) const;

    /// One of `values` by its word; for null the one whose word is empty.
    template <typename Value, typename Values, typename WordOf>
    [[nodiscard]] Value oneOf(std::string_view name, const Values& values,
                              const WordOf& wordOf) const {
        const std::string found = wordOrNull(name);
        for (const Value value : values) {
            if (wordOf(value) == found) {
                return value;
            }
        }
        failUnknown(name, found);
    }

    /// Throws: "controllers[0].drives[3].location " and `what`.
    [[noreturn]] void fail(std::string_view name, const std::string& what) const;
    /// The same of this part itself.
    [[noreturn]] void fail(const std::string& what) const;

  private:
    [[noreturn]] void failUnknown(std::string_view name, std::string_view word) const;
    [[nodiscard]] const Json* find(std::string_view name) const;
    [[nodiscard]] const Json& required(std::string_view name) const;
    [[nodiscard]] const Json& list(std::string_view name, std::size_t most) const;
    [[nodiscard]] std::string placeOf(std::string_view name) const;
    /// `index`: of an element of a list of that name.
    [[nodiscard]] std::int64_t numberOf(const Json& value, std::string_view name,
                                        std::int64_t least, std::int64_t most,
                                        std::optional<std::size_t> index = std::nullopt) const;

    const Json* value_;
    std::string place_;
    mutable std::size_t next_ = 0; ///< where the last name stood; the next one stands behind it
};

/// Whether the text is `count` hexadecimal digits in lower case.
[[nodiscard]] bool isHexadecimal(std::string_view text, std::size_t count);

} // namespace zolex::companion
