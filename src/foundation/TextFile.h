#pragma once

#include "foundation/CString.h"
#include "foundation/FileSystem.h"

#include <array>
#include <cstddef>
#include <memory>

namespace zolex {

/// A text file read and written one line at a time.
class TextFile {
  public:
    explicit TextFile(FileSystem& files) : files_(files) {}

    /// Opens `name` in `mode` ("r", "w", "a", "w+"); false when that fails.
    bool open(const CString& name, const char* mode);
    /// Puts the next line, up to and including its newline or up to the end of the file, into
    /// `line`. A carriage return before the newline and NUL bytes are dropped. True when the line
    /// is not empty; false for good after a line that was too long.
    bool readLine(CString& line);
    /// Whether the end of the file was met.
    [[nodiscard]] bool atEnd() const { return atEnd_; }
    /// Whether reading or writing the open file failed, or a line was longer than longestLine.
    /// Reading then met no end of the file.
    [[nodiscard]] bool failed() const {
        return file_ != nullptr && (lineTooLong_ || file_->failed());
    }
    /// Writes the text and a newline; false on a write error.
    bool writeLine(const CString& text);
    /// False when buffered text could not be written. True when nothing was open.
    bool close();
    [[nodiscard]] bool isOpen() const { return file_ != nullptr; }
    [[nodiscard]] const CString& name() const { return name_; }

  private:
    bool fill();

    FileSystem& files_;
    CString name_;
    std::unique_ptr<File> file_;
    std::array<char, 4096> buffer_{};
    std::size_t next_ = 0;
    std::size_t end_ = 0;
    bool atEnd_ = false;
    bool lineTooLong_ = false;
};

} // namespace zolex
