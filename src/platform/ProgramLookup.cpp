#include "platform/ProgramLookup.h"

#include <algorithm>
#include <cstddef>

namespace zolex {

namespace {

std::string inDirectory(std::string_view directory, const std::string& name) {
    std::string path(directory.empty() ? "." : directory);
    if (path.back() != '/') {
        path += '/';
    }
    return path + name;
}

} // namespace

std::optional<std::string>
findProgram(std::string_view program, const ProgramPlaces& places,
            const std::function<bool(const std::string& path)>& isProgram) {
    if (program.empty()) {
        return std::nullopt;
    }
    std::string name(program);
    std::replace(name.begin(), name.end(), '\\', '/');
    if (name.find('/') != std::string::npos) {
        return name;
    }
    if (!places.ownDirectory.empty()) {
        std::string path = inDirectory(places.ownDirectory, name);
        if (isProgram(path)) {
            return path;
        }
    }
    if (std::string path = inDirectory(".", name); isProgram(path)) {
        return path;
    }
    std::string_view rest = places.searchPath;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(':'), rest.size());
        std::string path = inDirectory(rest.substr(0, end), name);
        if (isProgram(path)) {
            return path;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::nullopt;
}

} // namespace zolex
