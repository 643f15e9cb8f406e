#include "companion/execution/CertificateDiff.h"
#include "companion/execution/OwnLosses.h"
#include "companion/json/CertificateDocument.h"
#include "companion/picture/CertificateText.h"
#include "companion/picture/DiffText.h"
#include "companion/support/ExampleCertificate.h"
#include "support/Check.h"
#include "support/Input.h"

#include <string>
#include <string_view>

namespace zolex::fuzz {
namespace {

using namespace companion;

/// An error with a place in the text, and no certificate.
void checkError(const CertificateReading& reading, std::string_view text) {
    check(!reading.certificate && reading.findings.size() == 1, "what is not read has one reason");
    const Finding& finding = reading.findings.front();
    check(finding.severity == Severity::error && !finding.code.empty() && !finding.summary.empty(),
          "an error says something");
    check(finding.start.byte >= 0 && finding.start.byte <= static_cast<std::int64_t>(text.size()),
          "an error stands in the text");
}

/// A machine can be held against it, of the very identity too.
void checkUses(Certificate certificate) {
    const Snapshot snapshot = companion::test::certifiedSnapshot();
    certificate.fingerprint = fingerprintOf(snapshot);
    const MachineDiff diff = diffOf(snapshot, certificate);
    check(diff.controllers.size() == certificate.controllers.size(), "one for each controller");
    check(!diffText(diff, {}, true).empty(), "a comparison can be told of");
    Loss loss;
    loss.controller = 1;
    loss.kind = "logical_drive";
    loss.id = "0";
    const std::vector<OwnLoss> own = ownLosses({loss}, snapshot, {&certificate, 1});
    check(own.size() == 1 && own[0].isOwn == own[0].why.empty(), "what is not own has a reason");
}

/// What was read comes back as it is, and can be told of.
void checkCertificate(const CertificateReading& reading) {
    const std::string written = certificateDocument(*reading.certificate, reading.head);
    const CertificateReading again = readCertificate(written, "again.json");
    check(again.certificate.has_value(), "what was written is read");
    check(certificateDocument(*again.certificate, again.head) == written,
          "what was read is written as it was");
    check(!certificateText(*reading.certificate, {}).empty(), "it can be told of");
    checkUses(*reading.certificate);
}

void readAny(std::string_view text) {
    const CertificateReading reading = readCertificate(text, "a.certificate.json");
    if (reading.certificate) {
        check(reading.findings.empty(), "a certificate that is read has no fault");
        checkCertificate(reading);
    } else {
        checkError(reading, text);
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readAny(zolex::fuzz::Input(data, size).rest());
    return 0;
}
