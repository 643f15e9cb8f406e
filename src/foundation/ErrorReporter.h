#pragma once

namespace zolex {

/// What the error reporter does after it has written its text.
enum class ReportMode : int { endProcess = 0, goOn = 1, ask = 2 };

/// Categories of the error reporter, with the heading that each writes.
enum class ReportCategory : int {
    generalSystem = 1,
    generalProgram = 2,
    detailOnly = 3,
    memoryAllocation = 4,
    fileOpen = 5,
    fileRead = 6,
    fileWrite = 7,
    fileClose = 8,
    parse = 9,
    tcpIp = 10,
};

class Console;

/// Writes a framed text for `category` and `detail` on standard error; then, by mode, ends the
/// process with exit code 1, returns, or asks "Continue anyway? " and ends it unless the answer is
/// "y" or "Y". Uses no string class: it has to work when memory is short.
void reportError(ReportMode mode, ReportCategory category, const char* detail);
/// The same on a given console.
void reportError(Console& console, ReportMode mode, ReportCategory category, const char* detail);

} // namespace zolex
