#pragma once

#include "foundation/IniFile.h"

#include <string>
#include <vector>

namespace zolex::test {

inline constexpr const char* iniName = "contlist.ini";
/// What reading a key gives that is not there.
inline constexpr const char* absentValue = "<absent>";

inline std::vector<std::string> linesOf(const IniFile& ini) {
    std::vector<std::string> lines;
    for (const CString& line : ini.lines()) {
        lines.emplace_back(line.view());
    }
    return lines;
}

} // namespace zolex::test
