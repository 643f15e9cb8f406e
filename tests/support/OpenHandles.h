#pragma once

#ifdef _WIN32

#include <cstdint>
#include <windows.h>

namespace zolex::test {

/// Open handles of this process that `isCounted` takes, given the handle and its flags. The handles
/// are looked for one by one: an emulator need not keep count of them.
template <typename Predicate>
int countHandles(Predicate isCounted) {
    constexpr std::uintptr_t highest = 16384;
    int count = 0;
    for (std::uintptr_t value = 4; value < highest; value += 4) {
        DWORD flags = 0;
        auto* const handle = reinterpret_cast<HANDLE>(value);
        if (GetHandleInformation(handle, &flags) != 0 && isCounted(handle, flags)) {
            ++count;
        }
    }
    return count;
}

inline int openHandles() {
    return countHandles([](HANDLE, DWORD) { return true; });
}

} // namespace zolex::test

#endif
