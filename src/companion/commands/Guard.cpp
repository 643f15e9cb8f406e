#include "companion/commands/ApplyConsent.h"
#include "companion/commands/Commands.h"
#include "companion/commands/GuardCodes.h"
#include "companion/commands/GuardPlan.h"
#include "companion/commands/GuardTrial.h"
#include "companion/commands/LossText.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/OwnCertificates.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/execution/AttachedProgram.h"
#include "companion/execution/RunLocks.h"
#include "companion/execution/SystemExecution.h"
#include "companion/lint/Entries.h"
#include "companion/machine/System.h"
#include "companion/picture/Changes.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Table.h"
#include "foundation/Text.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// What zolex sees of the machine: controllers of families are none of its business.
CaptureRequest requestOfZolex(Context& context, const Utilities& utilities) {
    CaptureRequest request = captureRequest(context, &utilities);
    request.asksFamilies = false;
    return request;
}

constexpr std::string_view zolexName = system::isWindows ? "ZOLEX.EXE" : "zolex";
constexpr std::string_view separators = system::isWindows ? "/\\" : "/";

/// Whether a word names zolex, with a folder before it or not.
bool namesZolex(std::string_view word) {
    std::string_view name = word.substr(word.find_last_of(separators) + 1);
    constexpr std::string_view ending = ".exe";
    if (name.size() > ending.size() &&
        text::equalsNoCase(name.substr(name.size() - ending.size()), ending)) {
        name.remove_suffix(ending.size());
    }
    return system::isWindows ? text::equalsNoCase(name, "zolex") : name == "zolex";
}

/// The program that a word names: itself where it has a folder, else that beside this program, else
/// the first along the search path; empty: there is none.
std::string findZolex(FileSystem& files, const std::string& word) {
    if (word.find_first_of(separators) != std::string::npos) {
        return files.isFile(word) ? word : std::string();
    }
    std::vector<std::string> folders = system::searchPath();
    folders.insert(folders.begin(), system::ownFolder());
    for (std::string folder : folders) {
        if (folder.empty()) {
            folder = ".";
        }
        if (separators.find(folder.back()) == std::string_view::npos) {
            folder += separators.back();
        }
        if (std::string path = folder.append(zolexName); files.isFile(path)) {
            return path;
        }
    }
    return {};
}

/// The folder of "/p:" as it is opened.
std::string openedFolder(std::string prefix) {
    if (!system::isWindows) {
        std::replace(prefix.begin(), prefix.end(), '\\', '/');
    }
    while (prefix.size() > 1 && separators.find(prefix.back()) != std::string_view::npos) {
        prefix.pop_back();
    }
    return prefix;
}

std::string joinedLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) {
        text += (text.empty() ? "" : "\n") + line;
    }
    return text;
}

/// Tells of locks that are taken over; guard's run has no other events.
class NoteTeller : public ApplyListener {
  public:
    explicit NoteTeller(Context& context) : context_(context) {}

    void isAsPlannedFor(const Snapshot& /*guard*/) override {}
    ConsentAnswer askConsent(const MachinePlan& /*plan*/,
                             const std::vector<Loss>& /*losses*/) override {
        return {};
    }
    void happened(const JournalEvent& /*event*/) override {}
    void stillWaiting(const PlanStep& /*step*/, const ProcessIdentity& /*child*/,
                      std::chrono::milliseconds /*since*/) override {}
    void note(const std::string& text) override {
        context_.platform.console().writeError(printable(text) + "\n");
    }

  private:
    Context& context_;
};

class GuardCommand {
  public:
    GuardCommand(Context& context, const GuardOptions& options)
        : context_(context), options_(options) {
        terms_.accept = options.accept;
        if (!options.command.empty()) {
            terms_.zolexWords.assign(options.command.begin() + 1, options.command.end());
        }
    }

    int run() {
        if (!namesZolex(options_.command.front())) {
            return failWith(context_,
                            "guard is for zolex, not for \"" + printable(options_.command.front()) +
                                "\"",
                            "zolexctl guard -- zolex /r /y /f:site.ini");
        }
        run_ = readGuardedRun(terms_.zolexWords, context_.platform.files());
        if (!run_.faults.empty()) {
            return refuse(run_.faults, exit_code::notPossible);
        }
        program_ = findZolex(context_.platform.files(), options_.command.front());
        if (program_.empty()) {
            return refuse({guardFinding(guard_problem::zolexMissing, "zolex is not found")},
                          exit_code::notPossible);
        }
        if (!run_.changesSomething()) {
            return start();
        }
        if (!run_.refusals.empty()) {
            return refuse(run_.refusals, exit_code::refused);
        }
        return guardChange();
    }

  private:
    int guardChange() {
        if (context_.machine.utilitiesFolder.empty()) {
            context_.machine.utilitiesFolder = openedFolder(run_.programFolder);
        }
        if (!readPolicies(terms_.policiesText)) {
            return exit_code::notPossible;
        }
        int code = lookAtMachine(context_, [this](Platform& machine, const Utilities& utilities) {
            return judge(machine, utilities);
        });
        context_.machine.record.clear(); // it is what was judged
        if (code == exit_code::done) {
            code = agree();
        }
        return code == exit_code::done ? startLocked() : code;
    }

    /// What the policies file holds now; false after a message.
    bool readPolicies(std::string& text) {
        if (run_.policiesFile.empty()) {
            return true;
        }
        // Standard input has no name for zolex.
        PoliciesText read = readPoliciesText(context_.platform,
                                             run_.policiesFile == "-" ? "./-" : run_.policiesFile);
        if (read.fault) {
            read.fault->help = {"name a policies file that is there: /f:FILE"};
            refuse({*read.fault}, exit_code::notPossible);
            return false;
        }
        text = std::move(read.text);
        return true;
    }

    int judge(Platform& machine, const Utilities& utilities) {
        snapshot_ = captureMachine(machine, requestOfZolex(context_, utilities));
        const Snapshot& snapshot = *snapshot_;
        if (snapshot.details.empty()) {
            const std::string others = familyModels(machine, utilities);
            if (!others.empty()) {
                return failWith(context_,
                                "zolex knows no RAID controller of this server: " + others,
                                "zolexctl plan POLICIES, and then zolexctl apply PLAN");
            }
            return failWith(context_, "no supported RAID controller was found",
                            "zolexctl doctor tells what is there");
        }
        const auto count = static_cast<std::int32_t>(snapshot.details.size());
        if (run_.resets && run_.resetNumber > count) {
            return refuse(
                {guardFinding(guard_problem::noSuchNumber,
                              "there is no controller " + std::to_string(run_.resetNumber) +
                                  ": the server has " + std::to_string(count))},
                exit_code::notPossible);
        }
        state_ = fingerprintOf(snapshot);
        plan_ = planGuardedRun(snapshot, run_, terms_);
        addMissingPrograms(snapshot, utilities);
        if (!plan_.isRefused()) {
            std::vector<Finding> found = tryRun(machine, snapshot, run_, plan_, terms_);
            isPlayed_ = found.empty() && !run_.captures;
            std::move(found.begin(), found.end(), std::back_inserter(plan_.findings));
        }
        if (plan_.isRefused()) {
            return refuse(plan_.findings, exit_code::refused);
        }
        tell();
        return exit_code::done;
    }

    /// The controllers that zolexctl alone drives, "PERC-H755-Front is driven by zolexctl alone";
    /// empty: there is none.
    std::string familyModels(Platform& machine, const Utilities& utilities) const {
        const Snapshot whole = captureMachine(machine, captureRequest(context_, &utilities));
        std::vector<std::string> models;
        for (const ControllerSnapshot& each : whole.details) {
            models.push_back(printable(each.model.empty() ? each.utility : each.model));
        }
        return models.empty() ? std::string()
                              : joinWords(models, " and ") + (models.size() == 1 ? " is" : " are") +
                                    " driven by zolexctl alone";
    }

    /// zolex knows no other names of utilities, and asks no firmware.
    void addMissingPrograms(const Snapshot& snapshot, const Utilities& utilities) {
        if (utilities.wrapper.empty()) {
            plan_.findings.push_back(guardFinding(guard_problem::programMissing,
                                                  "UTIL.BAT is missing: zolex runs every "
                                                  "utility through it"));
        }
        if (run_.plans && snapshot.machineSource != "hwdetect.exe") {
            plan_.findings.push_back(guardFinding(
                guard_problem::programMissing,
                utilities.detector.empty()
                    ? "hwdetect.exe is missing: zolex plans nothing without it"
                    : "hwdetect.exe fails: zolex plans nothing without what it tells"));
        }
    }

    void tell() const {
        std::string text = diagnosticsText(toldOf(plan_.findings), sources(), context_.errorStyle);
        if (!context_.quiet) {
            text += text.empty() ? "" : "\n";
            text += emphasized(printable(typedRun(terms_.zolexWords)), Emphasis::bold,
                               context_.errorStyle) +
                    "\n";
            for (const std::string& line : plan_.lines) {
                text += "  " + line + "\n";
            }
            if (isPlayed_) {
                text += folded(std::string("Played on a virtual copy of this machine: zolex ends "
                                           "with 0") +
                               (run_.deploys ? ", and as the policies say." : "."));
            }
            if (plan_.erased.losses().empty()) {
                text += "This destroys nothing.\n";
            }
        }
        context_.platform.console().writeError(text);
    }

    [[nodiscard]] std::string folded(const std::string& text) const {
        return foldedWords(text, 0, 0, static_cast<std::size_t>(context_.errorStyle.width)) + "\n";
    }

    /// What is told of findings: notes of the policies are for those who ask for more.
    [[nodiscard]] std::vector<Finding> toldOf(const std::vector<Finding>& findings) const {
        std::vector<Finding> told;
        std::copy_if(findings.begin(), findings.end(), std::back_inserter(told),
                     [this](const Finding& finding) {
                         return finding.severity != Severity::note || context_.verbose ||
                                finding.code.starts_with("ZA");
                     });
        return told;
    }

    int agree() {
        const std::vector<Loss> losses = plan_.erased.losses();
        if (losses.empty()) {
            return exit_code::done;
        }
        ConsentTerms terms;
        terms.wish = options_.destroy;
        terms.command = "zolexctl guard";
        terms.notOwn = [this](const std::vector<Loss>& all) {
            return whyNotOwn(context_, all, *snapshot_, options_.certificates);
        };
        const ConsentAnswer answer = consentTo(context_, plan_.erased, losses, terms);
        if (answer.isGiven) {
            if (!context_.quiet) {
                context_.platform.console().writeError(
                    folded("This destroys " + lossesText(losses) +
                           ", agreed to: " + lossNames(losses) + "."));
            }
            return exit_code::done;
        }
        std::vector<std::string> help = answer.help;
        for (std::string& line : help) {
            line += " -- " + typedRun(terms_.zolexWords);
        }
        return refuse({guardFinding(guard_problem::notAgreed, answer.refused, std::move(help))},
                      exit_code::refused);
    }

    /// From here to the end no other run changes this machine.
    int startLocked() {
        const Utilities none;
        const std::unique_ptr<ExecutionSystem> system =
            context_.makeExecution ? context_.makeExecution(context_.platform, none)
                                   : makeSystemExecution(context_.platform, none);
        NoteTeller teller(context_);
        RunLocks locks;
        std::optional<RunFault> fault = locks.take(*system, plan_.erased, {}, teller);
        if (fault) {
            Finding finding =
                guardFinding(guard_problem::locked, std::move(fault->what), std::move(fault->help));
            finding.detail = joinedLines(fault->details);
            return refuse({std::move(finding)}, fault->exitCode);
        }
        if (const std::uint64_t pid = locks.oldChild().pid; pid != 0) {
            return refuse({guardFinding(guard_problem::locked,
                                        "a command of an interrupted run is still at work (pid " +
                                            std::to_string(pid) + ")")},
                          exit_code::refused);
        }
        const int code = lookAgain();
        if (code != exit_code::done) {
            return code;
        }
        if (system->interruption() == Interruption::asked) {
            return changed("the run was interrupted");
        }
        const int ended = start();
        if (ended == exit_code::done) {
            tellOtherEnd();
        }
        return ended;
    }

    /// zolex believes its utilities. What stands otherwise is told, and changes no exit code.
    void tellOtherEnd() {
        static_cast<void>(
            lookAtMachine(context_, [this](Platform& machine, const Utilities& utilities) {
                const Snapshot now = captureMachine(machine, requestOfZolex(context_, utilities));
                const std::vector<Finding> found = compareEnds(now, plan_);
                if (!found.empty()) {
                    context_.platform.console().writeError(
                        "\n" + diagnosticsText(found, sources(), context_.errorStyle));
                }
                return exit_code::done;
            }));
    }

    /// What was judged is what zolex finds.
    int lookAgain() {
        std::string text;
        if (!readPolicies(text)) {
            return exit_code::notPossible;
        }
        if (text != terms_.policiesText) {
            return changed(printable(run_.policiesFile) + " has changed meanwhile");
        }
        const GuardedRun again = readGuardedRun(terms_.zolexWords, context_.platform.files());
        if (!again.faults.empty() || again.policiesFile != run_.policiesFile ||
            again.resetNumber != run_.resetNumber || again.resets != run_.resets ||
            again.deploys != run_.deploys) {
            return changed("the parameter file has changed meanwhile");
        }
        return lookAtMachine(context_, [this](Platform& machine, const Utilities& utilities) {
            const Fingerprint now =
                fingerprintOf(captureMachine(machine, requestOfZolex(context_, utilities)));
            return now == state_ ? exit_code::done : changed("the server has changed meanwhile");
        });
    }

    int changed(std::string what) {
        return refuse({guardFinding(guard_problem::changedMeanwhile, std::move(what))},
                      exit_code::refused);
    }

    int start() {
        const auto code = runAttached(program_, terms_.zolexWords);
        if (!code) {
            return refuse({guardFinding(guard_problem::zolexMissing,
                                        printable(program_) + " cannot be started")},
                          exit_code::notPossible);
        }
        return static_cast<int>(*code);
    }

    [[nodiscard]] std::vector<SourceFile> sources() const {
        return {{run_.policiesFile, terms_.policiesText}};
    }

    /// Tells why zolex is not started; the code.
    int refuse(const std::vector<Finding>& findings, int code) {
        const std::string text = diagnosticsText(toldOf(findings), sources(), context_.errorStyle);
        context_.platform.console().writeError(text + "\n");
        failWith(context_, "zolex was not started, and nothing was changed");
        return code;
    }

    Context& context_;
    const GuardOptions& options_;
    GuardTerms terms_;
    GuardedRun run_;
    GuardPlan plan_;
    std::optional<Snapshot> snapshot_;
    Fingerprint state_;
    std::string program_;
    bool isPlayed_ = false;
};

} // namespace

int guard(Context& context, const GuardOptions& options) {
    return GuardCommand(context, options).run();
}

} // namespace zolex::companion
