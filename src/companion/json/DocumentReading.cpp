#include "companion/json/DocumentReading.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/text/OutputFile.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <span>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::int32_t documentMajor = 1;

TextPlace placeIn(std::string_view text, std::size_t byte) {
    const std::string_view before = text.substr(0, byte);
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 without one
    constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    TextPlace place;
    place.line = static_cast<std::int32_t>(std::min(
        static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n')) + 1, most));
    place.column = static_cast<std::int32_t>(std::min(byte - lineStart + 1, most));
    place.byte = static_cast<std::int64_t>(byte);
    return place;
}

} // namespace

std::string_view DocumentCodes::of(DocumentFault::Kind kind) const {
    switch (kind) {
    case DocumentFault::Kind::notJson:
        return broken;
    case DocumentFault::Kind::tooLarge:
        return tooLarge;
    case DocumentFault::Kind::otherDocument:
        return otherDocument;
    case DocumentFault::Kind::otherVersion:
        return otherVersion;
    case DocumentFault::Kind::wrongValue:
        break;
    }
    return wrong;
}

FormatVersion checkFormat(const Part& document, std::string_view format, std::string_view what) {
    const std::string found =
        document.json().is_object() && document.has("format") ? document.text("format") : "";
    if (found != format) {
        throw DocumentFault{DocumentFault::Kind::otherDocument,
                            found.starts_with("zolex-")
                                ? "this is no " + std::string(what) +
                                      " but a document of the format " + found
                                : "this is no " + std::string(what) + ": \"format\" is not \"" +
                                      std::string(format) + "\""};
    }
    const std::string text = document.word("format_version");
    FormatVersion version;
    const char* const end = text.data() + text.size();
    auto read = std::from_chars(text.data(), end, version.major);
    bool isVersion = read.ec == std::errc() && read.ptr != end && *read.ptr == '.';
    if (isVersion) {
        read = std::from_chars(read.ptr + 1, end, version.minor);
        isVersion =
            read.ec == std::errc() && read.ptr == end && version.major >= 0 && version.minor >= 0;
    }
    if (!isVersion) {
        document.fail("format_version", "is no version such as \"1.0\"");
    }
    if (version.major != documentMajor) {
        throw DocumentFault{DocumentFault::Kind::otherVersion,
                            "this " + std::string(what) + " has format version " + text +
                                ", of which this program knows nothing: it reads version " +
                                std::to_string(documentMajor)};
    }
    return version;
}

Finding fileFinding(std::string_view fileName, std::string_view code, std::string summary) {
    Finding finding = problemFinding(code, std::move(summary));
    finding.file = fileName;
    return finding;
}

Finding findingOf(const DocumentFault& fault, const DocumentCodes& codes, std::string_view text,
                  std::string_view fileName) {
    Finding finding = fileFinding(fileName, codes.of(fault.kind), fault.text);
    if (fault.byte) {
        finding.start = placeIn(text, *fault.byte);
        finding.end = finding.start;
    }
    return finding;
}

Finding tooLargeFinding(std::string_view fileName, const DocumentCodes& codes,
                        std::size_t mostBytes) {
    return fileFinding(fileName, codes.tooLarge,
                       "the document is larger than " + std::to_string(mostBytes >> 20U) + " MB");
}

FileBytes readBytes(FileSystem& files, const std::string& name, const DocumentCodes& codes,
                    std::size_t mostBytes) {
    constexpr std::size_t blockSize = std::size_t{1} << 20U;
    FileBytes bytes;
    const std::unique_ptr<File> file = files.open(name, "r");
    if (file == nullptr) {
        bytes.findings.push_back(
            fileFinding(name, codes.unreadable, "the file cannot be opened: " + lastSystemError()));
        return bytes;
    }
    std::size_t size = 0;
    std::size_t got = 0;
    do {
        bytes.text.resize(size + blockSize);
        got = file->read(std::span(bytes.text).subspan(size));
        size += got;
        if (size > mostBytes) {
            bytes.findings.push_back(tooLargeFinding(name, codes, mostBytes));
            return bytes;
        }
    } while (got == blockSize);
    bytes.text.resize(size);
    if (file->failed()) {
        bytes.findings.push_back(fileFinding(name, codes.unreadable, "the file cannot be read"));
    }
    return bytes;
}

} // namespace zolex::companion
