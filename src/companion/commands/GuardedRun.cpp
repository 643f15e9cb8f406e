#include "companion/commands/GuardedRun.h"

#include "companion/commands/GuardCodes.h"
#include "companion/rewriting/PlanComparison.h"
#include "companion/text/Terminal.h"
#include "driver/CommandLine.h"
#include "driver/ParameterParser.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "foundation/TextFile.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

/// The switches whose value zolex extends by every following word that is no switch.
constexpr std::array<std::string_view, 10> joiningSwitches = {
    "/f:", "/o:", "/p:", "/r:", "/t:", "/s:", "/c:", "/controllers:", "/v:", "@"};

/// Keeps the faults alone.
class FaultKeeper : public SilentReport {
  public:
    void fault(const Fault& fault) override { faults.push_back(fault); }
    std::vector<Fault> faults;
};

bool beginsWith(std::string_view word, std::string_view name) {
    return word.size() >= name.size() && text::equalsNoCase(word.substr(0, name.size()), name);
}

std::string quoted(std::string_view word) {
    return "\"" + printable(word) + "\"";
}

/// Reads one command line.
class RunReader {
  public:
    RunReader(const std::vector<std::string>& words, FileSystem& files)
        : words_(words), files_(files) {}

    GuardedRun read() {
        addSwitches(parser_);
        std::vector<const char*> arguments{"zolex"};
        arguments.reserve(words_.size() + 1);
        for (const std::string& word : words_) {
            arguments.push_back(word.c_str());
        }
        FaultKeeper report;
        const CommandLine line = readCommandLine(parser_, static_cast<int>(arguments.size()),
                                                 arguments.data(), files_, report);
        for (const Fault& fault : report.faults) {
            tell(fault);
        }
        if (!run_.faults.empty()) {
            return std::move(run_);
        }
        checkJoinedValues();
        if (words_.empty() || line.settings.help) {
            return std::move(run_); // the usage
        }
        const Combination combination = checkCombinations(line.settings);
        if (combination.fault) {
            tell(*combination.fault);
        }
        checkNumber(line.settings);
        if (run_.faults.empty() && !combination.detectionCheck) {
            judge(line.settings);
        }
        return std::move(run_);
    }

  private:
    void tell(const Fault& fault) {
        switch (fault.kind) {
        case FaultKind::parameterUnknown:
            refuseWord("zolex has no switch " + quoted(fault.wanted.view()));
            return;
        case FaultKind::parameterFileMissing:
        case FaultKind::parameterFileUnreadable:
            run_.faults.push_back(
                guardFinding(guard_problem::fileNotRead,
                             "the parameter file " + quoted(fault.place.file.view()) +
                                 (fault.kind == FaultKind::parameterFileMissing
                                      ? " cannot be opened: zolex would go on without it"
                                      : " cannot be read"),
                             {"name a parameter file that is there: @FILE"}));
            return;
        default:
            run_.faults.push_back(
                guardFinding(guard_problem::switchesExclude, printable(faultLine(fault))));
            return;
        }
    }

    void refuseWord(std::string summary, std::vector<std::string> help = {}) {
        run_.faults.push_back(
            guardFinding(guard_problem::wordNotUnderstood, std::move(summary), std::move(help)));
    }

    /// The words of the command line, and those of the parameter file, which zolex has read too.
    [[nodiscard]] std::vector<std::string> allWords() const {
        std::vector<std::string> all = words_;
        CString name;
        if (!parser_.lookUp("@", name) || name.isEmpty()) {
            return all;
        }
        TextFile file(files_);
        std::string content;
        if (file.open(name, "r")) {
            for (CString line; file.readLine(line);) {
                content.append(line.view());
            }
        }
        for (std::string& word : splitCommandLine(content)) {
            all.push_back(std::move(word));
        }
        return all;
    }

    /// A word that zolex takes into the value before it may be a mistyped switch.
    void checkJoinedValues() {
        const std::vector<std::string> words = allWords();
        for (const std::string_view name : joiningSwitches) {
            CString value;
            if (parser_.lookUp(CString(std::string(name)), value)) {
                checkJoined(words, name, value.view());
            }
        }
    }

    void checkJoined(const std::vector<std::string>& words, std::string_view name,
                     std::string_view value) {
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::string& word = words[i];
            if (!beginsWith(word, name)) {
                continue;
            }
            const std::string_view own = std::string_view(word).substr(name.size());
            if (own.size() > value.size() || value.substr(0, own.size()) != own) {
                continue; // of another switch that begins so
            }
            if (own == value) {
                return;
            }
            const std::string_view more = text::trim(value.substr(own.size()));
            const bool isApart = own.empty() && i + 1 < words.size() && words[i + 1] == value &&
                                 !value.starts_with('/');
            if (!isApart) {
                refuseWord("zolex takes " + quoted(more) + " into the value of " + printable(name) +
                               ", which becomes " + quoted(value),
                           {"is it a switch that is mistyped? zolexctl guard -- zolex /? lists "
                            "them",
                            "a value with blanks stands in double quotes: \"" + printable(name) +
                                "...\""});
            }
            return;
        }
    }

    void checkNumber(const Settings& settings) {
        CString value;
        if (!settings.restoreWithNumber || !parser_.lookUp("/r:", value)) {
            return;
        }
        const std::string_view digits = value.view();
        std::int32_t number = 0;
        const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
        if (end.ec != std::errc() || end.ptr != digits.data() + digits.size() || number < 1) {
            refuseWord("/r:" + printable(digits) + " is no number of a controller",
                       {"controllers are numbered from 1: zolexctl show"});
        }
    }

    void judge(const Settings& settings) {
        const bool hasSource = settings.defaults || !settings.policiesFile.isEmpty();
        const bool restores = settings.restore || settings.restoreWithNumber;
        // Under these no command reaches a utility that could change something.
        const bool runs = !settings.fake && !settings.noExecuteAll;
        run_.captures = settings.capture;
        run_.resets = runs && restores && !settings.noExecuteReset;
        run_.resetNumber = settings.restoreNumber;
        run_.plans = hasSource && !settings.capture;
        run_.deploys = runs && run_.plans && !settings.noExecuteDeploy;
        run_.needsPolicy = settings.e1;
        run_.needsDrives = settings.e3;
        run_.classDefaults = settings.defaults;
        run_.policiesFile = run_.plans ? std::string(settings.policiesFile.view()) : "";
        run_.parameterFile = settings.parameterFile.view();
        run_.programFolder = settings.commandPathPrefix.view();
        if (run_.changesSomething()) {
            refuseInvented(settings);
            tellAsking(settings);
            tellHeldBack(settings);
        }
    }

    void refuseInvented(const Settings& settings) {
        const auto refuse = [this](const std::string& what) {
            run_.refusals.push_back(
                guardFinding(guard_problem::inventedInput,
                             what + ", and zolex would run commands on this server all the same",
                             {"to look at the commands: add /noexecuteall"}));
        };
        if (!settings.controllerDefinitionFile.isEmpty()) {
            refuse("/controllers:" + printable(settings.controllerDefinitionFile.view()) +
                   " tells of drives that are not in this server");
        }
        if (settings.noExecuteCapture) {
            refuse("/noexecutecap has fakeraid invent the drives");
        }
    }

    void tellAsking(const Settings& settings) {
        if (!run_.resets || settings.noPrompt) {
            return;
        }
        if (run_.plans) {
            run_.refusals.push_back(guardFinding(
                guard_problem::asksAgain,
                "without /y zolex asks before it erases, and deploys whatever is answered",
                {"add /y: guard asks before zolex is started"}));
        } else {
            run_.notes.push_back(guardFinding(guard_problem::asksAgain,
                                              "without /y zolex asks once more before it erases",
                                              {"add /y: guard has asked by then"}));
            run_.notes.back().severity = Severity::note;
        }
    }

    void tellHeldBack(const Settings& settings) {
        if (run_.resets && settings.noExecuteDeploy) {
            note("/noexecutedeploy does not hold back the restore: controllers are erased");
        }
        if (run_.deploys && settings.noExecuteReset) {
            note("/noexecutereset does not hold back the deployment");
        }
    }

    void note(std::string summary) {
        run_.notes.push_back(guardFinding(guard_problem::runsAllTheSame, std::move(summary)));
    }

    const std::vector<std::string>& words_;
    FileSystem& files_;
    ParameterParser parser_;
    GuardedRun run_;
};

} // namespace

GuardedRun readGuardedRun(const std::vector<std::string>& words, FileSystem& files) {
    return RunReader(words, files).read();
}

std::string typedRun(const std::vector<std::string>& words) {
    std::string typed = "zolex";
    for (const std::string& word : words) {
        const bool isPlain = !word.empty() && word.find_first_of(" \t") == std::string::npos;
        typed += isPlain ? " " + word : " \"" + word + "\"";
    }
    return typed;
}

} // namespace zolex::companion
