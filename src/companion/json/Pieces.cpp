#include "companion/json/Pieces.h"

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

std::string textOf(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string lineOf(const Json& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace zolex::companion
