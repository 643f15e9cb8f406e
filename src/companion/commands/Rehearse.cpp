#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PlanMaking.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/json/FleetDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/System.h"
#include "companion/picture/FleetHtml.h"
#include "companion/picture/FleetText.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/planning/Refusals.h"
#include "companion/rehearsal/Fleet.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Sizes.h"
#include "companion/text/Timestamp.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Whether some entry asks for a serial number.
bool asksForSerials(const PolicyDocument& document) {
    const std::vector<PolicyView> views = viewPolicies(document);
    return std::any_of(views.begin(), views.end(), [](const PolicyView& policy) {
        return std::any_of(
            policy.entries.begin(), policy.entries.end(), [](const EntryView& entry) {
                return std::any_of(entry.specifiers.begin(), entry.specifiers.end(),
                                   [](const SpecifierView& each) { return each.letter == 's'; });
            });
    });
}

/// One run of the command.
class FleetCommand {
  public:
    FleetCommand(Context& context, const RehearseOptions& options)
        : context_(context), options_(options) {}

    int run() {
        madeAt_ = timestampOf(context_.platform.localTime());
        const int code = rehearseAll();
        // Whoever asked for a document gets one.
        if (!isDelivered_ && context_.format == Format::json) {
            const std::vector<Finding> faults =
                faults_.empty() ? context_.failures : std::move(faults_);
            return deliver(context_, failedFleetDocument(fleet_, faults, head()))
                       ? code
                       : exit_code::notPossible;
        }
        return code;
    }

  private:
    int rehearseAll() {
        if (!readPolicies() || !listRecordings()) {
            return exit_code::notPossible;
        }
        rehearseServers();
        completeFleet(fleet_, document_);
        if (!checkSuppositions()) {
            return exit_code::notPossible;
        }
        const bool isWritten = writePage();
        if (!give(isWritten) || !isWritten) {
            return exit_code::notPossible;
        }
        return fleet_.count(ServerResult::error) > 0 ? exit_code::found : exit_code::done;
    }

    bool readPolicies() {
        PoliciesText read = readPoliciesText(context_.platform, options_.policies.file);
        fleet_.policiesFile = read.name;
        if (read.fault) {
            faults_ = {*read.fault};
            failWith(context_, printable(read.name) + ": " + printable(read.fault->summary),
                     read.fault->help.front());
            return false;
        }
        PlanRequest& request = terms_.request;
        request.policiesFile = read.name;
        request.policiesText = std::move(read.text);
        request.strategy = options_.policies.strategy;
        request.accept = options_.policies.accept;
        request.command = planCommandOf(context_, options_.policies);
        terms_.suppositions = options_.suppositions;
        terms_.everyFault = options_.everyFault;
        terms_.allowSkipped = options_.allowSkipped;
        document_ = scanPolicies(request.policiesFile, request.policiesText);
        policies_ = readPlanPolicies(request);
        fleet_.policiesHash = policies_.hash;
        fleet_.policiesFindings = policies_.findings;
        fleet_.planCommand = planCommand(request, request.accept);
        fleet_.suppositions = options_.suppositions;
        fleet_.everyFault = options_.everyFault;
        std::vector<Finding> left = policies_.findings;
        Refusals(request).accept(left);
        if (policies_.policies != nullptr && !hasErrors(left)) {
            return true;
        }
        faults_ = left;
        const SourceFile source{request.policiesFile, request.policiesText};
        context_.platform.console().writeError(
            diagnosticsText(left, {&source, 1}, context_.errorStyle));
        failWith(context_, printable(read.name) + ": no server can be planned by these policies",
                 "mend what is told as error, and rehearse again");
        return false;
    }

    /// The files that the paths name, each once.
    bool listRecordings() {
        std::set<std::string> known;
        bool isAny = false;
        for (const std::string& path : options_.recordings) {
            for (std::string& file : recordingsOf(path)) {
                if (known.insert(file).second) {
                    isAny = isAny || context_.platform.files().isFile(file);
                    files_.push_back(std::move(file));
                }
            }
        }
        if (!isAny) {
            failWith(context_,
                     files_.empty() ? "there is nothing to rehearse: no recording (*.zrec) is in " +
                                          printable(options_.recordings.front())
                                    : "there is nothing to rehearse: " + printable(files_.front()) +
                                          " is no file",
                     "record each server: zolexctl record -o server.zrec");
        }
        return isAny && keepsRecordings();
    }

    /// A recording of a folder is not written over.
    bool keepsRecordings() {
        if (isRecording("-o", context_.outputFile)) {
            isDelivered_ = true; // nor by a document that tells this
            return false;
        }
        return !isRecording("--html", options_.page);
    }

    bool isRecording(const std::string& option, const std::string& output) {
        const bool isRead = std::find(files_.begin(), files_.end(), output) != files_.end();
        if (isRead) {
            failWith(context_,
                     option + ": " + printable(output) + " is read, and would be replaced",
                     "name another file with " + option);
        }
        return isRead;
    }

    void rehearseServers() {
        const std::chrono::milliseconds begin = system::elapsed();
        fleet_.servers.resize(files_.size());
        names_ = serverNamesOf(files_);
        sections_.resize(files_.size());
        PiecesOfWork pieces;
        pieces.count = files_.size();
        pieces.jobs = options_.jobs;
        const bool asksSerials = asksForSerials(document_);
        pieces.work = [this, asksSerials](std::size_t index) { rehearseFile(index, asksSerials); };
        if (context_.showsProgress) {
            pieces.progress = [this](std::size_t done) { tellProgress(done); };
        }
        if (context_.doPieces) {
            context_.doPieces(pieces);
        } else {
            for (std::size_t i = 0; i < pieces.count; ++i) {
                pieces.work(i);
                if (pieces.progress) {
                    pieces.progress(i + 1);
                }
            }
        }
        if (context_.showsProgress) {
            tellTime(system::elapsed() - begin);
        }
    }

    void rehearseFile(std::size_t index, bool asksSerials) {
        const std::string& file = files_[index];
        FleetServer& server = fleet_.servers[index];
        std::vector<Finding> told;
        std::optional<Finding> fault =
            lookAtRecorded(context_, file, told, [&](const Recorded& recorded) {
                server = rehearseServer(recorded.snapshot, policies_, terms_, recorded.machine,
                                        recorded.request);
                if (recorded.header.isRedacted && asksSerials) {
                    told.push_back(problemFinding(
                        problem::madeUpSerials,
                        "its serial numbers are made up, and the policies ask for s:"));
                }
            });
        server.file = file;
        server.name = names_[index];
        for (Finding& finding : told) {
            server.findings.push_back({0, std::move(finding)});
        }
        if (fault) {
            server.findings.insert(server.findings.begin(), {0, *std::move(fault)});
        }
        for (ServerFinding& each : server.findings) {
            nameInHelp(each.finding, "POLICIES", terms_.request.policiesFile);
            nameInHelp(each.finding, "RECORDING", file);
        }
        if (!options_.page.empty()) {
            sections_[index] = serverSection(server, index);
        }
        server.plan.reset();
    }

    void tellProgress(std::size_t done) {
        context_.platform.console().writeError(
            "\r" + emphasized(std::to_string(done) + " of " +
                                  countText(files_.size(), "server", "servers"),
                              Emphasis::dim, context_.errorStyle));
    }

    void tellTime(std::chrono::milliseconds time) {
        constexpr std::int64_t tenth = 100;
        const std::int64_t tenths = (time.count() + tenth / 2) / tenth;
        context_.platform.console().writeError(
            "\r" +
            emphasized(countText(files_.size(), "server", "servers") + " in " +
                           std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " s",
                       Emphasis::dim, context_.errorStyle) +
            "        \n");
    }

    /// What is supposed of a drive that no server has says nothing.
    bool checkSuppositions() {
        for (std::size_t i = 0; i < fleet_.suppositions.size(); ++i) {
            if (fleet_.serversWith(i) == 0) {
                failWith(context_,
                         "no server has a drive " + printable(fleet_.suppositions[i].location),
                         "zolexctl show " + typedWord(files_.front()) +
                             " tells the locations of a server");
                fleet_.servers.clear();
                fleet_.unused.clear();
                return false;
            }
        }
        return true;
    }

    bool writePage() {
        if (options_.page.empty()) {
            return true;
        }
        const std::string error = replaceFile(context_.platform.files(), options_.page,
                                              fleetHtml(fleet_, sections_, madeAt_));
        if (!error.empty()) {
            failWith(context_, error, "name another file with --html");
        }
        return error.empty();
    }

    bool give(bool hasPage) {
        isDelivered_ = true;
        if (context_.format == Format::json) {
            return deliver(context_, fleetDocument(fleet_, head()));
        }
        return deliver(context_, fleetText(fleet_, context_.style,
                                           {context_.verbose, context_.quiet,
                                            hasPage ? options_.page : std::string()}));
    }

    [[nodiscard]] DocumentHead head() const { return {context_.argv, madeAt_}; }

    Context& context_;
    const RehearseOptions& options_;
    FleetTerms terms_;
    PolicyDocument document_; ///< the policies as they are written
    PoliciesReading policies_;
    std::vector<std::string> files_;
    std::vector<std::string> names_; ///< of the servers
    Fleet fleet_;
    std::vector<std::string> sections_; ///< of the page
    std::vector<Finding> faults_;       ///< why there is nothing to tell
    std::string madeAt_;
    bool isDelivered_ = false;
};

} // namespace

int rehearseFleet(Context& context, const RehearseOptions& options) {
    return FleetCommand(context, options).run();
}

} // namespace zolex::companion
