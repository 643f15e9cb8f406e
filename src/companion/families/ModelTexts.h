#pragma once

#include <span>
#include <string>
#include <string_view>

/// Types in AppliesTo entries that zolex does not know: a family ("t:STORCLI"), the text of a model
/// ("t:PERC-H755-Front"), or how such texts begin ("t:PERC-H7*").
namespace zolex::companion {

/// Whether the value of a "t:" can only be meant for a controller of a family: the name of one, the
/// beginning of a model's text, or a text that a utility may tell. Letters and digits both stand in
/// such a text, and it is none that differs from a name of zolex or of a family as a mistyped one
/// does.
[[nodiscard]] bool isFamilyType(std::string_view value);

/// Whether models are known to be called so: the name of a family, or a text that begins as those
/// of the usual brands do.
[[nodiscard]] bool isKnownFamilyType(std::string_view value);

/// How the texts of the usual brands begin: "PERC-".
[[nodiscard]] std::span<const std::string_view> modelBeginnings();

/// Whether it is the name of a family, letter case ignored. Not each of them is driven.
[[nodiscard]] bool isFamilyName(std::string_view value);

/// A model's text with every run of other characters than letters and digits as one "-", and none
/// at its ends: "PERC H755 Front" is "PERC-H755-Front".
[[nodiscard]] std::string familyModelText(std::string_view text);

/// Whether the value holds for a controller of this family, model and ids ("1000:0079:1000:9261"):
/// a model of zolex holds for a card that zolex knows by it.
[[nodiscard]] bool familyTypeHolds(std::string_view value, std::string_view family,
                                   std::string_view model, std::string_view pciIds);

} // namespace zolex::companion
