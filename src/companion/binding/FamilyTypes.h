#pragma once

#include "companion/families/ModelTexts.h"

#include <string>
#include <string_view>

/// Policies files with types that zolex does not know.
namespace zolex::companion {

/// Whether some entry of the file asks for such a type.
[[nodiscard]] bool hasFamilyTypes(std::string_view text);

/// The file with entries in the place of those that match none of the controllers that zolex knows,
/// each line where it was.
[[nodiscard]] std::string withoutFamilyTypes(std::string_view text);

} // namespace zolex::companion
