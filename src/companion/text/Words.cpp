#include "companion/text/Words.h"

#include "foundation/Text.h"

namespace zolex::companion {

std::string joined(const std::vector<std::string>& pieces, std::string_view separator) {
    std::string text;
    for (const std::string& piece : pieces) {
        text.append(text.empty() ? "" : separator).append(piece);
    }
    return text;
}

std::string lettersAndDigits(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const char lower = text::lower(c);
        if ((lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9')) {
            result += lower;
        }
    }
    return result;
}

} // namespace zolex::companion
