#include <windows.h>

// The compiler's thread library imports GetTickCount64 for waits with a time limit. Nothing here
// waits so, but the import alone keeps the program from starting on Windows before 6.0. What it
// would be called through is defined here, so that nothing is imported.
extern "C" {

static ULONGLONG WINAPI tickCount() {
    return GetTickCount();
}

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's name
extern ULONGLONG(WINAPI* const __imp_GetTickCount64)();
ULONGLONG(WINAPI* const __imp_GetTickCount64)() = tickCount;
// NOLINTEND(bugprone-reserved-identifier)

} // extern "C"
