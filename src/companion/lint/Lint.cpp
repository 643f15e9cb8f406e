#include "companion/lint/Lint.h"

#include "companion/lint/FindingSink.h"
#include "companion/lint/RuleGroups.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace zolex::companion {

namespace {

using GroupCheck = void (*)(const PolicyDocument&, FindingSink&);

constexpr std::array<GroupCheck, 11> groupChecks = {
    checkGroup1, checkSpecifiers, checkGroup2, checkFamilyTypes,    checkGroup3,      checkGroup4,
    checkGroup5, checkGroup6,     checkGroup9, checkUnusedKeywords, checkKindEntries,
};

/// Whether a rule is one of the ids or begins with one of them, letter case ignored.
bool isOneOf(std::string_view rule, const std::vector<std::string>& ids) {
    return std::any_of(ids.begin(), ids.end(), [rule](const std::string& id) {
        return text::equalsNoCase(rule.substr(0, id.size()), id);
    });
}

/// What comments silence, asked for lines that only go up.
class Ignored {
  public:
    explicit Ignored(const std::vector<IgnoredFindings>& all) : all_(all) {}

    bool holds(const Finding& finding) {
        const std::int32_t line = finding.start.line;
        while (next_ < all_.size() && all_[next_].firstLine <= line) {
            const IgnoredFindings& entered = all_[next_++];
            (entered.firstLine == entered.lastLine ? ofLine_ : ofPolicy_) = &entered;
        }
        return silences(ofLine_, finding) || silences(ofPolicy_, finding);
    }

  private:
    static bool silences(const IgnoredFindings* ignored, const Finding& finding) {
        return ignored != nullptr && finding.start.line >= ignored->firstLine &&
               finding.start.line <= ignored->lastLine && isOneOf(finding.code, ignored->rules);
    }

    const std::vector<IgnoredFindings>& all_;
    std::size_t next_ = 0;
    const IgnoredFindings* ofLine_ = nullptr;
    const IgnoredFindings* ofPolicy_ = nullptr;
};

/// A file that is no text has no finding but that one; it is an error where zolex refuses the file.
void keepEncodingAlone(std::vector<Finding>& findings) {
    const auto found = std::find_if(findings.begin(), findings.end(),
                                    [](const Finding& row) { return row.code == "ZX002"; });
    if (found == findings.end()) {
        return;
    }
    const bool isRefused =
        std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
            return finding.code != "ZX002" && finding.severity == Severity::error &&
                   finding.refusedBy == RefusedBy::zolex;
        });
    Finding alone = std::move(*found);
    if (!isRefused) {
        alone.severity = Severity::warning;
        alone.refusedBy = RefusedBy::nobody;
    }
    findings.clear();
    findings.push_back(std::move(alone));
}

} // namespace

void arrangeFindings(const PolicyDocument& document, const LintSelection& selection,
                     std::vector<Finding>& findings) {
    keepEncodingAlone(findings);
    std::erase_if(findings, [&selection](const Finding& finding) {
        return (!selection.select.empty() && !isOneOf(finding.code, selection.select)) ||
               isOneOf(finding.code, selection.ignore);
    });
    std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
        return a.start.byte != b.start.byte ? a.start.byte < b.start.byte : a.code < b.code;
    });
    std::vector<Finding> kept;
    Ignored ignored(document.ignored);
    for (Finding& finding : findings) {
        if (!ignored.holds(finding)) {
            kept.push_back(std::move(finding));
        }
    }
    findings = std::move(kept);
}

std::vector<Finding> lintAll(const PolicyDocument& document) {
    FindingSink sink(document.file);
    for (const GroupCheck check : groupChecks) {
        check(document, sink);
    }
    std::vector<Finding> findings = document.findings;
    std::vector<Finding> more = sink.take();
    std::move(more.begin(), more.end(), std::back_inserter(findings));
    return findings;
}

std::vector<Finding> lint(const PolicyDocument& document,
                          const std::vector<const Snapshot*>& machines,
                          const LintSelection& selection) {
    std::vector<Finding> findings = lintAll(document);
    for (const Snapshot* const machine : machines) {
        dropTypesOf(*machine, document, findings);
    }
    FindingSink sink(document.file);
    checkGroup7(document, machines, sink);
    std::vector<Finding> more = sink.take();
    // What the file alone shows is not told again for each machine.
    std::erase_if(more, [&findings](const Finding& finding) {
        return std::any_of(findings.begin(), findings.end(), [&finding](const Finding& told) {
            return told.code == finding.code && told.start == finding.start &&
                   told.severity >= finding.severity;
        });
    });
    // Nor is a guess told where a machine shows the fault itself.
    std::erase_if(findings, [&more](const Finding& finding) {
        return finding.code == "ZX604" &&
               std::any_of(more.begin(), more.end(), [&finding](const Finding& certain) {
                   return certain.code == "ZX403" && certain.start == finding.start;
               });
    });
    std::move(more.begin(), more.end(), std::back_inserter(findings));
    arrangeFindings(document, selection, findings);
    return findings;
}

std::vector<Finding> lint(const PolicyDocument& document, const LintSelection& selection) {
    std::vector<Finding> findings = lintAll(document);
    arrangeFindings(document, selection, findings);
    return findings;
}

} // namespace zolex::companion
