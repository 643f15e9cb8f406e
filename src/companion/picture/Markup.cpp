#include "companion/picture/Markup.h"

#include "companion/text/Terminal.h"

namespace zolex::companion {

namespace {

/// Whether U+FFFE or U+FFFF stands here; these are valid UTF-8, but no characters of XML.
bool isForbidden(std::string_view text, std::size_t at) {
    const std::string_view three = text.substr(at, 3);
    return three == "\xEF\xBF\xBE" || three == "\xEF\xBF\xBF";
}

} // namespace

std::string escaped(std::string_view text) {
    const std::string clean = printable(text);
    std::string result;
    result.reserve(clean.size());
    for (std::size_t i = 0; i < clean.size(); ++i) {
        switch (clean[i]) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            if (isForbidden(clean, i)) {
                result += '?';
                i += 2;
            } else {
                result += clean[i];
            }
        }
    }
    return result;
}

} // namespace zolex::companion
