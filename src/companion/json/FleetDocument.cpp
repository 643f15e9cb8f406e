#include "companion/json/FleetDocument.h"

#include "companion/facts/Bytes.h"
#include "companion/json/MachinePieces.h"

namespace zolex::companion {

namespace {

std::string_view suppositionWord(Supposition::Kind kind) {
    switch (kind) {
    case Supposition::Kind::fail:
        return "fail";
    case Supposition::Kind::missing:
        return "missing";
    case Supposition::Kind::size:
        break;
    }
    return "size";
}

Json suppositionJson(const Fleet& fleet, std::size_t index) {
    const Supposition& supposition = fleet.suppositions[index];
    const bool isSize = supposition.kind == Supposition::Kind::size;
    return {{"what", suppositionWord(supposition.kind)},
            {"location", supposition.location},
            {"capacity_bytes", isSize
                                   ? Json(supposition.sizeMb * static_cast<std::int64_t>(bytesOfMb))
                                   : Json(nullptr)},
            {"servers", fleet.serversWith(index)}};
}

Json lossesOf(const FleetLosses& losses) {
    return {{"logical_drives", losses.logicalDrives},
            {"capacity_bytes", orNull(std::optional(losses.capacityBytes))},
            {"hotspares", losses.hotspares},
            {"foreign", losses.foreign}};
}

Json serverDiagnosticOf(const ServerFinding& each) {
    Json row = diagnosticOf(each.finding);
    row["controller"] = each.controller > 0 ? Json(each.controller) : Json(nullptr);
    return row;
}

Json serverOf(const Fleet& fleet, const FleetServer& server) {
    Json row = {{"name", server.name},
                {"file", server.file},
                {"machine_type", orNull(server.machineType)},
                {"serial_number", orNull(server.serialNumber)},
                {"result", serverResultWord(server.result)},
                {"policies", server.policies},
                {"loses", server.hasPlan ? lossesOf(server.losses) : Json(nullptr)},
                {"commands", server.hasPlan ? Json(server.commands) : Json(nullptr)},
                {"because", server.reasons}};
    Json supposed = Json::array();
    for (std::size_t i = 0; i < server.supposed.size(); ++i) {
        if (server.supposed[i]) {
            supposed.push_back(i);
        }
    }
    row["supposed"] = std::move(supposed);
    Json notResumable = Json::array();
    for (const UnresumedStep& step : server.unresumed) {
        notResumable.push_back({{"step", step.step}, {"command", step.command}});
    }
    row["faults_tried"] = fleet.everyFault ? Json(server.faultsTried) : Json(nullptr);
    row["not_resumable"] = std::move(notResumable);
    Json diagnostics = Json::array();
    for (const ServerFinding& each : server.findings) {
        diagnostics.push_back(serverDiagnosticOf(each));
    }
    row["diagnostics"] = std::move(diagnostics);
    return row;
}

Json unusedOf(const UnusedPiece& piece) {
    return {{"kind", unusedKindWord(piece.kind)},
            {"policy", piece.policy},
            {"keyword", orNull(piece.keyword)},
            {"specifier", orNull(piece.specifier)},
            {"line", piece.line},
            {"because", orNull(piece.because)}};
}

void writeHead(DocumentText& out, const Fleet& fleet) {
    if (fleet.policiesFile.empty()) {
        out.null("policies");
    } else {
        out.object("policies");
        out.text("file", fleet.policiesFile);
        out.textOrNull("sha256", fleet.policiesHash);
        out.json("diagnostics", diagnosticsOf(fleet.policiesFindings));
        out.end();
    }
    Json supposed = Json::array();
    for (std::size_t i = 0; i < fleet.suppositions.size(); ++i) {
        supposed.push_back(suppositionJson(fleet, i));
    }
    out.json("supposed", supposed);
    out.truth("every_fault", fleet.everyFault);
    out.object("totals");
    out.number("servers", fleet.servers.size());
    out.number("as_planned", fleet.count(ServerResult::asPlanned));
    out.number("same", fleet.count(ServerResult::same));
    out.number("skipped", fleet.count(ServerResult::skipped));
    out.number("error", fleet.count(ServerResult::error));
    out.number("losing", fleet.losingServers());
    out.number("not_known", fleet.unplannedServers());
    out.json("loses", lossesOf(fleet.losses()));
    out.end();
}

std::string written(const Fleet& fleet, const std::vector<Finding>& findings,
                    const DocumentHead& head) {
    DocumentText out("zolex-fleet", head);
    writeHead(out, fleet);
    out.list("servers");
    for (const FleetServer& server : fleet.servers) {
        out.json(serverOf(fleet, server));
    }
    out.end();
    Json unused = Json::array();
    for (const UnusedPiece& piece : fleet.unused) {
        unused.push_back(unusedOf(piece));
    }
    out.json("unused", unused);
    out.json("diagnostics", diagnosticsOf(findings));
    return out.finish();
}

} // namespace

std::string fleetDocument(const Fleet& fleet, const DocumentHead& head) {
    return written(fleet, fleet.findings, head);
}

std::string failedFleetDocument(const Fleet& fleet, const std::vector<Finding>& faults,
                                const DocumentHead& head) {
    return written(fleet, faults, head);
}

} // namespace zolex::companion
