// Input: a byte that chooses no machine or a sample, then a RAID configuration of Ironic. Whatever
// it says: an error has a place in it; what is read is written and read as it was; and policies
// that come of it are policies that zolex reads.

#include "companion/exchange/IronicDocument.h"
#include "companion/exchange/IronicToPolicies.h"
#include "companion/exchange/PoliciesToIronic.h"
#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "companion/support/SimulatedPlatform.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "policies/PolicyFile.h"
#include "support/Check.h"
#include "support/Input.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::fuzz {
namespace {

using namespace companion;

const std::vector<Snapshot>& samples() {
    static const std::vector<Snapshot> all = [] {
        std::vector<Snapshot> made;
        for (const std::string& name : companion::test::SimulatedPlatform::samples()) {
            companion::test::SimulatedPlatform platform(name);
            made.push_back(captureMachine(platform, {}));
        }
        return made;
    }();
    return all;
}

/// Each finding says something, and stands in the text.
void checkFindings(const std::vector<Finding>& findings, std::string_view text) {
    for (const Finding& finding : findings) {
        check(!finding.code.empty() && !finding.summary.empty(), "a finding says something");
        const auto size = static_cast<std::int64_t>(text.size());
        check(finding.start.byte >= 0 && finding.start.byte <= size && finding.end.byte <= size,
              "a finding stands in the text");
    }
}

void checkReading(std::string_view text) {
    const IronicReading reading = readIronic(text, "node.json");
    checkFindings(reading.findings, text);
    check(reading.disks.has_value() == reading.findings.empty(), "read, or a reason");
    const auto hasObjects = [](const IronicDisk& disk) { return disk.hasHintObjects; };
    if (!reading.disks || std::any_of(reading.disks->begin(), reading.disks->end(), hasObjects)) {
        return;
    }
    const std::string written = ironicDocument(*reading.disks);
    const IronicReading again = readIronic(written, "again.json");
    check(again.disks.has_value(), "what was written is read");
    check(ironicDocument(*again.disks) == written, "what was read is written as it was");
}

void checkPolicies(std::string_view text, const std::string& model, const Snapshot* machine) {
    const IronicPolicies made = policiesOf(text, {"node.json", model, machine, "1"});
    checkFindings(made.findings, text);
    const bool failed =
        std::any_of(made.findings.begin(), made.findings.end(),
                    [](const Finding& finding) { return finding.severity == Severity::error; });
    check(failed == made.text.empty(), "written, or an error");
    if (failed) {
        return;
    }
    SilentReport silent;
    check(readPolicies(made.text, ControllerCatalogue(), PolicyOptions(), silent)
              .policies.has_value(),
          "zolex reads what was written");
    if (machine != nullptr) {
        PlanRequest request;
        request.policiesFile = "node.ini";
        request.policiesText = made.text;
        const MachinePlan plan = planMachine(*machine, request);
        check(plan.isApplicable(), "what was written is planned");
        check(!ironicOf(plan, made.text).text.empty(), "and goes back to Ironic");
    }
}

void convert(Input input) {
    const std::size_t choice = input.choice() % (samples().size() + 1);
    const Snapshot* const machine = choice == 0 ? nullptr : &samples()[choice - 1];
    const std::string_view text = input.rest();
    checkReading(text);
    checkPolicies(text, machine == nullptr ? "LSI-MegaRAID-8480" : "", machine);
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::convert(zolex::fuzz::Input(data, size));
    return 0;
}
