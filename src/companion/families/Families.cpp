#include "companion/families/Family.h"
#include "companion/families/md/MdFamily.h"
#include "companion/families/storcli/Storcli.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

std::span<const Family* const> families() {
    static const Storcli storcli;
    static const std::array<const Family*, 2> all = {&md::family(), &storcli};
    return all;
}

const Family* findFamily(std::string_view wordOrLine) {
    const std::string_view word = wordOrLine.substr(0, wordOrLine.find_first_of(" \t\r\n"));
    const auto all = families();
    const auto found = std::find_if(all.begin(), all.end(), [word](const Family* family) {
        return text::equalsNoCase(family->name(), word);
    });
    return found == all.end() ? nullptr : *found;
}

} // namespace zolex::companion
