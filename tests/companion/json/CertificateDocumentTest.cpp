#include "companion/json/CertificateDocument.h"

#include "companion/support/ExampleCertificate.h"
#include "companion/support/KeptDocument.h"
#include "companion/support/Texts.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace zolex::companion::test {
namespace {

const DocumentHead certificateHead{{"apply", "plan.json"}, "2026-11-21T21:06:20+00:00"};

std::string exampleText() {
    return certificateDocument(exampleCertificate(), certificateHead);
}

/// What is told of a text that is not read.
std::string certificateFault(const std::string& text) {
    const CertificateReading reading = readCertificate(text, "a.json");
    EXPECT_FALSE(reading.certificate);
    EXPECT_EQ(reading.findings.size(), 1U);
    if (reading.findings.empty()) {
        return "";
    }
    const Finding& finding = reading.findings.front();
    const std::string place =
        finding.start.line == 0 ? "" : ":" + std::to_string(finding.start.line);
    return finding.file + place + ": " + finding.summary + " [" + finding.code + "]";
}

TEST(CertificateDocument, TellsWhatStandsAndOfWhichRun) {
    const std::string text = exampleText();
    keepDocument("certificate-example", text);
    const std::string begin = R"(
  "made_at": "2026-11-21T21:06:20+00:00",
  "plan_id": "p-5f1c09ab77e2",
  "plan_sha256": "5555555555555555555555555555555555555555555555555555555555555555",
  "policies_file": "site.ini",
  "journal_file": "plan.journal.jsonl",
  "journal_sha256": "6666666666666666666666666666666666666666666666666666666666666666",
  "fingerprint": {
    "algorithm": "zolex-fp-1",
    "strength": "serials",
)";
    EXPECT_NE(text.find(begin), std::string::npos) << text;
    EXPECT_EQ(text.substr(0, 60),
              "{\n  \"format\": \"zolex-certificate\",\n  \"format_version\": \"1.0\"");
    const std::string controller = R"(
  "controllers": [
    {
      "number": 1,
      "model": "LSI-MegaRAID-8480",
      "utility": "MEGACLI",
      "product_name": "LSI MegaRAID SAS 8480E",
      "serial_number": "1122334455",
      "firmware_version": "1.11.50-0300",
      "drives": [
        {
          "location": "32:0",
)";
    EXPECT_NE(text.find(controller), std::string::npos) << text;
    const std::string end = R"(,
  "results": [
    {
      "number": 1,
      "result": "configured",
      "step": null,
      "of": null,
      "reason": null
    },
    {
      "number": 2,
      "result": "skipped",
      "step": null,
      "of": null,
      "reason": "no policy is for it"
    }
  ]
}
)";
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST(CertificateDocument, ReadsWhatItHasWritten) {
    const std::string text = exampleText();
    const CertificateReading reading = readCertificate(text, "a.json");
    ASSERT_TRUE(reading.certificate);
    EXPECT_TRUE(reading.findings.empty());
    EXPECT_EQ(certificateDocument(*reading.certificate, reading.head), text);
    const Certificate wanted = exampleCertificate();
    const Certificate& found = *reading.certificate;
    EXPECT_EQ(found.planId, wanted.planId);
    EXPECT_EQ(found.planHash, wanted.planHash);
    EXPECT_EQ(found.journalHash, wanted.journalHash);
    EXPECT_EQ(found.fingerprint, wanted.fingerprint);
    EXPECT_EQ(found.results, wanted.results);
    ASSERT_EQ(found.controllers.size(), 1U);
    EXPECT_EQ(found.controllers[0].layout, wanted.controllers[0].layout);
    EXPECT_EQ(found.controllers[0].layoutHash, wanted.controllers[0].layoutHash);
    ASSERT_EQ(found.controllers[0].facts.drives.size(), 8U);
    EXPECT_EQ(found.controllers[0].facts.drives[3].serialNumber, "3LQ2A003");
    EXPECT_EQ(found.controllers[0].facts.logicalDrives.size(), 2U);
}

TEST(CertificateDocument, TellsLogicalDrivesApart) {
    Snapshot snapshot = certifiedSnapshot();
    LogicalDriveFacts& volume = snapshot.details[0].facts.logicalDrives[0];
    volume.name = "data";
    volume.device = "/dev/sdb";
    volume.uniqueId = "600aaa01";
    const std::string text = certificateDocument(certificateOf(snapshot), certificateHead);
    keepDocument("certificate-ids", text);
    const CertificateReading reading = readCertificate(text, "a.json");
    ASSERT_TRUE(reading.certificate);
    const LayoutVolume& read = reading.certificate->controllers[0].layout.groups[0].volumes[0];
    EXPECT_EQ(read.name, "data");
    EXPECT_EQ(read.device, "/dev/sdb");
    EXPECT_EQ(read.uniqueId, "600aaa01");
    EXPECT_EQ(certificateDocument(*reading.certificate, certificateHead), text);
    EXPECT_EQ(exampleText().find("unique_id"), std::string::npos);
}

TEST(CertificateDocument, RefusesWhatIsNone) {
    EXPECT_EQ(certificateFault(""),
              "a.json:1: this is no JSON: syntax error while parsing value - "
              "unexpected end of input; expected '[', '{', or a literal [ZA193]");
    EXPECT_EQ(certificateFault("[]"),
              "a.json: this is no certificate: \"format\" is not \"zolex-certificate\" [ZA191]");
    const std::string text = exampleText();
    EXPECT_EQ(certificateFault(replaced(text, "zolex-certificate", "zolex-plan")),
              "a.json: this is no certificate but a document of the format zolex-plan [ZA191]");
    EXPECT_EQ(certificateFault(replaced(text, "\"1.0\"", "\"2.0\"")),
              "a.json: this certificate has format version 2.0, of which this program knows "
              "nothing: it reads version 1 [ZA192]");
    EXPECT_EQ(certificateFault(replaced(text, "\"plan_id\"", "\"plan\"")),
              "a.json: plan_id is missing [ZA194]");
    EXPECT_EQ(certificateFault(replaced(text, "5555", "555g")),
              "a.json: plan_sha256 is no hash of 64 hexadecimal digits [ZA194]");
    EXPECT_EQ(certificateFault(replaced(text, "\"location\": \"32:1\"", "\"location\": \"32:0\"")),
              "a.json: controllers[0].drives[1].location stands twice [ZA194]");
    EXPECT_EQ(certificateFault(replaced(text, "\"array\": \"1\"", "\"array\": \"7\"")),
              "a.json: controllers[0].layout.logical_drives[1].array \"7\" is none of the arrays "
              "[ZA194]");
    EXPECT_EQ(certificateFault(replaced(text, "\"array\": \"1\"", "\"array\": \"0\"")),
              "a.json: controllers[0].layout.arrays has one without a logical drive [ZA194]");
    EXPECT_EQ(
        certificateFault(replaced(text, "\"result\": \"configured\"", "\"result\": \"done\"")),
        "a.json: results[0].result is the unknown word \"done\" [ZA194]");
    EXPECT_EQ(certificateFault(replaced(text, "\"number\": 2,", "\"number\": 0,")),
              "a.json: results[1].number is no whole number from 1 to 2147483647 [ZA194]");
}

TEST(CertificateDocument, PassesOverNamesOfALaterMinorVersion) {
    const std::string text = replaced(replaced(exampleText(), "\"1.0\"", "\"1.3\""), "\"plan_id\"",
                                      "\"sealed\": true,\n  \"plan_id\"");
    EXPECT_TRUE(readCertificate(text, "a.json").certificate);
}

TEST(CertificateDocument, CutAtAnyByteItIsAFaultWithAReason) {
    const std::string text = exampleText();
    for (std::size_t size = 0; size + 2 < text.size(); size += 7) {
        const CertificateReading reading =
            readCertificate(std::string_view(text).substr(0, size), "a.json");
        ASSERT_FALSE(reading.certificate) << size;
        ASSERT_EQ(reading.findings.size(), 1U) << size;
    }
}

} // namespace
} // namespace zolex::companion::test
