#include "companion/execution/ResumeDecision.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::companion {
namespace {

enum class Kind { once, repeatable, clear };
/// What stands, of what is foreseen around step k.
enum class Stands { before, after, both, partOfBefore, nothing };

struct Row {
    const char* name;
    LastEvent last;
    bool isLastStep;
    Kind kind;
    Stands stands;
    ResumeAction action;
};

// clang-format off
const std::vector<Row> rows = {
    {"no step, before",           LastEvent::none,    false, Kind::once,       Stands::before,       ResumeAction::begin},
    {"no step, the only one",     LastEvent::none,    true,  Kind::once,       Stands::before,       ResumeAction::begin},
    {"no step, no effect",        LastEvent::none,    false, Kind::repeatable, Stands::both,         ResumeAction::begin},
    {"no step, after",            LastEvent::none,    false, Kind::once,       Stands::after,        ResumeAction::stop},
    {"no step, part",             LastEvent::none,    false, Kind::clear,      Stands::partOfBefore, ResumeAction::stop},
    {"no step, nothing",          LastEvent::none,    false, Kind::once,       Stands::nothing,      ResumeAction::stop},
    {"done, after",               LastEvent::done,    false, Kind::once,       Stands::after,        ResumeAction::behind},
    {"done, no effect",           LastEvent::done,    false, Kind::repeatable, Stands::both,         ResumeAction::behind},
    {"done, before",              LastEvent::done,    false, Kind::once,       Stands::before,       ResumeAction::stop},
    {"done, part",                LastEvent::done,    false, Kind::clear,      Stands::partOfBefore, ResumeAction::stop},
    {"done, nothing",             LastEvent::done,    false, Kind::repeatable, Stands::nothing,      ResumeAction::stop},
    {"all done, after",           LastEvent::done,    true,  Kind::once,       Stands::after,        ResumeAction::verify},
    {"all done, nothing",         LastEvent::done,    true,  Kind::once,       Stands::nothing,      ResumeAction::verify},
    {"refused, before",           LastEvent::refused, false, Kind::once,       Stands::before,       ResumeAction::again},
    {"refused, after",            LastEvent::refused, false, Kind::once,       Stands::after,        ResumeAction::foundDone},
    {"refused clear, after",      LastEvent::refused, false, Kind::clear,      Stands::after,        ResumeAction::foundDone},
    {"refused, no effect",        LastEvent::refused, false, Kind::repeatable, Stands::both,         ResumeAction::again},
    {"refused clear, part",       LastEvent::refused, false, Kind::clear,      Stands::partOfBefore, ResumeAction::stop},
    {"refused, nothing",          LastEvent::refused, false, Kind::once,       Stands::nothing,      ResumeAction::stop},
    {"refused last, after",       LastEvent::refused, true,  Kind::once,       Stands::after,        ResumeAction::foundDone},
    {"started, before",           LastEvent::started, false, Kind::once,       Stands::before,       ResumeAction::again},
    {"started, after",            LastEvent::started, false, Kind::once,       Stands::after,        ResumeAction::foundDone},
    {"started last, after",       LastEvent::started, true,  Kind::once,       Stands::after,        ResumeAction::foundDone},
    {"started, nothing",          LastEvent::started, false, Kind::once,       Stands::nothing,      ResumeAction::stop},
    {"started, part",             LastEvent::started, false, Kind::once,       Stands::partOfBefore, ResumeAction::stop},
    {"repeatable, before",        LastEvent::started, false, Kind::repeatable, Stands::before,       ResumeAction::again},
    {"repeatable, after",         LastEvent::started, false, Kind::repeatable, Stands::after,        ResumeAction::again},
    {"repeatable, both",          LastEvent::started, true,  Kind::repeatable, Stands::both,         ResumeAction::again},
    {"repeatable, part",          LastEvent::started, false, Kind::repeatable, Stands::partOfBefore, ResumeAction::stop},
    {"repeatable, nothing",       LastEvent::started, false, Kind::repeatable, Stands::nothing,      ResumeAction::stop},
    {"clear, before",             LastEvent::started, false, Kind::clear,      Stands::before,       ResumeAction::again},
    {"clear, after",              LastEvent::started, false, Kind::clear,      Stands::after,        ResumeAction::again},
    {"clear, part",               LastEvent::started, false, Kind::clear,      Stands::partOfBefore, ResumeAction::again},
    {"clear, nothing",            LastEvent::started, false, Kind::clear,      Stands::nothing,      ResumeAction::stop},
};
// clang-format on

TEST(ResumeDecision, EachRow) {
    for (const Row& row : rows) {
        ResumeCase at;
        at.last = row.last;
        at.isLastStep = row.isLastStep;
        at.isRepeatable = row.kind != Kind::once;
        at.isClear = row.kind == Kind::clear;
        at.standsBefore = row.stands == Stands::before || row.stands == Stands::both;
        at.standsAfter = row.stands == Stands::after || row.stands == Stands::both;
        // What stands as before, or as nothing, is a part of what was before, too.
        at.isPartOfBefore = row.stands == Stands::partOfBefore || at.standsBefore;
        EXPECT_EQ(resumeAction(at), row.action) << row.name;
    }
}

/// What was foreseen neither before nor behind a step ends the run, but for a clear that was begun
/// and for what is only left to be verified.
TEST(ResumeDecision, NothingForeseenStops) {
    for (const LastEvent last :
         {LastEvent::none, LastEvent::started, LastEvent::refused, LastEvent::done}) {
        for (int bits = 0; bits < 16; ++bits) {
            ResumeCase at;
            at.last = last;
            at.isLastStep = (bits & 1) != 0;
            at.isRepeatable = (bits & 2) != 0;
            at.isClear = (bits & 4) != 0;
            at.isPartOfBefore = (bits & 8) != 0;
            const bool isClearing = last == LastEvent::started && at.isClear && at.isPartOfBefore;
            const bool isVerified = last == LastEvent::done && at.isLastStep;
            EXPECT_EQ(resumeAction(at), isClearing   ? ResumeAction::again
                                        : isVerified ? ResumeAction::verify
                                                     : ResumeAction::stop)
                << static_cast<int>(last) << " " << bits;
        }
    }
}

} // namespace
} // namespace zolex::companion
