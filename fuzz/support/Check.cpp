#include "support/Check.h"

#include <cstdio>
#include <cstdlib>

namespace zolex::fuzz {

void check(bool holds, std::string_view what) {
    if (!holds) {
        std::fprintf(stderr, "==CHECK FAILED== %.*s\n", static_cast<int>(what.size()), what.data());
        std::abort();
    }
}

} // namespace zolex::fuzz
