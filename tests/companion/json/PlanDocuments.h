#pragma once

#include "companion/json/PlanDocument.h"
#include "companion/planning/Steps.h"
#include "companion/support/ExamplePlan.h"

#include <string>

/// What the tests of documents of plans share.
namespace zolex::companion::test {

inline const DocumentHead& planHead() {
    static const DocumentHead head{{"plan", "site.ini", "-o", "plan.json"},
                                   "2026-11-21T21:05:00+01:00"};
    return head;
}

/// The example plan, with the consent code of what it destroys.
inline MachinePlan agreedPlan() {
    MachinePlan plan = examplePlan();
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    return plan;
}

/// A plan in which every list has an element and every value that may be missing is told, on two
/// controllers; the second is skipped.
inline MachinePlan fullPlan() {
    MachinePlan plan = agreedPlan();
    ControllerPlanning& planning = plan.controllers[0];
    for (std::int32_t i = 0; i < 3; ++i) {
        MachineDrive& drive = planning.controller.drives[static_cast<std::size_t>(i)];
        drive.facts.channel = 1;
        drive.facts.temperatureCelsius = i == 0 ? -5 : 41;
        drive.facts.capacityTolerance = 1000;
    }
    planning.before.spares = {{"32:7", {}, true, false}};
    planning.before.foreignDrives = {"32:5"};
    planning.bindings = {{"Drives.B",
                          26,
                          "5 x HDD",
                          "Array.B = 3,4,5,6,7",
                          {{"32:2", "by-kind", "HDD, 67.8 GB: the first of 5"}},
                          "they are of one size"}};
    planning.comparison.equivalences = {"an equivalence"};
    planning.comparison.notComparable = {"strip_size_bytes"};
    planning.comparison.health = {"LD 0 is degraded: 32:1 failed"};
    planning.diagnostics = {exampleFinding("ZX702", Severity::warning, "a warning")};
    planning.losses.push_back({1, "hotspare", "32:7", "", {"32:7"}, 69376 * mb, "Hotspare"});
    planning.losses.push_back({1, "foreign", "32:5", "", {"32:5"}, 0, ""});
    planning.steps[1].isRepeatable = true;
    planning.steps[1].pauseBeforeSeconds = 15;
    planning.steps[1].acceptedExitCodes = {0, 4};
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    Finding found = exampleFinding("ZX110", Severity::warning, "a second \"Array.A\"");
    found.file = "site.ini";
    found.start = {30, 1, 700};
    found.end = {30, 8, 707};
    found.other = "the first one";
    found.otherStart = {25, 1, 600};
    found.otherEnd = {25, 8, 607};
    plan.policiesFindings = {found};
    plan.diagnostics = {exampleFinding("ZP116", Severity::note, "a note")};
    plan.accepted = {"ZX701"};
    plan.coreMessages = {"A message of the core."};
    plan.rehearsal.notDoneBecause = {"not rehearsed: controller 2 has no plan"};
    ControllerPlanning skipped;
    skipped.controller = planning.controller;
    skipped.controller.number = 2;
    skipped.controller.model.clear();
    skipped.disposition = Disposition::skipped;
    skipped.because = "no policy is for this controller";
    skipped.considered = exampleMatches();
    plan.controllers.push_back(skipped);
    return plan;
}

} // namespace zolex::companion::test
