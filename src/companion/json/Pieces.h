#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "platform/Platform.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the documents have in common; for the files of this folder alone.
namespace zolex::companion {

using Json = nlohmann::ordered_json;

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

/// The document as a text that ends with a newline. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string textOf(const Json& document);
/// The same in one line, without a newline: one of a file of JSON lines.
[[nodiscard]] std::string lineOf(const Json& document);

} // namespace zolex::companion
