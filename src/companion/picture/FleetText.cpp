#include "companion/picture/FleetText.h"

#include "companion/picture/TextLines.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "companion/text/TypedWord.h"
#include "companion/text/Words.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::size_t findingIndent = 6;
constexpr std::size_t mostFindings = 3; ///< of one server, unless all are asked for

std::string serversText(std::size_t count) {
    return countText(count, "server", "servers");
}

std::string placeOf(const Fleet& fleet, std::int32_t line) {
    return fleet.policiesFile + ":" + std::to_string(line);
}

Emphasis emphasisOf(ServerResult result) {
    switch (result) {
    case ServerResult::asPlanned:
    case ServerResult::same:
        return Emphasis::good;
    case ServerResult::skipped:
        return Emphasis::warning;
    case ServerResult::error:
        break;
    }
    return Emphasis::bad;
}

/// Writes the text of a fleet.
class FleetWriter {
  public:
    FleetWriter(const Fleet& fleet, const TextStyle& style, const FleetTextTerms& terms)
        : fleet_(fleet), style_(style), terms_(terms) {}

    std::string write() {
        for (const std::string& supposed : suppositionTexts(fleet_)) {
            line("Supposed: ", supposed, Emphasis::changed);
        }
        table();
        if (terms_.quiet) {
            return std::move(out_);
        }
        out_ += "\n";
        out_ += emphasized(folded("", fleetCountsText(fleet_)), Emphasis::bold, style_) + "\n";
        line("What is lost: ", fleetLossesText(fleet_),
             fleet_.losses().any() ? Emphasis::bad : Emphasis::plain);
        unused();
        if (const std::string drill = drillText(fleet_); !drill.empty()) {
            const bool isWell = drill.find(", except ") == std::string::npos;
            out_ += emphasized(folded("", printable(drill)),
                               isWell ? Emphasis::plain : Emphasis::warning, style_) +
                    "\n";
        }
        warnings();
        closing();
        return std::move(out_);
    }

  private:
    [[nodiscard]] std::string folded(std::string_view lead, std::string_view text) const {
        return foldedWords(text, lead.size(), 2, static_cast<std::size_t>(style_.width));
    }

    /// The words behind the lead, folded.
    void line(std::string_view lead, const std::string& text, Emphasis emphasis) {
        const std::string words = printable(text);
        const bool hasRoom = lead.size() < static_cast<std::size_t>(style_.width) * 3 / 4;
        out_ += hasRoom ? std::string(lead) + emphasized(folded(lead, words), emphasis, style_)
                        : emphasized(folded("", std::string(lead) + words), emphasis, style_);
        out_ += "\n";
    }

    [[nodiscard]] bool isShown(const FleetServer& server) const {
        return !terms_.quiet || server.result == ServerResult::error;
    }

    [[nodiscard]] static std::vector<TableCell> cellsOf(const FleetServer& server) {
        return {{printable(server.name)},
                {printable(server.serialNumber)},
                {printable(usedPoliciesText(server))},
                {std::string(serverResultText(server.result)), emphasisOf(server.result)},
                {lossesText(server), server.losses.any() ? Emphasis::bad : Emphasis::plain},
                {server.hasPlan ? std::to_string(server.commands) : "-", Emphasis::plain, true}};
    }

    /// A line for each server, with what is to be said of it below.
    void table() {
        Table table(0);
        std::vector<FieldLine> fields;
        const auto add = [&](std::vector<TableCell> cells) {
            fields.push_back({0, cells});
            table.add(std::move(cells));
        };
        constexpr Emphasis heading = Emphasis::heading;
        add({{"server", heading},
             {"", heading},
             {"policies used", heading},
             {"result", heading},
             {"loses", heading},
             {"commands", heading, true}});
        for (const FleetServer& server : fleet_.servers) {
            if (isShown(server)) {
                add(cellsOf(server));
            }
        }
        if (fields.size() == 1) {
            return;
        }
        const bool fits = table.width() <= static_cast<std::size_t>(style_.width);
        const std::vector<std::string> lines =
            fits ? table.lines(style_) : fieldLines(fields, style_);
        out_ += lines.front();
        std::size_t next = 1;
        for (const FleetServer& server : fleet_.servers) {
            if (isShown(server)) {
                out_ += lines[next++];
                below(server);
            }
        }
    }

    void below(const FleetServer& server) {
        const std::string blanks(findingIndent, ' ');
        for (const std::string& reason : server.reasons) {
            out_ += signedLine(blanks, printable(reason), Emphasis::dim, style_);
        }
        std::size_t told = 0;
        std::size_t more = 0;
        for (const ServerFinding& each : server.findings) {
            const bool isError = each.finding.severity == Severity::error;
            if (!isError && !terms_.verbose) {
                continue;
            }
            if (told == mostFindings && !terms_.verbose) {
                ++more;
                continue;
            }
            ++told;
            const Emphasis emphasis = isError ? Emphasis::bad
                                      : each.finding.severity == Severity::warning
                                          ? Emphasis::warning
                                          : Emphasis::dim;
            out_ += signedLine(blanks + (isError ? "" : "! "),
                               printable(serverFindingText(server, each)), emphasis, style_);
            if (terms_.verbose && !each.finding.detail.empty()) {
                details(each.finding.detail);
            }
        }
        if (more > 0) {
            out_ += blanks + "and " + countText(more, "more fault", "more faults") +
                    ", which -v shows\n";
        }
    }

    void details(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            out_ += signedLine(std::string(findingIndent + 2, ' '), printable(text.substr(0, end)),
                               Emphasis::dim, style_);
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

    void unused() {
        const std::vector<std::string> pieces = unusedTexts(fleet_);
        if (!pieces.empty()) {
            line(unusedTitle(fleet_) + ": ", joined(pieces, ", "), Emphasis::warning);
        }
    }

    void warnings() {
        for (const Finding& finding : fleet_.findings) {
            out_ += findingLine(finding, 0, style_);
        }
        const std::vector<std::string> counts = warningCounts(fleet_);
        if (!counts.empty()) {
            line("Warnings: ", joined(counts, ", ") + (terms_.verbose ? "" : "; -v shows each"),
                 Emphasis::warning);
        }
        const FindingCounts ofFile = countFindings(fleet_.policiesFindings);
        if (ofFile.errors + ofFile.warnings > 0) {
            line("",
                 fleet_.policiesFile + ": " + countsText(ofFile) + "; zolexctl check " +
                     typedWord(fleet_.policiesFile) + " tells more",
                 Emphasis::warning);
        }
    }

    /// Where to look on.
    void closing() {
        const auto first =
            std::find_if(fleet_.servers.begin(), fleet_.servers.end(), [](const FleetServer& each) {
                return each.result == ServerResult::error;
            });
        if (first != fleet_.servers.end() && fleet_.suppositions.empty()) {
            line("More on a server: ", planOfServer(fleet_, *first), Emphasis::plain);
        }
        if (!terms_.pageFile.empty()) {
            line("", "Pictures of all servers: " + terms_.pageFile, Emphasis::plain);
        }
    }

    const Fleet& fleet_;
    const TextStyle& style_;
    const FleetTextTerms& terms_;
    std::string out_;
};

/// A piece with those behind it that tell why: the specifiers of its entries.
std::string unusedName(const Fleet& fleet, std::size_t index) {
    const UnusedPiece& piece = fleet.unused[index];
    std::string because = piece.because;
    for (std::size_t i = index + 1; i < fleet.unused.size(); ++i) {
        const UnusedPiece& next = fleet.unused[i];
        if (next.kind != UnusedPiece::Kind::specifier) {
            break;
        }
        if (because.empty()) {
            because = next.because + (next.because.empty() ? "" : ", ") + "no controller has ";
        } else {
            because += ", ";
        }
        because += next.specifier;
    }
    return piece.policy + (piece.keyword.empty() ? "" : " " + piece.keyword) + " (" +
           placeOf(fleet, piece.line) + (because.empty() ? "" : "; " + because) + ")";
}

} // namespace

std::string fleetText(const Fleet& fleet, const TextStyle& style, const FleetTextTerms& terms) {
    return FleetWriter(fleet, style, terms).write();
}

std::string_view serverResultText(ServerResult result) {
    switch (result) {
    case ServerResult::asPlanned:
        return "as planned";
    case ServerResult::same:
        return "same";
    case ServerResult::skipped:
        return "skipped";
    case ServerResult::error:
        break;
    }
    return "ERROR";
}

std::string usedPoliciesText(const FleetServer& server) {
    constexpr std::string_view prefix = "Policy.";
    std::string text;
    for (const std::string& policy : server.policies) {
        const bool isUsual = policy.size() > prefix.size() && policy.starts_with(prefix);
        text += (text.empty() ? "" : ", ") + (isUsual ? policy.substr(prefix.size()) : policy);
    }
    return text.empty() ? "none" : text;
}

std::string lossesText(const FleetServer& server) {
    if (!server.hasPlan) {
        return "-";
    }
    const FleetLosses& losses = server.losses;
    std::vector<std::string> parts;
    if (losses.logicalDrives > 0) {
        parts.push_back(std::to_string(losses.logicalDrives) + " LD");
        if (losses.capacityBytes > 0) {
            parts.push_back(sizeText(losses.capacityBytes));
        }
    }
    if (losses.hotspares > 0) {
        parts.push_back(countText(losses.hotspares, "spare", "spares"));
    }
    if (losses.foreign > 0) {
        parts.push_back(std::to_string(losses.foreign) + " foreign");
    }
    return parts.empty() ? "nothing" : joined(parts, ", ");
}

std::string fleetCountsText(const Fleet& fleet) {
    std::string counts;
    for (const auto& [result, word] :
         {std::pair{ServerResult::asPlanned, "as planned"}, std::pair{ServerResult::same, "same"},
          std::pair{ServerResult::skipped, "skipped"}}) {
        if (const std::size_t count = fleet.count(result); count > 0) {
            counts += (counts.empty() ? "" : ", ") + std::to_string(count) + " " + word;
        }
    }
    if (const std::size_t errors = fleet.count(ServerResult::error); errors > 0) {
        counts += (counts.empty() ? "" : ", ") + countText(errors, "error", "errors");
    }
    return serversText(fleet.servers.size()) + ": " + counts;
}

std::string fleetLossesText(const Fleet& fleet) {
    const std::size_t unknown = fleet.unplannedServers();
    const std::size_t losing = fleet.losingServers();
    const std::size_t others = fleet.servers.size() - losing - unknown;
    std::vector<std::string> parts;
    if (others > 0 || losing + unknown == 0) {
        parts.push_back("nothing on " + serversText(others));
    }
    if (losing > 0) {
        const FleetLosses all = fleet.losses();
        std::vector<std::string> things;
        if (all.logicalDrives > 0) {
            things.push_back(
                countText(all.logicalDrives, "logical drive", "logical drives") +
                (all.capacityBytes > 0 ? " (" + sizeText(all.capacityBytes) + ")" : std::string()));
        }
        if (all.hotspares > 0) {
            things.push_back(countText(all.hotspares, "hot spare", "hot spares"));
        }
        if (all.foreign > 0) {
            things.push_back(countText(all.foreign, "foreign drive", "foreign drives"));
        }
        parts.push_back(joined(things, " and ") + " on " +
                        (others > 0 ? std::to_string(losing) : serversText(losing)));
    }
    if (unknown > 0) {
        parts.push_back("not known of " +
                        (parts.empty() ? serversText(unknown) : std::to_string(unknown)));
    }
    return joined(parts, ", ");
}

std::string unusedTitle(const Fleet& fleet) {
    return fleet.unplannedServers() == 0 ? "Never used by any server"
                                         : "Never used by any server that could be planned";
}

std::vector<std::string> unusedTexts(const Fleet& fleet) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < fleet.unused.size(); ++i) {
        if (fleet.unused[i].kind != UnusedPiece::Kind::specifier) {
            texts.push_back(unusedName(fleet, i));
        }
    }
    return texts;
}

std::vector<std::string> suppositionTexts(const Fleet& fleet) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < fleet.suppositions.size(); ++i) {
        texts.push_back(fleet.suppositions[i].words() + ", on " +
                        std::to_string(fleet.serversWith(i)) + " of " +
                        serversText(fleet.servers.size()));
    }
    return texts;
}

std::string drillText(const Fleet& fleet) {
    if (!fleet.everyFault) {
        return {};
    }
    const std::int32_t tried = fleet.faultsTried();
    if (tried == 0) {
        return "No command was made to fail: there is none to run.";
    }
    const auto count = static_cast<std::size_t>(tried);
    std::string text = "Every single command was made to fail once (" +
                       countText(count, "run", "runs") + "): resume always ended as planned";
    std::string exceptions;
    for (const FleetServer& server : fleet.servers) {
        for (const UnresumedStep& step : server.unresumed) {
            std::string command = step.command;
            constexpr std::string_view wrapper = "UTIL.BAT ";
            if (command.starts_with(wrapper)) {
                command.erase(0, wrapper.size());
            }
            exceptions += (exceptions.empty() ? "" : "; ") + command + " on " + server.name;
        }
    }
    return text +
           (exceptions.empty() ? "." : ", except " + exceptions + ", which needs a new plan.");
}

std::string serverFindingText(const FleetServer& server, const ServerFinding& each) {
    const Finding& finding = each.finding;
    const bool isOfRecording = finding.file == server.file;
    const std::string line = std::to_string(finding.start.line);
    std::string text;
    if (isOfRecording && finding.start.line > 0) {
        text = "line " + line + ": ";
    } else if (!isOfRecording && !finding.file.empty()) {
        text = finding.file;
        text +=
            finding.start.line > 0 ? ":" + line + ":" + std::to_string(finding.start.column) : "";
        text += ": ";
    }
    text += each.controller > 0 ? "controller " + std::to_string(each.controller) + ": " : "";
    return text + finding.summary + (finding.code.empty() ? "" : " [" + finding.code + "]");
}

std::vector<std::string> warningCounts(const Fleet& fleet) {
    std::map<std::string, std::size_t> counts;
    for (const FleetServer& server : fleet.servers) {
        std::vector<std::string> codes;
        for (const ServerFinding& each : server.findings) {
            if (each.finding.severity == Severity::warning &&
                std::find(codes.begin(), codes.end(), each.finding.code) == codes.end()) {
                codes.push_back(each.finding.code);
            }
        }
        for (const std::string& code : codes) {
            ++counts[code];
        }
    }
    std::vector<std::pair<std::string, std::size_t>> rows(counts.begin(), counts.end());
    std::stable_sort(rows.begin(), rows.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    std::vector<std::string> texts;
    texts.reserve(rows.size());
    for (const auto& [code, count] : rows) {
        texts.push_back(code + " on " + serversText(count));
    }
    return texts;
}

std::string planOfServer(const Fleet& fleet, const FleetServer& server) {
    return fleet.planCommand + " --recording " + typedWord(server.file);
}

} // namespace zolex::companion
