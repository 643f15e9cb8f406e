#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentValues.h"
#include "foundation/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// What readers of documents have in common; for the files of this folder alone.
namespace zolex::companion {

/// Major and minor number of a format.
struct FormatVersion {
    std::int32_t major = 0;
    std::int32_t minor = 0;
};

/// Throws for what is no document of the format, and for a version of which this program knows
/// nothing. `what` is what it should be, for people: "plan".
FormatVersion checkFormat(const Part& document, std::string_view format, std::string_view what);

/// The code of each kind of fault, for one format.
struct DocumentCodes {
    std::string_view unreadable;
    std::string_view otherDocument;
    std::string_view otherVersion;
    std::string_view broken;
    std::string_view wrong;
    std::string_view tooLarge;

    [[nodiscard]] std::string_view of(DocumentFault::Kind kind) const;
};

/// The fault as a finding in a file, with its place in the text where it has one.
[[nodiscard]] Finding findingOf(const DocumentFault& fault, const DocumentCodes& codes,
                                std::string_view text, std::string_view fileName);
/// An error in a file, without a place.
[[nodiscard]] Finding fileFinding(std::string_view fileName, std::string_view code,
                                  std::string summary);
[[nodiscard]] Finding tooLargeFinding(std::string_view fileName, const DocumentCodes& codes,
                                      std::size_t mostBytes);

/// The bytes of a file, or why there are none.
struct FileBytes {
    std::string text;
    std::vector<Finding> findings; ///< at most one: an error
};
[[nodiscard]] FileBytes readBytes(FileSystem& files, const std::string& name,
                                  const DocumentCodes& codes, std::size_t mostBytes);

} // namespace zolex::companion
