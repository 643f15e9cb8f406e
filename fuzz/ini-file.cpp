#include "foundation/IniFile.h"
#include "foundation/Text.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

/// The lines of the first text are added to the file that follows; then everything is looked up,
/// written back and read again.
void useIniFile(Input input) {
    const std::string_view added = input.text();
    test::FakePlatform platform;
    auto& files = platform.fileFake.files;
    files["file.ini"] = input.rest();
    std::vector<CString> lines;
    {
        IniFile file(platform.fileFake, "file.ini", true);
        for (std::size_t i = 0; i < 16; ++i) {
            const std::string_view line = text::token(added, "\n", i);
            if (!line.empty()) {
                check(file.addLine(line), "a line is added");
            }
        }
        lines = file.lines();
        CString section;
        for (const CString& line : lines) {
            if (line.startsWith("[")) {
                section = line.mid(1).token("]", 0);
            }
            const CString key = line.token("=", 0).trim();
            const CString value = file.readString(section, key, "absent");
            check(!value.contains("\n"), "a value is of one line");
            check(value == file.readString(section.upper(), key.lower(), "absent"),
                  "letter case does not matter");
            file.readInteger(section, key, 7);
        }
        check(file.writeBack(), "the file is written");
    }
    const std::string first = files["file.ini"];
    // A carriage return at the end of a line belongs to the line end when the file is read.
    if (first.find("\r\n") == std::string::npos) {
        IniFile again(platform.fileFake, "file.ini", true);
        check(again.lines() == lines, "what was written is what was held");
        check(again.writeBack() && files["file.ini"] == first, "writing again changes nothing");
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::useIniFile(zolex::fuzz::Input(data, size));
    return 0;
}
