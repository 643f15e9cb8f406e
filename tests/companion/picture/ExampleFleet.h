#pragma once

#include "companion/rehearsal/Fleet.h"

#include <string>

/// A fleet for the tests of what is shown, made by hand.
namespace zolex::companion::test {

inline FleetServer exampleServer(const std::string& name, const std::string& serial,
                                 ServerResult result) {
    FleetServer server;
    server.name = name;
    server.file = "fleet/" + name + ".zrec";
    server.machineType = "8837";
    server.serialNumber = serial;
    server.result = result;
    server.hasPlan = result != ServerResult::error;
    server.supposed = {true};
    return server;
}

inline Finding fleetFinding(const std::string& code, Severity severity, const std::string& summary,
                            std::int32_t line = 0) {
    Finding finding;
    finding.code = code;
    finding.severity = severity;
    finding.summary = summary;
    if (line > 0) {
        finding.file = "site.ini";
        finding.start = {line, 13, 100};
        finding.end = {line, 14, 101};
    }
    return finding;
}

/// Each result, two kinds of losses, and a name that is markup.
inline Fleet exampleFleet() {
    constexpr std::uint64_t gb = std::uint64_t{1} << 30U;
    Fleet fleet;
    fleet.policiesFile = "site.ini";
    fleet.policiesHash = std::string(64, 'a');
    fleet.planCommand = "zolexctl plan site.ini";
    FleetServer& first =
        fleet.servers.emplace_back(exampleServer("r1u01", "KQ10Z7V", ServerResult::asPlanned));
    first.policies = {"Policy.web"};
    first.commands = 3;
    FleetServer& second =
        fleet.servers.emplace_back(exampleServer("r1u02", "KQ10Z8A", ServerResult::asPlanned));
    second.policies = {"Policy.web", "Policy.db"};
    second.commands = 15;
    second.losses = {2, 1, 0, 203 * gb};
    second.findings = {
        {2, fleetFinding("ZX703", Severity::warning, "32:3 has 12 media errors", 7)}};
    FleetServer& third =
        fleet.servers.emplace_back(exampleServer("r1u03", "KQ10Z8B", ServerResult::error));
    third.policies = {"Policy.web"};
    for (std::int32_t drive = 7; drive < 12; ++drive) {
        third.findings.push_back(
            {0, fleetFinding("ZX304", Severity::error,
                             "there is no drive " + std::to_string(drive) + " among 6", 10)});
    }
    FleetServer& fourth =
        fleet.servers.emplace_back(exampleServer("<r1>&u04", "", ServerResult::skipped));
    fourth.reasons = {"no policy fits: Policy.web asks for d:8, and it is 7"};
    fourth.supposed = {false};
    FleetServer& fifth =
        fleet.servers.emplace_back(exampleServer("r1u05", "KQ10Z8D", ServerResult::same));
    fifth.policies = {"Policy.web"};
    fleet.unused = {
        {UnusedPiece::Kind::policy, "Policy.rest", "", "", 40, ""},
        {UnusedPiece::Kind::entry, "Policy.web", "AppliesTo.2", "", 5, ""},
        {UnusedPiece::Kind::specifier, "Policy.web", "AppliesTo.2", "d:6", 5, ""},
        {UnusedPiece::Kind::keyword, "Policy.web", "Array.C", "", 9, ""},
    };
    return fleet;
}

} // namespace zolex::companion::test
