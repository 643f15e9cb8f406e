#include "companion/binding/BoundPolicies.h"

#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"
#include "policies/PolicyFile.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

TEST(Bind, Smoke) {
    for (const std::string& name : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(name);
        const Snapshot snapshot = captureMachine(platform, {});
        for (const ControllerSnapshot& c : snapshot.details) {
            const BoundPolicies b =
                bindPolicy("; x\n[Policy.a]\nAppliesTo.1 = ALL\nDrives.A = all any size\nLevel.A = 6 else 5 else 10 else 1 else 0 else VOLUME", 0, c,
                           *snapshot.controllers.controller(c.index));
            printf("%s\n", name.c_str());
            for (const auto& f : b.faults) printf("F %s %s:%d %d %d %s | %s\n", f.code.c_str(), f.keyword.c_str(), f.line, f.column, f.endColumn, f.what.c_str(), f.help.c_str());
            printf("%s\n", b.text.c_str());
            for (const auto& f : b.bindings) { printf("B %s -> %s %s\n", f.keyword.c_str(), f.becomes.c_str(), f.why.c_str());
            for (const auto& d : f.drives) printf("   %s %s %s\n", d.location.c_str(), d.code.c_str(), d.why.c_str());}
        }
    }
}

} // namespace
} // namespace zolex::companion
