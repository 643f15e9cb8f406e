#include "policies/PolicyFile.h"

#include "foundation/Text.h"
#include "policies/PolicyFaults.h"
#include "policies/PolicyLines.h"
#include "policies/PolicyScan.h"
#include "policies/PolicyValidator.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>

namespace zolex {

namespace {

/// A text that is read like a file.
class HeldText : public File {
  public:
    explicit HeldText(std::string_view text) : rest_(text) {}

    std::size_t read(std::span<char> bytes) override {
        const std::size_t count = std::min(bytes.size(), rest_.size());
        std::copy_n(rest_.begin(), count, bytes.begin());
        rest_.remove_prefix(count);
        return count;
    }
    std::size_t write(std::string_view /*bytes*/) override { return 0; }
    [[nodiscard]] bool failed() const override { return false; }
    bool rewind() override { return false; }
    bool flush() override { return true; }
    bool close() override { return true; }

  private:
    std::string_view rest_;
};

/// One read of policies.
class PolicyRead {
  public:
    PolicyRead(const ControllerCatalogue& catalogue, const PolicyOptions& options, Report& report)
        : catalogue_(catalogue), options_(options), report_(report),
          faults_(options.file, options.goOn, report) {}

    PolicyFile run(File* file, bool isNew) {
        report_.trace("Entering PolicyReader::read\n");
        const char* exit = readAll(file, isNew);
        result_.faults = faults_.take();
        report_.trace(exit);
        return std::move(result_);
    }

  private:
    const char* readAll(File* file, bool isNew) {
        const bool scanned = scan(file, isNew);
        if (!scanned && !options_.goOn) {
            return "Exiting PolicyReader::read(2), returning false\n";
        }
        const bool found = !result_.sections.empty();
        if (found && !validate()) {
            return "Exiting PolicyReader::read(3), returning false\n";
        }
        if (!scanned) {
            return "Exiting PolicyReader::read(2), returning false\n";
        }
        if (!found) {
            result_.policies.emplace();
            if (options_.notesWhenEmpty) {
                report_.note(level::progress,
                             "\tNo policies found.  Generating new policies file.\n");
            }
        }
        return "Exiting PolicyReader::read(4), returning true\n";
    }

    /// First pass: the file's shape and the policies' names.
    bool scan(File* file, bool isNew) {
        report_.trace("Entering PolicyReader::scan\n");
        if (file == nullptr) {
            if (isNew) {
                report_.trace("Exiting PolicyReader::scan(1), returning true\n");
                return true;
            }
            faults_.add(FaultKind::policiesUnreadable);
            report_.trace("Exiting PolicyReader::scan(2), returning false\n");
            return false;
        }
        report_.note(level::detail, "\tScanning policies ...\n");
        PolicyScan pass(*file, faults_, report_);
        const bool done = pass.run();
        if (!done && !options_.goOn) {
            report_.trace("Exiting PolicyReader::scan(3), returning false\n");
            return false;
        }
        result_.sections = std::move(pass.sections());
        if (!done) {
            report_.trace("Exiting PolicyReader::scan(3), returning false\n");
            return false;
        }
        if (result_.sections.empty() && !options_.mayBeEmpty) {
            faults_.add(FaultKind::policiesMissing);
            report_.trace("Exiting PolicyReader::scan(4), returning false\n");
            return false;
        }
        report_.trace("Exiting PolicyReader::scan(5), returning true\n");
        return true;
    }

    /// Second pass: keywords and values, into the policy list.
    bool validate() {
        report_.trace("Entering PolicyReader::validate\n");
        report_.note(level::detail, "\tValidating keywords and values ...\n");
        PolicyList list;
        for (const PolicySection& section : result_.sections) {
            report_.notef(level::detail, "\t%s\n", section.name.c_str());
            PolicyValidator validator(section, catalogue_, options_.debug, faults_, report_);
            std::optional<Policy> policy = validator.validate();
            const bool added = policy && list.add(std::move(*policy));
            if (added) {
                validator.printUnused();
            } else if (!options_.goOn) {
                break;
            }
        }
        if (!faults_.areNone()) {
            report_.trace("Exiting PolicyReader::validate(1), returning false\n");
            return false;
        }
        result_.policies = std::move(list);
        report_.trace("Exiting PolicyReader::validate(2), returning true\n");
        return true;
    }

    const ControllerCatalogue& catalogue_;
    const PolicyOptions& options_;
    Report& report_;
    PolicyFaults faults_;
    PolicyFile result_;
};

/// Whether the line is the header of the policy of this name.
bool isHeaderOf(std::string_view line, std::string_view policyName) {
    if (!isSectionHeader(line)) {
        return false;
    }
    const std::optional<std::string_view> name = headerName(line);
    return name && text::equalsNoCase(text::trim(*name), policyName);
}

} // namespace

bool PolicyFile::hasPolicy(std::string_view name) const {
    return std::any_of(sections.begin(), sections.end(), [name](const PolicySection& section) {
        return section.name.equalsNoCase(name);
    });
}

PolicyFile readPolicies(std::string_view text, const ControllerCatalogue& catalogue,
                        const PolicyOptions& options, Report& report) {
    HeldText held(text);
    return readPolicies(&held, false, catalogue, options, report);
}

PolicyFile readPolicies(File* file, bool isNew, const ControllerCatalogue& catalogue,
                        const PolicyOptions& options, Report& report) {
    return PolicyRead(catalogue, options, report).run(file, isNew);
}

CString lookUpPolicy(File& file, std::string_view policyName, std::string_view keyword,
                     std::string_view defaultValue) {
    PolicyLines lines(file);
    PolicySection section;
    std::string_view line;
    while (lines.nextMeaningful(line) && !isHeaderOf(line, policyName)) {
    }
    while (lines.nextMeaningful(line) && !isSectionHeader(line)) {
        section.addEntry(line);
    }
    return section.lookUp(keyword, defaultValue);
}

} // namespace zolex
