#include "driver/ParameterParser.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <vector>

namespace zolex {
namespace {

using Result = ParameterParser::Result;
using Fault = ParameterParser::Fault;

Result parse(ParameterParser& parser, std::vector<const char*> arguments,
             bool caseSensitive = false, bool validate = true) {
    arguments.insert(arguments.begin(), "program");
    return parser.parse(static_cast<int>(arguments.size()), arguments.data(), caseSensitive,
                        validate);
}

std::string value(const ParameterParser& parser, const char* name) {
    CString text;
    return parser.lookUp(name, text) ? text.c_str() : "(absent)";
}

TEST(ParameterParserTest, AFlagMatchesOnlyTheWholeArgument) {
    ParameterParser parser;
    parser.add("/c", SwitchKind::flag, false, true);
    parser.add("/c:", SwitchKind::joined, false, true);
    EXPECT_EQ(Result::success, parse(parser, {"/c:x", "/C"}));
    EXPECT_TRUE(parser.isFound("/c"));
    EXPECT_EQ("x", value(parser, "/c:"));
}

TEST(ParameterParserTest, ASwitchGivenTwiceIsUnknownTheSecondTime) {
    ParameterParser parser;
    parser.add("/d", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::unknownOrInvalid, parse(parser, {"/d", "/D"}));
    EXPECT_EQ(Fault::unknownArgument, parser.fault());
    EXPECT_EQ(2, parser.faultIndex());
    EXPECT_EQ(CString("/D"), parser.faultArgument());
}

TEST(ParameterParserTest, CaseCountsWhenAskedFor) {
    ParameterParser parser;
    parser.add("/d", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::unknownOrInvalid, parse(parser, {"/D"}, true));
}

TEST(ParameterParserTest, ValuesByKind) {
    ParameterParser parser;
    parser.add("/n:", SwitchKind::number, false, true);
    parser.add("/t:", SwitchKind::text, false, true);
    parser.add("/l:", SwitchKind::lastText, false, true);
    parser.add("/j:", SwitchKind::joined, false, true);
    EXPECT_EQ(Result::success,
              parse(parser, {"/n:-12", "/t:abc", "/l:x", "/j:a", "b", "c d", "e"}));
    EXPECT_EQ("-12", value(parser, "/n:"));
    EXPECT_EQ("abc", value(parser, "/t:"));
    EXPECT_EQ("x", value(parser, "/l:"));
    EXPECT_EQ("a b c d e", value(parser, "/j:"));
}

TEST(ParameterParserTest, TheFirstJoinedArgumentStandsWithoutABlankWhenTheRestIsEmpty) {
    ParameterParser parser;
    parser.add("/f:", SwitchKind::joined, false, true);
    EXPECT_EQ(Result::success, parse(parser, {"/f:", "x", "y"}));
    EXPECT_EQ("x y", value(parser, "/f:"));
}

TEST(ParameterParserTest, ARepetitionEndsTheValueAndIsThenUnknown) {
    ParameterParser parser;
    parser.add("/f:", SwitchKind::joined, false, true);
    EXPECT_EQ(Result::unknownOrInvalid, parse(parser, {"/f:a", "/f:b"}));
    EXPECT_EQ(2, parser.faultIndex());
}

TEST(ParameterParserTest, AnEarlierSwitchRepeatedInsideAValueIsJoinedToIt) {
    ParameterParser parser;
    parser.add("/d", SwitchKind::flag, false, true);
    parser.add("/f:", SwitchKind::joined, false, true);
    EXPECT_EQ(Result::success, parse(parser, {"/d", "/f:a", "/d"}));
    EXPECT_EQ("a /d", value(parser, "/f:"));
}

TEST(ParameterParserTest, ANameThatEndsInABlankTakesTheNextArgument) {
    ParameterParser parser;
    parser.add("-o ", SwitchKind::text, false, true);
    parser.add("-x", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::success, parse(parser, {"-o ", "file", "-x"}));
    EXPECT_EQ("file", value(parser, "-o "));

    ParameterParser other;
    other.add("-o ", SwitchKind::text, false, true);
    other.add("-x", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::success, parse(other, {"-o ", "-x"}));
    EXPECT_EQ("", value(other, "-o "));
    EXPECT_TRUE(other.isFound("-x"));
}

TEST(ParameterParserTest, TheAlternateNameMatchesAndAnEmptyOneMatchesNothing) {
    ParameterParser parser;
    parser.add("/help", "-h", SwitchKind::flag, false, true, emptyList, emptyList);
    EXPECT_EQ(Result::success, parse(parser, {"-H"}));
    EXPECT_TRUE(parser.isFound("/help"));

    ParameterParser other;
    other.add("/help", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::unknownOrInvalid, parse(other, {""}));
}

TEST(ParameterParserTest, AnUnknownKindIsAnInternalError) {
    ParameterParser parser;
    parser.add("/d", SwitchKind::flag, false, true);
    parser.add("/odd", static_cast<SwitchKind>(9), false, true);
    EXPECT_EQ(Result::success, parse(parser, {"/d"}));
    EXPECT_EQ(Result::internalError, parse(parser, {"/odd"}));
}

TEST(ParameterParserTest, ValidationFindsEachFault) {
    struct Row {
        const char* description;
        Fault fault;
        std::vector<const char*> arguments;
    };
    const std::vector<Row> rows = {
        {"all in order", Fault::none, {"/must:x", "/n:7"}},
        {"required missing", Fault::requiredMissing, {"/n:7"}},
        {"value missing", Fault::valueMissing, {"/must:"}},
        {"not numeric", Fault::notNumeric, {"/must:x", "/n:7x"}},
        {"leading zero is not the number's own text", Fault::notNumeric, {"/must:x", "/n:07"}},
        {"companion missing", Fault::requiredCompanionMissing, {"/must:x", "/needs"}},
        {"companion present", Fault::none, {"/must:x", "/needs", "/n:1"}},
        {"excluded present", Fault::excludedCompanionPresent, {"/must:x", "/alone", "/n:1"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.description);
        ParameterParser parser;
        parser.add("/must:", SwitchKind::text, true, false);
        parser.add("/n:", SwitchKind::number, false, true);
        parser.add("/needs", "", SwitchKind::flag, false, true, "/n:", emptyList);
        parser.add("/alone", "", SwitchKind::flag, false, true, emptyList, "/zzz /n:");
        const bool good = row.fault == Fault::none;
        EXPECT_EQ(good ? Result::success : Result::unknownOrInvalid, parse(parser, row.arguments));
        EXPECT_EQ(row.fault, parser.fault());
        EXPECT_EQ(!good, parser.hasError());
    }
}

TEST(ParameterParserTest, WithoutValidationNothingIsRequired) {
    ParameterParser parser;
    parser.add("/must:", SwitchKind::text, true, false);
    EXPECT_EQ(Result::success, parse(parser, {}, false, false));
}

// A parameter file whose switch took very many arguments as one value kept the program busy for
// minutes: each argument copied all that stood before it.
TEST(ParameterParserTest, AValueOfVeryManyArgumentsIsPutTogetherQuickly) {
    constexpr std::size_t count = 300000;
    ParameterParser parser;
    parser.add("/f:", SwitchKind::joined, false, true);
    std::vector<CString> arguments(count, CString("ab"));
    arguments.front() = "/f:ab";
    const std::clock_t start = std::clock();
    EXPECT_EQ(Result::success, parser.parseMore(arguments, true));
    EXPECT_LT(std::clock() - start, 5 * CLOCKS_PER_SEC);
    CString value;
    EXPECT_TRUE(parser.lookUp("/f:", value));
    EXPECT_EQ(count * 3 - 1, value.length());
    EXPECT_EQ("ab ab ab", value.left(8).view());
}

TEST(ParameterParserTest, ReleaseEmptiesTheTable) {
    ParameterParser parser;
    parser.add("/d", SwitchKind::flag, false, true);
    EXPECT_EQ(Result::success, parse(parser, {"/d"}));
    parser.release();
    EXPECT_FALSE(parser.isFound("/d"));
    EXPECT_EQ(Result::unknownOrInvalid, parse(parser, {"/d"}));
}

} // namespace
} // namespace zolex
