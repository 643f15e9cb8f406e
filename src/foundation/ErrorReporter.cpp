#include "foundation/ErrorReporter.h"

#include "foundation/Console.h"
#include "foundation/EndingTask.h"

#include <cstdlib>
#include <cstring>

namespace zolex {

namespace {

/// The text of one category: what stands before the detail, and what follows it.
struct CategoryText {
    ReportCategory category;
    const char* before;
    const char* afterDetail; ///< only when the detail is not empty
    const char* after;
};

// clang-format off
constexpr CategoryText categoryTexts[] = {
    {ReportCategory::generalSystem,    "General System Error\n\n", "", ""},
    {ReportCategory::generalProgram,   "General Program Error\n\n", "", ""},
    {ReportCategory::detailOnly,       "", "", ""},
    {ReportCategory::memoryAllocation, "Memory Allocation Error\n\n"
                                       "Not enough memory is available for this application.\n\n"
                                       "Please close some programs to free up memory and try running\n"
                                       "this application again.\n\n", "", ""},
    {ReportCategory::fileOpen,         "File Open Error\n\nUnable to open file...\n\n", "", ""},
    {ReportCategory::fileRead,         "File Read Error\n\nUnable to read from file...\n\n", "", ""},
    {ReportCategory::fileWrite,        "File Write Error\n\nUnable to write to file...\n\n", "", ""},
    {ReportCategory::fileClose,        "File Close Error\n\nUnable to close file...\n\n", "", ""},
    {ReportCategory::parse,            "Parse Error\n\nUnable to parse data file...\n\n", "\n\n",
                                       "The data file may not be in the correct format "
                                       "or it may be corrupt.\n\n"},
    {ReportCategory::tcpIp,            "TCP/IP Error\n\n", "", ""},
};
// clang-format on
static_assert(sizeof categoryTexts / sizeof categoryTexts[0] == 10);

void writeText(Console& console, ReportCategory category, const char* detail) {
    console.writeError("\n\n");
    for (const CategoryText& text : categoryTexts) {
        if (text.category == category) {
            console.writeError(text.before);
            console.writeError(detail);
            console.writeError(*detail != '\0' ? text.afterDetail : "");
            console.writeError(text.after);
        }
    }
    console.writeError("\n");
}

} // namespace

void reportError(ReportMode mode, ReportCategory category, const char* detail) {
    StandardConsole console;
    reportError(console, mode, category, detail);
}

void reportError(Console& console, ReportMode mode, ReportCategory category, const char* detail) {
    writeText(console, category, detail == nullptr ? "" : detail);
    if (mode == ReportMode::ask) {
        console.writeError("\nContinue anyway? ");
        const int answer = console.readCharacter();
        if (answer == 'y' || answer == 'Y') {
            return;
        }
    } else if (mode != ReportMode::endProcess) {
        return;
    }
    EndingTask::runAll();
    std::exit(1);
}

} // namespace zolex
