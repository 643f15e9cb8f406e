#pragma once

#include "companion/commands/ApplyTeller.h"
#include "companion/commands/Commands.h"
#include "companion/commands/RunLog.h"
#include "companion/execution/Apply.h"
#include "companion/json/JournalFile.h"
#include "companion/machine/ReadOnlyPlatform.h"
#include "companion/machine/UtilityPlatform.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// A plan that is to be carried out, and where it comes from.
struct ChosenPlan {
    MachinePlan plan;
    std::string file; ///< of the plan; empty: it stands in `text`
    std::string text; ///< its document; empty where it stands in a file
    std::string hash; ///< SHA-256 of its bytes
    std::string lockFile;
    std::vector<std::int32_t> controllers; ///< asked for; empty: all of the plan
    bool allowSkipped = false;
    bool isShown = false; ///< with what it would destroy
    std::string nothingToDo = "Nothing to do: nothing was run.";
};

/// One run of a command that changes a machine: the machine, the system, the journal, the log and
/// the certificate.
class ChangeRun {
  public:
    /// `command` is what carries the plan out: "zolexctl apply plan.json". The references must
    /// outlive the object.
    ChangeRun(Context& context, const ApplyOptions& options, std::string journalFile,
              std::string command);
    ~ChangeRun();
    ChangeRun(const ChangeRun&) = delete;
    ChangeRun& operator=(const ChangeRun&) = delete;

    /// Opens the log and looks at the names of all outputs. False after a message: exit code 2.
    [[nodiscard]] bool begin();

    /// The machine, to be read.
    [[nodiscard]] Platform& machine() { return reading_; }
    [[nodiscard]] const Utilities& utilities() const { return machine_.utilities(); }

    /// Ends without having done anything; the exit code.
    int refuse(int exitCode, std::string what, std::vector<std::string> help,
               std::vector<std::string> details = {});

    /// Carries the plan out; the exit code.
    int carryOut(const ChosenPlan& chosen);
    /// Goes on with the run of a journal; the exit code.
    int resume(const ChosenPlan& chosen, const JournalHistory& history);

  private:
    class Ticking;
    class Keeper;

    [[nodiscard]] bool outputsAreOthers();
    [[nodiscard]] bool outputsCanBeWritten();
    [[nodiscard]] bool canBeWritten(const std::string& name, const char* option);
    /// Whether it is no folder, and stands in one.
    bool hasPlace(const std::string& name, const char* option);
    /// Whether it is no journal and no plan, which a certificate would replace.
    bool isNoRecord(const std::string& name);
    /// Tells why nothing can be written there; false.
    bool refuseOutput(const std::string& name, const char* option, const char* why);
    [[nodiscard]] ApplyTerms termsOf(const ChosenPlan& chosen);
    [[nodiscard]] CaptureRequest captureRequestOf(const ChosenPlan& chosen);
    [[nodiscard]] TellTerms tellTerms();
    int run(const ChosenPlan& chosen, const JournalHistory* history);
    std::unique_ptr<JournalKeeper> openJournal(ExecutionSystem& system,
                                               const JournalHistory* history);
    void warnOfLostJournal(ExecutionSystem& system);
    /// Writes the certificate where one is asked for; what is told of it. False: it was not
    /// written.
    bool certify(const ChosenPlan& chosen, const ApplyTerms& terms, const ApplyEnd& end,
                 std::string& told);
    [[nodiscard]] std::string certificateFile(const MachinePlan& plan) const;

    Context& context_;
    const ApplyOptions& options_;
    std::string journalFile_;
    std::string command_;
    UtilityPlatform machine_;
    ReadOnlyPlatform reading_;
    std::unique_ptr<RunLog> log_;
    UsualTimes usualTimes_;
    std::shared_ptr<JournalFile> journal_; ///< once it was opened
};

/// The journal of a file: "plan.journal.jsonl" of "plan.json", "site.journal.jsonl" of "site.ini".
[[nodiscard]] std::string journalFileOf(const std::string& file);

/// Why no new run can be noted in a journal that is there.
struct JournalObstacle {
    int exitCode = 0;
    std::string what; ///< with its code
    std::vector<std::string> help;
    bool isOver = false; ///< its run was carried out to its end
    std::string planId;  ///< of the plan whose journal it is; empty: it cannot be read
    std::string begun;   ///< when
};
/// Nothing where there is no file, or one in which nothing was begun. `again` is what plans anew.
[[nodiscard]] std::optional<JournalObstacle>
journalObstacle(Context& context, const std::string& journalFile, const std::string& again);

/// The first free name behind one that is taken: "plan.journal-2.jsonl".
[[nodiscard]] std::string nextJournal(Context& context, const std::string& journalFile);

/// The journal of a new run that may be made again and again: the one that is asked for, or
/// `usual`, or, behind runs that are over, "site.journal-2.jsonl" and so on.
struct JournalName {
    std::string name;
    std::optional<JournalObstacle> obstacle; ///< there is no name
};
[[nodiscard]] JournalName freeJournal(Context& context, const std::string& asked,
                                      const std::string& usual, const std::string& again);

/// How a run is carried out and what it writes, as it was typed: " --careful --log run.log".
[[nodiscard]] std::string outputArguments(const ApplyOptions& options);

} // namespace zolex::companion
