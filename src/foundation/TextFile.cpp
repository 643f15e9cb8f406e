#include "foundation/TextFile.h"

#include <cstring>
#include <string>

namespace zolex {

bool TextFile::open(const CString& name, const char* mode) {
    close();
    name_ = name;
    file_ = files_.open(name, mode);
    next_ = end_ = 0;
    atEnd_ = lineTooLong_ = false;
    return isOpen();
}

bool TextFile::fill() {
    next_ = 0;
    end_ = file_ ? file_->read(buffer_) : 0;
    atEnd_ = end_ == 0;
    return !atEnd_;
}

bool TextFile::readLine(CString& line) {
    if (lineTooLong_) {
        line = CString();
        return false;
    }
    std::string text;
    while (!lineTooLong_ && (next_ < end_ || fill())) {
        const char* start = buffer_.data() + next_;
        const void* newline = std::memchr(start, '\n', end_ - next_);
        if (newline != nullptr) {
            const auto n = static_cast<std::size_t>(static_cast<const char*>(newline) - start) + 1;
            text.append(start, n);
            next_ += n;
            if (text.size() >= 2 && text[text.size() - 2] == '\r') {
                text.erase(text.size() - 2, 1);
            }
            break;
        }
        text.append(start, end_ - next_);
        next_ = end_;
        lineTooLong_ = text.size() > longestLine + 1; // a carriage return may have to go yet
    }
    lineTooLong_ = text.size() > longestLine + (text.ends_with('\n') ? 1 : 0);
    if (lineTooLong_) {
        text.clear();
    }
    // No string can hold a NUL: it must neither end the line early nor look like the end of the
    // file.
    std::erase(text, '\0');
    line = CString(text);
    return !text.empty();
}

bool TextFile::writeLine(const CString& text) {
    return isOpen() && file_->write(text) == text.length() && file_->write("\n") == 1;
}

bool TextFile::close() {
    const bool closed = !file_ || file_->close();
    file_.reset();
    return closed;
}

} // namespace zolex
