#include "Detector.h"

#include <cstdio>
#include <cstdlib>

namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

bool print(const std::string& text, std::FILE* stream) {
    return std::fwrite(text.data(), 1, text.size(), stream) == text.size() &&
           std::fflush(stream) == 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    const hwdetect::Detection detection =
        hwdetect::detect(arguments, {variable, hwdetect::askFirmware, hwdetect::readDmiFolder});
    print(detection.error, stderr);
    return print(detection.output, stdout) ? detection.exitCode : hwdetect::exit_code::output;
}
