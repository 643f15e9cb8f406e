#include "companion/text/TypedWord.h"

namespace zolex::companion {

std::string typedWord(const std::string& word) {
    const bool isPlain = !word.empty() && word.find_first_of(" \t&|;<>()*?'#") == std::string::npos;
    return isPlain ? word : "\"" + word + "\"";
}

} // namespace zolex::companion
