#include "companion/rehearsal/Fleet.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <utility>

namespace zolex::companion {

namespace {

/// Rehearses one server.
class ServerRehearsal {
  public:
    ServerRehearsal(const PoliciesReading& policies, const FleetTerms& terms)
        : policies_(policies), terms_(terms) {}

    FleetServer run(const Snapshot& snapshot, Platform& machine, const CaptureRequest& request) {
        nameServer(snapshot);
        if (terms_.suppositions.empty()) {
            plan(snapshot);
            return std::move(server_);
        }
        SupposedMachine supposed = suppose(snapshot, terms_.suppositions, machine, request);
        server_.supposed = std::move(supposed.holds);
        if (!supposed.because.empty()) {
            addError(
                0, problemFinding(problem::notSupposed,
                                  "what is supposed cannot be so in a copy: " + supposed.because));
            return std::move(server_);
        }
        plan(supposed.snapshot ? *supposed.snapshot : snapshot);
        return std::move(server_);
    }

  private:
    void nameServer(const Snapshot& snapshot) {
        server_.machineType = snapshot.machine.machineType.c_str();
        server_.serialNumber = snapshot.machine.serialNumber.c_str();
    }

    void plan(const Snapshot& snapshot) {
        MachinePlan plan = planMachine(snapshot, terms_.request, policies_);
        if (plan.fingerprint.strength == Strength::serials ||
            !plan.fingerprint.serialNumber.empty()) {
            server_.identity = plan.fingerprint.identity;
        }
        server_.coverage.add(plan);
        judge(snapshot, plan);
        takePolicies(plan);
        takeFindings(plan);
        server_.hasPlan = plan.isApplicable();
        if (server_.result != ServerResult::skipped) {
            takeSteps(plan);
        }
        server_.plan = std::move(plan);
    }

    void judge(const Snapshot& snapshot, MachinePlan& plan) {
        server_.result = ServerResult::error;
        if (!plan.isApplicable()) {
            return;
        }
        if (isSkipped(plan)) {
            server_.result = ServerResult::skipped;
            return;
        }
        if (!plan.changesSomething()) {
            server_.result = ServerResult::same;
            return;
        }
        rehearse(snapshot, plan, terms_.everyFault);
        for (const std::string& because : plan.rehearsal.notDoneBecause) {
            addError(0, problemFinding(problem::notRehearsed, because));
        }
        if (plan.isApplicable() && plan.rehearsal.endsAsPlanned) {
            server_.result = ServerResult::asPlanned;
        }
    }

    /// Whether a run would not begin, because a controller is left out.
    bool isSkipped(const MachinePlan& plan) {
        std::size_t others = 0;
        for (const ControllerPlanning& planning : plan.controllers) {
            if (planning.disposition != Disposition::skipped) {
                ++others;
                continue;
            }
            const std::string number = std::to_string(planning.controller.number);
            server_.reasons.push_back(
                (plan.controllers.size() > 1 ? "controller " + number + ": " : "") +
                planning.because);
        }
        if (server_.reasons.empty() || (others > 0 && terms_.allowSkipped)) {
            return false;
        }
        if (others > 0) {
            const std::size_t commands = plan.steps().size();
            server_.reasons.push_back(
                "apply refuses the server; with --allow-skipped the rest would take " +
                std::to_string(commands) + (commands == 1 ? " command" : " commands") +
                lostWith(plan));
        }
        return true;
    }

    static std::string lostWith(const MachinePlan& plan) {
        const std::size_t losses = plan.losses().size();
        return losses == 0   ? " and lose nothing"
               : losses == 1 ? " and lose 1 thing"
                             : " and lose " + std::to_string(losses) + " things";
    }

    void takePolicies(const MachinePlan& plan) {
        std::vector<std::string>& all = server_.policies;
        for (const ControllerPlanning& planning : plan.controllers) {
            if (!planning.policy.empty() &&
                std::find(all.begin(), all.end(), planning.policy) == all.end()) {
                all.push_back(planning.policy);
            }
        }
    }

    void takeFindings(const MachinePlan& plan) {
        const auto take = [this](std::int32_t controller, const std::vector<Finding>& findings) {
            for (const Finding& finding : findings) {
                server_.findings.push_back({controller, finding});
            }
        };
        take(0, plan.diagnostics);
        for (const ControllerPlanning& planning : plan.controllers) {
            const std::int32_t number =
                plan.controllers.size() > 1 ? planning.controller.number : 0;
            take(number, planning.diagnostics);
            take(number, planning.warnings);
        }
        std::stable_sort(server_.findings.begin(), server_.findings.end(),
                         [](const ServerFinding& a, const ServerFinding& b) {
                             return a.finding.severity > b.finding.severity;
                         });
    }

    void takeSteps(const MachinePlan& plan) {
        const std::vector<PlanStep> steps = plan.steps();
        server_.commands = steps.size();
        for (const Loss& loss : plan.losses()) {
            const bool isLogicalDrive = loss.kind == "logical_drive";
            server_.losses.logicalDrives += isLogicalDrive ? 1 : 0;
            server_.losses.capacityBytes += isLogicalDrive ? loss.capacityBytes : 0;
            server_.losses.hotspares += loss.kind == "hotspare" ? 1 : 0;
            server_.losses.foreign += loss.kind == "foreign" ? 1 : 0;
        }
        server_.faultsTried = plan.rehearsal.faultsTried;
        for (const std::int32_t number : plan.rehearsal.notResumable) {
            const auto step =
                std::find_if(steps.begin(), steps.end(),
                             [number](const PlanStep& each) { return each.step == number; });
            if (step != steps.end()) {
                server_.unresumed.push_back({number, step->command});
            }
        }
    }

    void addError(std::int32_t controller, Finding finding) {
        finding.severity = Severity::error;
        finding.refusedBy = RefusedBy::plan;
        server_.findings.push_back({controller, std::move(finding)});
    }

    const PoliciesReading& policies_;
    const FleetTerms& terms_;
    FleetServer server_;
};

std::string serverNameOf(std::string_view file) {
    constexpr std::string_view ending = ".zrec";
    file.remove_prefix(file.find_last_of("/\\") + 1);
    const bool hasEnding = file.size() > ending.size() &&
                           text::equalsNoCase(file.substr(file.size() - ending.size()), ending);
    return std::string(hasEnding ? file.substr(0, file.size() - ending.size()) : file);
}

/// A server that was recorded twice would be counted twice.
void tellTwins(Fleet& fleet) {
    constexpr std::size_t most = 3;
    std::map<std::string, const FleetServer*> byIdentity;
    std::string names;
    std::size_t count = 0;
    for (const FleetServer& server : fleet.servers) {
        if (server.identity.empty()) {
            continue;
        }
        const auto [first, isNew] = byIdentity.try_emplace(server.identity, &server);
        if (!isNew && ++count <= most) {
            names += (names.empty() ? "" : ", ") + server.name + " is " + first->second->name;
        }
    }
    if (count > 0) {
        fleet.findings.push_back(problemFinding(
            problem::recordedTwice,
            "a server is counted twice: " + names +
                (count > most ? ", and " + std::to_string(count - most) + " more" : "")));
    }
}

} // namespace

std::string_view serverResultWord(ServerResult result) {
    switch (result) {
    case ServerResult::asPlanned:
        return "as-planned";
    case ServerResult::same:
        return "same";
    case ServerResult::skipped:
        return "skipped";
    case ServerResult::error:
        break;
    }
    return "error";
}

void FleetLosses::add(const FleetLosses& other) {
    logicalDrives += other.logicalDrives;
    hotspares += other.hotspares;
    foreign += other.foreign;
    capacityBytes += other.capacityBytes;
}

FleetServer rehearseServer(const Snapshot& snapshot, const PoliciesReading& policies,
                           const FleetTerms& terms, Platform& machine,
                           const CaptureRequest& request) {
    return ServerRehearsal(policies, terms).run(snapshot, machine, request);
}

std::vector<std::string> serverNamesOf(const std::vector<std::string>& files) {
    std::map<std::string, std::size_t> counts;
    std::vector<std::string> names;
    for (const std::string& file : files) {
        ++counts[names.emplace_back(serverNameOf(file))];
    }
    for (std::size_t i = 0; i < files.size(); ++i) {
        names[i] = counts[names[i]] > 1 ? files[i] : names[i];
    }
    return names;
}

std::size_t Fleet::count(ServerResult result) const {
    return static_cast<std::size_t>(
        std::count_if(servers.begin(), servers.end(),
                      [result](const FleetServer& server) { return server.result == result; }));
}

FleetLosses Fleet::losses() const {
    FleetLosses all;
    for (const FleetServer& server : servers) {
        all.add(server.losses);
    }
    return all;
}

std::size_t Fleet::losingServers() const {
    return static_cast<std::size_t>(
        std::count_if(servers.begin(), servers.end(),
                      [](const FleetServer& server) { return server.losses.any(); }));
}

std::size_t Fleet::unplannedServers() const {
    return static_cast<std::size_t>(std::count_if(
        servers.begin(), servers.end(), [](const FleetServer& server) { return !server.hasPlan; }));
}

std::size_t Fleet::serversWith(std::size_t supposition) const {
    return static_cast<std::size_t>(
        std::count_if(servers.begin(), servers.end(), [supposition](const FleetServer& server) {
            return supposition < server.supposed.size() && server.supposed[supposition];
        }));
}

std::int32_t Fleet::faultsTried() const {
    return std::accumulate(
        servers.begin(), servers.end(), 0,
        [](std::int32_t sum, const FleetServer& server) { return sum + server.faultsTried; });
}

void completeFleet(Fleet& fleet, const PolicyDocument& document) {
    tellTwins(fleet);
    PolicyCoverage coverage;
    for (const FleetServer& server : fleet.servers) {
        coverage.add(server.coverage);
    }
    fleet.unused = coverage.unused(document);
}

} // namespace zolex::companion
