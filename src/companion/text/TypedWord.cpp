#include "companion/text/TypedWord.h"

namespace zolex::companion {

std::string typedWord(const std::string& word) {
    return word.find_first_of(" \t&;|<>()'") == std::string::npos ? word : "\"" + word + "\"";
}

} // namespace zolex::companion
