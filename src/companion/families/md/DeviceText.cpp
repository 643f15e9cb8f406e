#include "companion/families/md/DeviceText.h"

#include <algorithm>

namespace zolex::companion::md {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks(" \t\r\n\0", 5);
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos
               ? std::string_view()
               : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string_view baseName(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::vector<std::string_view> parts(std::string_view text, std::string_view separators) {
    std::vector<std::string_view> found;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(separators), text.size());
        if (end != 0) {
            found.push_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return found;
}

std::string unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::optional<unsigned> code =
            text[i] == '\\' ? numberIn<unsigned>(text.substr(i + 1, 3), 8) : std::nullopt;
        if (code && *code < 256 && text.size() - i > 3) {
            plain += static_cast<char>(*code);
            i += 3;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

} // namespace zolex::companion::md
