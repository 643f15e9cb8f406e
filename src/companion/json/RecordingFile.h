#pragma once

#include "companion/json/RecordingLines.h"
#include "companion/machine/Sha256.h"
#include "companion/recording/Recording.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace zolex::companion {

/// Reads the recording in a file. One that cannot be read, or is larger than mostRecordingBytes, is
/// a finding too.
[[nodiscard]] RecordingReading readRecordingFile(FileSystem& files, const std::string& name);

/// Writes a recording line by line, each handed to the system as soon as its call has its answer.
class RecordingWriter : public CallKeeper {
  public:
    /// Writes the first line.
    RecordingWriter(std::unique_ptr<File> file, const RecordingHeader& header);

    void keep(const CallKind& call) override;
    /// Writes the end; false when not all could be written. Nothing is kept afterwards.
    [[nodiscard]] bool finish();
    /// Of the lines so far.
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    void write(const std::string& line);

    std::unique_ptr<File> file_;
    Sha256 hash_;
    std::size_t calls_ = 0;
    std::size_t bytes_ = 0;
    bool isGood_ = true;
};

} // namespace zolex::companion
