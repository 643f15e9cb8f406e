// Drives are read in blocks; a file of the system stands for one here.

#ifndef _WIN32

#include "companion/families/posix/AlignedRead.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace zolex::companion::md {
namespace {

class AlignedReadPosix : public testing::Test {
  protected:
    AlignedReadPosix() {
        for (std::size_t i = 0; i < size; ++i) {
            content += static_cast<char>('a' + i / 7 % 26);
        }
        file = ::mkstemp(path.data());
        EXPECT_EQ(::write(file, content.data(), content.size()), static_cast<ssize_t>(size));
    }
    ~AlignedReadPosix() override {
        ::close(file);
        ::unlink(path.c_str());
    }

    static constexpr std::size_t size = 20 * 512 + 4096;
    std::string path = "aligned-read-XXXXXX";
    std::string content;
    int file = -1;
};

TEST_F(AlignedReadPosix, GivesTheBytesThatWereAskedFor) {
    const int direct = ::open(path.c_str(), O_RDONLY | O_DIRECT);
    for (const int each : {file, direct < 0 ? file : direct}) {
        for (const std::size_t offset : {0U, 1U, 511U, 4095U, 4096U, 9000U, 14335U, 14336U}) {
            for (const std::size_t most : {0U, 1U, 512U, 4096U, 4097U, 20000U}) {
                EXPECT_EQ(readAligned(each, offset, most), content.substr(offset, most))
                    << offset << ", " << most;
            }
        }
        EXPECT_EQ(readAligned(each, 3 * size, 10), "");
    }
    if (direct >= 0) {
        ::close(direct);
    }
}

TEST_F(AlignedReadPosix, TellsWhyThereIsNothing) {
    EXPECT_FALSE(readAligned(-1, 0, 10));
    EXPECT_EQ(errno, EBADF);
}

} // namespace
} // namespace zolex::companion::md

#endif
