#include "model/AtomicFile.h"

#include "model/Text.h"

#include <fstream>
#include <random>
#include <system_error>

#ifndef _WIN32
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#endif

namespace zolex_sim {
namespace {

/// A controller keeps what it was told when the power goes, and so must the file that stands for
/// it. True where the system cannot say.
#ifdef _WIN32
bool bringToDisk(const std::filesystem::path& /*fileOrFolder*/) {
    return true;
}
#else
bool bringToDisk(const std::filesystem::path& fileOrFolder) {
    const int descriptor = ::open(fileOrFolder.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool done = ::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
    ::close(descriptor);
    return done;
}
#endif

bool writeWhole(const std::filesystem::path& file, std::string_view text,
                const StepFailure& fails) {
    const auto failed = [&](ReplaceStep step) { return fails && fails(step); };
    if (failed(ReplaceStep::create)) {
        return false;
    }
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    if (!stream) {
        return false;
    }
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
    if (!stream || failed(ReplaceStep::write)) {
        return false;
    }
    stream.close();
    return !stream.fail() && !failed(ReplaceStep::close) && bringToDisk(file) &&
           !failed(ReplaceStep::sync);
}

} // namespace

bool replaceFile(const std::filesystem::path& file, std::string_view text,
                 const StepFailure& fails) {
    // A name of its own, so that two commands at one time do not write into one file.
    std::random_device random;
    std::filesystem::path temporary = file;
    temporary += formatted(".%08x.tmp", random());
    std::error_code error;
    if (writeWhole(temporary, text, fails) && !(fails && fails(ReplaceStep::rename))) {
        std::filesystem::rename(temporary, file, error);
        if (!error) {
            // It has been replaced; when the folder cannot be brought to the disk, a power cut may
            // bring back the old file, which is whole too.
            const std::filesystem::path folder = file.parent_path();
            bringToDisk(folder.empty() ? "." : folder);
            return true;
        }
    }
    std::filesystem::remove(temporary, error);
    return false;
}

std::optional<std::string> readFile(const std::filesystem::path& file, std::size_t limit) {
    std::error_code error;
    if (std::filesystem::is_directory(file, error)) {
        return std::nullopt;
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        return std::nullopt;
    }
    std::string bytes;
    char buffer[65536];
    while (stream.read(buffer, sizeof buffer) || stream.gcount() > 0) {
        bytes.append(buffer, static_cast<std::size_t>(stream.gcount()));
        if (bytes.size() > limit) {
            return std::nullopt;
        }
    }
    return bytes;
}

} // namespace zolex_sim
