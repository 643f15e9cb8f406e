#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

/// What tests of long texts share.
namespace zolex::companion::test {

/// The text with `to` in the place of the first `from`, which stands in it.
inline std::string replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

/// The lines of the text from `begin` up to the one that starts with `end`.
inline std::string between(const std::string& text, const std::string& begin,
                           const std::string& end) {
    const std::size_t at = text.find(begin);
    const std::size_t stop = at == std::string::npos ? at : text.find("\n" + end, at);
    return stop == std::string::npos ? "no " + begin : text.substr(at, stop + 1 - at);
}

} // namespace zolex::companion::test
