#include "companion/commands/PolicyFiles.h"

#include "companion/text/OutputFile.h"

#include <array>
#include <memory>
#include <string_view>

namespace zolex::companion {

namespace {

Finding unreadable(const std::string& name, std::string summary, std::string help) {
    Finding finding;
    finding.code = "ZX001";
    finding.refusedBy = RefusedBy::zolex;
    finding.summary = std::move(summary);
    finding.help.push_back(std::move(help));
    finding.file = name;
    return finding;
}

Finding tooLarge(const std::string& name) {
    return unreadable(name, "the file is larger than 64 MB", "is it a policies file at all?");
}

/// Puts the rest of the file into `text`; false when it is larger than may be.
bool readRest(File& file, std::string& text) {
    constexpr std::size_t piece = 65536;
    const auto buffer = std::make_unique<std::array<char, piece>>();
    for (;;) {
        const std::size_t count = file.read(*buffer);
        text.append(buffer->data(), count);
        if (text.size() > mostPoliciesBytes) {
            return false;
        }
        if (count < piece) {
            return true;
        }
    }
}

PoliciesText readInput(Console& console) {
    PoliciesText result;
    result.name = "<stdin>";
    for (int byte = console.readCharacter(); byte >= 0; byte = console.readCharacter()) {
        result.text += static_cast<char>(byte);
        if (result.text.size() > mostPoliciesBytes) {
            result.fault = tooLarge(result.name);
            result.text.clear();
            break;
        }
    }
    return result;
}

std::string whyNotOpened(const std::string& name) {
    const std::string error = lastSystemError();
    return output_file::standing(name) == output_file::Standing::folder ? "it is a folder" : error;
}

} // namespace

PoliciesText readPoliciesText(Platform& platform, const std::string& file) {
    if (file == "-") {
        return readInput(platform.console());
    }
    PoliciesText result;
    result.name = file;
    const std::unique_ptr<File> opened = platform.files().open(file, "r");
    if (!opened) {
        result.fault = unreadable(file, "the file cannot be read: " + whyNotOpened(file),
                                  "give the name of a policies file, or - for standard input");
        return result;
    }
    if (!readRest(*opened, result.text)) {
        result.fault = tooLarge(file);
    } else if (opened->failed()) {
        result.fault = unreadable(file, "the file cannot be read to its end: " + lastSystemError(),
                                  "try again, or copy it to another place");
    } else if (opened->rewind()) {
        // What cannot be rewound (a pipe) is read once.
        std::string again;
        if (!readRest(*opened, again) || opened->failed() || again != result.text) {
            result.fault = unreadable(file, "the file changes while it is read",
                                      "try again when nobody writes it");
        }
    }
    if (result.fault) {
        result.text.clear();
    }
    return result;
}

} // namespace zolex::companion
