#pragma once

#include <string>
#include <vector>

namespace zolex::companion {

/// What every document tells of its making, beside its format.
struct DocumentHead {
    std::vector<std::string> argv; ///< arguments of zolexctl
    std::string madeAt;            ///< RFC 3339 with offset
};

} // namespace zolex::companion
