#pragma once

#include "foundation/Fault.h"
#include "foundation/Report.h"

#include <vector>

namespace zolex::test {

/// Keeps the faults that it is told, and nothing else.
class FaultList : public SilentReport {
  public:
    void fault(const Fault& fault) override { faults.push_back(fault); }
    std::vector<Fault> faults;
};

} // namespace zolex::test
