#include "controllers/Application.h"
#include "policies/PolicyReader.h"
#include "policies/PolicySection.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"
#include "support/ModelCheck.h"

#include <array>

namespace zolex::fuzz {
namespace {

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

    PolicyReader reader(application);
    const bool read = reader.read();
    check(read == (reader.policies() != nullptr), "a list after a successful read alone");
    check(platform.fileFake.files["policies.ini"] == file, "the file is as it was");
    check(read || platform.consoleFake.output.find("#### ERROR") != std::string::npos,
          "a failed read is reported");
    if (!read) {
        return;
    }
    check(reader.policies()->count() <= PolicyList::maxPolicies, "number of policies");
    for (const Policy& policy : reader.policies()->policies()) {
        checkPolicy(policy);
        check(reader.hasPolicy(policy.name), "a policy of the list is known");
        const CString stripeSize = reader.lookUp(policy.name, "STRIPESIZE", absentKeyword);
        check((stripeSize == absentKeyword ? CString() : stripeSize) == policy.stripeSize,
              "a look-up finds what was validated");
        check(!reader.lookUp(policy.name, "AppliesTo.1", "").isEmpty(), "AppliesTo.1 is there");
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readPolicies(zolex::fuzz::Input(data, size));
    return 0;
}
