#pragma once

#include "companion/findings/Finding.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/rehearsal/Coverage.h"
#include "companion/rehearsal/Supposition.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// One policies file on the recordings of many servers.
namespace zolex::companion {

/// How a server is rehearsed.
struct FleetTerms {
    PlanRequest request; ///< of the policies
    std::vector<Supposition> suppositions;
    bool everyFault = false;   ///< each command is also made to fail
    bool allowSkipped = false; ///< controllers that no policy fits are no matter
};

enum class ServerResult {
    asPlanned, ///< rehearsed, and it ends as planned
    same,      ///< nothing is to be done
    skipped,   ///< nothing would be done: a controller has no policy or no drives
    error,     ///< there is no plan, or it does not end as planned, or that is not known
};

/// "as-planned", "same", "skipped", "error".
[[nodiscard]] std::string_view serverResultWord(ServerResult result);

/// A finding of one server.
struct ServerFinding {
    std::int32_t controller = 0; ///< 0: the server as a whole
    Finding finding;
};

/// A command of which a run that stops there cannot be resumed.
struct UnresumedStep {
    std::int32_t step = 0;
    std::string command;
};

/// What the commands of a server delete.
struct FleetLosses {
    std::size_t logicalDrives = 0;
    std::size_t hotspares = 0;
    std::size_t foreign = 0;         ///< configurations
    std::uint64_t capacityBytes = 0; ///< of the logical drives
    [[nodiscard]] bool any() const { return logicalDrives + hotspares + foreign > 0; }
    void add(const FleetLosses& other);
    friend bool operator==(const FleetLosses&, const FleetLosses&) = default;
};

/// What came of one server.
struct FleetServer {
    std::string name; ///< of its file, without folder and ending
    std::string file;
    std::string machineType; ///< empty: not known
    std::string serialNumber;
    ServerResult result = ServerResult::error;
    /// Whether a plan could be made that a run would carry out; without one, commands and losses
    /// mean nothing.
    bool hasPlan = false;
    std::vector<std::string> policies; ///< used, as they are called, each once
    FleetLosses losses;
    std::size_t commands = 0;
    std::vector<std::string> reasons; ///< of skipped controllers, for people
    std::vector<ServerFinding> findings;
    std::int32_t faultsTried = 0; ///< commands that were made to fail
    std::vector<UnresumedStep> unresumed;
    std::vector<bool> supposed; ///< for each supposition: whether the server has the drive

    // For what is made of the whole fleet.
    std::string identity; ///< hash of what the machine is; empty: not known
    PolicyCoverage coverage;
    std::optional<MachinePlan> plan; ///< for pictures; dropped otherwise
};

/// Plans and rehearses one captured server. `machine` and `request` are those of its capture.
/// `policies` is what readPlanPolicies gives for the request, without an error.
[[nodiscard]] FleetServer rehearseServer(const Snapshot& snapshot, const PoliciesReading& policies,
                                         const FleetTerms& terms, Platform& machine,
                                         const CaptureRequest& request);

/// Names of the servers whose recordings are in these files: without folder and ending; the file
/// itself where two have one name.
[[nodiscard]] std::vector<std::string> serverNamesOf(const std::vector<std::string>& files);

/// All servers together.
struct Fleet {
    std::string policiesFile;
    std::string policiesHash;
    std::size_t policiesCount = 0;
    std::vector<Finding> policiesFindings; ///< of the file alone
    std::string planCommand;               ///< what plans a server: "zolexctl plan site.ini"
    std::vector<Supposition> suppositions;
    bool everyFault = false;
    bool allowSkipped = false;
    std::vector<FleetServer> servers;
    std::vector<UnusedPiece> unused;
    std::vector<Finding> findings; ///< of the fleet as a whole

    [[nodiscard]] std::size_t count(ServerResult result) const;
    [[nodiscard]] FleetLosses losses() const;
    [[nodiscard]] std::size_t losingServers() const;
    /// Servers that could not be planned: what they use is not known.
    [[nodiscard]] std::size_t unplannedServers() const;
    /// How many servers have the drive of a supposition.
    [[nodiscard]] std::size_t serversWith(std::size_t supposition) const;
    [[nodiscard]] std::int32_t faultsTried() const;
};

/// Completes what is told of all servers together: machines that were recorded twice, what none of
/// them uses. `document` is that of the policies as they are written.
void completeFleet(Fleet& fleet, const PolicyDocument& document);

} // namespace zolex::companion
