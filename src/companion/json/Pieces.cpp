#include "companion/json/Pieces.h"

namespace zolex::companion {

std::string_view severityWord(Severity severity) {
    switch (severity) {
    case Severity::note:
        return "note";
    case Severity::warning:
        return "warning";
    case Severity::error:
        return "error";
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

std::string lineOf(const Json& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace zolex::companion
