#include "foundation/Console.h"

#include <cstddef>
#include <cstdio>

namespace zolex {

namespace {

void write(std::FILE* stream, std::string_view text) {
#ifdef _WIN32
    // The stream writes each line feed as CR LF. Line ends that are CR LF already (the output of
    // children) lose their CR first, or they would come out as CR CR LF.
    for (std::size_t end = text.find("\r\n"); end != std::string_view::npos;
         end = text.find("\r\n")) {
        std::fwrite(text.data(), 1, end, stream);
        text.remove_prefix(end + 1);
    }
#endif
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

} // namespace

void StandardConsole::writeOutput(std::string_view text) {
    write(stdout, text);
}

void StandardConsole::writeError(std::string_view text) {
    write(stderr, text);
}

int StandardConsole::readCharacter() {
    return std::fgetc(stdin);
}

} // namespace zolex
