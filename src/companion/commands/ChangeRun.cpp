#include "companion/commands/ChangeRun.h"

#include "companion/commands/FileKind.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/OwnCertificates.h"
#include "companion/commands/UnaskedFamilies.h"
#include "companion/execution/RunCodes.h"
#include "companion/execution/SystemExecution.h"
#include "companion/json/CertificateDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/recording/FolderEntries.h"
#include "companion/text/OutputFile.h"
#include "companion/text/StyleChoice.h"
#include "companion/text/Table.h"
#include "companion/text/Timestamp.h"
#include "companion/text/TypedWord.h"
#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::string_view journalEnding = ".journal.jsonl";

/// The name of a file without its folder.
std::string_view bareFileName(std::string_view name) {
    return name.substr(name.find_last_of("/\\") + 1);
}

/// The folder of a file; "." where none is named.
std::string folderOf(const std::string& name) {
    const std::size_t end = name.find_last_of("/\\");
    return end == std::string::npos ? "." : end == 0 ? name.substr(0, 1) : name.substr(0, end);
}

/// A serial number as a part of a file's name.
std::string asFileName(std::string_view serial) {
    std::string name;
    for (const char c : serial) {
        const char lower = text::lower(c);
        const bool isPlain =
            (lower >= 'a' && lower <= 'z') || (lower >= '0' && lower <= '9') || c == '-';
        name += isPlain ? c : '_';
    }
    return name;
}

std::string timeOf(const JournalHistory& history) {
    return history.entries.back().at;
}

std::chrono::milliseconds settleTime() {
    constexpr std::int32_t usual = 2000;
    constexpr std::int32_t longest = 600000;
    const std::optional<std::string> told = environmentVariable("ZOLEX_SETTLE_MS");
    const auto number = told ? text::wholeNumber(*told) : std::nullopt;
    return std::chrono::milliseconds(number && *number >= 0 && *number <= longest ? *number
                                                                                  : usual);
}

/// Tells of the system's children while they are waited for.
class TickingChild : public StartedChild {
  public:
    TickingChild(std::unique_ptr<StartedChild> inner, ExecutionSystem& system, ApplyTeller& teller)
        : inner_(std::move(inner)), system_(system), teller_(teller), begin_(system.elapsed()) {}

    [[nodiscard]] ProcessIdentity identity() const override { return inner_->identity(); }
    [[nodiscard]] std::optional<ChildResult> wait(std::chrono::milliseconds limit) override {
        constexpr std::chrono::milliseconds slice{1000};
        const std::chrono::milliseconds end = system_.elapsed() + limit;
        for (;;) {
            const std::chrono::milliseconds begin = system_.elapsed();
            const std::chrono::milliseconds part =
                std::clamp(end - begin, std::chrono::milliseconds(0), slice);
            std::optional<ChildResult> result = inner_->wait(part);
            const std::chrono::milliseconds now = system_.elapsed();
            // A wait that ended early is one in which the user has interrupted.
            if (result || now >= end || now < begin + part) {
                return result;
            }
            teller_.tick(now - begin_);
        }
    }
    [[nodiscard]] std::string outputSoFar(std::size_t most) override {
        return inner_->outputSoFar(most);
    }

  private:
    std::unique_ptr<StartedChild> inner_;
    ExecutionSystem& system_;
    ApplyTeller& teller_;
    std::chrono::milliseconds begin_;
};

} // namespace

/// The system, whose children are told of each second.
class ChangeRun::Ticking : public ExecutionSystem {
  public:
    Ticking(ExecutionSystem& inner, ApplyTeller& teller) : inner_(inner), teller_(teller) {}

    std::unique_ptr<StartedChild> start(std::string_view commandLine,
                                        const std::string& output) override {
        std::unique_ptr<StartedChild> child = inner_.start(commandLine, output);
        return child == nullptr ? nullptr
                                : std::make_unique<TickingChild>(std::move(child), inner_, teller_);
    }
    void removeFolder(const std::string& output) override { inner_.removeFolder(output); }
    ProcessIdentity ownProcess() override { return inner_.ownProcess(); }
    bool isRunning(const ProcessIdentity& process) override { return inner_.isRunning(process); }
    Interruption interruption() override { return inner_.interruption(); }
    void sleep(std::chrono::milliseconds time) override { inner_.sleep(time); }
    bool awaitLine() override { return inner_.awaitLine(); }
    std::chrono::milliseconds elapsed() override { return inner_.elapsed(); }
    std::string timestamp() override { return inner_.timestamp(); }
    std::string userName() override { return inner_.userName(); }
    LockAnswer lock(const std::string& name) override { return inner_.lock(name); }
    std::unique_ptr<DurableFile> makeDurable(const std::string& name) override {
        return inner_.makeDurable(name);
    }
    std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                               std::uint64_t keep) override {
        return inner_.reopenDurable(name, keep);
    }
    std::string commonFolder() override { return inner_.commonFolder(); }
    bool isLostAtRestart(const std::string& file) override { return inner_.isLostAtRestart(file); }

  private:
    ExecutionSystem& inner_;
    ApplyTeller& teller_;
};

/// The journal, which is asked for its hash when the run is over.
class ChangeRun::Keeper : public JournalKeeper {
  public:
    explicit Keeper(std::shared_ptr<JournalFile> file) : file_(std::move(file)) {}
    bool write(const JournalEvent& event) override { return file_->write(event); }

  private:
    std::shared_ptr<JournalFile> file_;
};

ChangeRun::ChangeRun(Context& context, const ApplyOptions& options, std::string journalFile,
                     std::string command)
    : context_(context), options_(options), journalFile_(std::move(journalFile)),
      command_(std::move(command)), machine_(context.platform, utilitiesOf(context)),
      // What a command writes stands beside the journal until the journal has it.
      reading_(machine_, {journalFile_}) {}

ChangeRun::~ChangeRun() = default;

bool ChangeRun::begin() {
    if (const std::string why = whyFamilyNotHere(context_); !why.empty()) {
        failWith(context_, why, "carry it out on the Linux machine itself");
        return false;
    }
    if (!outputsAreOthers()) {
        return false;
    }
    if (!options_.log.empty()) {
        log_ = RunLog::open(context_, options_.log);
        if (log_ == nullptr) {
            return false;
        }
    }
    std::optional<UsualTimes> times = usualTimes(context_, options_.timings);
    if (!times) {
        return false;
    }
    usualTimes_ = *std::move(times);
    return outputsCanBeWritten();
}

bool ChangeRun::outputsAreOthers() {
    using output_file::areOne;
    using output_file::systemName;
    std::vector<std::string> others = {options_.plan, options_.resume, options_.policies.file,
                                       journalFile_};
    others.insert(others.end(), options_.timings.begin(), options_.timings.end());
    std::erase(others, std::string());
    for (const std::string& file : std::vector<std::string>(others)) {
        others.push_back(file + ".lock");
        others.push_back(file + ".out");
    }
    const auto isOne = [](const std::string& one, const std::string& other) {
        return areOne(systemName(one), systemName(other));
    };
    const bool isBoth = !options_.certificate.empty() && isOne(options_.certificate, options_.log);
    for (const std::string& output : {options_.certificate, options_.log}) {
        const bool isOther =
            std::any_of(others.begin(), others.end(),
                        [&](const std::string& other) { return isOne(output, other); });
        if (!output.empty() && (isOther || isBoth)) {
            failWith(context_, printable(output) + " would be written for two things",
                     "give each its own name; nothing was changed");
            return false;
        }
    }
    return true;
}

bool ChangeRun::outputsCanBeWritten() {
    // Before anybody is asked for consent. A journal that stands there is told of later.
    if (!options_.journal.empty() && !hasPlace(options_.journal, "--journal")) {
        return false;
    }
    if (!options_.certificate.empty()) {
        return hasPlace(options_.certificate, "--certificate") &&
               isNoRecord(options_.certificate) &&
               canBeWritten(options_.certificate, "--certificate");
    }
    if (!options_.certificates.empty() && !folderEntries(options_.certificates)) {
        failWith(context_, printable(options_.certificates) + ": there is no such folder",
                 "name a folder that is there with --certificates; nothing was changed");
        return false;
    }
    return true;
}

bool ChangeRun::canBeWritten(const std::string& name, const char* option) {
    using output_file::Standing;
    const Standing standing = output_file::standing(output_file::systemName(name));
    const char* why = nullptr;
    if (standing == Standing::link) {
        why = "it is a symbolic link";
    } else if (standing == Standing::protectedFile) {
        why = "it must not be written";
    }
    return why == nullptr || refuseOutput(name, option, why);
}

bool ChangeRun::hasPlace(const std::string& name, const char* option) {
    using output_file::Standing;
    const Standing standing = output_file::standing(output_file::systemName(name));
    if (standing == Standing::folder) {
        return refuseOutput(name, option, "it is a folder");
    }
    return standing != Standing::nothing || folderEntries(folderOf(name)) ||
           refuseOutput(name, option, "there is no such folder");
}

bool ChangeRun::isNoRecord(const std::string& name) {
    const FileKind kind = fileKindOf(context_.platform, name);
    const char* const why = kind == FileKind::journal ? "it is the journal of a run"
                            : kind == FileKind::plan  ? "it is a plan"
                                                      : nullptr;
    return why == nullptr || refuseOutput(name, "--certificate", why);
}

bool ChangeRun::refuseOutput(const std::string& name, const char* option, const char* why) {
    failWith(context_, printable(name) + ": " + why,
             std::string("name another file with ") + option + "; nothing was changed");
    return false;
}

CaptureRequest ChangeRun::captureRequestOf(const ChosenPlan& chosen) {
    CaptureRequest request = captureRequest(context_, &machine_.utilities());
    request.controllers.clear();
    for (const ControllerPlanning& each : chosen.plan.controllers) {
        request.controllers.push_back(each.controller.number);
    }
    if (!context_.verbose) {
        request.progress = nullptr;
    }
    return request;
}

ApplyTerms ChangeRun::termsOf(const ChosenPlan& chosen) {
    ApplyTerms terms;
    terms.controllers = chosen.controllers;
    terms.allowSkipped = chosen.allowSkipped;
    terms.keepGoing = options_.keepGoing;
    terms.careful = options_.careful;
    terms.stepLimit = options_.stepLimit;
    terms.settle = settleTime();
    terms.planHash = chosen.hash;
    terms.planFile = chosen.file;
    terms.planText = chosen.text;
    terms.toolVersion = ZOLEX_VERSION;
    terms.journalFile = journalFile_;
    terms.lockFile = chosen.lockFile;
    return terms;
}

TellTerms ChangeRun::tellTerms() {
    TellTerms terms;
    terms.journalFile = journalFile_;
    terms.goesOn = !options_.resume.empty();
    terms.stepLimit = options_.stepLimit;
    terms.usualTimes = usualTimes_;
    terms.log = log_.get();
    terms.lastLine = [this] { return journal_ == nullptr ? std::string() : journal_->lastLine(); };
    terms.consent.wish = options_.destroy;
    terms.consent.command = command_;
    return terms;
}

int ChangeRun::refuse(int exitCode, std::string what, std::vector<std::string> help,
                      std::vector<std::string> details) {
    const MachinePlan none;
    const TellTerms tell = tellTerms();
    ApplyEnd end;
    end.exitCode = exitCode;
    end.what = std::move(what);
    if (end.what.empty() && context_.format == Format::json && !context_.failures.empty()) {
        end.what = context_.failures.back().summary;
    }
    end.help = std::move(help);
    end.details = std::move(details);
    ApplyTeller(context_, none, tell).tellEnd(end, {});
    return exitCode;
}

int ChangeRun::carryOut(const ChosenPlan& chosen) {
    return run(chosen, nullptr);
}

int ChangeRun::resume(const ChosenPlan& chosen, const JournalHistory& history) {
    return run(chosen, &history);
}

int ChangeRun::run(const ChosenPlan& chosen, const JournalHistory* history) {
    if (std::string why = whyPlanNotSeen(context_, chosen.plan); !why.empty()) {
        return refuse(exit_code::notPossible, std::move(why) + " [ZP142]",
                      {command_ + " --family md"});
    }
    const std::unique_ptr<ExecutionSystem> system =
        context_.makeExecution ? context_.makeExecution(context_.platform, utilities())
                               : makeSystemExecution(context_.platform, utilities());
    TellTerms tell = tellTerms();
    tell.consent.isListed = chosen.isShown;
    tell.nothingToDo = chosen.nothingToDo;
    tell.consent.awaitLine = [&system] { return system->awaitLine(); };
    tell.notOwn = [this](const std::vector<Loss>& losses, const Snapshot& guard) {
        return whyNotOwn(context_, losses, guard, options_.certificates);
    };
    ApplyTeller teller(context_, chosen.plan, tell);
    Ticking ticking(*system, teller);
    ApplyTerms terms = termsOf(chosen);
    terms.openJournal = [this, &system, history] { return openJournal(*system, history); };
    terms.dropJournal = [this] {
        journal_.reset();
        static_cast<void>(context_.platform.files().remove(journalFile_));
    };
    if (history != nullptr) {
        teller.tellResumption(*history);
    }
    const CaptureRequest request = captureRequestOf(chosen);
    if (chosen.plan.changesSomething()) {
        warnOfLostJournal(*system);
    }
    ApplyEnd end =
        history == nullptr
            ? applyPlan(reading_, request, ticking, chosen.plan, terms, teller)
            : resumePlan(reading_, request, ticking, chosen.plan, *history, terms, teller);
    std::string proof;
    if (end.exitCode == exit_code::done && !certify(chosen, terms, end, proof)) {
        end.exitCode = exit_code::different;
        end.what = "the certificate could not be written: " + proof;
        end.code = run_problem::proofNotWritten;
        end.help = {"what stands is as planned; zolexctl diff " +
                    typedWord(chosen.file.empty() ? chosen.plan.policiesFile : chosen.file) +
                    " tells it"};
        proof.clear();
    }
    teller.tellEnd(end, proof);
    // Output that is lost is no proof.
    if (end.exitCode == exit_code::done && end.changedSomething && !outputIsWritten(context_)) {
        return exit_code::different;
    }
    return end.exitCode;
}

std::unique_ptr<JournalKeeper> ChangeRun::openJournal(ExecutionSystem& system,
                                                      const JournalHistory* history) {
    if (history == nullptr && context_.platform.files().isFile(journalFile_) &&
        !journalObstacle(context_, journalFile_, command_)) {
        // One in which nothing was begun.
        static_cast<void>(context_.platform.files().remove(journalFile_));
    }
    if (history != nullptr) {
        // Another run may have gone on with it between the look at it and the lock.
        const JournalReading now = readJournalFile(context_.platform.files(), journalFile_);
        if (!now.journal || now.journal->bytes != history->bytes ||
            now.journal->lastHash != history->lastHash) {
            failWith(context_, printable(journalFile_) + " has changed since it was read",
                     "go on with it once more");
            return nullptr;
        }
    }
    std::unique_ptr<DurableFile> file = history == nullptr
                                            ? system.makeDurable(journalFile_)
                                            : system.reopenDurable(journalFile_, history->bytes);
    if (file == nullptr) {
        failWith(context_, printable(journalFile_) + ": " + lastSystemError(),
                 "name another file with --journal");
        return nullptr;
    }
    const auto clock = [&system] { return system.timestamp(); };
    journal_ = history == nullptr ? std::make_shared<JournalFile>(std::move(file), clock)
                                  : std::make_shared<JournalFile>(std::move(file), clock, *history);
    return std::make_unique<Keeper>(journal_);
}

void ChangeRun::warnOfLostJournal(ExecutionSystem& system) {
    if (!options_.journal.empty() || !system.isLostAtRestart(journalFile_)) {
        return;
    }
    const TextStyle& style = context_.errorStyle;
    context_.platform.console().writeError(
        emphasized("warning:", Emphasis::warning, style) + " " +
        foldedWords(printable(journalFile_) +
                        " lies on a disk that a restart empties: --journal names a file elsewhere",
                    9, 4, static_cast<std::size_t>(style.width)) +
        "\n");
}

std::string ChangeRun::certificateFile(const MachinePlan& plan) const {
    if (!options_.certificate.empty() || options_.certificates.empty()) {
        return options_.certificate;
    }
    const std::string& serial = plan.fingerprint.serialNumber;
    return options_.certificates + (options_.certificates.ends_with('/') ? "" : "/") +
           (isPlaceholder(serial) ? plan.id : asFileName(serial)) + std::string(certificateEnding);
}

bool ChangeRun::certify(const ChosenPlan& chosen, const ApplyTerms& terms, const ApplyEnd& end,
                        std::string& told) {
    const std::string name = certificateFile(chosen.plan);
    if (name.empty() || !end.captured || journal_ == nullptr) {
        if (!options_.certificate.empty() && journal_ == nullptr) {
            told = "Certificate " + printable(name) + " is not written: nothing was run\n";
        }
        return true;
    }
    Certificate certificate = certificateOf(chosen.plan, end, terms);
    certificate.journalHash = journal_->hashUpToVerified();
    certificate.madeAt = timestampOf(context_.platform.localTime());
    const std::string document =
        certificateDocument(certificate, {context_.argv, certificate.madeAt});
    const std::string error = replaceFile(context_.platform.files(), name, document);
    if (!error.empty()) {
        told = error;
        return false;
    }
    const std::string hash = sha256(document);
    constexpr std::size_t end8 = 8;
    told = "Certificate " + printable(name) + "   sha256 " + hash.substr(0, end8) + "..." +
           hash.substr(hash.size() - end8) + "\n";
    return true;
}

namespace {

/// "site.journal-2.jsonl" of "site.journal.jsonl"; the first is the name itself.
std::string numberedJournal(const std::string& name, int number) {
    const std::size_t bare = name.size() - bareFileName(name).size();
    const std::size_t last = name.rfind('.');
    const std::size_t dot = last == std::string::npos || last < bare ? name.size() : last;
    return number == 1 ? name
                       : name.substr(0, dot) + "-" + std::to_string(number) + name.substr(dot);
}

} // namespace

std::string journalFileOf(const std::string& file) {
    const std::string_view bare = bareFileName(file);
    const std::size_t dot = bare.rfind('.');
    const std::size_t kept = dot == std::string_view::npos || dot == 0 ? bare.size() : dot;
    return file.substr(0, file.size() - bare.size() + kept) + std::string(journalEnding);
}

std::optional<JournalObstacle> journalObstacle(Context& context, const std::string& journalFile,
                                               const std::string& again) {
    if (!context.platform.files().isFile(journalFile)) {
        return std::nullopt;
    }
    const JournalReading reading = readJournalFile(context.platform.files(), journalFile);
    const std::string name = printable(journalFile);
    if (!reading.journal) {
        const Finding& fault = reading.findings.front();
        if (fault.code == problem::nothingBegun) {
            return std::nullopt;
        }
        return JournalObstacle{exit_code::notPossible,
                               name + ": " + fault.summary + " [" + fault.code + "]",
                               {"name another file with --journal"},
                               false,
                               {},
                               {}};
    }
    const std::string& planId = reading.journal->begin().planId;
    const JournalEnd* const end = reading.journal->end();
    const std::string resume =
        "zolexctl apply --resume " + typedWord(journalFile) + " goes on with it";
    const std::string plan = again + " plans from what is there";
    if (end == nullptr) {
        return JournalObstacle{exit_code::refused,
                               name + ": this run was begun on " + timeOf(*reading.journal) +
                                   " and has not ended [ZA106]",
                               {resume},
                               false,
                               planId,
                               timeOf(*reading.journal)};
    }
    if (end->exitCode == exit_code::done) {
        return JournalObstacle{exit_code::refused,
                               name + ": the plan was already applied on " +
                                   timeOf(*reading.journal) + " [ZA106]",
                               {plan},
                               true,
                               planId,
                               timeOf(*reading.journal)};
    }
    if (end->exitCode == exit_code::different) {
        return JournalObstacle{exit_code::refused,
                               name + ": the plan was carried out on " + timeOf(*reading.journal) +
                                   ", but did not end as planned: " + end->reason + " [ZA106]",
                               {plan},
                               true,
                               planId,
                               timeOf(*reading.journal)};
    }
    return JournalObstacle{exit_code::refused,
                           name + ": this run stopped on " + timeOf(*reading.journal) + ": " +
                               end->reason + " [ZA106]",
                           {resume, plan},
                           false,
                           planId,
                           timeOf(*reading.journal)};
}

std::string nextJournal(Context& context, const std::string& journalFile) {
    for (int number = 2;; ++number) {
        std::string name = numberedJournal(journalFile, number);
        if (!journalObstacle(context, name, {})) {
            return name;
        }
    }
}

JournalName freeJournal(Context& context, const std::string& asked, const std::string& usual,
                        const std::string& again) {
    if (!asked.empty()) {
        return {asked, journalObstacle(context, asked, again)};
    }
    for (int number = 1;; ++number) {
        std::string name = numberedJournal(usual, number);
        std::optional<JournalObstacle> obstacle = journalObstacle(
            context, name, again + " --journal " + numberedJournal(usual, number + 1));
        if (!obstacle || !obstacle->isOver) {
            return {std::move(name), std::move(obstacle)};
        }
    }
}

std::string outputArguments(const ApplyOptions& options) {
    const std::array<std::pair<const char*, const std::string*>, 4> files = {
        {{" --journal ", &options.journal},
         {" --certificate ", &options.certificate},
         {" --certificates ", &options.certificates},
         {" --log ", &options.log}}};
    std::string command = options.careful ? " --careful" : "";
    command += options.keepGoing ? " --keep-going" : "";
    for (const auto& [option, file] : files) {
        command += file->empty() ? "" : option + typedWord(*file);
    }
    return command;
}

} // namespace zolex::companion
