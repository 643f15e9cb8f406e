#include "companion/picture/CertificateText.h"

#include "companion/support/ExampleCertificate.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion::test {
namespace {

TEST(CertificateText, TellsTheMachineItsDrivesAndTheHashes) {
    EXPECT_EQ(certificateText(exampleCertificate(), {}), R"(@)");
}

TEST(CertificateText, FoldsOnANarrowTerminal) {
    EXPECT_EQ(certificateText(exampleCertificate(), {false, 50}), R"(@)");
}

TEST(CertificateText, TellsWhatIsNotKnown) {
    Certificate certificate;
    certificate.planId = "p-000000000000";
    certificate.controllers.resize(1);
    certificate.controllers[0].number = 2147483647;
    certificate.controllers[0].utility = "HYPERWIN";
    certificate.controllers[0].layoutHash = std::string(64, 'a');
    certificate.controllers[0].facts.drives.resize(1);
    certificate.controllers[0].facts.drives[0].location = "1";
    certificate.controllers[0].layout.foreignDrives = {"1"};
    EXPECT_EQ(certificateText(certificate, {}), R"(@)");
}

TEST(CertificateText, HasColoursAndSteersNoTerminal) {
    Certificate certificate = exampleCertificate();
    certificate.policiesFile = "a\x1B[2J.ini";
    certificate.controllers[0].facts.drives[0].serialNumber = "A\nB";
    const std::string plain = certificateText(certificate, {});
    EXPECT_EQ(plain.find('\x1B'), std::string::npos);
    EXPECT_NE(plain.find("A?B"), std::string::npos);
    EXPECT_NE(certificateText(certificate, {true, 80}).find("\x1B["), std::string::npos);
}

} // namespace
} // namespace zolex::companion::test
