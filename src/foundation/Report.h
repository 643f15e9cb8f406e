#pragma once

#include "foundation/Fault.h"
#include "foundation/Levels.h"

#include <cstdint>
#include <string_view>

namespace zolex {

/// printf formats are checked by the compiler; `formatAt` counts the object itself.
#if defined(__MINGW32__)
#define ZOLEX_PRINTF(formatAt, valuesAt) [[gnu::format(gnu_printf, formatAt, valuesAt)]]
#else
#define ZOLEX_PRINTF(formatAt, valuesAt) [[gnu::format(printf, formatAt, valuesAt)]]
#endif

/// The only thing that the core tells anybody. Faults come as values, in the order in which they
/// are found; notes and traces are texts in the order of the work. Whoever stands behind it decides
/// what is shown, kept or dropped.
class Report {
  public:
    virtual ~Report() = default;

    virtual void fault(const Fault& fault) = 0;
    /// A text for a reader of the run. It is to be shown when `level` is at most the verbosity.
    virtual void note(std::int32_t level, std::string_view text) = 0;
    /// A text for a developer.
    virtual void trace(std::string_view text) = 0;
    /// Whether a note of this level is used at all; building one that is not can be left out.
    [[nodiscard]] virtual bool shows(std::int32_t level) const = 0;

    ZOLEX_PRINTF(3, 4) void notef(std::int32_t level, const char* format, ...);
    ZOLEX_PRINTF(2, 3) void tracef(const char* format, ...);
};

/// Keeps nothing.
class SilentReport : public Report {
  public:
    void fault(const Fault& /*fault*/) override {}
    void note(std::int32_t /*level*/, std::string_view /*text*/) override {}
    void trace(std::string_view /*text*/) override {}
    [[nodiscard]] bool shows(std::int32_t /*level*/) const override { return false; }
};

} // namespace zolex
