#pragma once

#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <string_view>

namespace zolex::win32 {

/// Bytes of output that are taken up from one child. One that writes more stalls at the full pipe
/// until the limit, rather than filling the memory.
inline constexpr std::size_t mostOutput = std::size_t{256} << 20U;

/// Platform::runChild. `most` bounds what is taken up while the child runs; when it has ended, what
/// still stands in the pipe is taken up too.
ChildResult runChild(std::string_view commandLine, bool capture, std::chrono::milliseconds limit,
                     std::size_t most = mostOutput);

} // namespace zolex::win32
