#pragma once

#include "companion/facts/Facts.h"
#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "platform/Platform.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the documents have in common; for the files of this folder alone.
namespace zolex::companion {

using Json = nlohmann::ordered_json;

/// Makes an object name by name, in this order. Each name is given once.
class ObjectMaker {
  public:
    explicit ObjectMaker(std::size_t names) { object_.reserve(names); }
    /// Adds a name with its value.
    ObjectMaker& operator()(const char* name, Json value) {
        object_.emplace_back(name, std::move(value));
        return *this;
    }
    [[nodiscard]] Json make() { return Json(std::move(object_)); }

  private:
    Json::object_t object_;
};

/// The beginning of a document: format, format_version, tool, made_at.
[[nodiscard]] Json documentOf(std::string_view format, const DocumentHead& head);

/// "no-pipe", "not-started", "still-running", "ended", "not-closed".
[[nodiscard]] std::string_view outcomeWord(ChildOutcome outcome);
/// "zolex", "plan", "utility"; empty for nobody.
[[nodiscard]] std::string_view refusedByWord(RefusedBy refusedBy);

/// {code, severity, refused_by, summary, detail, help, range}; range is null without a place.
[[nodiscard]] Json diagnosticOf(const Finding& finding);
[[nodiscard]] Json diagnosticsOf(const std::vector<Finding>& findings);

/// The text, null for an empty one.
[[nodiscard]] Json orNull(std::string_view text);
/// The number, null when there is none and when it is beyond 2^53: not every reader of JSON keeps
/// such a number exact, and no size or count is one.
template <typename Number>
[[nodiscard]] Json orNull(const std::optional<Number>& number) {
    constexpr auto most = std::int64_t{1} << 53U;
    return number && !std::cmp_greater(*number, most) ? Json(*number) : Json(nullptr);
}

/// "OK", "Warning", "Critical"; null when not known.
[[nodiscard]] Json healthOf(Health health);

/// The document as a text that ends with a newline. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string textOf(const Json& document);
/// The same of a document whose array `name`, empty as yet, gets `count` elements. They are made
/// one after another, so that a large document is never in memory but as its text.
[[nodiscard]] std::string textOf(const Json& document, std::string_view name, std::size_t count,
                                 const std::function<Json(std::size_t)>& element);
/// The same in one line, without a newline: one of a file of JSON lines.
[[nodiscard]] std::string lineOf(const Json& document);

} // namespace zolex::companion
