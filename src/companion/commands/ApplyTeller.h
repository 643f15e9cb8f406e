#pragma once

#include "companion/commands/ApplyConsent.h"
#include "companion/commands/Context.h"
#include "companion/commands/RunLog.h"
#include "companion/commands/Timings.h"
#include "companion/execution/Apply.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// What a run is told with.
struct TellTerms {
    std::string journalFile;
    bool goesOn = false;     ///< with a run that may have changed something
    ConsentTerms consent;    ///< without notOwn
    std::string nothingToDo; ///< said of a plan without steps
    /// Empty where certificates of earlier runs tell of each of the losses, else why not.
    std::function<std::string(const std::vector<Loss>& losses, const Snapshot& guard)> notOwn;
    std::chrono::seconds stepLimit{3600};
    UsualTimes usualTimes;
    RunLog* log = nullptr; ///< or null
    /// The line of the event that was written last; of --format json.
    std::function<std::string()> lastLine;
};

/// Tells a run while it goes on: with --format json each event as its line of the journal, else for
/// people; and everything to the log.
class ApplyTeller : public ApplyListener {
  public:
    /// All references must outlive the object.
    ApplyTeller(Context& context, const MachinePlan& plan, const TellTerms& terms);

    void isAsPlannedFor(const Snapshot& guard) override;
    ConsentAnswer askConsent(const MachinePlan& plan, const std::vector<Loss>& losses) override;
    void happened(const JournalEvent& event) override;
    void stillWaiting(const PlanStep& step, const ProcessIdentity& child,
                      std::chrono::milliseconds since) override;
    void note(const std::string& text) override;

    /// That a run is gone on with.
    void tellResumption(const JournalHistory& history);
    /// The step that runs has run for so long: its line is written anew, on a terminal.
    void tick(std::chrono::milliseconds since);

    /// Whether a step was begun.
    [[nodiscard]] bool hasBegun() const { return hasBegun_; }
    /// Whether the run's end stands in the journal.
    [[nodiscard]] bool hasEnded() const { return hasEnded_; }

    /// What became of it all. `proof` is the line of the certificate, or empty.
    void tellEnd(const ApplyEnd& end, const std::string& proof);

  private:
    void tell(const JournalBegin& begin);
    static void tell(const JournalCaptured& /*captured*/) {}
    static void tell(const JournalAgreed& /*agreed*/) {}
    static void tell(const JournalEnd& /*end*/) {}
    void tell(const JournalStepStarted& started);
    void tell(const JournalChild& child);
    void tell(const JournalStepEnded& ended);
    void tell(const JournalStepFoundDone& found);
    void tell(const JournalVerified& verified);

    [[nodiscard]] bool isText() const { return context_.format == Format::text; }
    [[nodiscard]] bool tellsAll() const { return isText() && !context_.quiet; }
    void write(const std::string& text);
    void writeError(const std::string& text);
    /// Takes the line of the running step away.
    void clearLive();
    /// Below the line of a step.
    void below(const std::string& text);
    void live(const std::string& state);
    /// "Machine    8837 KQ10Z7V                        as planned for".
    void head(const char* name, const std::string& what, const std::string& state,
              Emphasis emphasis = Emphasis::good);
    [[nodiscard]] const PlanStep* step(std::int32_t number) const;
    [[nodiscard]] bool isCommand(const std::string& line) const;
    /// "[2/5] ".
    [[nodiscard]] std::string stepNumber(std::int32_t number) const;
    /// "[2/5] create A: RAID1 on 32:0 32:1", cut to its column.
    [[nodiscard]] std::string stepText(std::int32_t number) const;
    void stepLine(std::int32_t number, const std::string& state, Emphasis emphasis,
                  const std::string& rest);
    void tellFault(const ApplyEnd& end);
    void tellVerified(const ApplyEnd& end);
    void tellResults(const ApplyEnd& end);

    Context& context_;
    const MachinePlan& plan_;
    const TellTerms& terms_;
    std::vector<PlanStep> steps_;
    std::optional<Snapshot> guard_; ///< as the run began
    bool wasAsked_ = false;
    std::optional<JournalVerified> verified_;
    std::optional<JournalStepStarted> running_;
    std::uint64_t child_ = 0; ///< process that runs
    std::size_t liveColumns_ = 0;
    bool hasBegun_ = false;
    bool hasEnded_ = false;
};

/// "2.1 s", "125 s", "12 min".
[[nodiscard]] std::string durationText(std::int64_t milliseconds);

/// "configured", "skipped: no policy fits it", "failed: step 4 of 5".
[[nodiscard]] std::string resultText(const ControllerResult& result);

} // namespace zolex::companion
