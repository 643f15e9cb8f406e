#pragma once

#include <cstdlib>
#include <string>

namespace zolex::test {

/// Sets a variable of the environment of this process and of those that it starts.
inline void setVariable(const char* name, const std::string& value) {
#ifdef _WIN32
    _putenv_s(name, value.c_str());
#else
    ::setenv(name, value.c_str(), 1);
#endif
}

} // namespace zolex::test
