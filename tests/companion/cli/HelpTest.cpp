#include "companion/cli/Help.h"

#include "companion/text/Terminal.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(Help, OfTheProgramNamesTheCommands) {
    EXPECT_EQ(helpText(Command::none),
              "usage: zolexctl [OPTIONS] COMMAND [OPTIONS]\n"
              "\n"
              "Looks at the RAID controllers of a server and at policies for them, plans, and\n"
              "carries plans out. Only apply, reset and the zolex behind guard change anything\n"
              "on a server.\n"
              "\n"
              "commands:\n"
              "  plan     what would be done, and why\n"
              "  apply    carry out a plan, or go on with one\n"
              "  reset    factory defaults of controllers\n"
              "  diff     this server against policies, a plan, a proof\n"
              "  show     what is in this server\n"
              "  check    every fault of a policies file\n"
              "  doctor   are the utilities there, are they read\n"
              "  record   keep every utility call of a capture\n"
              "  replay   run a command on a recording\n"
              "  rehearse one policies file on many recorded servers\n"
              "  convert  policies for zolex, from and to Ironic\n"
              "  guard    zolex, but only when all of it can be done\n"
              "  explain  what a finding or an exit code means\n"
              "\n"
              "options:\n"
              "  --version                   show the version\n"
              "\n"
              "options of every command, before or behind its name:\n"
              "  --color WHEN                colours: auto, always or never\n"
              "  --width N                   columns of the text, 40 to 1000\n"
              "  -q, --quiet                 tell only what is wrong\n"
              "  -v, --verbose               tell more\n"
              "  -h, --help                  show this help\n"
              "\n"
              "First of all:\n"
              "  zolexctl show\n"
              "More on a command:\n"
              "  zolexctl COMMAND --help\n");
}

TEST(Help, OfACommandNamesItsOptionsAndExamples) {
    EXPECT_EQ(helpText(Command::explain),
              "usage: zolexctl explain CODE\n"
              "\n"
              "Tells what a finding of check means, what it does to a server, and what to write\n"
              "instead. A number is an exit code of zolex; exit-4 is exit code 4 of zolexctl.\n"
              "\n"
              "Exit code: 0 it was told, 2 there is no such code.\n"
              "\n"
              "options:\n"
              "  --format FORMAT             how to write it: text, json\n"
              "  -o, --output FILE           write to FILE, which is replaced as a whole\n"
              "\n"
              "options of every command:\n"
              "  --color WHEN                colours: auto, always or never\n"
              "  --width N                   columns of the text, 40 to 1000\n"
              "  -q, --quiet                 tell only what is wrong\n"
              "  -v, --verbose               tell more\n"
              "  -h, --help                  show this help\n"
              "\n"
              "examples:\n"
              "  zolexctl explain ZX411\n"
              "  zolexctl explain 11\n");
}

TEST(Help, FitsEightyColumnsAndNamesEveryOption) {
    for (const CommandRow& command : commandRows()) {
        const std::string text = helpText(command.command);
        EXPECT_NE(text.find("\nexamples:\n  zolexctl " + std::string(command.name)),
                  std::string::npos);
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            EXPECT_LE(columnsOf(text.substr(start, end - start)), 80U)
                << text.substr(start, end - start);
            start = end + 1;
        }
        for (const OptionRow& option : optionRows()) {
            const bool isTold =
                text.find(" " + std::string(option.name) +
                          (option.value.empty() ? " " : " " + std::string(option.value) + " ")) !=
                std::string::npos;
            EXPECT_EQ(isTold, (option.commands & only(command.command)) != 0)
                << command.name << " " << option.name;
        }
    }
}

} // namespace
} // namespace zolex::companion
