#include "companion/cli/Completion.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion {
namespace {

const OptionRow& option(std::string_view name) {
    const auto rows = optionRows();
    return *std::find_if(rows.begin(), rows.end(),
                         [name](const OptionRow& row) { return row.name == name; });
}

Offered valuesOf(std::string_view name, Command command) {
    return offeredValues(option(name), rowOf(command));
}

Offered words(std::vector<std::string> all) {
    return {Offer::words, std::move(all)};
}

TEST(Completion, OffersTheWordsThatAnOptionTakesAndItsTextNames) {
    EXPECT_EQ(valuesOf("--strategy", Command::plan), words({"auto", "add", "rebuild"}));
    EXPECT_EQ(valuesOf("--color", Command::check), words({"auto", "always", "never"}));
    EXPECT_EQ(valuesOf("--destroy", Command::apply), words({"never", "own", "any"}));
    OptionRow other = option("--strategy");
    other.text = "auto (as it is), none, rebuild; add";
    EXPECT_EQ(offeredValues(other, rowOf(Command::plan)), words({"auto", "rebuild", "add"}));
    other.text = "what to rebuild: rebuild, or add";
    EXPECT_EQ(offeredValues(other, rowOf(Command::plan)), words({"rebuild", "add"}));
    other.value = "policies|ironic";
    EXPECT_EQ(offeredValues(other, rowOf(Command::plan)), words({"policies", "ironic"}));
}

TEST(Completion, OffersTheFormatsOfTheCommand) {
    EXPECT_EQ(valuesOf("--format", Command::apply), words({"text", "json"}));
    EXPECT_EQ(valuesOf("--format", Command::check),
              words({"text", "concise", "json", "sarif", "github"}));
    EXPECT_EQ(valuesOf("--as", Command::show), words({"text", "json", "svg", "html", "policies"}));
}

TEST(Completion, OffersFilesAndFolders) {
    EXPECT_EQ(valuesOf("--output", Command::plan), (Offered{Offer::files, {}}));
    EXPECT_EQ(valuesOf("--resume", Command::apply), (Offered{Offer::files, {}}));
    EXPECT_EQ(valuesOf("--machine", Command::check), (Offered{Offer::files, {}}));
    EXPECT_EQ(valuesOf("--utilities", Command::show), (Offered{Offer::folders, {}}));
    const Offered utilities = valuesOf("--utility", Command::show);
    EXPECT_EQ(utilities.kind, Offer::paths);
    EXPECT_GE(utilities.words.size(), 7U);
    EXPECT_EQ(utilities.words.front(), "MEGACLI");
}

TEST(Completion, OffersNothingForNumbersAndTextsOfAnyKind) {
    for (const char* const name :
         {"--width", "--limit-seconds", "--controller", "--serial", "--machine-type"}) {
        EXPECT_EQ(valuesOf(name, Command::apply), Offered()) << name;
    }
}

TEST(Completion, OffersTheIdsThatAnOptionTakes) {
    const Offered selected = valuesOf("--select", Command::check);
    const Offered accepted = valuesOf("--accept", Command::plan);
    const auto has = [](const Offered& offered, const char* id) {
        return std::count(offered.words.begin(), offered.words.end(), id) == 1;
    };
    EXPECT_EQ(selected.kind, Offer::list);
    EXPECT_TRUE(has(selected, "ZX301"));
    EXPECT_FALSE(has(selected, "ZA201"));
    EXPECT_TRUE(has(accepted, "ZX701"));
    EXPECT_TRUE(has(accepted, "ZA201"));
    EXPECT_FALSE(has(accepted, "exit-4"));
}

TEST(Completion, TakesWhatStandsBehindACommandFromItsUsage) {
    EXPECT_EQ(offeredWords(rowOf(Command::check)), (Offered{Offer::files, {}}));
    EXPECT_EQ(offeredWords(rowOf(Command::show)), (Offered{Offer::files, {}}));
    EXPECT_EQ(offeredWords(rowOf(Command::convert)), (Offered{Offer::files, {}}));
    EXPECT_EQ(offeredWords(rowOf(Command::replay)), (Offered{Offer::files, {}}));
    for (const Command command : {Command::reset, Command::record, Command::guard}) {
        EXPECT_EQ(offeredWords(rowOf(command)), Offered()) << rowOf(command).name;
    }
    EXPECT_EQ(offeredWords(rowOf(Command::explain)).kind, Offer::words);
}

/// Words are parted by blanks in what is written, and quoted as a whole.
TEST(Completion, OffersWordsThatNoShellTakesApart) {
    for (const CommandRow& command : commandRows()) {
        for (const OptionRow& row : optionRows()) {
            for (const std::string& word : offeredValues(row, command).words) {
                EXPECT_EQ(
                    word.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                           "0123456789-.,"),
                    std::string::npos)
                    << row.name << " " << word;
            }
        }
    }
}

TEST(Completion, IsATextForEachShell) {
    const std::string bash = completionScript(Shell::bash);
    const std::string zsh = completionScript(Shell::zsh);
    EXPECT_NE(bash.find("\ncomplete -F _zolexctl zolexctl\n"), std::string::npos);
    EXPECT_NE(bash.find("    reset) options='--timings "), std::string::npos);
    EXPECT_EQ(zsh.substr(0, zsh.find('\n')), "#compdef zolexctl");
    EXPECT_NE(zsh.find("        'reset:factory defaults of controllers'\n"), std::string::npos);
    EXPECT_NE(zsh.find("'*--timings=[tell usual times, from the calls in this "
                       "recording]:FILE:_files'"),
              std::string::npos);
}

} // namespace
} // namespace zolex::companion
