#include "Firmware.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace hwdetect {

namespace {

struct StreamCloser {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};

enum class Reading { done, missing, failed };

/// Reads the first line of a file, without its end; `fault` tells why that failed.
Reading readFirstLine(const std::string& file, std::string& line, std::string& fault) {
    errno = 0;
    const std::unique_ptr<std::FILE, StreamCloser> stream(std::fopen(file.c_str(), "rb"));
    if (!stream && (errno == ENOENT || errno == ENOTDIR)) {
        return Reading::missing;
    }
    std::array<char, 1024> buffer{};
    const std::size_t length =
        stream ? std::fread(buffer.data(), 1, buffer.size(), stream.get()) : 0;
    if (!stream || std::ferror(stream.get()) != 0) {
        fault = "cannot read " + file + ": " + std::strerror(errno);
        return Reading::failed;
    }
    line.assign(buffer.data(), length);
    line = line.substr(0, line.find_first_of("\r\n"));
    return Reading::done;
}

} // namespace

FirmwareAnswer readDmiFolder(const std::string& folder) {
    FirmwareAnswer answer;
    const Reading type =
        readFirstLine(folder + "/product_name", answer.names.machineType, answer.typeFault);
    const Reading serial =
        readFirstLine(folder + "/product_serial", answer.names.serialNumber, answer.serialFault);
    if (type == Reading::missing && serial == Reading::missing) {
        answer.typeFault = "the firmware tells nothing: there is no product_name in " + folder;
        answer.serialFault = "the firmware tells nothing: there is no product_serial in " + folder;
    }
    return answer;
}

} // namespace hwdetect
