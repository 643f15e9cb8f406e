#include "foundation/Console.h"

#include <cstdio>

namespace zolex {

namespace {

// A text stream of this system writes each line feed as CR LF. Line ends that are CR LF already
// (the output of children) would come out as CR CR LF.
#ifdef _WIN32
constexpr bool foldsLineEnds = true;
#else
constexpr bool foldsLineEnds = false;
#endif

void write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

void write(std::FILE* stream, std::string_view text, LineEndFolder& folder) {
    if constexpr (foldsLineEnds) {
        write(stream, folder.fold(text));
    } else {
        write(stream, text);
    }
}

} // namespace

std::string LineEndFolder::fold(std::string_view piece) {
    std::string folded;
    folded.reserve(piece.size() + 1);
    for (const char c : piece) {
        if (holdsReturn_ && c != '\n') {
            folded += '\r';
        }
        holdsReturn_ = c == '\r';
        if (!holdsReturn_) {
            folded += c;
        }
    }
    return folded;
}

std::string LineEndFolder::finish() {
    std::string held(holdsReturn_ ? "\r" : "");
    holdsReturn_ = false;
    return held;
}

StandardConsole::~StandardConsole() {
    write(stdout, output_.finish());
    write(stderr, error_.finish());
}

void StandardConsole::writeOutput(std::string_view text) {
    write(stdout, text, output_);
}

void StandardConsole::writeError(std::string_view text) {
    write(stderr, text, error_);
}

int StandardConsole::readCharacter() {
    return std::fgetc(stdin);
}

} // namespace zolex
