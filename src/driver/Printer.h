#pragma once

#include "foundation/CString.h"
#include "foundation/Console.h"
#include "foundation/Levels.h"
#include "foundation/Report.h"

#include <cstdint>

namespace zolex {

/// The gated printers. Every text of the program goes through one of them; each is visible when the
/// call returns.
class Printer {
  public:
    explicit Printer(Console& console) : console_(console) {}

    [[nodiscard]] std::int32_t verbosity() const { return verbosity_; }
    void setVerbosity(std::int32_t verbosity) { verbosity_ = verbosity; }
    /// Whether a message of `messageLevel` is shown.
    [[nodiscard]] bool shows(std::int32_t messageLevel) const { return messageLevel <= verbosity_; }
    [[nodiscard]] bool isVerbose() const { return shows(level::detail); }

    /// The message as it is, when the level is at most the verbosity.
    void print(std::string_view message, std::int32_t messageLevel);
    /// The message as it is, at every verbosity.
    void printAlways(std::string_view message);
    /// The message at verbosity 9.
    void trace(std::string_view message);
    /// The error block: an empty line, "#### ERROR", a tab, the message and a newline.
    void errorBlock(std::string_view message);
    /// "#### DEBUG:  " and the message, no newline added.
    void debugLine(std::string_view message);

    // printf-style forms, checked by the compiler.
    ZOLEX_PRINTF(3, 4) void printf(std::int32_t messageLevel, const char* format, ...);
    ZOLEX_PRINTF(2, 3) void printfAlways(const char* format, ...);
    ZOLEX_PRINTF(2, 3) void tracef(const char* format, ...);

    [[nodiscard]] Console& console() { return console_; }

  private:
    Console& console_;
    std::int32_t verbosity_ = level::unset;
};

} // namespace zolex
