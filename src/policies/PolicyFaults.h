#pragma once

#include "foundation/Report.h"

#include <utility>
#include <vector>

namespace zolex {

/// The faults of one read, reported and kept as they are found.
class PolicyFaults {
  public:
    /// `file` is the name that the faults bear. With `goOn` the read goes on after a fault.
    PolicyFaults(CString file, bool goOn, Report& report)
        : file_(std::move(file)), goOn_(goOn), report_(report) {}

    void add(Fault fault) {
        fault.place.file = file_;
        report_.fault(fault);
        list_.push_back(std::move(fault));
    }
    [[nodiscard]] bool goOn() const { return goOn_; }
    [[nodiscard]] const std::vector<Fault>& list() const { return list_; }

  private:
    CString file_;
    bool goOn_;
    Report& report_;
    std::vector<Fault> list_;
};

} // namespace zolex
