#include "companion/json/Pieces.h"

#include <algorithm>

namespace zolex::companion {

std::string_view outcomeWord(ChildOutcome outcome) {
    switch (outcome) {
    case ChildOutcome::noPipe:
        return "no-pipe";
    case ChildOutcome::notStarted:
        return "not-started";
    case ChildOutcome::stillRunning:
        return "still-running";
    case ChildOutcome::ended:
        return "ended";
    case ChildOutcome::notClosed:
        return "not-closed";
    }
    return {};
}

std::string_view refusedByWord(RefusedBy refusedBy) {
    switch (refusedBy) {
    case RefusedBy::nobody:
        return {};
    case RefusedBy::zolex:
        return "zolex";
    case RefusedBy::plan:
        return "plan";
    case RefusedBy::utility:
        return "utility";
    }
    return {};
}

namespace {

Json placeOf(const TextPlace& place) {
    return {{"line", place.line}, {"column", place.column}, {"byte", place.byte}};
}

Json rangeOf(const std::string& file, const TextPlace& start, const TextPlace& end) {
    if (start.line == 0) {
        return file.empty() ? Json(nullptr)
                            : Json{{"filename", file}, {"start", nullptr}, {"end", nullptr}};
    }
    return {{"filename", file}, {"start", placeOf(start)}, {"end", placeOf(end)}};
}

} // namespace

Json documentOf(std::string_view format, const DocumentHead& head) {
    return {{"format", format},
            {"format_version", "1.0"},
            {"tool", {{"name", "zolexctl"}, {"version", ZOLEX_VERSION}, {"argv", head.argv}}},
            {"made_at", head.madeAt}};
}

Json diagnosticOf(const Finding& finding) {
    Json diagnostic{{"code", finding.code},
                    {"severity", severityWord(finding.severity)},
                    {"refused_by", orNull(refusedByWord(finding.refusedBy))},
                    {"summary", finding.summary},
                    {"detail", orNull(finding.detail)},
                    {"help", finding.help},
                    {"range", rangeOf(finding.file, finding.start, finding.end)}};
    if (finding.otherStart.line != 0) {
        diagnostic["related"] = {
            {"summary", finding.other},
            {"range", rangeOf(finding.file, finding.otherStart, finding.otherEnd)}};
    }
    return diagnostic;
}

Json diagnosticsOf(const std::vector<Finding>& findings) {
    Json diagnostics = Json::array();
    for (const Finding& finding : findings) {
        diagnostics.push_back(diagnosticOf(finding));
    }
    return diagnostics;
}

Json orNull(std::string_view text) {
    return text.empty() ? Json(nullptr) : Json(text);
}

Json healthOf(Health health) {
    switch (health) {
    case Health::unknown:
        return nullptr;
    case Health::ok:
        return "OK";
    case Health::warning:
        return "Warning";
    case Health::critical:
        return "Critical";
    }
    return nullptr;
}

std::string textOf(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string textOf(const Json& document, std::string_view name, std::size_t count,
                   const std::function<Json(std::size_t)>& element) {
    std::string text = textOf(document);
    const std::string before = "\n  \"" + std::string(name) + "\": [";
    const std::size_t at = text.find(before + "]");
    if (count == 0 || at == std::string::npos) {
        return text;
    }
    std::string result = text.substr(0, at + before.size());
    for (std::size_t i = 0; i < count; ++i) {
        result += i == 0 ? "\n    " : ",\n    ";
        const std::string dumped = element(i).dump(2, ' ', false, Json::error_handler_t::replace);
        // A line feed within a text is written as two characters: each of these ends a line.
        for (std::size_t begin = 0; begin < dumped.size();) {
            const std::size_t end = std::min(dumped.find('\n', begin), dumped.size() - 1);
            result.append(dumped, begin, end + 1 - begin);
            if (dumped[end] == '\n') {
                result.append(4, ' ');
            }
            begin = end + 1;
        }
    }
    return result + "\n  " + text.substr(at + before.size());
}

std::string lineOf(const Json& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace zolex::companion
