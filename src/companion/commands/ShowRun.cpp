#include "companion/commands/ShowRun.h"

#include "companion/json/CertificateDocument.h"
#include "companion/json/JournalFile.h"
#include "companion/json/MachineDocument.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Sha256.h"
#include "companion/picture/CertificateText.h"
#include "companion/picture/JournalText.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Timestamp.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Tells why a file cannot be shown; whoever asked for a document gets one.
int notShown(Context& context, const std::vector<Finding>& findings) {
    context.platform.console().writeError(diagnosticsText(findings, {}, context.errorStyle));
    if (context.format == Format::json) {
        const DocumentHead head{context.argv, timestampOf(context.platform.localTime())};
        static_cast<void>(deliver(context, failedMachineDocument(findings, head)));
    }
    return exit_code::notPossible;
}

/// Nothing but texts and documents; false after a message.
bool canBeShownAs(Context& context, std::string_view what) {
    if (context.format == Format::text || context.format == Format::json) {
        return true;
    }
    failWith(context, std::string(what) + " can be shown as text and as json only",
             "leave --format and --as out");
    return false;
}

/// The plan that the journal is of; nothing when it is not at hand, or is another one by now.
std::optional<MachinePlan> planOf(Platform& platform, const JournalBegin& begin) {
    if (begin.planFile.empty()) {
        return readPlanDocument(begin.planText, "").plan;
    }
    const std::unique_ptr<File> file = platform.files().open(begin.planFile, "r");
    if (file == nullptr) {
        return std::nullopt;
    }
    std::string text(mostPlanBytes + 1, '\0');
    text.resize(file->read(text));
    if (file->failed() || text.size() > mostPlanBytes || sha256(text) != begin.planHash) {
        return std::nullopt;
    }
    return readPlanDocument(text, begin.planFile).plan;
}

} // namespace

int showJournal(Context& context, const std::string& file) {
    if (!canBeShownAs(context, "a journal")) {
        return exit_code::notPossible;
    }
    const JournalReading reading = readJournalFile(context.platform.files(), file);
    if (!reading.journal) {
        return notShown(context, reading.findings);
    }
    if (context.format == Format::json) {
        return deliver(context, reading.text) ? exit_code::done : exit_code::notPossible;
    }
    const std::optional<MachinePlan> plan = planOf(context.platform, reading.journal->begin());
    JournalTextTerms terms;
    terms.plan = plan ? &*plan : nullptr;
    terms.verbose = context.verbose;
    return deliver(context, journalText(*reading.journal, context.style, terms))
               ? exit_code::done
               : exit_code::notPossible;
}

int showCertificate(Context& context, const std::string& file) {
    if (!canBeShownAs(context, "a certificate")) {
        return exit_code::notPossible;
    }
    const CertificateReading reading = readCertificateFile(context.platform.files(), file);
    if (!reading.certificate) {
        return notShown(context, reading.findings);
    }
    const std::string shown = context.format == Format::json
                                  ? certificateDocument(*reading.certificate, reading.head)
                                  : certificateText(*reading.certificate, context.style);
    return deliver(context, shown) ? exit_code::done : exit_code::notPossible;
}

} // namespace zolex::companion
