// Input: a byte that chooses a controller of the samples, eight that change its drives, then a
// policies file. Whatever its entries ask for: no drive is taken twice, none that is not good, and
// what it becomes is a file that zolex reads, each line made of the line that it says.

#include "companion/binding/BoundPolicies.h"
#include "companion/binding/KindEntries.h"
#include "companion/lint/Lint.h"
#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"
#include "policies/PolicyFile.h"
#include "support/Check.h"
#include "support/Input.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <string_view>
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
    static const std::vector<Sampled> all = [] {
        std::vector<Sampled> made;
        for (const std::string& name : companion::test::SimulatedPlatform::samples()) {
            companion::test::SimulatedPlatform platform(name);
            const auto* const snapshot = new Snapshot(captureMachine(platform, {}));
            for (std::size_t i = 0; i < snapshot->details.size(); ++i) {
                made.push_back({snapshot, i});
            }
        }
        return made;
    }();
    return all;
}

/// Some drives become others: solid state, larger, failed, foreign, of no state that is known.
void change(ControllerSnapshot& controller, Input& input) {
    constexpr int changes = 8;
    for (int i = 0; i < changes; ++i) {
        const std::uint8_t choice = input.choice();
        if (controller.drives.empty() || choice == 0) {
            continue;
        }
        DriveFacts& facts = controller.drives[(choice >> 3U) % controller.drives.size()].facts;
        switch (choice % 8) {
        case 0:
        case 1:
            facts.mediaType = "SSD";
            break;
        case 2:
            facts.mediaType = "SSD";
            facts.protocol = "SATA";
            facts.capacityBytes = std::uint64_t{480} * 1000 * 1000 * 1000;
            break;
        case 3:
            facts.capacityBytes = facts.capacityBytes.value_or(1) * 2;
            break;
        case 4:
            facts.state = DriveState::failed;
            facts.health = Health::critical;
            break;
        case 5:
            facts.isForeign = true;
            break;
        case 6:
            facts.state = DriveState::unknown;
            break;
        default:
            facts.capacityBytes.reset();
            break;
        }
    }
}

bool isGood(const ControllerSnapshot& controller, const std::string& location) {
    const auto found = std::find_if(
        controller.drives.begin(), controller.drives.end(),
        [&location](const MachineDrive& drive) { return drive.facts.location == location; });
    return found != controller.drives.end() && found->policyPosition &&
           found->facts.state != DriveState::failed && found->facts.state != DriveState::unknown &&
           !found->facts.isForeign;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

void checkLines(const std::string& text, const BoundPolicies& bound) {
    const std::vector<std::string_view> before = linesOf(text);
    const std::vector<std::string_view> after = linesOf(bound.text);
    check(after.size() == bound.lineOf.size(), "a line is told for each line");
    std::int32_t last = 0;
    std::set<std::int32_t> seen;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const std::int32_t line = bound.lineOf[i];
        check(line >= std::max(last, 1) && line <= static_cast<std::int32_t>(before.size()),
              "lines stay in their order");
        last = line;
        seen.insert(line);
        const std::string_view own = before[static_cast<std::size_t>(line) - 1];
        const std::size_t equals = std::min(own.find('='), own.size());
        std::string_view keyword = own.substr(0, equals);
        keyword.remove_prefix(std::min(keyword.find_first_not_of(" \t"), keyword.size()));
        keyword = keyword.substr(0, keyword.find_last_not_of(" \t") + 1);
        check(after[i] == own || isKindKeyword(keyword), "other lines stay as they are");
    }
    check(seen.size() == before.size(), "no line is lost");
}

void checkBound(const std::string& text, const ControllerSnapshot& controller,
                const BoundPolicies& bound) {
    std::set<std::string> taken;
    for (const Binding& binding : bound.bindings) {
        for (const BoundDrive& drive : binding.drives) {
            check(taken.insert(drive.location).second, "no drive is taken twice");
            check(isGood(controller, drive.location), "good drives alone are taken");
            check(!drive.code.empty() && !drive.why.empty(), "it is said why");
        }
    }
    if (bound.faults.empty()) {
        SilentReport silent;
        check(readPolicies(bound.text, ControllerCatalogue(), {}, silent).policies.has_value(),
              "zolex reads what it has become");
        checkLines(text, bound);
    }
}

void checkFaults(const std::vector<BindingFault>& faults, const std::string& text) {
    const auto lines = static_cast<std::int32_t>(linesOf(text).size());
    for (const BindingFault& fault : faults) {
        check(fault.code.size() == 5 && !fault.what.empty(), "a fault says what it is");
        check(fault.line >= 1 && fault.line <= std::max(lines, 1) && fault.column >= 1 &&
                  fault.endColumn >= fault.column,
              "place of a fault");
    }
}

void bind(Input input) {
    const Sampled& sampled = samples()[input.choice() % samples().size()];
    Snapshot snapshot = *sampled.snapshot;
    ControllerSnapshot& controller = snapshot.details[sampled.detail];
    change(controller, input);
    const std::string text(input.rest());
    checkFaults(kindEntryFaults(text), text);
    check(linesOf(withoutKindEntries(text)).size() == linesOf(text).size(), "each line stays");
    constexpr std::size_t mostPolicies = 4;
    for (std::size_t policy = 0; policy < mostPolicies; ++policy) {
        const RAIDController& record = *snapshot.controllers.controller(controller.index);
        const BoundPolicies bound = bindPolicy(text, policy, controller, record);
        const BoundPolicies again = bindPolicy(text, policy, controller, record);
        check(bound.text == again.text && bound.faults.size() == again.faults.size(),
              "binding twice gives the same");
        checkFaults(bound.faults, text);
        checkBound(text, controller, bound);
    }
    static_cast<void>(lint(scanPolicies("p.ini", text), {&snapshot}, {}));
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::bind(zolex::fuzz::Input(data, size));
    return 0;
}
