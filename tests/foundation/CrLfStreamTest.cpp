#include "foundation/CrLfStream.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

#include "support/TemporaryDirectory.h"

namespace zolex {
namespace {

/// A binary stream with this content, at its start.
class Stream {
  public:
    explicit Stream(std::string_view content = {}) : stream_(std::fopen("stream.txt", "w+b")) {
        std::fwrite(content.data(), 1, content.size(), stream_);
        std::rewind(stream_);
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { std::fclose(stream_); }
    [[nodiscard]] std::FILE* get() const { return stream_; }

  private:
    std::FILE* stream_;
};

class CrLfStreamTest : public testing::Test {
  protected:
    test::TemporaryDirectory directory;
};

TEST_F(CrLfStreamTest, CrLfIsReadAsLfHoweverManyBytesAreAskedFor) {
    const std::string text("a\r\nb\rc\n\r\r\n\x1A\r\n\0\r\r", 17);
    const std::string folded("a\nb\rc\n\r\n\x1A\n\0\r\r", 14);
    for (std::size_t size = 1; size <= text.size() + 1; ++size) {
        SCOPED_TRACE(size);
        const Stream stream(text);
        std::string got;
        std::string piece(size, '?');
        for (std::size_t n = size; n == size;) {
            n = crlf::read(piece, stream.get());
            got += piece.substr(0, n);
        }
        EXPECT_EQ(folded, got);
        EXPECT_NE(0, std::feof(stream.get()));
        EXPECT_EQ(0, std::ferror(stream.get()));
    }
}

TEST_F(CrLfStreamTest, LfIsWrittenAsCrLf) {
    const std::string text("a\nb\rc\n\n\r\n\x1A\0z", 12);
    const std::string unfolded("a\r\nb\rc\r\n\r\n\r\r\n\x1A\0z", 16);
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        SCOPED_TRACE(cut);
        const Stream stream;
        EXPECT_EQ(cut, crlf::write(std::string_view(text).substr(0, cut), stream.get()));
        EXPECT_EQ(text.size() - cut, crlf::write(std::string_view(text).substr(cut), stream.get()));
        std::rewind(stream.get());
        std::array<char, 100> bytes{};
        EXPECT_EQ(unfolded, std::string(bytes.data(),
                                        std::fread(bytes.data(), 1, bytes.size(), stream.get())));
    }
}

TEST_F(CrLfStreamTest, WhatCouldNotBeWrittenIsNotCounted) {
    const Stream made("x");
    std::FILE* const stream = std::fopen("stream.txt", "rb"); // not for writing
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(0U, crlf::write("text\n", stream));
    EXPECT_EQ(0U, crlf::write("\n", stream));
    std::fclose(stream);
}

} // namespace
} // namespace zolex
