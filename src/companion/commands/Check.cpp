#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PolicyFiles.h"
#include "companion/json/CheckDocument.h"
#include "companion/lint/Fix.h"
#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/Plan.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/OutputFile.h"
#include "companion/text/Table.h"
#include "companion/text/Timestamp.h"
#include "policies/PolicyFile.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <utility>

namespace zolex::companion {

namespace {

std::string countOf(std::size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count) + " " + std::string(count == 1 ? one : many);
}

/// One run of the command.
class Check {
  public:
    Check(Context& context, const CheckOptions& options) : context_(context), options_(options) {
        selection_.select = options.select;
        selection_.ignore = options.ignore;
    }

    int run() {
        loadRecordedMachines();
        for (const std::string& file : options_.files) {
            checkFile(file);
        }
        if (!deliver(context_, output())) {
            return exit_code::notPossible;
        }
        const FindingCounts counts = countFindings(findings_);
        return isImpossible_                         ? exit_code::notPossible
               : counts.errors + counts.warnings > 0 ? exit_code::found
                                                     : exit_code::done;
    }

  private:
    void loadRecordedMachines() {
        RecordedMachines loaded = loadMachines(context_, options_.machines);
        isImpossible_ = !loaded.faults.empty();
        findings_ = std::move(loaded.faults);
        machines_ = std::move(loaded.machines);
        for (const RecordedMachine& machine : machines_) {
            tellUnknown(machine);
        }
    }

    /// The controllers that a recording does not show: nothing can be said of policies for them.
    void tellUnknown(const RecordedMachine& machine) {
        const std::vector<ControllerSnapshot>& controllers = machine.snapshot.details;
        if (controllers.empty()) {
            addUnknown(machine, problem::noControllers, "no RAID controller is in this recording");
        }
        for (const ControllerSnapshot& controller : controllers) {
            if (controller.failed) {
                addUnknown(machine, problem::utilityFailed,
                           "controller " + std::to_string(controller.number) +
                               " is not known: " + controller.utility + " had failed");
            }
        }
    }

    void addUnknown(const RecordedMachine& machine, std::string_view code, std::string summary) {
        Finding finding = problemFinding(code, std::move(summary));
        finding.severity = Severity::error;
        finding.help = {"zolexctl show --recording " + printable(machine.file) + " tells more"};
        finding.file = machine.file;
        findings_.push_back(std::move(finding));
        isImpossible_ = true;
    }

    std::vector<Finding> lintText(const PolicyDocument& document) const {
        if (machines_.empty()) {
            return lint(document, selection_);
        }
        std::vector<const Snapshot*> snapshots;
        std::transform(machines_.begin(), machines_.end(), std::back_inserter(snapshots),
                       [](const RecordedMachine& machine) { return &machine.snapshot; });
        std::vector<Finding> found = lint(document, snapshots, selection_);
        for (const RecordedMachine& machine : machines_) {
            addOfFamilies(document, machine.snapshot, found);
        }
        return found;
    }

    /// What a plan would say of the controllers that zolex does not know.
    void addOfFamilies(const PolicyDocument& document, const Snapshot& snapshot,
                       std::vector<Finding>& found) const {
        const bool isReadable = std::none_of(found.begin(), found.end(), [](const Finding& each) {
            return each.severity == Severity::error && each.refusedBy == RefusedBy::zolex;
        });
        Snapshot part;
        part.machine = snapshot.machine;
        part.families = snapshot.families; // the numbers by which policies may name them
        std::copy_if(snapshot.details.begin(), snapshot.details.end(),
                     std::back_inserter(part.details), [](const ControllerSnapshot& each) {
                         return each.index == ControllerSnapshot::noRecord && !each.failed;
                     });
        if (!isReadable || part.details.empty()) {
            return;
        }
        PlanRequest request;
        request.policiesFile = document.file;
        request.policiesText = document.text;
        for (ControllerPlanning& planning : planMachine(part, request).controllers) {
            std::vector<Finding>& all = planning.diagnostics;
            std::move(planning.warnings.begin(), planning.warnings.end(), std::back_inserter(all));
            for (Finding& finding : all) {
                if (finding.start.line > 0 && isSelected(document, finding)) {
                    finding.summary = "controller " + std::to_string(planning.controller.number) +
                                      ": " + finding.summary;
                    found.push_back(std::move(finding));
                }
            }
        }
    }

    [[nodiscard]] bool isSelected(const PolicyDocument& document, const Finding& finding) const {
        const auto isOneOf = [&finding](const std::vector<std::string>& rules) {
            return std::any_of(rules.begin(), rules.end(), [&finding](const std::string& rule) {
                return finding.code.starts_with(rule);
            });
        };
        const bool isQuiet = std::any_of(
            document.ignored.begin(), document.ignored.end(), [&](const IgnoredFindings& each) {
                return each.firstLine <= finding.start.line &&
                       finding.start.line <= each.lastLine && isOneOf(each.rules);
            });
        return (selection_.select.empty() || isOneOf(selection_.select)) &&
               !isOneOf(selection_.ignore) && !isQuiet;
    }

    void checkFile(const std::string& file) {
        PoliciesText read = readPoliciesText(context_.platform, file);
        if (read.fault) {
            findings_.push_back(std::move(*read.fault));
            isImpossible_ = true;
            return;
        }
        PolicyDocument document = scanPolicies(read.name, std::move(read.text));
        std::vector<Finding> found = lintText(document);
        if (options_.fix && fix(document, found)) {
            found = lintText(document);
        }
        std::move(found.begin(), found.end(), std::back_inserter(findings_));
        policies_ += document.policies.size();
        documents_.push_back(std::move(document));
    }

    /// Mends the file. True when `document` is what stands there now and was changed.
    bool fix(PolicyDocument& document, const std::vector<Finding>& found) {
        FixedText fixed = fixPolicies(document.text, found);
        if (!fixed.isChanged()) {
            return false;
        }
        const PoliciesText now = readPoliciesText(context_.platform, document.file);
        std::string error;
        if (now.fault || now.text != document.text) {
            error = document.file + ": somebody else has changed it meanwhile";
        } else {
            error = replaceFile(context_.platform.files(), document.file, fixed.text);
        }
        if (!error.empty()) {
            failWith(context_, printable(error), "the file is as it was");
            isImpossible_ = true;
            return false;
        }
        tellFixed(document.file, fixed);
        document = scanPolicies(document.file, std::move(fixed.text));
        return true;
    }

    void tellFixed(const std::string& file, const FixedText& fixed) const {
        std::string text;
        if (fixed.blanks > 0) {
            text += "blanks taken off " + countOf(fixed.blanks, "line", "lines");
        }
        if (fixed.keywords > 0) {
            text += text.empty() ? "" : ", ";
            text += countOf(fixed.keywords, "keyword", "keywords") + " respelled";
        }
        context_.platform.console().writeError(printable(file) + ": " + text + "\n");
    }

    [[nodiscard]] std::string output() const {
        std::vector<SourceFile> sources;
        for (const PolicyDocument& document : documents_) {
            sources.push_back({document.file, document.text});
        }
        switch (context_.format) {
        case Format::json:
            return checkDocument(findings_,
                                 {context_.argv, timestampOf(context_.platform.localTime())});
        case Format::sarif:
            return sarifDocument(findings_, sources);
        case Format::github:
            return githubDiagnostics(findings_);
        case Format::concise:
            return conciseDiagnostics(findings_, context_.style);
        default:
            return text(sources);
        }
    }

    [[nodiscard]] std::string text(std::span<const SourceFile> sources) const {
        std::string all = diagnosticsText(findings_, sources, context_.style);
        if (context_.quiet) {
            return all;
        }
        std::string sum = countsText(countFindings(findings_)) + " in " +
                          countOf(options_.files.size(), "file", "files") + " (" +
                          countOf(policies_, "policy", "policies") + ").";
        if (!findings_.empty()) {
            sum += " zolexctl explain " + mostTelling().code + " tells more.";
        }
        const auto width = static_cast<std::size_t>(context_.style.width);
        return all + (all.empty() ? "" : "\n") + foldedWords(sum, 0, 0, width) + "\n";
    }

    /// The first that is more than a note; the first note without one.
    [[nodiscard]] const Finding& mostTelling() const {
        const auto found =
            std::find_if(findings_.begin(), findings_.end(),
                         [](const Finding& finding) { return finding.severity != Severity::note; });
        return found == findings_.end() ? findings_.front() : *found;
    }

    Context& context_;
    const CheckOptions& options_;
    LintSelection selection_;
    std::vector<RecordedMachine> machines_;
    std::vector<PolicyDocument> documents_;
    std::vector<Finding> findings_;
    std::size_t policies_ = 0;
    bool isImpossible_ = false; ///< a file could not be read or mended, or a recording lacks much
};

/// What zolex would print of the file, which is as far as its first error block.
std::string oldText(const std::string& name, const std::string& text, bool& isRefused) {
    PolicyOptions options;
    options.file = name;
    SilentReport silent;
    const PolicyFile file = readPolicies(text, ControllerCatalogue(), options, silent);
    isRefused = !file.faults.empty();
    std::string result;
    for (const Fault& fault : file.faults) {
        for (const FaultText& piece : show::faultTexts(fault)) {
            result += "\n#### ERROR\n\t" + std::string(piece.text.view()) + "\n";
        }
    }
    return result;
}

int checkAsOld(Context& context, const CheckOptions& options) {
    std::string all;
    int code = exit_code::done;
    for (const std::string& file : options.files) {
        const PoliciesText read = readPoliciesText(context.platform, file);
        if (read.fault) {
            failWith(context, printable(read.name) + ": " + printable(read.fault->summary),
                     read.fault->help.front());
            code = exit_code::notPossible;
            continue;
        }
        bool isRefused = false;
        const std::string text = oldText(read.name, read.text, isRefused);
        if (isRefused) {
            code = std::max(code, exit_code::found);
        }
        all += options.files.size() > 1 ? printable(read.name) + ":\n" : "";
        all += isRefused ? text : "zolex takes this file.\n";
    }
    return deliver(context, all) ? code : exit_code::notPossible;
}

} // namespace

int check(Context& context, const CheckOptions& options) {
    const bool readsInput =
        std::find(options.files.begin(), options.files.end(), "-") != options.files.end();
    if (options.fix && readsInput) {
        return failWith(context, "standard input cannot be mended",
                        "name the file: zolexctl check --fix FILE");
    }
    if (!options.asOld) {
        return Check(context, options).run();
    }
    if (options.fix || context.format != Format::text) {
        return failWith(context, "--as-old prints the text of zolex and nothing else",
                        "leave --fix and --format out");
    }
    return checkAsOld(context, options);
}

} // namespace zolex::companion
