#pragma once

#include "companion/text/Terminal.h"

#include <stdexcept>
#include <string>
#include <string_view>

namespace zolex::companion {

/// What keeps a controller from being copied, for people.
class NoCopy : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// How people are told of a text from a listing.
inline std::string quotedText(std::string_view text) {
    constexpr std::size_t longest = 60;
    return "\"" + printable(text.substr(0, longest)) + "\"";
}

} // namespace zolex::companion
