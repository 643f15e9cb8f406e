#include "companion/json/CheckDocument.h"

#include "companion/json/Pieces.h"

namespace zolex::companion {

std::string checkDocument(const std::vector<Finding>& findings, const DocumentHead& head) {
    const FindingCounts counts = countFindings(findings);
    Json document = documentOf("zolex-check", head);
    document["valid"] = counts.errors == 0;
    document["error_count"] = counts.errors;
    document["warning_count"] = counts.warnings;
    document["note_count"] = counts.notes;
    document["diagnostics"] = diagnosticsOf(findings);
    return textOf(document);
}

} // namespace zolex::companion
