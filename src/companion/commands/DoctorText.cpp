#include "companion/commands/DoctorText.h"

#include "companion/families/Family.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/text/Sizes.h"
#include "companion/text/Table.h"
#include "foundation/CString.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::size_t nameColumns = 16;
constexpr std::size_t wordColumns = 8;
constexpr std::size_t textAt = nameColumns + wordColumns;

Emphasis emphasisOf(std::string_view word) {
    return word == "ok"                          ? Emphasis::good
           : word == "FAIL" || word == "MISSING" ? Emphasis::bad
           : word == "WARN"                      ? Emphasis::warning
                                                 : Emphasis::dim;
}

/// The word by which a listing is called: "-pdList", "GETCONFIG", "DISPLAY", "/L /D00".
std::string listingName(std::string_view command) {
    constexpr std::size_t wordsBefore = 2; // UTIL.BAT and the utility
    std::vector<std::string_view> words;
    while (!command.empty()) {
        const std::size_t end = std::min(command.find(' '), command.size());
        if (end > 0) {
            words.push_back(command.substr(0, end));
        }
        command.remove_prefix(std::min(end + 1, command.size()));
    }
    if (words.size() > 1 && findFamily(words.front()) != nullptr) {
        return std::string(words[1]);
    }
    if (words.size() <= wordsBefore) {
        return "listing";
    }
    if (words[1] == "HYPERWIN") {
        return std::string(words.back());
    }
    const bool beginsWithNumber =
        words[wordsBefore].find_first_not_of("0123456789") == std::string_view::npos;
    const std::size_t name = wordsBefore + (beginsWithNumber ? 1 : 0);
    return std::string(words[std::min(name, words.size() - 1)]);
}

std::string listingOutcome(const CapturedListing& command) {
    switch (command.outcome) {
    case ChildOutcome::noPipe:
    case ChildOutcome::notStarted:
        return "cannot be started";
    case ChildOutcome::stillRunning:
        return "did not end, or printed too much";
    case ChildOutcome::ended:
    case ChildOutcome::notClosed:
        break;
    }
    return "exit code " + std::to_string(command.exitCode);
}

/// Whether the latest command failed, so that no further one was run.
bool endedTheCapture(const ControllerSnapshot& controller) {
    return controller.failed && std::any_of(controller.findings.begin(), controller.findings.end(),
                                            [](const Finding& finding) {
                                                return finding.code == problem::utilityMissing ||
                                                       finding.code == problem::utilityNotStarted ||
                                                       finding.code == problem::utilityStillRuns ||
                                                       finding.code == problem::utilityFailed;
                                            });
}

std::string namesText(const Snapshot& snapshot) {
    const auto known = [](const CString& name) {
        return name.isEmpty() ? std::string("not known") : printable(name);
    };
    return "machine type " + known(snapshot.machine.machineType) + ", serial " +
           known(snapshot.machine.serialNumber);
}

class Writer {
  public:
    Writer(const Examination& examination, const Snapshot& snapshot, const TextStyle& style,
           DoctorDetail detail)
        : examination_(examination), snapshot_(snapshot), style_(style), detail_(detail) {}

    std::string write() {
        if (detail_ != DoctorDetail::findings) {
            table();
        }
        findings();
        if (detail_ != DoctorDetail::findings || !examination_.findings.empty()) {
            summary();
        }
        return std::move(out_);
    }

  private:
    void table() {
        wrapper();
        detector();
        for (const UtilityCheck& check : examination_.utilities) {
            utility(check);
        }
        surroundings();
    }

    void head(const std::string& name, const std::string& word) {
        out_ += padded(name, nameColumns, 1);
        out_ += padded(emphasized(word, emphasisOf(word), style_), wordColumns, 1);
    }

    void row(const std::string& name, const std::string& word, std::string_view text) {
        head(name, word);
        out_ += foldedWords(text, textAt, textAt, static_cast<std::size_t>(style_.width)) + "\n";
    }

    void wrapper() {
        const std::string path = printable(examination_.wrapper);
        if (path.empty()) {
            row("UTIL.BAT", "missing", "not needed: utilities are found by their own names");
            return;
        }
        const auto loses = examination_.wrapperLosesCodes();
        row("UTIL.BAT", loses.value_or(false) ? "FAIL" : "ok",
            path + (!loses   ? ""
                    : *loses ? "; loses exit codes"
                             : "; keeps exit codes"));
    }

    void detector() {
        const auto failed = std::find_if(examination_.findings.begin(), examination_.findings.end(),
                                         [](const SubjectFinding& each) {
                                             return each.finding.code == problem::detectorFailed;
                                         });
        const std::string source =
            snapshot_.machineSource.empty() || snapshot_.machineSource == "hwdetect.exe"
                ? ""
                : " (" + snapshot_.machineSource + ")";
        if (failed != examination_.findings.end()) {
            row("hwdetect.exe", "FAIL",
                printable(failed->finding.summary) + "; " + namesText(snapshot_) + source);
        } else if (snapshot_.machineSource == "hwdetect.exe" || !examination_.detector.empty()) {
            row("hwdetect.exe", "ok", namesText(snapshot_) + source);
        } else {
            row("hwdetect.exe", "missing", "not needed: " + namesText(snapshot_) + source);
        }
    }

    void utility(const UtilityCheck& check) {
        using State = UtilityCheck::State;
        switch (check.state) {
        case State::absent:
            row(check.name, "missing", "no controller needs it");
            return;
        case State::unused:
            row(check.name, "ok", printable(check.program) + "; no controller needs it");
            return;
        case State::missing:
        case State::ok:
        case State::failed:
            break;
        }
        bool isAsked = false;
        for (const ControllerSnapshot& each : snapshot_.details) {
            if (each.utility == check.name) {
                isAsked = true;
                controller(check, each);
            }
        }
        if (!isAsked && check.controllers.empty()) {
            row(check.name, "FAIL", printable(check.program) + "; tells of no controller");
        } else if (!isAsked) {
            row(check.name, check.state == State::missing ? "MISSING" : "-",
                "its controllers were not asked");
        }
    }

    void controller(const UtilityCheck& check, const ControllerSnapshot& controller) {
        std::string text = "controller " + std::to_string(controller.number) + ": ";
        const Facts& facts = controller.facts;
        text += printable(facts.productName.empty() ? controller.model : facts.productName);
        if (!facts.firmwareVersion.empty()) {
            text += ", firmware " + printable(facts.firmwareVersion);
        }
        if (!check.usesWrapper && !check.program.empty()) {
            text += "; " + printable(check.program);
            if (!facts.utilityVersion.empty()) {
                text += ", version " + printable(text::token(facts.utilityVersion, " ", 0));
            }
        }
        if (check.state == UtilityCheck::State::missing) {
            row(check.name, "MISSING", text + " needs it");
            return;
        }
        const bool loses = check.probe && check.probe->isLost() && !check.usesWrapper;
        row(check.name, controller.failed || loses ? "FAIL" : "ok",
            text + (loses ? "; loses exit codes" : ""));
        for (std::size_t i = 0; i < controller.commands.size(); ++i) {
            listing(controller, i);
        }
    }

    void listing(const ControllerSnapshot& controller, std::size_t index) {
        const CapturedListing& command = controller.commands[index];
        const std::string name = "  " + listingName(command.command);
        constexpr std::size_t durationColumns = 9;
        const std::string duration =
            padded(std::to_string(command.duration.count()) + " ms", durationColumns, 1);
        if (index + 1 == controller.commands.size() && endedTheCapture(controller)) {
            head(name, "FAIL");
            out_ += duration + listingOutcome(command) + "\n";
            return;
        }
        const ListingReading reading = index < controller.facts.listings.size()
                                           ? controller.facts.listings[index]
                                           : ListingReading();
        if (!reading.isListing) {
            head(name, "FAIL");
            out_ += duration + "no listing\n";
            return;
        }
        const bool isWhole = reading.blocksRead >= reading.blocks;
        head(name, isWhole ? "ok" : "WARN");
        out_ += duration;
        if (!isWhole) {
            out_ += std::to_string(reading.blocksRead) + " of " +
                    countText(reading.blocks, "block", "blocks") + " read";
        } else {
            out_ += (reading.unknownKeys.empty() ? "read fully: " : "read: ") + amount(reading);
        }
        if (!reading.unknownKeys.empty()) {
            out_ += ", " + countText(reading.unknownKeys.size(), "key", "keys") + " not known";
        }
        out_ += "\n";
        if (detail_ == DoctorDetail::keys) {
            unknownKeys(reading);
        }
    }

    static std::string amount(const ListingReading& reading) {
        return reading.blocks > 0 ? countText(reading.blocks, "block", "blocks")
                                  : std::to_string(reading.keysUsed) + " of " +
                                        countText(reading.keys, "key", "keys") + " used";
    }

    void unknownKeys(const ListingReading& reading) {
        for (const auto& [key, unknown] : reading.unknownKeys) {
            out_ +=
                std::string(textAt, ' ') +
                foldedWords(
                    "line " + std::to_string(unknown.line) + " \"" + printable(key) + "\"" +
                        (unknown.count > 1 ? ", " + std::to_string(unknown.count) + " times" : ""),
                    textAt, textAt + 2, static_cast<std::size_t>(style_.width)) +
                "\n";
        }
    }

    void surroundings() {
        std::string console = std::to_string(style_.width) + " columns, " +
                              (style_.colours ? "colours" : "no colours");
        if (const auto page = system::codePage()) {
            console += "; code page " + std::to_string(*page);
        }
        row("console", "ok", console);
        const LocalTime& now = examination_.surroundings.clock;
        const system::TemporaryFolder& folder = examination_.surroundings.temporaryFolder;
        std::string text = std::string(formatText("%04d-%02d-%02d %02d:%02d; ", now.year, now.month,
                                                  now.day, now.hour, now.minute)
                                           .view());
        text += folder.name.empty() ? "no folder for temporary files" : printable(folder.name);
        text += folder.isWritable ? " writable" : " not writable";
        if (folder.freeBytes) {
            text += ", " + freeText(*folder.freeBytes) + " free";
        }
        const bool isFaulty =
            std::any_of(examination_.findings.begin(), examination_.findings.end(),
                        [](const SubjectFinding& each) {
                            return each.subject == "clock" || each.subject == "temporary folder";
                        });
        row("clock, temp", isFaulty ? "WARN" : "ok", text);
    }

    /// Two looks at a busy folder tell the same where there is plenty.
    static std::string freeText(std::uint64_t bytes) {
        constexpr std::uint64_t plenty = std::uint64_t{1} << 30U;
        return bytes >= plenty ? "more than 1 GB" : std::to_string(bytes >> 20U) + " MB";
    }

    void findings() {
        const auto width = static_cast<std::size_t>(style_.width);
        for (const SubjectFinding& each : examination_.findings) {
            const Finding& finding = each.finding;
            const bool isError = finding.severity == Severity::error;
            const bool isNote = finding.severity == Severity::note;
            const std::string word = isError ? "error: " : isNote ? "note: " : "warning: ";
            const Emphasis emphasis = isError  ? Emphasis::bad
                                      : isNote ? Emphasis::heading
                                               : Emphasis::warning;
            out_ += emphasized(word, emphasis, style_) +
                    foldedWords(each.subject + ": " + printable(finding.summary) + " [" +
                                    finding.code + "]",
                                word.size(), 2, width) +
                    "\n";
            quoted(finding.detail);
            for (const std::string& help : finding.help) {
                out_ += "  " + emphasized("help:", Emphasis::heading, style_) + " " +
                        foldedWords(help, 8, 8, width) + "\n";
            }
        }
    }

    void quoted(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            out_ += "  | " + printable(text.substr(0, end)) + "\n";
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

    void summary() {
        const std::size_t count = examination_.findings.size();
        out_ += count == 0 ? "No findings.\n"
                           : countText(count, "finding", "findings") +
                                 ". To report: zolexctl record --redact -o report.zrec\n";
    }

    const Examination& examination_;
    const Snapshot& snapshot_;
    const TextStyle& style_;
    DoctorDetail detail_;
    std::string out_;
};

} // namespace

std::string doctorText(const Examination& examination, const Snapshot& snapshot,
                       const TextStyle& style, DoctorDetail detail) {
    return Writer(examination, snapshot, style, detail).write();
}

} // namespace zolex::companion
