#include "Detector.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace hwdetect {

namespace {

constexpr std::string_view help =
    "hwdetect.exe, ZOLEX Version " HWDETECT_VERSION "\n"
    "Usage: hwdetect.exe /i [--machine-type TEXT] [--serial-number TEXT]\n"
    "Prints the machine type and the serial number of this machine, as the firmware tells them:\n"
    "  Machine_Type=TEXT\n"
    "  Serial_Number=TEXT\n"
    "Options:\n"
    "  --machine-type TEXT    print this machine type; also by ZOLEX_MACHINE_TYPE=TEXT\n"
    "  --serial-number TEXT   print this serial number; also by ZOLEX_SERIAL_NUMBER=TEXT\n"
    "  --help                 print this\n"
    "  --version              print the version\n"
    "ZOLEX_DMI_ROOT=FOLDER takes the values from product_name and product_serial in a folder.\n"
    "Exit codes: 0 printed, 1 command line, 2 a value cannot be had, 3 printing failed.\n";
constexpr std::size_t bannerLength = help.find('\n') + 1;
constexpr std::string_view banner = help.substr(0, bannerLength);
constexpr std::string_view usage = help.substr(bannerLength);

struct Request {
    bool detects = false;
    std::optional<std::string> machineType;
    std::optional<std::string> serialNumber;
};

/// Reads the arguments; the text of the fault when there is one.
std::string readArguments(const std::vector<std::string>& arguments, Request& request) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "/i" || argument == "-i") {
            request.detects = true;
        } else if (argument == "--machine-type" || argument == "--serial-number") {
            if (i + 1 == arguments.size()) {
                return argument + " needs a text";
            }
            ++i;
            (argument == "--machine-type" ? request.machineType : request.serialNumber) =
                arguments[i];
        } else {
            return "unknown parameter " + argument;
        }
    }
    return request.detects ? "" : "/i is missing";
}

bool asksFor(const std::vector<std::string>& arguments, std::string_view option) {
    return std::find(arguments.begin(), arguments.end(), option) != arguments.end();
}

/// The text as a policy can name it: without blanks around it; "_" for what would end a value there
/// or in the line that is printed.
std::string printable(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t begin = std::min(text.find_first_not_of(blanks), text.size());
    std::string result(text.substr(begin, text.find_last_not_of(blanks) + 1 - begin));
    for (char& c : result) {
        const bool isControl = static_cast<unsigned char>(c) < ' ' || c == '\x7F';
        c = isControl || c == ',' || c == '=' ? '_' : c;
    }
    return result;
}

Detection refusal(const std::string& fault) {
    return {exit_code::commandLine, "", "hwdetect.exe: " + fault + "\n" + std::string(usage)};
}

/// A value that is given, if there is one: by an option or by a variable that is not empty.
std::optional<std::string> given(const std::optional<std::string>& option,
                                 const std::string& variable) {
    return option || variable.empty() ? option : std::optional(variable);
}

} // namespace

Detection detect(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    if (asksFor(arguments, "--help") || asksFor(arguments, "/?")) {
        return {exit_code::success, std::string(help), ""};
    }
    if (asksFor(arguments, "--version")) {
        return {exit_code::success, std::string(banner), ""};
    }
    Request request;
    if (const std::string fault = readArguments(arguments, request); !fault.empty()) {
        return refusal(fault);
    }
    const auto type = given(request.machineType, surroundings.variable("ZOLEX_MACHINE_TYPE"));
    const auto serial = given(request.serialNumber, surroundings.variable("ZOLEX_SERIAL_NUMBER"));
    FirmwareAnswer answer;
    if (!type || !serial) {
        const std::string folder = surroundings.variable("ZOLEX_DMI_ROOT");
        answer = folder.empty() ? surroundings.firmware() : surroundings.folder(folder);
    }
    Detection detection;
    const auto settle = [&detection](const std::optional<std::string>& wanted,
                                     const std::string& found, const std::string& fault,
                                     std::string_view what, std::string_view remedy) {
        std::string value = printable(wanted.value_or(found));
        const bool isFault = !wanted && !fault.empty();
        if (isFault || (!wanted && value.empty())) {
            detection.error +=
                "hwdetect.exe: " +
                (isFault ? fault : "the firmware leaves the " + std::string(what) + " empty") +
                "; " + std::string(remedy) + " gives it\n";
        }
        detection.exitCode = isFault ? exit_code::firmware : detection.exitCode;
        return value;
    };
    const std::string machineType = settle(type, answer.names.machineType, answer.typeFault,
                                           "machine type", "--machine-type or ZOLEX_MACHINE_TYPE");
    const std::string serialNumber =
        settle(serial, answer.names.serialNumber, answer.serialFault, "serial number",
               "--serial-number or ZOLEX_SERIAL_NUMBER");
    if (detection.exitCode == exit_code::success) {
        detection.output = "Machine_Type=" + machineType + "\nSerial_Number=" + serialNumber + "\n";
    }
    return detection;
}

} // namespace hwdetect
