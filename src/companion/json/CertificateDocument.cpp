#include "companion/json/CertificateDocument.h"

#include "companion/json/DocumentReading.h"
#include "companion/json/DocumentText.h"
#include "companion/json/JournalPieces.h"
#include "companion/json/LayoutPieces.h"
#include "companion/json/MachinePieces.h"
#include "companion/json/PlanPieces.h"

#include <limits>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::string_view certificateFormatName = "zolex-certificate";
constexpr DocumentCodes certificateCodes = {
    problem::certificateUnreadable, problem::notACertificate,  problem::otherCertificateVersion,
    problem::certificateBroken,     problem::certificateWrong, problem::certificateTooLarge};

void writeController(DocumentText& out, const Certificate::Controller& controller) {
    const Facts& facts = controller.facts;
    out.object();
    out.number("number", controller.number);
    out.textOrNull("model", controller.model);
    out.text("utility", controller.utility);
    out.textOrNull("product_name", facts.productName);
    out.textOrNull("serial_number", facts.serialNumber);
    out.textOrNull("firmware_version", facts.firmwareVersion);
    out.list("drives");
    for (const DriveFacts& drive : facts.drives) {
        writeDrive(out, {drive, std::nullopt, std::nullopt, {}});
    }
    out.end();
    out.object("layout");
    writeLayoutNames(out, controller.layout);
    out.textOrNull("layout_sha256", controller.layoutHash);
    out.end();
    out.end();
}

Certificate::Controller readController(const Part& part) {
    ControllerSnapshot standing;
    Facts& facts = standing.facts;
    facts.productName = part.textOrNull("product_name");
    facts.serialNumber = part.textOrNull("serial_number");
    facts.firmwareVersion = part.textOrNull("firmware_version");
    std::set<std::string> locations;
    for (const Part& each : part.objects("drives", mostPlanDrives)) {
        standing.drives.push_back(readDrive(each));
        facts.drives.push_back(standing.drives.back().facts);
        if (!locations.insert(facts.drives.back().location).second) {
            each.fail("location", "stands twice");
        }
    }
    const Part layout = part.object("layout");
    Certificate::Controller controller;
    controller.number = part.number<std::int32_t>("number", 1, mostNumber);
    controller.model = part.wordOrNull("model");
    controller.utility = part.word("utility");
    controller.layout = readLayout(layout);
    controller.layoutHash = layout.hashOrNull("layout_sha256");
    for (const LayoutGroup& group : controller.layout.groups) {
        if (group.volumes.empty()) {
            layout.fail("arrays", "has one without a logical drive");
        }
    }
    addStandingLayout(controller.layout, standing);
    controller.facts = std::move(facts);
    return controller;
}

void readDocument(const Part& document, CertificateReading& reading) {
    checkFormat(document, certificateFormatName, "certificate");
    reading.head.argv = document.object("tool").texts("argv", mostPlanLines);
    reading.head.madeAt = document.word("made_at");
    Certificate certificate;
    certificate.madeAt = reading.head.madeAt;
    certificate.planId = document.text("plan_id");
    certificate.planHash = document.hashOrNull("plan_sha256");
    certificate.policiesFile = document.textOrNull("policies_file");
    certificate.journalFile = document.textOrNull("journal_file");
    certificate.journalHash = document.hashOrNull("journal_sha256");
    certificate.fingerprint = readFingerprint(document);
    std::set<std::int32_t> numbers;
    for (const Part& each : document.objects("controllers", mostPlanControllers)) {
        certificate.controllers.push_back(readController(each));
        if (!numbers.insert(certificate.controllers.back().number).second) {
            each.fail("number", "stands twice");
        }
    }
    certificate.results = readResults(document, "results");
    reading.certificate = std::move(certificate);
}

} // namespace

std::string certificateDocument(const Certificate& certificate, const DocumentHead& head) {
    DocumentHead own = head;
    if (!certificate.madeAt.empty()) {
        own.madeAt = certificate.madeAt;
    }
    DocumentText out(certificateFormatName, own);
    out.text("plan_id", certificate.planId);
    out.textOrNull("plan_sha256", certificate.planHash);
    out.textOrNull("policies_file", certificate.policiesFile);
    out.textOrNull("journal_file", certificate.journalFile);
    out.textOrNull("journal_sha256", certificate.journalHash);
    writeFingerprint(out, certificate.fingerprint);
    out.list("controllers");
    for (const Certificate::Controller& controller : certificate.controllers) {
        writeController(out, controller);
    }
    out.end();
    out.json("results", resultsJson(certificate.results));
    return out.finish();
}

CertificateReading readCertificate(std::string_view text, std::string_view fileName) {
    if (text.size() > mostCertificateBytes) {
        return {
            std::nullopt, {}, {tooLargeFinding(fileName, certificateCodes, mostCertificateBytes)}};
    }
    CertificateReading reading;
    try {
        const Json document = parseDocument(text);
        readDocument(Part(document), reading);
    } catch (const DocumentFault& fault) {
        reading = {std::nullopt, {}, {findingOf(fault, certificateCodes, text, fileName)}};
    }
    return reading;
}

CertificateReading readCertificateFile(FileSystem& files, const std::string& name) {
    FileBytes bytes = readBytes(files, name, certificateCodes, mostCertificateBytes);
    if (!bytes.findings.empty()) {
        return {std::nullopt, {}, std::move(bytes.findings)};
    }
    return readCertificate(bytes.text, name);
}

} // namespace zolex::companion
