#include "companion/commands/FileKind.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace zolex::companion {

FileKind fileKindOf(std::string_view begin) {
    // The first line of a journal that was cut has nothing but its begin.
    constexpr std::string_view firstLine = R"({"seq":1,"at":)";
    constexpr std::array<std::pair<std::string_view, FileKind>, 3> formats = {
        {{"\"zolex-plan\"", FileKind::plan},
         {"\"zolex-journal\"", FileKind::journal},
         {"\"zolex-certificate\"", FileKind::certificate}}};
    FileKind kind = begin.starts_with(firstLine) ? FileKind::journal : FileKind::other;
    std::size_t first = begin.size();
    for (const auto& [format, formatKind] : formats) {
        const std::size_t at = begin.find(format);
        if (at < first) {
            first = at;
            kind = formatKind;
        }
    }
    return kind;
}

FileKind fileKindOf(Platform& platform, const std::string& file) {
    constexpr std::size_t headBytes = 256;
    const std::unique_ptr<File> opened = platform.files().open(file, "r");
    if (!opened) {
        return FileKind::other;
    }
    std::array<char, headBytes> head{};
    const std::size_t count = opened->read(head);
    return fileKindOf(std::string_view(head.data(), count));
}

} // namespace zolex::companion
