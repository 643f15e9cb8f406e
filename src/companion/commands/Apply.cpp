#include "companion/commands/ChangeRun.h"
#include "companion/commands/Commands.h"
#include "companion/commands/FileKind.h"
#include "companion/commands/PlanBrief.h"
#include "companion/commands/PlanMaking.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/Sha256.h"
#include "companion/picture/PlanText.h"
#include "companion/planning/PlanFaults.h"
#include "companion/text/Terminal.h"
#include "companion/text/TypedWord.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

constexpr const char* notPlanned = "the plan cannot be carried out: nothing was changed [ZA109]";

/// "zolexctl apply plan.json --controller 2".
std::string applyCommand(const Context& context, const ApplyOptions& options) {
    std::string command =
        "zolexctl apply " + (options.plan.empty() ? "--policies " + typedWord(options.policies.file)
                                                  : typedWord(options.plan));
    const StrategyWish strategy = options.policies.strategy;
    command += strategy == StrategyWish::add       ? " --strategy add"
               : strategy == StrategyWish::rebuild ? " --strategy rebuild"
                                                   : "";
    for (const std::string& id : options.policies.accept) {
        command += " --accept " + id;
    }
    command += machineArguments(context.machine);
    return command + (options.allowSkipped ? " --allow-skipped" : "");
}

/// What is typed to plan anew, of a plan that was read: as it was typed, but for how it was
/// written.
std::string planningCommand(const PlanReading& reading) {
    const std::vector<std::string>& argv = reading.head.argv;
    if (argv.empty() || (argv.front() != "plan" && argv.front() != "reset")) {
        return "zolexctl plan " + policiesArgument(reading.plan->policiesFile);
    }
    // Consent to what was lost then is none to what would be lost now.
    constexpr std::array<std::string_view, 7> withValue = {
        "-o", "--output", "--format", "--timings", "--color", "--width", "--destroy"};
    constexpr std::array<std::string_view, 7> alone = {
        "-q", "--quiet", "-v", "--verbose", "--exit-code", "--no-rehearsal", "--"};
    const auto isOne = [](const auto& words, const std::string& word) {
        return std::find(words.begin(), words.end(), word) != words.end();
    };
    std::string command = "zolexctl";
    for (std::size_t i = 0; i < argv.size(); ++i) {
        const std::string name = argv[i].substr(0, argv[i].find('='));
        if (isOne(withValue, name)) {
            i += name == argv[i] ? 1 : 0;
        } else if (!isOne(alone, argv[i])) {
            command += " " + typedWord(argv[i]);
        }
    }
    return command;
}

/// "site.ini".
bool isPoliciesName(std::string_view name) {
    constexpr std::string_view ending = ".ini";
    return name.size() > ending.size() &&
           text::equalsNoCase(name.substr(name.size() - ending.size()), ending);
}

/// Carries out a plan that was kept.
class SavedPlan {
  public:
    SavedPlan(Context& context, const ApplyOptions& options)
        : context_(context), options_(options),
          run_(context, options,
               options.journal.empty() ? journalFileOf(options.plan) : options.journal,
               applyCommand(context, options) + outputArguments(options)) {}

    int run() {
        if (!run_.begin()) {
            return run_.refuse(exit_code::notPossible, {}, {});
        }
        PlanReading reading = readPlanFile(context_.platform.files(), options_.plan);
        if (!reading.plan) {
            return refuseUnread(reading.findings);
        }
        reading.plan->command = planningCommand(reading);
        chosen_.plan = *std::move(reading.plan);
        chosen_.file = options_.plan;
        chosen_.hash = std::move(reading.hash);
        chosen_.lockFile = options_.plan + ".lock";
        chosen_.controllers = context_.machine.controllers;
        chosen_.allowSkipped = options_.allowSkipped;
        if (const std::int32_t missing = controllerNotPlanned(); missing > 0) {
            return run_.refuse(
                exit_code::notPossible,
                printable(options_.plan) + " is not for controller " + std::to_string(missing) +
                    " [ZA109]",
                {"zolexctl show " + typedWord(options_.plan) + " tells what it is for"});
        }
        if (!chosen_.plan.isApplicable()) {
            return run_.refuse(exit_code::notPossible, notPlanned,
                               {"zolexctl show " + typedWord(options_.plan) + " tells why"});
        }
        if (!chosen_.plan.changesSomething()) {
            return run_.carryOut(chosen_);
        }
        const std::string journal =
            options_.journal.empty() ? journalFileOf(options_.plan) : options_.journal;
        if (auto obstacle = journalObstacle(context_, journal, planCommand(chosen_.plan))) {
            return obstacle->planId.empty() || obstacle->planId == chosen_.plan.id
                       ? run_.refuse(obstacle->exitCode, obstacle->what, obstacle->help)
                       : refuseOther(journal, *obstacle);
        }
        return run_.carryOut(chosen_);
    }

  private:
    /// The plan was written under the name of an earlier one, whose journal is there.
    int refuseOther(const std::string& journal, const JournalObstacle& obstacle) {
        ApplyOptions next = options_;
        next.journal = nextJournal(context_, journal);
        return run_.refuse(obstacle.exitCode,
                           printable(journal) + ": this is the journal of another plan, " +
                               printable(obstacle.planId) + ", begun on " + obstacle.begun +
                               "; this plan is " + chosen_.plan.id + " [ZA106]",
                           {applyCommand(context_, next) + outputArguments(next)});
    }

    int refuseUnread(const std::vector<Finding>& findings) {
        const Finding& fault = findings.front();
        const std::string name = typedWord(options_.plan);
        if (fileKindOf(context_.platform, options_.plan) == FileKind::journal) {
            return run_.refuse(exit_code::notPossible,
                               printable(options_.plan) + ": this is no plan but a journal [ZP191]",
                               {"zolexctl apply --resume " + name + " goes on with its run"});
        }
        if (isPoliciesName(options_.plan)) {
            return run_.refuse(exit_code::notPossible,
                               printable(options_.plan) +
                                   ": this is no plan but a policies file [ZP191]",
                               {"zolexctl apply --policies " + name + " plans and carries it out"});
        }
        std::string what = printable(options_.plan);
        what += fault.start.line > 0 ? ":" + std::to_string(fault.start.line) + ":" +
                                           std::to_string(fault.start.column)
                                     : "";
        return run_.refuse(exit_code::notPossible,
                           what + ": " + fault.summary + " [" + fault.code + "]", fault.help);
    }

    /// 0 when all controllers asked for are in the plan.
    [[nodiscard]] std::int32_t controllerNotPlanned() const {
        for (const std::int32_t number : context_.machine.controllers) {
            const bool isThere =
                std::any_of(chosen_.plan.controllers.begin(), chosen_.plan.controllers.end(),
                            [number](const ControllerPlanning& each) {
                                return each.controller.number == number;
                            });
            if (!isThere) {
                return number;
            }
        }
        return 0;
    }

    Context& context_;
    const ApplyOptions& options_;
    ChangeRun run_;
    ChosenPlan chosen_;
};

/// Plans by policies, and carries that out.
class PlanNow {
  public:
    PlanNow(Context& context, const ApplyOptions& options, std::string journal)
        : context_(context), options_(options), maker_(context, options.policies),
          run_(context, options, std::move(journal),
               applyCommand(context, options) + outputArguments(options)) {
        maker_.nameCommand(applyCommand(context, options));
    }

    int run() {
        if (!run_.begin() || !maker_.readPolicies()) {
            return run_.refuse(exit_code::notPossible, {}, {});
        }
        std::optional<MachinePlan> plan;
        try {
            plan = maker_.make(run_.machine(), run_.utilities());
        } catch (const NoSuchController& missing) {
            return run_.refuse(exit_code::notPossible, missing.what(),
                               {"zolexctl show lists those that there are"});
        }
        if (!plan) {
            return run_.refuse(exit_code::notPossible, {}, {});
        }
        tellPlan(*plan);
        if (!plan->isApplicable()) {
            return run_.refuse(exit_code::notPossible, notPlanned,
                               {"mend what is told as error: " + plan->command});
        }
        ChosenPlan chosen;
        chosen.text = planDocument(*plan, {context_.argv, maker_.madeAt()});
        chosen.hash = sha256(chosen.text);
        chosen.plan = *std::move(plan);
        chosen.lockFile = (options_.policies.file == "-" ? "policies" : options_.policies.file) +
                          std::string(".lock");
        chosen.allowSkipped = options_.allowSkipped;
        chosen.isShown = context_.format == Format::text && !context_.quiet;
        return run_.carryOut(chosen);
    }

  private:
    /// Of a plan with faults everything, of others what would be done.
    void tellPlan(const MachinePlan& plan) {
        if (context_.format != Format::text) {
            return;
        }
        Console& console = context_.platform.console();
        if (!plan.isApplicable()) {
            PlanTextTerms terms;
            terms.verbose = context_.verbose;
            console.writeOutput(planText(plan, context_.style, terms));
            return;
        }
        if (!context_.quiet) {
            console.writeOutput(planBrief(plan, context_.style));
        }
    }

    Context& context_;
    const ApplyOptions& options_;
    PlanMaker maker_;
    ChangeRun run_;
};

/// Goes on with the run of a journal.
class Resumption {
  public:
    Resumption(Context& context, const ApplyOptions& options)
        : context_(context), options_(options),
          run_(context, options, options.resume,
               "zolexctl apply --resume " + typedWord(options.resume)) {}

    int run() {
        if (!run_.begin()) {
            return run_.refuse(exit_code::notPossible, {}, {});
        }
        const JournalReading reading = readJournalFile(context_.platform.files(), options_.resume);
        if (!reading.journal) {
            return refuseUnread(reading.findings.front());
        }
        const JournalHistory& history = *reading.journal;
        const JournalEnd* const end = history.end();
        if (end != nullptr && end->exitCode == exit_code::done) {
            return run_.refuse(
                exit_code::refused,
                printable(options_.resume) + ": this run was carried out on " +
                    history.entries.back().at + ", and there is nothing to go on with [ZA106]",
                {"zolexctl show " + typedWord(options_.resume) + " tells what was done"});
        }
        ChosenPlan chosen;
        if (const int code = readPlan(history.begin(), chosen); code != exit_code::done) {
            return code;
        }
        return run_.resume(chosen, history);
    }

  private:
    int refuseUnread(const Finding& fault) {
        if (fault.code == problem::nothingBegun) {
            return run_.refuse(
                exit_code::refused,
                printable(options_.resume) +
                    ": nothing was begun, and there is nothing to go on with [ZA187]",
                {"carry out the plan itself: zolexctl apply PLAN.json"});
        }
        if (fileKindOf(context_.platform, options_.resume) == FileKind::plan) {
            return run_.refuse(
                exit_code::notPossible,
                printable(options_.resume) + ": this is no journal but a plan [ZA181]",
                {"zolexctl apply " + typedWord(options_.resume) + " carries a plan out"});
        }
        std::string what = printable(options_.resume);
        what += fault.start.line > 0 ? ":" + std::to_string(fault.start.line) : "";
        return run_.refuse(exit_code::notPossible,
                           what + ": " + fault.summary + " [" + fault.code + "]", fault.help);
    }

    /// The plan of the journal, from itself or from the file that it names.
    int readPlan(const JournalBegin& begin, ChosenPlan& chosen) {
        PlanReading reading;
        if (begin.planFile.empty()) {
            reading = readPlanDocument(begin.planText, options_.resume);
            reading.hash = sha256(begin.planText);
            chosen.text = begin.planText;
        } else {
            chosen.file = fileOf(begin.planFile);
            reading = readPlanFile(context_.platform.files(), chosen.file);
        }
        if (!reading.plan) {
            const Finding& fault = reading.findings.front();
            return run_.refuse(exit_code::notPossible,
                               "the plan of this run, " + printable(chosen.file) + ": " +
                                   fault.summary + " [" + fault.code + "]",
                               fault.help);
        }
        if (reading.hash != begin.planHash) {
            return run_.refuse(exit_code::refused,
                               printable(chosen.file) + " is not the plan of this run: its bytes "
                                                        "are others [ZA116]",
                               {"put the plan " + begin.planId + " back in its place",
                                planningCommand(reading) + " plans from what is there"});
        }
        reading.plan->command = planningCommand(reading);
        chosen.plan = *std::move(reading.plan);
        chosen.hash = std::move(reading.hash);
        const std::string lockName = !chosen.file.empty()               ? chosen.file
                                     : chosen.plan.policiesFile.empty() ? std::string("reset")
                                     : chosen.plan.policiesFile == "<stdin>"
                                         ? std::string("policies")
                                         : chosen.plan.policiesFile;
        chosen.lockFile = lockName + ".lock";
        chosen.controllers = begin.controllers;
        chosen.allowSkipped = begin.allowSkipped;
        return exit_code::done;
    }

    /// The file as it was named; where it is not there, that of its name beside the journal.
    [[nodiscard]] std::string fileOf(const std::string& named) const {
        if (context_.platform.files().isFile(named)) {
            return named;
        }
        const std::size_t folder = options_.resume.find_last_of("/\\");
        const std::string bare = named.substr(named.find_last_of("/\\") + 1);
        const std::string beside =
            folder == std::string::npos ? bare : options_.resume.substr(0, folder + 1) + bare;
        return context_.platform.files().isFile(beside) ? beside : named;
    }

    Context& context_;
    const ApplyOptions& options_;
    ChangeRun run_;
};

int applyPolicies(Context& context, const ApplyOptions& options) {
    const std::string& file = options.policies.file;
    const std::string usual = journalFileOf(file == "-" ? "policies" : file);
    JournalName journal =
        freeJournal(context, options.journal, usual, applyCommand(context, options));
    if (journal.obstacle) {
        ChangeRun run(context, options, usual, {});
        return run.refuse(journal.obstacle->exitCode, journal.obstacle->what,
                          journal.obstacle->help);
    }
    return PlanNow(context, options, journal.name).run();
}

} // namespace

int apply(Context& context, const ApplyOptions& options) {
    if (!options.resume.empty()) {
        return Resumption(context, options).run();
    }
    return options.plan.empty() ? applyPolicies(context, options)
                                : SavedPlan(context, options).run();
}

} // namespace zolex::companion
