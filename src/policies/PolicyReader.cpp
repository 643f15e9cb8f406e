#include "policies/PolicyReader.h"

#include <memory>

namespace zolex {

bool PolicyReader::read(const PolicySource& source, PoliciesFile state) {
    if (source.builtIn) {
        report_.trace("Entering PolicyReader::read\n");
        file_ = {{}, makeDefaultPolicyList(), {}};
        report_.trace("Exiting PolicyReader::read(1), returning true\n");
        return true;
    }
    PolicyOptions options;
    options.file = source.file;
    options.mayBeEmpty = source.capture;
    options.notesWhenEmpty = source.capture && !source.fake;
    options.debug = source.debug;
    const std::unique_ptr<File> file =
        state == PoliciesFile::busy ? nullptr : files_.open(source.file, "r");
    // A file that is there but cannot be read may hold the very names of the new policies.
    const bool isNew =
        state == PoliciesFile::missing || (!file && source.capture && !files_.isFile(source.file));
    file_ = readPolicies(isNew ? nullptr : file.get(), isNew, catalogue_, options, report_);
    return file_.policies.has_value();
}

CString PolicyReader::lookUp(const CString& name, const CString& policyName, const CString& keyword,
                             const CString& defaultValue) {
    report_.trace("Entering PolicyReader::lookUp\n");
    const std::unique_ptr<File> opened = files_.open(name, "r");
    if (!opened) {
        report_.fault({.kind = FaultKind::policyLookUpUnreadable, .place = {.file = name}});
        report_.trace("Exiting PolicyReader::lookUp(1)\n");
        return "File not found";
    }
    CString value = lookUpPolicy(*opened, policyName, keyword, defaultValue);
    report_.trace("Exiting PolicyReader::lookUp(2)\n");
    return value;
}

} // namespace zolex
