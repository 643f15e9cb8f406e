#include "companion/execution/Journal.h"

#include <array>

namespace zolex::companion {

std::string_view controllerResultWord(ControllerResult::Result result) {
    switch (result) {
    case ControllerResult::Result::configured:
        return "configured";
    case ControllerResult::Result::already:
        return "already";
    case ControllerResult::Result::skipped:
        return "skipped";
    case ControllerResult::Result::failed:
        break;
    }
    return "failed";
}

std::string_view capturePurposeWord(CapturePurpose purpose) {
    switch (purpose) {
    case CapturePurpose::guard:
        return "guard";
    case CapturePurpose::resume:
        return "resume";
    case CapturePurpose::step:
        return "step";
    case CapturePurpose::verify:
        break;
    }
    return "verify";
}

std::string_view verifiedWord(JournalVerified::Result result) {
    switch (result) {
    case JournalVerified::Result::asPlanned:
        return "as-planned";
    case JournalVerified::Result::equivalent:
        return "equivalent";
    case JournalVerified::Result::different:
        return "different";
    case JournalVerified::Result::unknown:
        break;
    }
    return "unknown";
}

std::string_view journalEventWord(const JournalEvent& event) {
    // In the order of the variant.
    constexpr std::array<std::string_view, std::variant_size_v<JournalEvent>> words = {
        "begin",      "captured",        "agreed",   "step-started", "child",
        "step-ended", "step-found-done", "verified", "end"};
    return words.at(event.index());
}

const JournalBegin& JournalHistory::begin() const {
    return std::get<JournalBegin>(entries.front().event);
}

const JournalEnd* JournalHistory::end() const {
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
        if (!std::holds_alternative<JournalCaptured>(entry->event)) {
            return std::get_if<JournalEnd>(&entry->event);
        }
    }
    return nullptr;
}

} // namespace zolex::companion
