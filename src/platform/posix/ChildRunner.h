#pragma once

#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace zolex::posix {

/// How the end of a child is noticed.
enum class Notice {
    byDescriptor, ///< through a descriptor of the process where the kernel has one, else as below
    bySlices,     ///< by asking again and again, at most 20 ms apart
};

/// Platform::runChild. The command line is split into arguments and the program looked up; a file
/// that is neither a binary nor begins with "#!" is run by /bin/sh. A child that a signal ended has
/// exit code 128 plus the signal's number. `most` bounds what is taken up while the child runs;
/// when it has ended, what still stands in the pipe is taken up too, as far as it is no more than
/// mostChildOutput. `folder` is the child's current folder; empty: this process's.
ChildResult runChild(std::string_view commandLine, bool capture, std::chrono::milliseconds limit,
                     Notice notice = Notice::byDescriptor, std::size_t most = mostChildOutput,
                     const std::string& folder = {});

} // namespace zolex::posix
