#include "companion/commands/Explanations.h"

#include "companion/commands/FileCodes.h"
#include "companion/commands/GuardCodes.h"
#include "companion/commands/RunCodes.h"

#include "companion/lint/Keywords.h"
#include "companion/lint/Rules.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Table.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zolex::companion {

namespace {

constexpr std::string_view ownPrefix = "exit-";

/// An exit code. Columns: number; what it says in a few words; what it means for a server; what to
/// do. In the order of the numbers.
struct ExitCode {
    std::int32_t number;
    std::string_view title;
    std::string_view why;
    std::string_view help;
};
// clang-format off
constexpr std::array<ExitCode, 11> zolexCodes = {{
    {0, "success",
     "Every command that was run was accepted. It does not say that each controller was "
     "configured: 0 is also the end of a run without a controller, of one whose controllers no "
     "policy fits or that have too few drives (\"Skipped\"), of one that left commands beyond the "
     "16th out, and of a question that was answered with no.",
     "Run zolex with /e1, /e2 and /e3, which make these cases exit codes of their own, and look "
     "at what stands there now:\n  zolexctl show"},
    {1, "a controller matched no policy, or memory ran out",
     "Only with /e1. The other controllers have been configured by then; this one keeps what it "
     "has.",
     "Ask which specifier does not hold:\n  zolexctl record -o server.zrec\n"
     "  zolexctl check site.ini --machine server.zrec"},
    {2, "no supported controller",
     "Only with /e2. Nothing was changed.",
     "Look whether the driver and the card are there:\n  zolexctl doctor"},
    {3, "a controller has no drives",
     "Only with /e3. The other controllers have been configured by then.",
     "Look for a loose cable, or for a listing that is an error text:\n  zolexctl doctor"},
    {4, "the command line is not understood",
     "Nothing was changed.",
     "Letter case does not matter; a value follows a colon without a blank: /f:site.ini. zolex /? "
     "tells the switches."},
    {5, "policies file invalid, no plan, or no machine information",
     "The policies cannot be read, ask for what a controller cannot do, or hwdetect.exe failed. "
     "No array was made, but a restore (/r) in the same command was done before: then the "
     "controllers are blank.",
     "Find every fault of the file, and what the machine lacks:\n  zolexctl check site.ini\n"
     "  zolexctl doctor"},
    {7, "restoring factory defaults failed",
     "A utility refused or did not end. Controllers before this one are blank, those behind it "
     "are as they were.",
     "Look what stands there now, and what the utility says:\n  zolexctl show\n  zolexctl doctor"},
    {8, "the capture failed",
     "The drives, or the layout, of a controller could not be read. Nothing was changed, unless a "
     "restore (/r) was in the same command.",
     "Look at each listing:\n  zolexctl doctor"},
    {9, "writing the captured policies failed",
     "The file may hold them in part.",
     "Look for room on the drive and for the right to write, and compare the end of the file."},
    {10, "resources, or the controllers could not be initialised",
     "Nothing was changed.",
     "Look for room in the temporary directory (/t:) and for the right to read the PCI list; "
     "hardware is for root alone."},
    {11, "a configuration command could not be made, or was refused",
     "The commands before it were carried out: the server stands half configured. The usual causes "
     "are drives that are in use already, a hot spare that is a member, and several logical "
     "drives on one array.",
     "The run's last lines tell the command and the utility's answer. Look what stands there now, "
     "and what the file says:\n  zolexctl show\n  zolexctl check site.ini"},
}};
constexpr std::array<ExitCode, 6> ownCodes = {{
    {0, "done, nothing to do, or no finding",
     "Nothing is to be said. Notes alone are no finding.",
     "Nothing is to be done."},
    {1, "there is something: findings, or a difference",
     "check or doctor found an error or a warning, diff found a difference, or plan --exit-code has "
     "something to do. The commands that look change nothing.",
     "Read what is told; explain tells more of each code:\n  zolexctl explain ZX301"},
    {2, "it could not be told, or the plan cannot be carried out",
     "A bad option, a file that cannot be read, a utility that failed, or a plan with an error. "
     "Nothing was changed, and no output file was replaced.",
     "The line that begins with \"error:\" says what, the one behind it what to do."},
    {3, "refused before the first change",
     "apply or reset has not begun: the server is another one than the plan was made for, or has "
     "changed since, what would be lost was not agreed to, another run is under way, or this plan "
     "was applied before. No command that changes anything was started, and no journal was made.",
     "The line that begins with \"error:\" says why. When the server has changed, plan again:\n"
     "  zolexctl plan site.ini -o plan.json"},
    {4, "stopped on the way",
     "apply or reset has started at least one command, and has not started all of them: a utility "
     "refused one, or did not end within its limit, the run was interrupted, or what was read back "
     "was not foreseen. The journal tells each command and what came of it.",
     "Look at what was done, mend the cause, and go on; or plan from what is there:\n"
     "  zolexctl show plan.journal.jsonl\n  zolexctl apply --resume plan.journal.jsonl\n"
     "  zolexctl plan site.ini"},
    {5, "every command was run, and the end is not proved to be as planned",
     "The utilities said that they did their work, but what was read back differs from the plan or "
     "could not be read. The same code is given when all is as planned and the certificate that "
     "was asked for, or the output itself, could not be written.",
     "Look at what stands there, and hold it against the plan:\n  zolexctl show\n"
     "  zolexctl diff plan.json"},
}};
// clang-format on

Explanation explain(const ExitCode& row, std::string_view program, std::string_view prefix) {
    Explanation explanation;
    explanation.code = std::string(prefix) + std::to_string(row.number);
    explanation.program = program;
    explanation.title = row.title;
    explanation.why = row.why;
    explanation.help = row.help;
    return explanation;
}

template <typename Codes>
std::optional<Explanation> findExitCode(const Codes& codes, std::string_view number,
                                        std::string_view program, std::string_view prefix) {
    const auto wanted = text::wholeNumber(number);
    const auto row = std::find_if(codes.begin(), codes.end(), [&](const ExitCode& each) {
        return each.number == wanted && std::to_string(each.number) == number;
    });
    return row == codes.end() ? std::nullopt : std::optional(explain(*row, program, prefix));
}

std::optional<Explanation> findExitCode(std::string_view code) {
    if (text::equalsNoCase(code.substr(0, ownPrefix.size()), ownPrefix)) {
        return findExitCode(ownCodes, code.substr(ownPrefix.size()), "zolexctl", ownPrefix);
    }
    return findExitCode(zolexCodes, code, "zolex", "");
}

/// The number that a code ends with; nothing when it has another beginning than `prefix`.
std::optional<std::int32_t> numberBehind(std::string_view prefix, std::string_view code) {
    if (!text::equalsNoCase(code.substr(0, prefix.size()), prefix)) {
        return std::nullopt;
    }
    return text::wholeNumber(code.substr(prefix.size()));
}

/// The code of the same kind whose number is nearest.
std::optional<std::string> nearestNumber(std::string_view prefix, std::string_view code) {
    const auto number = numberBehind(prefix, code);
    std::optional<std::string> nearest;
    std::int64_t least = 0;
    for (const std::string& each : explainedCodes()) {
        const auto other = numberBehind(prefix, each);
        if (!number || !other) {
            continue;
        }
        const std::int64_t distance = std::abs(std::int64_t{*other} - *number);
        if (!nearest || distance < least) {
            nearest = each;
            least = distance;
        }
    }
    return nearest;
}

std::string heading(std::string_view text, const TextStyle& style) {
    return emphasized(text, Emphasis::heading, style) + "\n";
}

/// The lines of a text, folded; those that begin with two blanks stand as they are.
std::string paragraph(std::string_view text, const TextStyle& style) {
    constexpr std::size_t indent = 2;
    std::string result;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        const bool isExample = line.substr(0, indent) == "  ";
        result += std::string(indent, ' ');
        result += isExample
                      ? std::string(line)
                      : foldedWords(line, indent, indent, static_cast<std::size_t>(style.width));
        result += '\n';
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return result;
}

std::string_view severityWords(Severity severity) {
    switch (severity) {
    case Severity::note:
        return "a note";
    case Severity::warning:
        return "a warning";
    case Severity::error:
        break;
    }
    return "an error";
}

std::string_view refusalWords(RefusedBy refusedBy) {
    switch (refusedBy) {
    case RefusedBy::zolex:
        return "zolex refuses the file";
    case RefusedBy::plan:
        return "zolex makes no plan or no command for it";
    case RefusedBy::utility:
        return "zolex takes it, and the utility refuses the command";
    case RefusedBy::nobody:
        break;
    }
    return "nothing refuses it";
}

/// "usually an error: zolex refuses the file".
std::string kindWords(const Explanation& explanation) {
    if (!explanation.severity) {
        return "exit code of " + explanation.program;
    }
    std::string words = "usually " + std::string(severityWords(*explanation.severity));
    // What convert tells.
    if (explanation.code.substr(0, 4) == "ZX95") {
        return words + (explanation.severity == Severity::error ? ": convert writes nothing"
                                                                : ": convert tells it and goes on");
    }
    if (explanation.code.substr(0, 2) == "ZX") {
        words += ": " + std::string(refusalWords(explanation.refusedBy));
    }
    return words;
}

} // namespace

std::optional<Explanation> explanationOf(std::string_view code) {
    Explanation explanation;
    if (const Rule* rule = findRule(code)) {
        explanation.code = rule->id;
        explanation.title = rule->title;
        explanation.severity = rule->severity;
        explanation.refusedBy = rule->refusedBy;
        explanation.why = rule->why;
        explanation.help = rule->help;
        return explanation;
    }
    const ProblemCode* row = findProblemCode(code);
    row = row != nullptr ? row : findFileCode(code);
    row = row != nullptr ? row : findRunCode(code);
    row = row != nullptr ? row : findGuardCode(code);
    if (row != nullptr) {
        explanation.code = row->id;
        explanation.title = row->title;
        explanation.severity = row->severity;
        explanation.why = row->why;
        explanation.help = row->help;
        return explanation;
    }
    return findExitCode(code);
}

std::vector<std::string> explainedCodes() {
    std::vector<std::string> codes;
    for (const Rule& rule : rules()) {
        codes.emplace_back(rule.id);
    }
    for (const ProblemCode& problem : problemCodes()) {
        codes.emplace_back(problem.id);
    }
    for (const ProblemCode& row : fileCodes()) {
        codes.emplace_back(row.id);
    }
    for (const ProblemCode& row : runCodes()) {
        codes.emplace_back(row.id);
    }
    for (const ProblemCode& row : guardCodes()) {
        codes.emplace_back(row.id);
    }
    for (const ExitCode& row : zolexCodes) {
        codes.push_back(std::to_string(row.number));
    }
    for (const ExitCode& row : ownCodes) {
        codes.push_back(std::string(ownPrefix) + std::to_string(row.number));
    }
    return codes;
}

std::optional<std::string> nearestCode(std::string_view text) {
    if (!text.empty() && text.front() != '0') {
        if (const Rule* rule = findRule("ZX" + std::string(text))) {
            return std::string(rule->id);
        }
    }
    for (const std::string_view prefix :
         {std::string_view("ZX"), std::string_view("ZP"), std::string_view("ZC"),
          std::string_view("ZR"), std::string_view("ZA"), ownPrefix, std::string_view()}) {
        if (auto nearest = nearestNumber(prefix, text)) {
            return nearest;
        }
    }
    return nearestWord(text, explainedCodes());
}

std::string explanationText(const Explanation& explanation, const TextStyle& style) {
    std::string text =
        emphasized(explanation.code, Emphasis::bold, style) + "  " +
        foldedWords(explanation.title, explanation.code.size() + 2, explanation.code.size() + 2,
                    static_cast<std::size_t>(style.width)) +
        "\n" + paragraph(kindWords(explanation), style);
    if (!explanation.why.empty()) {
        text +=
            "\n" + heading("What it means for a server", style) + paragraph(explanation.why, style);
    }
    if (!explanation.help.empty()) {
        text += "\n" + heading("What to do", style) + paragraph(explanation.help, style);
    }
    return text;
}

} // namespace zolex::companion
