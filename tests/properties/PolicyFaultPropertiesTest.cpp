#include "foundation/Text.h"
#include "policies/PolicyFile.h"
#include "properties/Generators.h"
#include "properties/Property.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace zolex::properties {
namespace {

/// Texts that go wrong in one place or another of a policies file.
const std::vector<std::string> pieces = {
    "",
    "x",
    "=",
    ":",
    ",",
    "%",
    "[",
    "]",
    "\n",
    "\n\n",
    "0",
    "ALL",
    "^~",
    ";",
    " ",
    "\t",
    "\r\n",
    "[General]",
    "\n[Policy.",
    "5EE",
    "Array.C = 1\n",
    "Init=",
    "Logical.4 = C:FILL:5E\n",
    "AppliesTo.1 = c:0\n",
};

std::string validText() {
    std::string text;
    const int policies = *number(1, 3);
    for (int policy = 1; policy <= policies; ++policy) {
        PolicyContext context;
        context.name = "Policy." + std::to_string(policy);
        context.drives = 12;
        context.levels = allLevels();
        text += *policyTexts(context);
    }
    return text;
}

/// A policies file in which some bytes, lines or pieces were lost, added or repeated.
std::string mutatedText(int mistakes) {
    std::string text = validText();
    for (; mistakes > 0; --mistakes) {
        const auto at = static_cast<std::size_t>(*number(0, static_cast<int>(text.size())));
        const std::size_t lineEnd = std::min(text.find('\n', at), text.size());
        switch (*number(0, 4)) {
        case 0:
            text.insert(at, oneOf(pieces));
            break;
        case 1:
            text.erase(at, static_cast<std::size_t>(*number(1, 3)));
            break;
        case 2:
            text.erase(at, lineEnd - at);
            break;
        case 3:
            text.insert(at, "\n" + text.substr(at, lineEnd - at) + "\n");
            break;
        default:
            text.insert(at, static_cast<std::size_t>(*number(1, 300)), ' ');
        }
    }
    return text;
}

PolicyFile readWith(const std::string& text, bool goOn) {
    SilentReport report;
    PolicyOptions options;
    options.file = "p.ini";
    options.goOn = goOn;
    return readPolicies(text, ControllerCatalogue(), options, report);
}

/// Whether `fault` stands where it says: what was given is found at its line and column.
bool standsInText(const Fault& fault, const std::string& text) {
    std::size_t start = 0;
    for (std::int32_t line = 1; line < fault.place.line; ++line) {
        start = text.find('\n', start) + 1;
    }
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const std::size_t column = static_cast<std::size_t>(fault.place.column) - 1;
    const bool isInLine = fault.place.line > 0 && fault.place.column > 0 && start + column <= end;
    const std::string wanted(fault.wanted.trimRight("\n").view());
    // The repeated keyword is shown as it was written before.
    return isInLine && (fault.kind == FaultKind::policyKeywordRepeated ||
                        text::equalsNoCase(text.substr(start + column, wanted.size()), wanted));
}

TEST(PolicyFaultProperties, TheFirstOfAllFaultsIsTheOneThatEndsARead) {
    checkProperty({{"valid", 5}, {"one fault", 10}, {"several faults", 20}}, [](Tally& tally) {
        const std::string text = mutatedText(*number(0, 6));
        const PolicyFile first = readWith(text, false);
        const PolicyFile all = readWith(text, true);
        RC_LOG() << text;
        RC_ASSERT(first.policies == all.policies);
        RC_ASSERT(first.policies.has_value() == first.faults.empty());
        if (first.faults.empty()) {
            RC_ASSERT(all.faults.empty());
            RC_ASSERT(first.sections == all.sections);
            tally.count("valid");
            return;
        }
        RC_ASSERT(first.faults.size() == 1U);
        RC_ASSERT(first.faults.front() == all.faults.front());
        tally.count(all.faults.size() == 1 ? "one fault" : "several faults");
    });
}

TEST(PolicyFaultProperties, OneMistakeIsNotManyFaults) {
    checkProperty({{"faults", 30}}, [](Tally& tally) {
        const std::string text = mutatedText(1);
        const PolicyFile all = readWith(text, true);
        RC_LOG() << text;
        for (const Fault& fault : all.faults) {
            RC_LOG() << fault.place.line << ":" << fault.place.column << " kind "
                     << static_cast<int>(fault.kind) << "\n";
        }
        // The rest of a line repeated within it makes three wrong lines.
        RC_ASSERT(all.faults.size() <= 3U);
        if (!all.faults.empty()) {
            tally.count("faults");
        }
    });
}

TEST(PolicyFaultProperties, EveryFaultHasItsPlaceAndItsText) {
    checkProperty({{"faults", 50}}, [](Tally& tally) {
        const std::string text = mutatedText(*number(0, 6));
        const PolicyFile all = readWith(text, true);
        RC_LOG() << text;
        for (const Fault& fault : all.faults) {
            RC_LOG() << fault.place.line << ":" << fault.place.column << " kind "
                     << static_cast<int>(fault.kind) << "\n";
            RC_ASSERT(show::faultTexts(fault).size() == 1U);
            RC_ASSERT(fault.kind == FaultKind::policiesMissing || standsInText(fault, text));
        }
        if (!all.faults.empty()) {
            tally.count("faults");
        }
    });
}

} // namespace
} // namespace zolex::properties
