#include "companion/json/DoctorDocument.h"

#include "companion/json/Pieces.h"
#include "companion/text/Timestamp.h"
#include "foundation/Text.h"

#include <optional>
#include <string_view>

namespace zolex::companion {

namespace {

std::string_view stateWord(UtilityCheck::State state) {
    switch (state) {
    case UtilityCheck::State::ok:
        return "ok";
    case UtilityCheck::State::unused:
        return "unused";
    case UtilityCheck::State::absent:
        return "absent";
    case UtilityCheck::State::missing:
        return "missing";
    case UtilityCheck::State::failed:
        return "failed";
    }
    return {};
}

Json findingOf(const SubjectFinding& each) {
    return {{"code", each.finding.code},
            {"severity", severityWord(each.finding.severity)},
            {"subject", each.subject},
            {"summary", each.finding.summary},
            {"detail", orNull(each.finding.detail)},
            {"help", each.finding.help}};
}

Json keepsExitCodes(const std::optional<ExitCodeProbe>& probe) {
    return probe && probe->hasEnded() ? Json(!probe->isLost()) : Json(nullptr);
}

Json utilityOf(const UtilityCheck& check) {
    return {{"name", check.name},
            {"state", stateWord(check.state)},
            {"program", orNull(check.program)},
            {"through_util_bat", check.usesWrapper},
            {"keeps_exit_codes", keepsExitCodes(check.probe)},
            {"controllers", check.controllers}};
}

Json readingOf(const ListingReading& reading) {
    Json unknown = Json::array();
    for (const auto& [key, place] : reading.unknownKeys) {
        unknown.push_back({{"key", key}, {"line", place.line}, {"count", place.count}});
    }
    return {{"blocks", reading.blocks},
            {"blocks_read", reading.blocksRead},
            {"keys", reading.keys},
            {"keys_used", reading.keysUsed},
            {"unknown_keys", unknown}};
}

Json listingsOf(const ControllerSnapshot& controller) {
    Json listings = Json::array();
    for (std::size_t i = 0; i < controller.commands.size(); ++i) {
        const CapturedListing& command = controller.commands[i];
        const bool ended =
            command.outcome == ChildOutcome::ended || command.outcome == ChildOutcome::notClosed;
        const bool isRead = i < controller.facts.listings.size();
        listings.push_back(
            {{"command", text::trim(command.command)},
             {"outcome", outcomeWord(command.outcome)},
             {"exit_code", ended ? Json(command.exitCode) : Json(nullptr)},
             {"duration_ms", command.duration.count()},
             {"reading", isRead ? readingOf(controller.facts.listings[i]) : Json(nullptr)}});
    }
    return listings;
}

Json controllerOf(const ControllerSnapshot& controller) {
    return {{"number", controller.number},
            {"captured", !controller.failed},
            {"model", orNull(controller.model)},
            {"utility", controller.utility},
            {"adapter", controller.adapter},
            {"pci", orNull(controller.pci)},
            {"pci_ids", orNull(controller.pciIds)},
            {"product_name", orNull(controller.facts.productName)},
            {"serial_number", orNull(controller.facts.serialNumber)},
            {"firmware_version", orNull(controller.facts.firmwareVersion)},
            {"listings", listingsOf(controller)}};
}

Json wrapperOf(const Examination& examination) {
    const auto loses = examination.wrapperLosesCodes();
    return {{"program", orNull(examination.wrapper)},
            {"keeps_exit_codes", loses ? Json(!*loses) : Json(nullptr)}};
}

Json folderOf(const system::TemporaryFolder& folder) {
    return {{"name", orNull(folder.name)},
            {"writable", folder.isWritable},
            {"free_bytes", orNull(folder.freeBytes)}};
}

Json consoleOf(const TextStyle& console) {
    return {{"columns", console.width},
            {"colours", console.colours},
            {"code_page", orNull(system::codePage())}};
}

} // namespace

std::string doctorDocument(const Examination& examination, const Snapshot& snapshot,
                           const TextStyle& console, const DocumentHead& head) {
    Json document = documentOf("zolex-doctor", head);
    document["machine_type"] = orNull(snapshot.machine.machineType.view());
    document["serial_number"] = orNull(snapshot.machine.serialNumber.view());
    document["machine_source"] = orNull(snapshot.machineSource);
    document["util_bat"] = wrapperOf(examination);
    document["hwdetect"] = {{"program", orNull(examination.detector)}};
    document["utilities"] = Json::array();
    for (const UtilityCheck& check : examination.utilities) {
        document["utilities"].push_back(utilityOf(check));
    }
    document["controllers"] = Json::array();
    for (const ControllerSnapshot& controller : snapshot.details) {
        document["controllers"].push_back(controllerOf(controller));
    }
    document["console"] = consoleOf(console);
    document["clock"] = timestampOf(examination.surroundings.clock);
    document["temporary_folder"] = folderOf(examination.surroundings.temporaryFolder);
    document["findings"] = Json::array();
    for (const SubjectFinding& each : examination.findings) {
        document["findings"].push_back(findingOf(each));
    }
    document["diagnostics"] = Json::array();
    return textOf(document);
}

std::string failedDoctorDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    Json document = documentOf("zolex-doctor", head);
    for (const char* const list : {"utilities", "controllers", "findings"}) {
        document[list] = Json::array();
    }
    document["diagnostics"] = diagnosticsOf(findings);
    return textOf(document);
}

} // namespace zolex::companion
