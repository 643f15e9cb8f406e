#include "companion/lint/Entries.h"

#include <algorithm>

namespace zolex::companion {

void Verdict::add(const EntryView& entry, Answer answer) {
    ++entries_;
    if (answer == Answer::faulty) {
        faulty_.push_back(&entry);
    }
}

std::optional<Severity> Verdict::severity() const {
    if (faulty_.empty()) {
        return std::nullopt;
    }
    return faulty_.size() == entries_ ? Severity::error : Severity::warning;
}

std::string Verdict::models() const {
    std::vector<std::string> names;
    for (const EntryView* entry : faulty_) {
        const std::string name = entry->given.controllerType.c_str();
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
    return joinWords(names);
}

std::vector<Kind> kindsOfAll(const PolicyView& policy) {
    std::vector<Kind> all;
    for (const EntryView& entry : policy.entries) {
        const std::vector<Kind> kinds =
            entry.isReadable ? kindsOf(entry.given.controllerType.view()) : std::vector<Kind>();
        if (kinds.empty()) {
            return {};
        }
        for (const Kind& kind : kinds) {
            if (std::find(all.begin(), all.end(), kind) == all.end()) {
                all.push_back(kind);
            }
        }
    }
    return all;
}

std::string placeOf(const EntryView& entry) {
    return entry.entry->keyword.text + " (line " + std::to_string(entry.entry->keyword.start.line) +
           ")";
}

std::string joinWords(const std::vector<std::string>& words, std::string_view last) {
    std::string joined;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) {
            joined += i + 1 == words.size() ? last : std::string_view(", ");
        }
        joined += words[i];
    }
    return joined;
}

std::string countOf(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

std::string driveWords(const DriveView& drive) {
    if (drive.number > 0) {
        return "drive " + std::to_string(drive.number);
    }
    return "drive " + std::to_string(drive.position.channel) + ":" +
           std::to_string(drive.position.id);
}

} // namespace zolex::companion
