#include "companion/machine/Sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace zolex::companion {
namespace {

TEST(Sha256, GivesTheHashesOfTheStandardsExamples) {
    struct Row {
        std::string text;
        const char* hash;
    };
    const Row rows[] = {
        {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
        {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
        {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
         "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
        {"abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqrl"
         "mno"
         "pqrsmnopqrstnopqrstu",
         "cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"},
        {std::string(1000000, 'a'),
         "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(sha256(row.text), row.hash) << row.text.substr(0, 20);
    }
}

TEST(Sha256, PiecesOfAnyLengthGiveTheHashOfTheWhole) {
    std::string text;
    for (int i = 0; i < 300; ++i) {
        text += static_cast<char>(i * 7);
    }
    for (std::size_t piece = 1; piece < 130; ++piece) {
        Sha256 whole;
        whole.add(text);
        Sha256 pieces;
        for (std::size_t at = 0; at < text.size(); at += piece) {
            pieces.add(std::string_view(text).substr(at, piece));
        }
        EXPECT_EQ(whole.finish(), pieces.finish()) << piece;
    }
}

#ifndef _WIN32
/// What the system's own program says of a text.
std::string hashBySystem(const std::string& text) {
    const std::string name = ::testing::TempDir() + "sha256-input";
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    std::fwrite(text.data(), 1, text.size(), file);
    std::fclose(file);
    std::FILE* const pipe = ::popen(("sha256sum < '" + name + "'").c_str(), "r");
    std::string hash(64, ' ');
    const std::size_t length = std::fread(hash.data(), 1, hash.size(), pipe);
    ::pclose(pipe);
    std::remove(name.c_str());
    return hash.substr(0, length);
}

TEST(Sha256, AgreesWithTheSystemsProgramAroundTheEndsOfBlocks) {
    for (const std::size_t length :
         {1U, 54U, 55U, 56U, 57U, 63U, 64U, 65U, 119U, 120U, 127U, 128U, 129U, 100003U}) {
        std::string text(length, '\0');
        for (std::size_t i = 0; i < length; ++i) {
            text[i] = static_cast<char>(i * i + length);
        }
        EXPECT_EQ(sha256(text), hashBySystem(text)) << length;
    }
}
#endif

} // namespace
} // namespace zolex::companion
