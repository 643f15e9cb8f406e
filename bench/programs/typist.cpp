// Stands in for a utility: types the file that its arguments name, joined by "_" ("/" as "-"), from
// the folder "listings" of the current directory, after the milliseconds that the environment
// variable ZOLEX_BENCH_DELAY names. Links no library of C++, so that starting it costs as little as
// starting a program can.

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

int main(int argc, char** argv) {
    char name[256] = "listings/";
    std::size_t length = std::strlen(name);
    for (int i = 1; i < argc; ++i) {
        if (i > 1 && length + 1 < sizeof name) {
            name[length++] = '_';
        }
        for (const char* at = argv[i]; *at != '\0' && length + 1 < sizeof name; ++at) {
            name[length++] = *at == '/' ? '-' : *at;
        }
    }
    if (const char* const delay = std::getenv("ZOLEX_BENCH_DELAY"); delay != nullptr) {
        const int milliseconds = std::atoi(delay);
        const timespec time{milliseconds / 1000, milliseconds % 1000 * 1000000L};
        ::nanosleep(&time, nullptr);
    }
    const int file = ::open(name, O_RDONLY);
    if (file < 0) {
        return 1;
    }
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(file, buffer, sizeof buffer);
        if (n <= 0) {
            return n < 0 ? 1 : 0;
        }
        for (ssize_t done = 0; done < n;) {
            const ssize_t written =
                ::write(STDOUT_FILENO, buffer + done, static_cast<std::size_t>(n - done));
            if (written < 0) {
                return 1;
            }
            done += written;
        }
    }
}
