#pragma once

#include "companion/commands/Context.h"
#include "companion/commands/DestroyWish.h"
#include "companion/planning/Plan.h"
#include "companion/rehearsal/Supposition.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

/// The commands of zolexctl. Each returns the exit code.
namespace zolex::companion {

struct PlanOptions {
    std::string file;           ///< of policies; "-": standard input
    bool classDefaults = false; ///< no policies
    std::string savedFile;      ///< keeps the plan; or empty
    Format savedFormat = Format::json;
    bool exitCode = false; ///< exit_code::found when there is something to do
    StrategyWish strategy = StrategyWish::automatic;
    bool rehearse = true;
    std::vector<std::string> accept;  ///< ids of errors
    std::vector<std::string> timings; ///< recordings
};
int plan(Context& context, const PlanOptions& options);

/// Of apply and reset.
struct ApplyOptions {
    std::string plan;     ///< file of a plan; or empty
    std::string resume;   ///< journal of a run that is gone on with; or empty
    PlanOptions policies; ///< of a plan that is made in the same run; without a file: none
    DestroyWish destroy;
    bool careful = false;
    bool keepGoing = false;
    bool allowSkipped = false;
    std::string journal;      ///< file; empty: beside the plan
    std::string certificate;  ///< file; or empty
    std::string certificates; ///< folder; or empty
    std::string log;          ///< file; or empty
    std::chrono::seconds stepLimit{3600};
    std::vector<std::string> timings; ///< recordings
};
int apply(Context& context, const ApplyOptions& options);
/// The factory defaults of controllers; `plan`, `resume` and `policies` are empty.
int reset(Context& context, const ApplyOptions& options);

struct DiffOptions {
    std::string file; ///< of policies, or a plan; "-": standard input
    bool strict = false;
};
int diff(Context& context, const DiffOptions& options);

struct ShowOptions {
    std::string file;   ///< a recording instead of the machine, or a plan; or empty
    bool exact = false; ///< policies with sizes in MB where the drive is filled
};
int show(Context& context, const ShowOptions& options);

struct CheckOptions {
    std::vector<std::string> files;    ///< "-": standard input
    std::vector<std::string> machines; ///< recordings or folders of them
    std::vector<std::string> select;
    std::vector<std::string> ignore;
    bool asOld = false;
    bool fix = false;
};
int check(Context& context, const CheckOptions& options);

int doctor(Context& context);

struct RecordOptions {
    bool redact = false;
};
int record(Context& context, const RecordOptions& options);

struct ReplayOptions {
    std::string file;
    std::vector<std::string> command; ///< behind "--"
};
int replay(Context& context, const ReplayOptions& options);

/// Of zolex, started only when it would do all of what it says.
struct GuardOptions {
    std::vector<std::string> command; ///< behind "--": zolex and its words
    DestroyWish destroy;
    std::string certificates;        ///< folder; or empty
    std::vector<std::string> accept; ///< ids of errors
};
/// Its own codes are notPossible and refused, before zolex is started; after it zolex's.
int guard(Context& context, const GuardOptions& options);

struct ConvertOptions {
    std::string file;    ///< "-": standard input
    std::string to;      ///< "policies", "ironic"; empty: policies, `from` something
    std::string machine; ///< a recording, or for Ironic a plan; or empty
    std::string from{};  ///< "ironic"; or empty
    std::string model{}; ///< of the controller that is meant; or empty
    /// Policies for controllers of this type become policies for the other; or empty.
    std::string fromType{};
    std::string toType{};
};
int convert(Context& context, const ConvertOptions& options);

struct RehearseOptions {
    PlanOptions policies;                ///< file, strategy and accepted errors
    std::vector<std::string> recordings; ///< files, or folders of them
    std::vector<Supposition> suppositions;
    bool everyFault = false;
    bool allowSkipped = false;
    std::string page; ///< file of --html; or empty
    std::int32_t jobs = 1;
};
int rehearseFleet(Context& context, const RehearseOptions& options);

int explain(Context& context, const std::string& code);

} // namespace zolex::companion
