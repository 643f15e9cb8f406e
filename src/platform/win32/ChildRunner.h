#pragma once

#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace zolex::win32 {

/// Platform::runChild. `most` bounds what is taken up while the child runs; when it has ended, what
/// still stands in the pipe is taken up too, as far as it is no more than mostChildOutput. `folder`
/// is the child's current folder; empty: this process's.
ChildResult runChild(std::string_view commandLine, bool capture, std::chrono::milliseconds limit,
                     std::size_t most = mostChildOutput, const std::string& folder = {});

} // namespace zolex::win32
