#include "companion/planning/Reasons.h"

#include "foundation/Text.h"
#include "model/Codes.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

std::string_view reasonCode(Reason::Kind kind) {
    switch (kind) {
    case Reason::Kind::listed:
        return "listed";
    case Reason::Kind::allRemaining:
        return "all-remaining";
    case Reason::Kind::firstFree:
        return "first-free";
    case Reason::Kind::likeFirst:
        return "like-first";
    case Reason::Kind::largestLast:
        return "largest-last";
    case Reason::Kind::given:
        return "given";
    case Reason::Kind::policyDefault:
        return "policy-default";
    case Reason::Kind::capturedPolicy:
        return "captured-policy";
    case Reason::Kind::leftToController:
        return "left-to-controller";
    default:
        return "class-default";
    }
}

const Reason* PlanReasons::find(Reason::Subject subject, std::int32_t index) const {
    const auto found = std::find_if(
        planned_.plan.reasons.begin(), planned_.plan.reasons.end(), [&](const Reason& reason) {
            return reason.subject == subject && (index < 0 || reason.index == index);
        });
    return found == planned_.plan.reasons.end() ? nullptr : &*found;
}

PlanReason PlanReasons::ofDrive(Reason::Subject subject, std::size_t index, DrivePosition position,
                                const std::string& location) const {
    for (const Binding& binding : planned_.bindings) {
        for (const BoundDrive& drive : binding.drives) {
            if (drive.location == location) {
                return {drive.code, binding.keyword, binding.line, drive.why};
            }
        }
    }
    for (const Reason& reason : planned_.plan.reasons) {
        if (reason.subject == subject && reason.index == static_cast<std::int32_t>(index) &&
            reason.drive == position) {
            PlanReason result = from(reason);
            result.as = nameInList(reason, location);
            return result;
        }
    }
    return {};
}

PlanReason PlanReasons::ofValue(Reason::Subject subject, std::int32_t index) const {
    const Reason* const reason = find(subject, index);
    if (reason == nullptr) {
        return {std::string(reasonCode(Reason::Kind::classDefault)), "", 0, ""};
    }
    PlanReason result = from(*reason);
    result.as = fieldOf(*reason);
    return result;
}

PlanReason PlanReasons::from(const Reason& reason) const {
    PlanReason result;
    result.code = reasonCode(reason.kind);
    result.keyword = reason.keyword.c_str();
    result.line = planned_.policies.lineOfEntry(planned_.policy, result.keyword);
    for (const Binding& binding : planned_.bindings) {
        const std::size_t size = result.keyword.size();
        const bool isIt = !result.keyword.empty() &&
                          binding.becomes.compare(0, size, result.keyword) == 0 &&
                          binding.becomes.size() > size && binding.becomes[size] == ' ';
        if (isIt) {
            result.keyword = binding.keyword;
            result.line = binding.line;
            break;
        }
    }
    return result;
}

std::string PlanReasons::nameInList(const Reason& reason, const std::string& location) const {
    if (reason.kind == Reason::Kind::allRemaining) {
        return "ALL";
    }
    if (reason.kind == Reason::Kind::likeFirst) {
        return std::to_string(reason.asked) + "%";
    }
    if (reason.kind != Reason::Kind::listed) {
        return {};
    }
    const auto nameIn = [&](const DriveListView& list) {
        for (const DriveView& view : list.drives) {
            for (const MachineDrive& drive : planned_.detail.drives) {
                const bool isMeant = view.number > 0 ? drive.policyNumber == view.number
                                                     : drive.policyPosition == view.position;
                if (isMeant && drive.facts.location == location) {
                    return view.piece.text;
                }
            }
        }
        return std::string();
    };
    if (reason.subject == Reason::Subject::hotspare) {
        return view().hotspares ? nameIn(*view().hotspares) : std::string();
    }
    const DriveListView* const list = view().array(reason.index);
    return list == nullptr ? std::string() : nameIn(*list);
}

std::string PlanReasons::fieldOf(const Reason& reason) const {
    if (reason.keyword.isEmpty()) {
        return {};
    }
    const LogicalView* logical = nullptr;
    for (const LogicalView& each : view().logicalDrives) {
        if (text::equalsNoCase(each.entry->keyword.text, reason.keyword.view())) {
            logical = &each;
        }
    }
    if (view().logicalDefaults &&
        text::equalsNoCase(view().logicalDefaults->entry->keyword.text, reason.keyword.view())) {
        logical = &*view().logicalDefaults;
    }
    if (logical != nullptr) {
        switch (reason.subject) {
        case Reason::Subject::raidLevel:
            return logical->level.text;
        case Reason::Subject::size:
            return logical->size.text;
        case Reason::Subject::writeCache:
            return logical->cache ? logical->cache->text : std::string();
        default:
            return {};
        }
    }
    const DocumentEntry* const entry =
        planned_.policies.document.policies[planned_.policy].effective(reason.keyword.view());
    return entry == nullptr ? std::string() : entry->value.text;
}

} // namespace zolex::companion
