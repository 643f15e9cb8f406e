#include "companion/json/RecordingFile.h"

#include "companion/text/OutputFile.h"
#include "foundation/FileSystem.h"

#include <utility>

namespace zolex::companion {

namespace {

RecordingReading notRead(const std::string& name, const char* code, std::string why) {
    Finding finding;
    finding.code = code;
    finding.summary = std::move(why);
    finding.file = name;
    return {std::nullopt, {std::move(finding)}};
}

constexpr const char* unreadable = "ZR100";
constexpr const char* recordingTooLarge = "ZR105";

} // namespace

RecordingReading readRecordingFile(FileSystem& files, const std::string& name) {
    constexpr std::size_t blockSize = std::size_t{1} << 20U;
    const std::unique_ptr<File> file = files.open(name, "r");
    if (file == nullptr) {
        return notRead(name, unreadable, "the file cannot be opened: " + lastSystemError());
    }
    std::string text;
    std::size_t size = 0;
    std::size_t got = 0;
    do {
        text.resize(size + blockSize);
        got = file->read(std::span(text).subspan(size));
        size += got;
        if (size > mostRecordingBytes) {
            return notRead(name, recordingTooLarge,
                           "the file is larger than " + std::to_string(mostRecordingBytes >> 20U) +
                               " MB");
        }
    } while (got == blockSize);
    text.resize(size);
    if (file->failed()) {
        return notRead(name, unreadable, "the file cannot be read");
    }
    return readRecording(text, name);
}

RecordingWriter::RecordingWriter(std::unique_ptr<File> file, const RecordingHeader& header)
    : file_(std::move(file)) {
    write(recordingHeaderLine(header));
}

void RecordingWriter::keep(const CallKind& call) {
    write(recordingCallLine(++calls_, call));
}

void RecordingWriter::write(const std::string& line) {
    const std::string text = line + "\n";
    hash_.add(text);
    bytes_ += text.size();
    isGood_ = isGood_ && file_->write(text) == text.size() && file_->flush();
}

bool RecordingWriter::finish() {
    Sha256 hash = hash_;
    write(recordingEndLine(calls_, hexDigits(hash.finish())));
    return file_->close() && isGood_;
}

} // namespace zolex::companion
