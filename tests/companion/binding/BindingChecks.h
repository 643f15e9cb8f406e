#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/binding/KindEntries.h"
#include "companion/machine/Snapshot.h"
#include "policies/PolicyFile.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// What holds of every binding, whatever the policies ask for and the drives are.
namespace zolex::companion::test {

/// A drive becomes another by a byte: solid state, larger, failed, foreign, of no state that is
/// known.
inline void changeDrive(ControllerSnapshot& controller, std::uint8_t choice) {
    if (controller.drives.empty() || choice == 0) {
        return;
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

inline bool isGoodDrive(const ControllerSnapshot& controller, const std::string& location) {
    const auto found = std::find_if(
        controller.drives.begin(), controller.drives.end(),
        [&location](const MachineDrive& drive) { return drive.facts.location == location; });
    return found != controller.drives.end() && found->policyPosition &&
           found->facts.state != DriveState::failed && found->facts.state != DriveState::unknown &&
           !found->facts.isForeign;
}

inline std::vector<std::string_view> linesOfText(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    return lines;
}

/// What is wrong with the lines of bound policies; empty when nothing is.
inline std::string wrongLines(const std::string& text, const BoundPolicies& bound) {
    const std::vector<std::string_view> before = linesOfText(text);
    const std::vector<std::string_view> after = linesOfText(bound.text);
    if (after.size() != bound.lineOf.size()) {
        return "not a line told for each line";
    }
    std::int32_t last = 1;
    std::set<std::int32_t> seen;
    for (std::size_t i = 0; i < after.size(); ++i) {
        const std::int32_t line = bound.lineOf[i];
        if (line < last || line > static_cast<std::int32_t>(before.size())) {
            return "lines in another order";
        }
        last = line;
        seen.insert(line);
        const std::string_view own = before[static_cast<std::size_t>(line) - 1];
        std::string_view keyword = own.substr(0, std::min(own.find('='), own.size()));
        keyword.remove_prefix(std::min(keyword.find_first_not_of(" \t"), keyword.size()));
        keyword = keyword.substr(0, keyword.find_last_not_of(" \t") + 1);
        if (after[i] != own && !isKindKeyword(keyword)) {
            return "another line changed";
        }
    }
    return seen.size() == before.size() ? "" : "a line lost";
}

inline std::string wrongFaults(const std::vector<BindingFault>& faults, const std::string& text) {
    const auto lines = static_cast<std::int32_t>(linesOfText(text).size());
    for (const BindingFault& fault : faults) {
        if (fault.code.size() != 5 || fault.what.empty()) {
            return "a fault that does not say what it is";
        }
        if (fault.line < 1 || fault.line > std::max(lines, 1) || fault.column < 1 ||
            fault.endColumn < fault.column) {
            return "a fault without a place";
        }
    }
    return "";
}

/// What is wrong with what a policy of the text is bound to; empty when nothing is.
inline std::string wrongBinding(const std::string& text, std::size_t policy,
                                const ControllerSnapshot& controller,
                                const RAIDController& record) {
    const BoundPolicies bound = bindPolicy(text, policy, controller, record);
    const BoundPolicies again = bindPolicy(text, policy, controller, record);
    if (bound.text != again.text || bound.faults.size() != again.faults.size()) {
        return "not the same twice";
    }
    std::set<std::string> taken;
    for (const Binding& binding : bound.bindings) {
        for (const BoundDrive& drive : binding.drives) {
            if (!taken.insert(drive.location).second) {
                return drive.location + " taken twice";
            }
            if (!isGoodDrive(controller, drive.location)) {
                return drive.location + " taken and not good";
            }
            if (drive.code.empty() || drive.why.empty()) {
                return drive.location + " taken without a reason";
            }
        }
    }
    if (!bound.faults.empty()) {
        return wrongFaults(bound.faults, text);
    }
    SilentReport silent;
    if (!readPolicies(bound.text, ControllerCatalogue(), {}, silent).policies) {
        return "zolex does not read it";
    }
    return wrongLines(text, bound);
}

} // namespace zolex::companion::test
