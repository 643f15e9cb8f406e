#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace zolex_sim {

using Json = nlohmann::ordered_json;

/// The first fault found in a file; empty as long as there is none.
class Problem {
  public:
    void report(const std::string& text) {
        if (text_.empty()) {
            text_ = text;
        }
    }
    [[nodiscard]] bool found() const { return !text_.empty(); }
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    std::string text_;
};

/// Parses a JSON text; comments are allowed. A fault is reported and gives null.
Json parseJson(std::string_view text, Problem& problem);

/// Reads the fields of one JSON object. A field that is missing, of the wrong kind or out of range
/// is reported with its path ("controllers[0].drives[2].slot") and read as the default or as
/// nothing. Both the object and the problem must outlive the reader.
class Fields {
  public:
    Fields(const Json& object, std::string path, Problem& problem);

    [[nodiscard]] bool has(std::string_view name);
    /// Required without a default. At most `longest` printable characters.
    std::string text(std::string_view name,
                     const std::optional<std::string>& byDefault = std::nullopt,
                     std::size_t longest = 80);
    /// Text of any characters.
    std::string anyText(std::string_view name, std::string byDefault);
    /// A JSON integer, or a text such as "0x1000".
    std::int64_t number(std::string_view name, std::int64_t least, std::int64_t greatest,
                        std::optional<std::int64_t> byDefault = std::nullopt);
    int smallNumber(std::string_view name, int least, int greatest,
                    std::optional<int> byDefault = std::nullopt);
    bool flag(std::string_view name, bool byDefault);
    /// A number up to 64 bits without a sign, as JSON integer or "0x" text.
    std::uint64_t bits(std::string_view name, std::uint64_t greatest, std::uint64_t byDefault);
    /// One of a set of words, made into a value by `named` (which gives nothing for other words).
    template <typename Value, typename Named>
    Value word(std::string_view name, Named named, std::optional<Value> byDefault = std::nullopt) {
        if (byDefault && !has(name)) {
            return *byDefault;
        }
        const std::string value = text(name);
        const auto found = named(value);
        if (!found && !problem_.found()) {
            complain(name, "unknown word \"" + value + "\"");
        }
        return found ? static_cast<Value>(*found) : Value{};
    }
    /// Calls read(item, path) for each item of a list; a missing list is an empty one.
    void list(std::string_view name, const std::function<void(const Json&, std::string)>& read);
    /// Calls read(fields) for an object; a missing one is skipped unless required.
    void object(std::string_view name, bool required, const std::function<void(Fields&)>& read);

    /// Reports a field that nobody asked for. Call it last.
    void finish();

    void complain(std::string_view name, const std::string& text);
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] Problem& problem() { return problem_; }

  private:
    const Json* find(std::string_view name);
    [[nodiscard]] std::string pathOf(std::string_view name) const;

    const Json& object_;
    std::string path_;
    Problem& problem_;
    std::set<std::string, std::less<>> asked_;
};

} // namespace zolex_sim
