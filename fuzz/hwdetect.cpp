#include "driver/Application.h"
#include "inventory/ZOLEXSupport.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/Input.h"

#include <string>
#include <string_view>

namespace zolex::fuzz {
namespace {

void checkValue(std::string_view value) {
    check(value.size() <= capturedLineLimit, "length of a value");
    check(value.find_first_of("\n=") == std::string_view::npos, "bytes of a value");
    check(value.empty() || (value.front() != ' ' && value.back() != ' '), "a value is trimmed");
}

/// The first byte is the detector's exit code, or above 250 a run that fails; its output follows.
void readDetector(Input input) {
    constexpr unsigned lastExitCode = 250;
    const unsigned choice = input.choice();
    const std::string output(input.rest());
    test::FakePlatform platform;
    platform.respond = [&](std::string_view) -> ChildResult {
        return choice > lastExitCode ? ChildResult{static_cast<ChildOutcome>(choice % 3), 0, {}}
                                     : ChildResult{ChildOutcome::ended, choice, output};
    };
    Application application(platform);
    application.printer().setVerbosity(level::traces);
    const std::optional<Machine> machine = ZOLEXSupport::gatherHardwareInfo(
        std::make_unique<Tool>(platform, application.report()), application.report());
    check(machine.has_value() == (choice == 0), "the detector counts when it ends with 0");
    if (!machine) {
        return;
    }
    checkValue(machine->machineType);
    checkValue(machine->serialNumber);
    check(machine->machineType.isEmpty() || output.find("Machine_Type") != std::string::npos,
          "a value has a key");
}

} // namespace
} // namespace zolex::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zolex::fuzz::readDetector(zolex::fuzz::Input(data, size));
    return 0;
}
