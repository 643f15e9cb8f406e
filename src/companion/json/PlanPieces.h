#pragma once

#include "companion/json/DocumentValues.h"
#include "companion/planning/Plan.h"

#include <string_view>

/// The parts of reading a plan; for the files of this folder alone. They throw DocumentFault.
namespace zolex::companion {

/// In a diagnostic of the whole plan: the number of the controller whose diagnostic it repeats,
/// null when it is one of the policies.
inline constexpr const char* repeatedFrom = "controller";

// Bounds of one plan.
inline constexpr std::size_t mostPlanControllers = 128;
inline constexpr std::size_t mostPlanDrives = 4096; ///< of a controller; of its arrays too
inline constexpr std::size_t mostPlanSteps = 65536;
inline constexpr std::size_t mostPlanArguments = 1024;
inline constexpr std::size_t mostPlanLines = 16384; ///< of texts, diagnostics, policies

/// A text that may be left out; empty then.
[[nodiscard]] std::string textIfTold(const Part& part, std::string_view name);
[[nodiscard]] Fingerprint readFingerprint(const Part& part);
[[nodiscard]] std::vector<Finding> readDiagnostics(const Part& part, std::string_view name);
[[nodiscard]] MachineDrive readDrive(const Part& part);
/// The controller and its drives, without a layout.
[[nodiscard]] ControllerSnapshot readPlanController(const Part& part);
[[nodiscard]] Layout readLayout(const Part& part);
/// Differences and what stands beside them; nothing of the groups.
[[nodiscard]] Comparison readComparison(const Part& part);
/// Gives the controller of a plan the logical drives and arrays of the layout that stands.
void addStandingLayout(const Layout& before, ControllerSnapshot& controller);

/// Checks what one part of a controller says of another: places that are among its drives, arrays
/// that are there, and the like. `part` is the controller.
void checkPlanning(const ControllerPlanning& planning, const Part& part);
/// The same of the whole plan. `part` is the document.
void checkPlan(const MachinePlan& plan, const Part& part);

} // namespace zolex::companion
