#include "model/AtomicFile.h"

#include "model/Text.h"

#include <fstream>
#include <random>
#include <system_error>

namespace zolex_sim {
namespace {

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
    return !stream.fail() && !failed(ReplaceStep::close);
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
