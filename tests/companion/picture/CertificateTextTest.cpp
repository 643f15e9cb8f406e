#include "companion/picture/CertificateText.h"

#include "companion/support/ExampleCertificate.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::companion::test {
namespace {

TEST(CertificateText, TellsTheMachineItsDrivesAndTheHashes) {
    EXPECT_EQ(certificateText(exampleCertificate(), {}), R"(Certificate  plan p-5f1c09ab77e2
Machine      8837, serial KQ10Z7V
Made at      2026-11-21T21:06:20+00:00
Policies     site.ini
Journal      plan.journal.jsonl
Known by     serial numbers of controllers and drives

Controller 1  LSI-MegaRAID-8480  serial 1122334455  firmware 1.11.50-0300
  configured
  LD 0   RAID1   67.8 GB  32:0 32:1
      write-back, adaptive read-ahead, strip 64 KB
  LD 1   RAID5  135.5 GB  32:3-32:5
      write-back, adaptive read-ahead, strip 64 KB
  spare                   32:6  global
  drive     size  serial number  model            state               in
  32:0   67.8 GB  3LQ2A000       NORVIK NV73455S  Online              LD 0
  32:1   67.8 GB  3LQ2A001       NORVIK NV73455S  Online              LD 0
  32:2   67.8 GB  3LQ2A002       NORVIK NV73455S  Failed              -
  32:3   67.8 GB  3LQ2A003       NORVIK NV73455S  Online              LD 1
  32:4   67.8 GB  3LQ2A004       NORVIK NV73455S  Online              LD 1
  32:5   67.8 GB  3LQ2A005       NORVIK NV73455S  Online              LD 1
  32:6   67.8 GB  3LQ2A006       NORVIK NV73455S  Hotspare            spare
  32:7   67.8 GB  3LQ2A007       NORVIK NV73455S  Unconfigured(good)  -

Controller 2
  skipped: no policy is for it

SHA-256
plan         5555555555555555555555555555555555555555555555555555555555555555
journal      6666666666666666666666666666666666666666666666666666666666666666
identity     299d43ca88a482f7fc3eaf034aac4dd36865ca0f57d176ab7564c90f79bbde8f
state        f1066986ae543f5715ad368c2f1bc948d9d55bb7e265f426511ef79368260706
layout 1     0ba564f06eaf805f0e38e843f14198117fa83efa7aabe429213108b54ac7b89d
)");
}

TEST(CertificateText, FoldsOnANarrowTerminal) {
    EXPECT_EQ(certificateText(exampleCertificate(), {false, 50}),
              R"(Certificate  plan p-5f1c09ab77e2
Machine      8837, serial KQ10Z7V
Made at      2026-11-21T21:06:20+00:00
Policies     site.ini
Journal      plan.journal.jsonl
Known by     serial numbers of controllers and
             drives

Controller 1  LSI-MegaRAID-8480  serial 1122334455
              firmware 1.11.50-0300
  configured
  LD 0   RAID1   67.8 GB  32:0 32:1
      write-back, adaptive read-ahead, strip 64 KB
  LD 1   RAID5  135.5 GB  32:3-32:5
      write-back, adaptive read-ahead, strip 64 KB
  spare                   32:6  global
  drive     size  serial number  model            state               in
  32:0   67.8 GB  3LQ2A000       NORVIK NV73455S  Online              LD 0
  32:1   67.8 GB  3LQ2A001       NORVIK NV73455S  Online              LD 0
  32:2   67.8 GB  3LQ2A002       NORVIK NV73455S  Failed              -
  32:3   67.8 GB  3LQ2A003       NORVIK NV73455S  Online              LD 1
  32:4   67.8 GB  3LQ2A004       NORVIK NV73455S  Online              LD 1
  32:5   67.8 GB  3LQ2A005       NORVIK NV73455S  Online              LD 1
  32:6   67.8 GB  3LQ2A006       NORVIK NV73455S  Hotspare            spare
  32:7   67.8 GB  3LQ2A007       NORVIK NV73455S  Unconfigured(good)  -

Controller 2
  skipped: no policy is for it

SHA-256
plan         5555555555555555555555555555555555555555555555555555555555555555
journal      6666666666666666666666666666666666666666666666666666666666666666
identity     299d43ca88a482f7fc3eaf034aac4dd36865ca0f57d176ab7564c90f79bbde8f
state        f1066986ae543f5715ad368c2f1bc948d9d55bb7e265f426511ef79368260706
layout 1     0ba564f06eaf805f0e38e843f14198117fa83efa7aabe429213108b54ac7b89d
)");
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
    EXPECT_EQ(certificateText(certificate, {}), R"(Certificate  plan p-000000000000
Machine      ?
Known by     nothing unique: no serial number is told

Controller 2147483647
  no logical drives
  ! foreign: 1
  drive  size  serial number  model  state  in
  1         ?  not told                     -

SHA-256
layout 2147483647 aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa
)");
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
