#pragma once

#include "foundation/Report.h"

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex {

/// Where a fault is in a policies file.
struct PolicySpot {
    std::int32_t line = 0;
    std::int32_t column = 0;
    std::string_view section;
    std::string_view keyword;
    std::int32_t number = 0; ///< newlines before the fault
};

/// The faults of one read, reported and kept as they are found.
class PolicyFaults {
  public:
    /// `file` is the name that the faults bear. With `goOn` the read goes on after a fault.
    PolicyFaults(CString file, bool goOn, Report& report)
        : file_(std::move(file)), goOn_(goOn), report_(report) {}

    /// Always false.
    bool add(FaultKind kind, const PolicySpot& spot = {}, std::string_view wanted = {},
             std::string_view possible = {});
    [[nodiscard]] bool goOn() const { return goOn_; }
    [[nodiscard]] bool areNone() const { return list_.empty(); }
    [[nodiscard]] std::vector<Fault> take() { return std::move(list_); }

  private:
    CString file_;
    bool goOn_;
    Report& report_;
    std::vector<Fault> list_;
};

} // namespace zolex
