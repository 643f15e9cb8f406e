#include "companion/planning/Diff.h"
namespace zolex::companion {
MachineDiff diffOf(const MachinePlan& plan) { MachineDiff d; for (auto& c : plan.controllers) { ControllerDiff x; x.number=c.controller.number; x.model=c.controller.model; x.comparison=c.comparison; x.result=c.disposition==Disposition::already?ControllerDiff::Result::same: ControllerDiff::Result::different; d.controllers.push_back(x);} return d; }
MachineDiff diffOf(const Snapshot&, const MachinePlan& plan) { return diffOf(plan); }
std::string_view diffResultWord(ControllerDiff::Result) { return "stub"; }
}
