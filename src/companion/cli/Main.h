#pragma once

namespace zolex {
class Platform;
}

namespace zolex::companion {

/// The program zolexctl up to its exit code.
int runProgram(int argc, const char* const* argv, Platform& platform);

} // namespace zolex::companion
