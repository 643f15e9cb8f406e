#include "companion/picture/Markup.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(Markup, TextsFromOutsideAreHarmless) {
    struct {
        std::string_view text;
        const char* escaped;
    } const rows[] = {
        {"", ""},
        {"NV73455S 1\xC3\xA4", "NV73455S 1\xC3\xA4"},
        {"<b a='1' c=\"2\">&amp;</b>",
         "&lt;b a=&#39;1&#39; c=&quot;2&quot;&gt;&amp;amp;&lt;/b&gt;"},
        {"]]>", "]]&gt;"},
        // Control characters, of which XML forbids most.
        {std::string_view("a\0b\x01\x08\t\n\x1F\x7F", 9), "a?b??????"},
        {"\xC2\x80\xC2\x9F", "??"},
        // What is no UTF-8: a lone byte, a cut character, an overlong one, a surrogate.
        {"\xFF\xC3", "??"},
        {"\xE2\x82", "??"},
        {"\xC0\xAF", "??"},
        {"\xED\xA0\x80", "???"},
        // U+FFFE and U+FFFF are UTF-8, but no characters of XML; U+FFFD and U+1FFFF are.
        {"\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD", "??\xEF\xBF\xBD"},
        {"\xF0\x9F\xBF\xBF", "\xF0\x9F\xBF\xBF"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(escaped(row.text), row.escaped);
    }
}

} // namespace
} // namespace zolex::companion
