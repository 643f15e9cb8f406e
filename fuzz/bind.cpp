// Input: a byte that chooses a controller of the samples, eight that change its drives, then a
// policies file. Whatever its entries ask for: no drive is taken twice, none that is not good, and
// what it becomes is a file that zolex reads, each line made of the line that it says.

#include "companion/binding/BindingChecks.h"
#include "companion/binding/BoundPolicies.h"
#include "companion/lint/Lint.h"
#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"
#include "support/Check.h"
#include "support/Input.h"

#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

using namespace companion;

/// A controller of a sample.
struct Sampled {
    const Snapshot* snapshot;
    std::size_t detail;
};

const std::vector<Sampled>& samples() {
    static const std::vector<Snapshot> snapshots = [] {
        std::vector<Snapshot> made;
        for (const std::string& name : companion::test::SimulatedPlatform::samples()) {
            companion::test::SimulatedPlatform platform(name);
            made.push_back(captureMachine(platform, {}));
        }
        return made;
    }();
    static const std::vector<Sampled> all = [] {
        std::vector<Sampled> made;
        for (const Snapshot& snapshot : snapshots) {
            for (std::size_t i = 0; i < snapshot.details.size(); ++i) {
                made.push_back({&snapshot, i});
            }
        }
        return made;
    }();
    return all;
}

void require(const std::string& wrong) {
    check(wrong.empty(), wrong);
}

void bind(Input input) {
    const Sampled& sampled = samples()[input.choice() % samples().size()];
    Snapshot snapshot = *sampled.snapshot;
    ControllerSnapshot& controller = snapshot.details[sampled.detail];
    constexpr int changes = 8;
    for (int i = 0; i < changes; ++i) {
        companion::test::changeDrive(controller, input.choice());
    }
    const std::string text(input.rest());
    require(companion::test::wrongFaults(kindEntryFaults(text), text));
    check(companion::test::linesOfText(withoutKindEntries(text)).size() ==
              companion::test::linesOfText(text).size(),
          "each line stays");
    constexpr std::size_t mostPolicies = 4;
    for (std::size_t policy = 0; policy < mostPolicies; ++policy) {
        const RAIDController& record = *snapshot.controllers.controller(controller.index);
        require(companion::test::wrongBinding(text, policy, controller, record));
    }
    static_cast<void>(lint(scanPolicies("p.ini", text), {&snapshot}, {}));
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::bind(zolex::fuzz::Input(data, size));
    return 0;
}
