#pragma once

#include <string_view>

/// Ids of what families have to say of the caches of controllers, beside those of FamilyCodes.h.
namespace zolex::companion::family_code {

/// No logical drive is made as long as the cache keeps data of one that is not there.
inline constexpr std::string_view cachePreserved = "ZP145";

} // namespace zolex::companion::family_code
