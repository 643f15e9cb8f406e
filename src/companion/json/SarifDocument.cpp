#include "companion/json/CheckDocument.h"
#include "companion/json/Pieces.h"
#include "companion/lint/Rules.h"
#include "companion/text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace zolex::companion {

namespace {

/// The name as a URI: "%20" for a blank, "/" for "\", and "file:///" before an absolute one.
std::string uriOf(std::string_view name) {
    constexpr std::string_view plain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    constexpr std::array<char, 16> digits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                             '8', '9', 'A', 'B', 'C', 'D', 'E', 'F'};
    const bool hasDrive = name.size() > 2 && name[1] == ':' && (name[2] == '\\' || name[2] == '/');
    std::string uri = hasDrive ? "file:///" : name.starts_with('/') ? "file://" : "";
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i] == '\\' ? '/' : name[i];
        const auto byte = static_cast<unsigned char>(c);
        if (plain.find(c) != std::string_view::npos || (hasDrive && i == 1)) {
            uri += c;
        } else {
            uri += {'%', digits.at(byte >> 4U), digits.at(byte & 0xFU)};
        }
    }
    return uri;
}

/// The column of a place in characters, from 1: in a line that cannot be found it is that in bytes.
std::int64_t characterColumn(const TextPlace& place, std::string_view text) {
    const std::int64_t lineStart = place.byte - (place.column - 1);
    if (lineStart < 0 || place.byte > static_cast<std::int64_t>(text.size())) {
        return place.column;
    }
    std::string_view before = text.substr(static_cast<std::size_t>(lineStart),
                                          static_cast<std::size_t>(place.column - 1));
    std::int64_t column = 1;
    while (!before.empty()) {
        before.remove_prefix(std::max<std::size_t>(1, characterLength(before)));
        ++column;
    }
    return column;
}

Json regionOf(const TextPlace& start, const TextPlace& end, std::string_view text) {
    Json region{{"startLine", start.line}, {"startColumn", characterColumn(start, text)}};
    if (end.line >= start.line) {
        region["endLine"] = end.line;
        region["endColumn"] = characterColumn(end, text);
    }
    return region;
}

Json locationOf(const std::string& file, const TextPlace& start, const TextPlace& end,
                std::span<const SourceFile> sources) {
    const auto source = std::find_if(sources.begin(), sources.end(),
                                     [&file](const SourceFile& row) { return row.name == file; });
    Json physical{{"artifactLocation", {{"uri", uriOf(file)}}}};
    if (start.line > 0) {
        physical["region"] = regionOf(start, end, source == sources.end() ? "" : source->text);
    }
    return {{"physicalLocation", physical}};
}

Json messageOf(const Finding& finding) {
    std::string text = finding.summary;
    text += finding.detail.empty() ? "" : "\n" + finding.detail;
    for (const std::string& help : finding.help) {
        text += "\nhelp: " + help;
    }
    return {{"text", text}};
}

/// The rules that the findings belong to, each once, in the order of the findings.
class RuleList {
  public:
    std::size_t indexOf(const std::string& code) {
        const auto found = std::find(codes_.begin(), codes_.end(), code);
        if (found != codes_.end()) {
            return static_cast<std::size_t>(found - codes_.begin());
        }
        codes_.push_back(code);
        return codes_.size() - 1;
    }
    [[nodiscard]] Json json() const {
        Json list = Json::array();
        for (const std::string& code : codes_) {
            Json row{{"id", code}};
            if (const Rule* rule = findRule(code)) {
                row["shortDescription"] = {{"text", rule->title}};
                if (!rule->why.empty()) {
                    row["fullDescription"] = {{"text", rule->why}};
                }
                if (!rule->help.empty()) {
                    row["help"] = {{"text", rule->help}};
                }
                row["defaultConfiguration"] = {{"level", severityWord(rule->severity)}};
            }
            list.push_back(std::move(row));
        }
        return list;
    }

  private:
    std::vector<std::string> codes_;
};

Json resultOf(const Finding& finding, std::size_t ruleIndex, std::span<const SourceFile> sources) {
    Json result{{"ruleId", finding.code},
                {"ruleIndex", ruleIndex},
                {"level", severityWord(finding.severity)},
                {"message", messageOf(finding)}};
    if (!finding.file.empty()) {
        result["locations"] =
            Json::array({locationOf(finding.file, finding.start, finding.end, sources)});
    }
    if (finding.otherStart.line > 0) {
        Json related = locationOf(finding.file, finding.otherStart, finding.otherEnd, sources);
        related["message"] = {{"text", finding.other}};
        result["relatedLocations"] = Json::array({std::move(related)});
    }
    return result;
}

} // namespace

std::string sarifDocument(const std::vector<Finding>& findings,
                          std::span<const SourceFile> sources) {
    RuleList rules;
    Json results = Json::array();
    for (const Finding& finding : findings) {
        results.push_back(resultOf(finding, rules.indexOf(finding.code), sources));
    }
    const Json driver{{"name", "zolexctl"}, {"version", ZOLEX_VERSION}, {"rules", rules.json()}};
    const Json run{{"tool", {{"driver", driver}}},
                   {"columnKind", "unicodeCodePoints"},
                   {"results", std::move(results)}};
    return textOf({{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                   {"version", "2.1.0"},
                   {"runs", Json::array({run})}});
}

} // namespace zolex::companion
