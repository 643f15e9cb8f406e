#include "companion/commands/OwnCertificates.h"

#include "companion/commands/LossText.h"
#include "companion/commands/MachineAccess.h"
#include "companion/execution/OwnLosses.h"
#include "companion/json/CertificateDocument.h"
#include "companion/recording/FolderEntries.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

std::vector<Certificate> certificatesOf(Context& context, const std::string& folder) {
    std::vector<std::string> names = folderEntries(folder).value_or(std::vector<std::string>());
    std::sort(names.begin(), names.end());
    std::vector<Certificate> certificates;
    for (const std::string& name : names) {
        if (!name.ends_with(certificateEnding)) {
            continue;
        }
        std::string file = folder;
        file += folder.ends_with('/') ? "" : "/";
        file += name;
        CertificateReading reading = readCertificateFile(context.platform.files(), file);
        if (reading.certificate) {
            certificates.push_back(*std::move(reading.certificate));
            continue;
        }
        for (Finding& finding : reading.findings) {
            finding.severity = Severity::warning;
            context.platform.console().writeError(findingLine(finding, context.errorStyle));
        }
    }
    return certificates;
}

} // namespace

std::string whyNotOwn(Context& context, const std::vector<Loss>& losses, const Snapshot& snapshot,
                      const std::string& folder) {
    const std::vector<Certificate> certificates = certificatesOf(context, folder);
    if (certificates.empty()) {
        return "there is no certificate in " + printable(folder);
    }
    for (const OwnLoss& own : ownLosses(losses, snapshot, certificates)) {
        if (!own.isOwn) {
            return lossNames({own.loss}) + " is not your own: " + printable(own.why);
        }
    }
    return {};
}

} // namespace zolex::companion
