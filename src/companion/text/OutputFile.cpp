#include "companion/text/OutputFile.h"

#include "foundation/FileSystem.h"

#include <utility>

namespace zolex::companion {

namespace {

using output_file::Standing;

/// A name beside `name` that no file has.
std::string nameBeside(const std::string& name) {
    const std::string first =
        name + ".zolexctl-" + std::to_string(output_file::processNumber()) + "-";
    for (int i = 0;; ++i) {
        std::string free = first + std::to_string(i);
        if (output_file::standing(free) == Standing::nothing) {
            return free;
        }
    }
}

bool writeAndClose(File& file, std::string_view content) {
    return file.write(content) == content.size() && file.flush() && !file.failed() && file.close();
}

std::string whyNot(Standing standing) {
    switch (standing) {
    case Standing::protectedFile:
        return "writing it is not allowed";
    case Standing::folder:
        return "it is a folder";
    case Standing::link:
        return "it is a symbolic link, which would be lost; name the file itself";
    case Standing::nothing:
    case Standing::file:
    case Standing::device:
        break;
    }
    return {};
}

std::string writeDevice(FileSystem& files, const std::string& name, std::string_view content) {
    const auto file = files.open(name, "w");
    return file && writeAndClose(*file, content) ? std::string() : lastSystemError();
}

std::string writeBeside(FileSystem& files, const std::string& name, std::string_view content) {
    const std::string beside = nameBeside(name);
    auto file = files.create(beside, name, FileSystem::WhenInterrupted::removed);
    if (!file) {
        return lastSystemError();
    }
    if (!writeAndClose(*file, content)) {
        std::string error = lastSystemError();
        static_cast<void>(files.discard(std::move(file), beside));
        return error;
    }
    if (!output_file::moveOver(beside, name)) {
        std::string error = lastSystemError();
        static_cast<void>(files.remove(beside));
        return error;
    }
    return {};
}

} // namespace

std::string output_file::systemName(std::string_view name) {
    std::string own(name);
#ifndef _WIN32
    for (char& c : own) {
        c = c == '\\' ? '/' : c;
    }
#endif
    return own;
}

std::string replaceFile(FileSystem& files, std::string_view name, std::string_view content) {
    const std::string own = output_file::systemName(name);
    std::string error;
    if (own.empty() || own.find('\0') != std::string::npos) {
        error = "no file has such a name";
    } else {
        const Standing standing = output_file::standing(own);
        error = whyNot(standing);
        if (error.empty()) {
            error = standing == Standing::device ? writeDevice(files, own, content)
                                                 : writeBeside(files, own, content);
        }
    }
    return error.empty() ? error : std::string(name) + ": " + error;
}

} // namespace zolex::companion
