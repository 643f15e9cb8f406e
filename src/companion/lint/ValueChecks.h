#pragma once

#include "companion/lint/FindingSink.h"
#include "companion/lint/PolicyDocument.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The checks of group 1, for one policy each: values that zolex refuses, and what it takes in
/// another sense than was meant.
namespace zolex::companion {

/// ZX101: keywords whose value is one of a few words.
void checkWords(const DocumentPolicy& policy, FindingSink& sink);
/// ZX102.
void checkArrayDefaults(const DocumentPolicy& policy, FindingSink& sink);
/// ZX103.
void checkMaxLogicalDriveSize(const DocumentPolicy& policy, FindingSink& sink);
/// ZX104, ZX105, and of arrays ZX107 and ZX108.
void checkDriveLists(const DocumentPolicy& policy, FindingSink& sink);
/// ZX106, ZX109, ZX110, and of logical drives ZX107.
void checkLogicalDrives(const DocumentPolicy& policy, FindingSink& sink);

/// Whether the policy has keywords that zolexctl alone knows: what it lacks then is not known.
[[nodiscard]] bool hasLaterKeyword(const DocumentPolicy& policy);

/// The text in quotation marks, cut after 40 bytes.
[[nodiscard]] std::string quoted(std::string_view text);
/// Where an empty item of a list with commas is: "between two commas", "behind the last comma".
[[nodiscard]] std::string commaWords(const Piece& list, const Piece& item);
/// Help for a value that holds a ";": no comment stands behind a value. Empty without a ";".
[[nodiscard]] std::vector<std::string> commentHelp(std::string_view value);

/// A field of a value between colons: zolex takes it with the blanks around it.
struct ColonField {
    std::string_view raw;     ///< with its blanks
    std::string_view trimmed; ///< without
    std::size_t at = 0;       ///< byte of `raw` in the value

    [[nodiscard]] bool hasBlanks() const { return raw.size() != trimmed.size(); }
    /// Where the trimmed text is in the value; the whole field when it is empty.
    [[nodiscard]] Piece piece(const Piece& value) const;
    /// The first of the blanks around it.
    [[nodiscard]] Piece blanks(const Piece& value) const;
};

/// The fields point into the value's text.
[[nodiscard]] std::vector<ColonField> colonFields(const Piece& value);

/// What is said of a field whose value `parse` does not take: ZX111 when the blanks around it are
/// the cause.
template <typename Parse>
[[nodiscard]] bool isBlanksFault(const ColonField& field, Parse parse) {
    return field.hasBlanks() && parse(field.trimmed);
}
/// ZX111 at the blanks of a field.
void addBlanks(FindingSink& sink, const Piece& value, const ColonField& field);

} // namespace zolex::companion
