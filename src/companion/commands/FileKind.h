#pragma once

#include "platform/Platform.h"

#include <string>
#include <string_view>

namespace zolex::companion {

/// What a file is by the way it begins, whatever its name.
enum class FileKind { other, plan, journal, certificate };

/// FileKind::other for a file that cannot be read, too.
[[nodiscard]] FileKind fileKindOf(Platform& platform, const std::string& file);
/// The same of the bytes that a file begins with.
[[nodiscard]] FileKind fileKindOf(std::string_view begin);

} // namespace zolex::companion
