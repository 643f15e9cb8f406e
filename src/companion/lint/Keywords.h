#pragma once

#include "companion/text/NearestWord.h"

#include <optional>
#include <string>
#include <string_view>

/// The keywords of policies, as the linter knows them.
namespace zolex::companion {

/// Whether a policy may hold this keyword, letter case ignored.
[[nodiscard]] bool isKnownKeyword(std::string_view keyword);
/// Whether it is a keyword of zolexctl alone (`Drives.A`, `Spares`, `Level.B`): zolex refuses it.
[[nodiscard]] bool isLaterKeyword(std::string_view keyword);
/// Whether the text behind `t:` is a family or model that zolexctl alone knows.
[[nodiscard]] bool isLaterModel(std::string_view model);

/// The keyword as it is usually written; nothing for an unknown one.
[[nodiscard]] std::optional<std::string> usualSpelling(std::string_view keyword);
/// The known keyword that a mistyped one is most like; nothing when none is near.
[[nodiscard]] std::optional<std::string> nearestKeyword(std::string_view text);
/// What can be said of an unknown keyword that is near none.
[[nodiscard]] std::string keywordHelp(std::string_view keyword);

} // namespace zolex::companion
