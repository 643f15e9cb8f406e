#include <cstdio>
#include <cstdlib>
#include <exception>

// The C++ library's own handler names the exception, for which it brings a demangler of names: a
// tenth of the program. Memory that has run out is caught and told by ZOLEX::main, and nothing else
// throws, so a handler of two lines does. It takes the place of the library's by its name.
void __gnu_cxx::__verbose_terminate_handler() {
    std::fputs("ZOLEX ended by an internal error.\n", stderr);
    std::fflush(nullptr);
    std::_Exit(10);
}
