#include "foundation/EndingFiles.h"

#include <gtest/gtest.h>

#include <list>
#include <set>
#include <string>

namespace zolex {
namespace {

/// What the handler sees; a function without an object is all that it can call.
std::multiset<std::string>& seen() {
    static std::multiset<std::string> names;
    return names;
}

std::multiset<std::string> entered() {
    seen().clear();
    EndingFile::forEach([](const char* name, EndingFile::Goes goes) {
        seen().insert((goes == EndingFile::Goes::always ? "" : "empty ") + std::string(name));
    });
    return seen();
}

using Names = std::multiset<std::string>;

TEST(EndingFile, IsEnteredUntilItIsForgottenOrGoesAway) {
    EXPECT_EQ(Names{}, entered());
    EndingFile kept;
    {
        EndingFile gone;
        gone.enter("a", EndingFile::Goes::always);
        kept.enter("b", EndingFile::Goes::whileEmpty);
        EXPECT_EQ((Names{"a", "empty b"}), entered());
    }
    EXPECT_EQ(Names{"empty b"}, entered());
    kept.enter("c", EndingFile::Goes::always); // in the place of b
    EXPECT_EQ(Names{"c"}, entered());
    kept.forget();
    kept.forget();
    EXPECT_EQ(Names{}, entered());
}

TEST(EndingFile, ANameIsWholeOrNotEntered) {
    EndingFile file;
    file.enter(std::string(4095, 'x'), EndingFile::Goes::always);
    EXPECT_EQ(Names{std::string(4095, 'x')}, entered());
    file.enter(std::string(4096, 'x'), EndingFile::Goes::always);
    EXPECT_EQ(Names{}, entered());
}

TEST(EndingFile, MoreThanThereArePlacesForAreLeftOut) {
    std::list<EndingFile> files(6);
    for (EndingFile& file : files) {
        file.enter("x", EndingFile::Goes::always);
    }
    EXPECT_EQ(4U, entered().size());
    files.pop_front();
    files.back().enter("y", EndingFile::Goes::always);
    EXPECT_EQ((Names{"x", "x", "x", "y"}), entered());
}

} // namespace
} // namespace zolex
