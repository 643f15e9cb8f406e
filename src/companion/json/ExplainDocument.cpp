#include "companion/json/ExplainDocument.h"

#include "companion/json/Pieces.h"

namespace zolex::companion {

std::string explainDocument(const Explanation& explanation, const DocumentHead& head) {
    Json document = documentOf("zolex-explain", head);
    document["code"] = explanation.code;
    document["exit_code_of"] = orNull(explanation.program);
    document["title"] = explanation.title;
    document["severity"] =
        explanation.severity ? Json(severityWord(*explanation.severity)) : Json(nullptr);
    document["refused_by"] = orNull(refusedByWord(explanation.refusedBy));
    document["why"] = explanation.why;
    document["help"] = explanation.help;
    return textOf(document);
}

} // namespace zolex::companion
