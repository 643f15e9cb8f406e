#include "driver/ParameterParser.h"
#include "support/Check.h"
#include "support/Input.h"

#include <string>
#include <vector>

namespace zolex::fuzz {
namespace {

/// Two choices: case-sensitive (1), a second set of arguments (2); then the number of switches.
/// Each switch is a choice (kind, required, empty value allowed) and four texts; each text after
/// them is an argument.
void parse(Input input) {
    constexpr std::size_t mostSwitches = 12;
    const unsigned choice = input.choice();
    const std::size_t switches = input.choice() % mostSwitches;
    ParameterParser parser;
    std::vector<CString> names;
    for (std::size_t i = 0; i < switches; ++i) {
        const unsigned kind = input.choice();
        const CString name = input.text();
        const CString alternate = input.text();
        const CString required = input.text();
        const CString excluded = input.text();
        names.push_back(name);
        parser.add(name, alternate, static_cast<SwitchKind>(1 + kind % 5), (kind & 8U) != 0,
                   (kind & 16U) != 0, required.isEmpty() ? CString(emptyList) : required,
                   excluded.isEmpty() ? CString(emptyList) : excluded);
    }
    std::vector<CString> arguments = {"program"};
    while (!input.atEnd()) {
        arguments.emplace_back(input.text());
    }
    std::vector<const char*> argv;
    argv.reserve(arguments.size());
    for (const CString& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    ParameterParser::Result result = parser.parse(static_cast<int>(argv.size()), argv.data(),
                                                  (choice & 1U) != 0, (choice & 4U) == 0);
    if (result == ParameterParser::Result::success && (choice & 2U) != 0) {
        result = parser.parseMore(arguments, true);
    }
    check((result == ParameterParser::Result::success) == !parser.hasError(),
          "a fault for each parse that did not succeed");
    check(parser.faultIndex() <= static_cast<int>(arguments.size()), "index of the fault");
    for (const CString& name : names) {
        CString value;
        const bool found = parser.lookUp(name, value);
        check(found == parser.isFound(name), "one answer about a switch");
        check(found || value.isEmpty(), "a value of a switch that was found alone");
    }
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::parse(zolex::fuzz::Input(data, size));
    return 0;
}
