#include "policies/PolicyReader.h"

#include "controllers/Application.h"
#include "foundation/Text.h"
#include "policies/PolicyLines.h"
#include "policies/PolicyScan.h"
#include "policies/PolicySection.h"
#include "policies/PolicyValidator.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace zolex {

struct PolicyReader::State {
    explicit State(Application& owner) : application(owner) {}

    Application& application;
    std::vector<PolicySection> sections; ///< what the latest scan found
    std::optional<PolicyList> list;
};

namespace {

/// Whether the line is the header of the policy of this name.
bool isHeaderOf(std::string_view line, std::string_view policyName) {
    if (!isSectionHeader(line)) {
        return false;
    }
    const std::optional<std::string_view> name = headerName(line);
    return name && text::equalsNoCase(text::trim(*name), policyName);
}

/// The entries of the first section of this name; none without such a section.
PolicySection readSection(File& file, std::string_view policyName) {
    PolicyLines lines(file);
    PolicySection section;
    std::string_view line;
    while (lines.nextMeaningful(line) && !isHeaderOf(line, policyName)) {
    }
    while (lines.nextMeaningful(line) && !isSectionHeader(line)) {
        section.addEntry(line);
    }
    return section;
}

} // namespace

PolicyReader::PolicyReader(Application& application)
    : state_(std::make_unique<State>(application)) {}

PolicyReader::~PolicyReader() = default;

bool PolicyReader::read(PoliciesFile state) {
    Application& application = state_->application;
    Printer& printer = application.printer();
    printer.trace("Entering PolicyReader::read\n");
    state_->list.reset();
    if (application.settings.defaults) {
        state_->list = makeDefaultPolicyList();
        printer.trace("Exiting PolicyReader::read(1), returning true\n");
        return true;
    }
    if (!scan(state)) {
        printer.trace("Exiting PolicyReader::read(2), returning false\n");
        return false;
    }
    const bool found = !state_->sections.empty();
    if (found && !validate()) {
        printer.trace("Exiting PolicyReader::read(3), returning false\n");
        return false;
    }
    if (!found) {
        state_->list.emplace();
        if (application.settings.capture && !application.settings.fake) {
            printer.print("\tNo policies found.  Generating new policies file.\n", level::progress);
        }
    }
    printer.trace("Exiting PolicyReader::read(4), returning true\n");
    return true;
}

bool PolicyReader::scan(PoliciesFile state) {
    Application& application = state_->application;
    Printer& printer = application.printer();
    const Settings& settings = application.settings;
    printer.trace("Entering PolicyReader::scan\n");
    state_->sections.clear();

    FileSystem& files = application.platform().files();
    const std::unique_ptr<File> file =
        state == PoliciesFile::busy ? nullptr : files.open(settings.policiesFile, "r");
    if (!file || state == PoliciesFile::missing) {
        // A file that is there but cannot be read may hold the very names of the new policies.
        if (state == PoliciesFile::missing ||
            (settings.capture && !files.isFile(settings.policiesFile))) {
            printer.trace("Exiting PolicyReader::scan(1), returning true\n");
            return true;
        }
        printer.errorBlock(
            CString::concatenate("Could not open policies file:  ", settings.policiesFile, "\n"));
        printer.trace("Exiting PolicyReader::scan(2), returning false\n");
        return false;
    }
    printer.print("\tScanning policies ...\n", level::detail);
    PolicyScan pass(application, *file);
    if (!pass.run()) {
        printer.trace("Exiting PolicyReader::scan(3), returning false\n");
        return false;
    }
    if (pass.sections().empty() && !settings.capture) {
        printer.errorBlock("\tYou must specify at least one policy in the policies file.\n");
        printer.trace("Exiting PolicyReader::scan(4), returning false\n");
        return false;
    }
    state_->sections = std::move(pass.sections());
    printer.trace("Exiting PolicyReader::scan(5), returning true\n");
    return true;
}

bool PolicyReader::validate() {
    Application& application = state_->application;
    Printer& printer = application.printer();
    printer.trace("Entering PolicyReader::validate\n");
    printer.print("\tValidating keywords and values ...\n", level::detail);
    state_->list.reset();
    PolicyList list;
    for (const PolicySection& section : state_->sections) {
        printer.printf(level::detail, "\t%s\n", section.name.c_str());
        PolicyValidator validator(application, section);
        std::optional<Policy> policy = validator.validate();
        if (!policy || !list.add(std::move(*policy))) {
            printer.trace("Exiting PolicyReader::validate(1), returning false\n");
            return false;
        }
        validator.printUnused();
    }
    state_->list = std::move(list);
    printer.trace("Exiting PolicyReader::validate(2), returning true\n");
    return true;
}

CString PolicyReader::lookUp(const CString& policyName, const CString& keyword,
                             const CString& defaultValue) {
    Application& application = state_->application;
    Printer& printer = application.printer();
    printer.trace("Entering PolicyReader::lookUp\n");
    const CString& name = application.settings.policiesFile;
    const std::unique_ptr<File> file = application.platform().files().open(name, "r");
    if (!file) {
        printer.printfAlways("File not found:  %s \n", name.c_str());
        printer.trace("Exiting PolicyReader::lookUp(1)\n");
        return "File not found";
    }
    CString value = readSection(*file, policyName).lookUp(keyword, defaultValue);
    printer.trace("Exiting PolicyReader::lookUp(2)\n");
    return value;
}

const PolicyList* PolicyReader::policies() const {
    return state_->list ? &*state_->list : nullptr;
}

bool PolicyReader::hasPolicy(const CString& name) const {
    return std::any_of(
        state_->sections.begin(), state_->sections.end(),
        [&name](const PolicySection& section) { return section.name.equalsNoCase(name); });
}

} // namespace zolex
