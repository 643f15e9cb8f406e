#include "driver/Application.h"
#include "driver/PolicyArguments.h"
#include "policies/PolicyReader.h"
#include "policies/PolicySection.h"
#include "show/FaultTexts.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"
#include "support/ModelCheck.h"

#include <algorithm>
#include <array>

namespace zolex::fuzz {
namespace {

/// Reads on after each fault: the first is the one that ended the read, and all have a place and a
/// text.
void checkAllFaults(std::string_view text, const PolicyFile& first, Application& application) {
    SilentReport silent;
    PolicyOptions options;
    options.file = "policies.ini";
    options.mayBeEmpty = application.settings.capture;
    options.goOn = true;
    const PolicyFile all = readPolicies(text, application.catalogue(), options, silent);
    check(all.policies == first.policies, "the same policies");
    check(all.faults.empty() == first.faults.empty(), "faults in both or in none");
    check(first.faults.size() <= 1, "the first fault ends the read");
    check(first.faults.empty() || all.faults.front() == first.faults.front(),
          "the same first fault");
    const auto lines = 1 + std::count(text.begin(), text.end(), '\n');
    for (const Fault& fault : all.faults) {
        check(fault.place.line >= 0 && fault.place.line <= lines, "line of a fault");
        check(show::faultTexts(fault).size() == 1, "text of a fault");
    }
}

/// Scans, validates and looks up. The first byte holds the capture flag, the debug flag and the
/// verbosity (two bits); the file follows.
void readPolicies(Input input) {
    constexpr std::array verbosities = {level::always, level::progress, level::detail,
                                        level::traces};
    const unsigned choice = input.choice();
    test::FakePlatform platform;
    const std::string file(input.rest());
    platform.fileFake.files["policies.ini"] = file;
    Application application(platform);
    application.settings.policiesFile = "policies.ini";
    application.settings.capture = (choice & 1U) != 0;
    application.settings.debug = (choice & 2U) != 0;
    application.printer().setVerbosity(verbosities[(choice >> 2U) & 3U]);

    PolicyReader reader(platform.files(), application.catalogue(), application.report());
    const bool read = reader.read(policySource(application.settings));
    check(read == (reader.policies() != nullptr), "a list after a successful read alone");
    check(platform.fileFake.files["policies.ini"] == file, "the file is as it was");
    check(read || platform.consoleFake.output.find("#### ERROR") != std::string::npos,
          "a failed read is reported");
    checkAllFaults(file, reader.file(), application);
    if (!read) {
        return;
    }
    check(reader.policies()->count() <= PolicyList::maxPolicies, "number of policies");
    for (const Policy& policy : reader.policies()->policies()) {
        checkPolicy(policy);
        check(reader.hasPolicy(policy.name), "a policy of the list is known");
        const CString stripeSize =
            reader.lookUp("policies.ini", policy.name, "STRIPESIZE", absentKeyword);
        check(stripeSize ==
                  (policy.stripeSize ? stripeSizeWord(*policy.stripeSize) : absentKeyword),
              "a look-up finds what was validated");
        check(!reader.lookUp("policies.ini", policy.name, "AppliesTo.1", "").isEmpty(),
              "AppliesTo.1 is there");
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readPolicies(zolex::fuzz::Input(data, size));
    return 0;
}
