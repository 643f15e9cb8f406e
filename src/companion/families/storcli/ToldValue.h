#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

/// A value of a JSON text that a utility printed. Utilities differ in what they write as a number
/// and what as a text, put blanks around keys and values, and leave out what they do not know:
/// whatever is asked of a value has an answer, and nothing here throws.
class ToldValue {
  public:
    enum class Kind { absent, word, list, object };

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] bool isThere() const { return kind_ != Kind::absent; }
    [[nodiscard]] bool isObject() const { return kind_ == Kind::object; }

    /// The member of this key, blanks at its ends aside; one that is absent where there is none.
    [[nodiscard]] const ToldValue& at(std::string_view key) const;
    /// The first of these keys that is there.
    [[nodiscard]] const ToldValue& atAny(std::initializer_list<std::string_view> keys) const;
    [[nodiscard]] const std::vector<std::pair<std::string, ToldValue>>& members() const {
        return members_;
    }
    [[nodiscard]] const std::vector<ToldValue>& items() const { return items_; }

    /// A text, number or truth as it is written, without blanks at its ends and with control bytes
    /// turned into blanks; empty for all else.
    [[nodiscard]] std::string text() const;
    /// The same, empty for the "-", "N/A", "NA" and "None" that stand where nothing is to be said.
    [[nodiscard]] std::string toldText() const;
    /// A whole number that is not negative, or a text that begins with one: 12 of "12" and "12 %".
    [[nodiscard]] std::optional<std::uint64_t> number() const;
    /// The same of at most nine digits.
    [[nodiscard]] std::optional<std::int32_t> smallNumber() const;
    /// A number, decimal, or hexadecimal behind "0x".
    [[nodiscard]] std::optional<std::uint32_t> id() const;
    /// "Yes", "Y", "On", true; nothing where neither that nor the contrary is told.
    [[nodiscard]] std::optional<bool> truth() const;

    /// Texts and numbers in this value, and how many of them were asked for.
    struct Count {
        std::size_t all = 0;
        std::size_t used = 0;
    };
    [[nodiscard]] Count count() const;

  private:
    friend class ToldValueBuilder;

    Kind kind_ = Kind::absent;
    std::string word_;
    std::vector<ToldValue> items_;
    std::vector<std::pair<std::string, ToldValue>> members_;
    mutable bool isUsed_ = false;
};

/// A JSON text that was read.
struct ToldJson {
    ToldValue value;
    bool isJson = false;
    std::string fault;                   ///< why it is none: "ends too early", "deeper than 64"
    std::vector<std::string> duplicates; ///< keys that stand twice in one object: the first counts
};

/// Values lie at most so deep, in texts of at most so many bytes.
inline constexpr std::size_t mostToldDepth = 64;
inline constexpr std::size_t mostToldBytes = std::size_t{64} << 20U;

[[nodiscard]] ToldJson readToldJson(std::string_view text);

} // namespace zolex::companion
