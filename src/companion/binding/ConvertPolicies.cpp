#include "companion/binding/ConvertPolicies.h"

#include "companion/binding/BoundPolicies.h"
#include "companion/binding/FamilyTypes.h"
#include "companion/binding/KindFile.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/rewriting/PolicyWriter.h"
#include "companion/text/Terminal.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "policies/PolicyFile.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

/// One controller and the policy that is bound for it.
struct BoundController {
    std::int32_t number = 0;
    const RAIDController* record = nullptr;
    std::size_t policy = 0;
    std::string matchedBy; ///< "AppliesTo.1"
    std::string text;      ///< of the whole file
    std::vector<Binding> bindings;
    Policy bound;
};

/// What a plan says, whatever its policy is called.
struct PlanContent {
    Outcome outcome = Outcome::noPolicy;
    std::optional<RAIDConfiguration> layout;
    std::optional<Fault> fault;
    friend bool operator==(const PlanContent&, const PlanContent&) = default;
};

PlanContent contentOf(ControllerPlan plan) {
    if (plan.layout) {
        plan.layout->policyName = "";
    }
    return {plan.outcome, std::move(plan.layout), std::move(plan.fault)};
}

std::string controllerWords(std::int32_t number) {
    return "controller " + std::to_string(number);
}

class Converter {
  public:
    Converter(const Snapshot& snapshot, const ConvertRequest& request)
        : snapshot_(snapshot), request_(request), source_(readKindFile(request.text)),
          aside_(withoutFamilyTypes(withoutKindEntries(request.text))) {}

    ConvertedPolicies run() {
        SilentReport silent;
        const PolicyFile file =
            readPolicies(aside_, ControllerCatalogue(), PolicyOptions(), silent);
        if (!file.policies) {
            tell(problemFinding(problem::convertRefused, "zolex would refuse what they become"));
            return std::move(result_);
        }
        for (const ControllerSnapshot& detail : snapshot_.details) {
            bind(detail, *file.policies);
        }
        if (bound_.empty() && result_.isPossible()) {
            Finding none = problemFinding(problem::convertRefused,
                                          "no policy is for a controller of this machine");
            none.severity = Severity::error;
            tell(std::move(none));
        }
        if (result_.isPossible()) {
            write();
            check();
        }
        return std::move(result_);
    }

  private:
    void tell(Finding finding) {
        finding.file = request_.file;
        result_.findings.push_back(std::move(finding));
    }
    void tellAt(Finding finding, std::int32_t line, std::int32_t column, std::int32_t endColumn) {
        std::int64_t byte = 0;
        for (std::int32_t i = 1; i < line; ++i) {
            const auto index = static_cast<std::size_t>(i) - 1;
            byte += static_cast<std::int64_t>(source_.lines.at(index).size() +
                                              source_.lineEnds.at(index).size());
        }
        finding.start = {line, column, byte + column - 1};
        finding.end = {line, endColumn, byte + endColumn - 1};
        tell(std::move(finding));
    }
    void note(std::string_view code, std::string summary) {
        Finding finding = problemFinding(code, std::move(summary));
        finding.severity = Severity::note;
        tell(std::move(finding));
    }

    void bind(const ControllerSnapshot& detail, const PolicyList& policies) {
        const RAIDController* const record = snapshot_.controllers.controller(detail.index);
        if (detail.index == ControllerSnapshot::noRecord) {
            note(problem::convertNoPolicy,
                 controllerWords(detail.number) + " is not known to zolex: it gets no policy");
            return;
        }
        if (detail.failed || record == nullptr) {
            Finding failed = problemFinding(problem::utilityFailed,
                                            controllerWords(detail.number) +
                                                " is not known: " + detail.utility + " had failed");
            failed.severity = Severity::error;
            tell(std::move(failed));
            return;
        }
        SilentReport silent;
        const ControllerPlan plan =
            planController(*record, detail.number, policies, snapshot_.machine, silent);
        if (plan.policyIndex < 0 || plan.outcome == Outcome::tooFewDrives) {
            note(problem::convertNoPolicy,
                 controllerWords(detail.number) + (plan.outcome == Outcome::tooFewDrives
                                                       ? " has too few drives: it gets no policy"
                                                       : ": no policy is for it"));
            return;
        }
        BoundController bound;
        bound.number = detail.number;
        bound.record = record;
        bound.policy = static_cast<std::size_t>(plan.policyIndex);
        for (const Reason& reason : plan.reasons) {
            if (reason.kind == Reason::Kind::entryMatches) {
                bound.matchedBy = reason.keyword.c_str();
            }
        }
        BoundPolicies made = bindPolicy(request_.text, bound.policy, detail, *record);
        for (const BindingFault& fault : made.faults) {
            Finding finding;
            finding.code = fault.code;
            finding.refusedBy = RefusedBy::plan;
            finding.summary = controllerWords(detail.number) + ": " + fault.what;
            if (!fault.help.empty()) {
                finding.help.push_back(fault.help);
            }
            tellAt(std::move(finding), fault.line, fault.column, fault.endColumn);
        }
        const PolicyFile read = readPolicies(withoutFamilyTypes(made.text), ControllerCatalogue(),
                                             PolicyOptions(), silent);
        if (made.faults.empty() && read.policies) {
            bound.bound = read.policies->policies().at(bound.policy);
            bound.text = std::move(made.text);
            bound.bindings = std::move(made.bindings);
            bound_.push_back(std::move(bound));
        }
    }

    // The text.

    void write() {
        std::string machine =
            snapshot_.machine.machineType.isEmpty()
                ? ""
                : "machine type " + std::string(snapshot_.machine.machineType.c_str());
        if (!isPlaceholder(snapshot_.machine.serialNumber.c_str())) {
            machine += (machine.empty() ? "serial number " : ", serial number ") +
                       std::string(snapshot_.machine.serialNumber.c_str());
        }
        result_.text =
            commentLines("", "Written by zolexctl " + request_.version + " from " + request_.file +
                                 " for " + (machine.empty() ? "one machine" : machine) + ".") +
            commentLines("", "The drives are those of this machine alone.") + "\n";
        for (std::size_t policy = 0; policy < source_.sections.size(); ++policy) {
            std::vector<const BoundController*> users;
            for (const BoundController& bound : bound_) {
                if (bound.policy == policy) {
                    users.push_back(&bound);
                }
            }
            if (users.empty()) {
                note(problem::convertNoController, source_.sections[policy].name +
                                                       " is for no controller of this machine "
                                                       "and is left out");
            } else {
                writePolicy(policy, users);
            }
        }
    }

    void writePolicy(std::size_t policy, const std::vector<const BoundController*>& users) {
        // Controllers with one text have one section.
        std::vector<std::pair<std::string, std::vector<const BoundController*>>> sections;
        for (const BoundController* user : users) {
            const std::string text = sectionText(*user, policy);
            const auto found =
                std::find_if(sections.begin(), sections.end(),
                             [&text](const auto& section) { return section.first == text; });
            if (found == sections.end()) {
                sections.push_back({text, {user}});
            } else {
                found->second.push_back(user);
            }
        }
        for (const auto& [text, own] : sections) {
            result_.text += sections.size() == 1 ? text : renamed(text, policy, own);
            result_.text += result_.text.ends_with('\n') ? "" : "\n";
        }
        for (const auto& [text, own] : sections) {
            tellDropped(*own.front());
        }
    }

    /// The first line of a section: comments right above its header belong to it, and to the first
    /// all that stands before.
    static std::size_t firstLineOf(const KindFile& file, std::size_t policy) {
        std::size_t line = policy == 0 ? 0 : file.sections[policy].headerLine;
        while (policy > 0 && line > 0) {
            const std::string_view before = text::trim(file.lines[line - 1], " \t\r");
            if (before.empty() || before.front() != ';') {
                break;
            }
            --line;
        }
        return line;
    }

    /// The section as it is bound, with a comment above each line that was.
    static std::string sectionText(const BoundController& user, std::size_t policy) {
        const KindFile file = readKindFile(user.text);
        const std::size_t end =
            policy + 1 < file.sections.size() ? firstLineOf(file, policy + 1) : file.lines.size();
        std::string text;
        for (std::size_t i = firstLineOf(file, policy); i < end; ++i) {
            const auto binding =
                std::find_if(user.bindings.begin(), user.bindings.end(),
                             [&](const Binding& row) { return row.becomes == file.lines[i]; });
            if (binding != user.bindings.end()) {
                text += comment(*binding, file.lineEnds[i]);
            }
            text.append(file.lines[i]).append(file.lineEnds[i]);
        }
        return text;
    }

    static std::string comment(const Binding& binding, std::string_view lineEnd) {
        std::string words = binding.keyword + " = " + binding.value;
        for (const BoundDrive& drive : binding.drives) {
            words += (&drive == &binding.drives.front() ? ": " : "; ") + drive.location + " (" +
                     drive.why + ")";
        }
        words += binding.why.empty() ? "" : ": " + binding.why;
        std::string lines = commentLines("", words);
        if (lineEnd == "\r\n") {
            for (std::size_t at = lines.find('\n'); at != std::string::npos;
                 at = lines.find('\n', at + 2)) {
                lines.replace(at, 1, "\r\n");
            }
        }
        return lines;
    }

    /// The section under a name of its own, for these controllers alone.
    std::string renamed(const std::string& section, std::size_t policy,
                        const std::vector<const BoundController*>& users) {
        const KindFile file = readKindFile(section);
        const KindFileSection& own = file.sections.front();
        std::set<std::size_t> applies; // lines of AppliesTo entries
        for (const KindFileEntry& entry : own.entries) {
            constexpr std::string_view prefix = keyword::appliesTo;
            if (text::equalsNoCase(entry.keyword.text.substr(0, prefix.size()), prefix)) {
                applies.insert(entry.line);
            }
        }
        std::string result;
        for (std::size_t i = 0; i < file.lines.size(); ++i) {
            const std::string_view end = file.lineEnds[i].empty() ? "\n" : file.lineEnds[i];
            if (i == own.headerLine) {
                result += "[" + freeName(own.name, users.front()->number) + "]";
                result.append(end);
            } else if (applies.count(i) == 0) {
                result.append(file.lines[i]).append(file.lineEnds[i]);
            } else if (i == *applies.begin()) {
                for (std::size_t k = 0; k < users.size(); ++k) {
                    result += keyword::appliesTo + std::to_string(k + 1) + " = " +
                              specifiers(source_.sections[policy], *users[k]);
                    result.append(end);
                }
            }
        }
        return result;
    }

    /// What the entry asks for by which the policy was the controller's, and its number.
    static std::string specifiers(const KindFileSection& section, const BoundController& user) {
        const KindFileEntry* const entry = section.find(user.matchedBy);
        std::string text;
        for (const std::string_view field : policy_value::splitAndTrim(
                 entry == nullptr ? std::string_view() : entry->value, ',')) {
            const bool isNumber =
                field.size() > 1 && text::lower(field[0]) == 'c' && field[1] == ':';
            if (!field.empty() && !isNumber && !text::equalsNoCase(field, "ALL")) {
                text += std::string(field) + ",";
            }
        }
        return text + "c:" + std::to_string(user.number);
    }

    std::string freeName(const std::string& name, std::int32_t number) {
        std::string wanted = name + "-" + std::to_string(number);
        const auto isTaken = [this](const std::string& other) {
            return std::any_of(names_.begin(), names_.end(),
                               [&other](const std::string& row) {
                                   return text::equalsNoCase(row, other);
                               }) ||
                   std::any_of(source_.sections.begin(), source_.sections.end(),
                               [&other](const KindFileSection& row) {
                                   return text::equalsNoCase(row.name, other);
                               });
        };
        while (isTaken(wanted)) {
            wanted += "x";
        }
        names_.push_back(wanted);
        return wanted;
    }

    /// What the policies for zolex cannot say.
    void tellDropped(const BoundController& user) {
        for (const Binding& binding : user.bindings) {
            const std::string own = controllerWords(user.number) + ", " + binding.keyword + ": ";
            if (text::equalsNoCase(binding.keyword, "Spares") &&
                text::containsNoCase(binding.value, "covering")) {
                note(problem::convertCovering,
                     own + "\"" + printable(binding.value) +
                         "\" is left out: the drives are written, not what they cover");
            } else if (text::containsNoCase(binding.value, " else ") && binding.drives.empty()) {
                note(problem::convertLevels,
                     own + "\"" + printable(binding.value) +
                         "\" is left out: the level that was chosen is written");
            }
        }
    }

    // Checking.

    void check() {
        SilentReport silent;
        const PolicyFile read =
            readPolicies(result_.text, ControllerCatalogue(), PolicyOptions(), silent);
        bool isSame = read.policies.has_value();
        for (const BoundController& bound : bound_) {
            isSame = isSame && contentOf(planController(*bound.record, bound.number, *read.policies,
                                                        snapshot_.machine, silent)) ==
                                   contentOf(planByPolicy(*bound.record, bound.number, bound.bound,
                                                          {}, silent));
        }
        if (!isSame) {
            Finding other =
                problemFinding(problem::convertRefused,
                               read.policies ? "what was written would be planned otherwise"
                                             : "zolex would refuse what was written");
            other.severity = Severity::error;
            tell(std::move(other));
        }
    }

    const Snapshot& snapshot_;
    const ConvertRequest& request_;
    KindFile source_;
    std::string aside_;
    std::vector<BoundController> bound_;
    std::vector<std::string> names_; ///< that were made
    ConvertedPolicies result_;
};

} // namespace

bool ConvertedPolicies::isPossible() const {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& finding) { return finding.severity == Severity::error; });
}

ConvertedPolicies convertToPolicies(const Snapshot& snapshot, const ConvertRequest& request) {
    return Converter(snapshot, request).run();
}

} // namespace zolex::companion
