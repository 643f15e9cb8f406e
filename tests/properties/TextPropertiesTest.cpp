#include "foundation/CString.h"
#include "foundation/IniFile.h"
#include "properties/Generators.h"
#include "properties/Property.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {
namespace {

/// Texts of few different bytes, one of them often, so that finds, tokens and trims happen.
rc::Gen<std::string> texts() {
    return rc::gen::container<std::string>(rc::gen::element('a', 'a', 'a', 'b', 'A', 'B', '.', ' ',
                                                            '\t', '\n', '\r', '7', '-', '\xE4', '[',
                                                            '=', '\x7F'));
}

rc::Gen<std::string> shortTexts() {
    return rc::gen::resize(2, texts());
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return lowered(c); });
    return text;
}

std::string raised(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

std::string trimmed(std::string text, const std::string& set = " \t\n") {
    while (!text.empty() && set.find(text.back()) != std::string::npos) {
        text.pop_back();
    }
    while (!text.empty() && set.find(text.front()) != std::string::npos) {
        text.erase(0, 1);
    }
    return text;
}

int sign(int number) {
    return number < 0 ? -1 : number > 0 ? 1 : 0;
}

std::vector<std::string> split(std::string text, const std::string& delimiter) {
    std::vector<std::string> tokens;
    for (std::size_t at = text.find(delimiter); at != std::string::npos;
         at = text.find(delimiter)) {
        tokens.push_back(text.substr(0, at));
        text.erase(0, at + delimiter.size());
    }
    tokens.push_back(text);
    return tokens;
}

std::string str(const CString& text) {
    RC_ASSERT(text.length() == std::string(text.c_str()).size());
    return text.c_str();
}

TEST(TextProperties, StringsSearchAndCompareAsTheStandardOnesDo) {
    checkProperty({{"found", 10}}, [](Tally& tally) {
        const std::string a = *texts();
        const std::string b = *rc::gen::oneOf(shortTexts(), texts(), rc::gen::just(lowered(a)));
        const auto from = static_cast<std::size_t>(*number(0, 30));
        const CString text(a);
        const std::size_t at = a.find(b, from);
        RC_ASSERT(text.indexOf(b, from) ==
                  (at == std::string::npos ? -1 : static_cast<std::int64_t>(at)));
        RC_ASSERT(text.contains(b) == (a.find(b) != std::string::npos));
        RC_ASSERT(text.startsWith(b) == (a.compare(0, b.size(), b) == 0));
        RC_ASSERT(text.endsWith(b) ==
                  (a.size() >= b.size() && a.compare(a.size() - b.size(), b.size(), b) == 0));
        RC_ASSERT(text.count(b) == (b.empty() ? 0 : split(a, b).size() - 1));
        RC_ASSERT((text == CString(b)) == (a == b));
        RC_ASSERT((text < CString(b)) == (a < b));
        RC_ASSERT(text.equalsNoCase(b) == (lowered(a) == lowered(b)));
        RC_ASSERT(sign(text.compareNoCase(b)) == sign(lowered(a).compare(lowered(b))));
        if (!b.empty() && a.find(b) != std::string::npos) {
            tally.count("found");
        }
    });
}

TEST(TextProperties, StringsCutJoinAndTrimAsTheStandardOnesDo) {
    checkProperty({{"trimmed", 10}}, [](Tally& tally) {
        const std::string a = *texts();
        const std::string b = *texts();
        const std::string set = *shortTexts();
        const auto first = static_cast<std::size_t>(*number(0, 40));
        const auto length = static_cast<std::size_t>(*number(0, 40));
        const CString text(a);
        RC_ASSERT(str(text.left(length)) == a.substr(0, length));
        RC_ASSERT(str(text.right(length)) == a.substr(a.size() - std::min(length, a.size())));
        const std::string rest = first < a.size() ? a.substr(first) : "";
        RC_ASSERT(str(text.mid(first, length)) == (length == 0 ? rest : rest.substr(0, length)));
        RC_ASSERT(text.at(first) == (first < a.size() ? a[first] : '\0'));
        RC_ASSERT(str(text.upper()) == raised(a));
        RC_ASSERT(str(text.lower()) == lowered(a));
        RC_ASSERT(str(text.trim()) == trimmed(a));
        RC_ASSERT(str(text.trim(set)) == trimmed(a, set));
        RC_ASSERT(str(text.trimLeft(set)) ==
                  trimmed(a + "|", set + "").substr(0, trimmed(a + "|", set).size() - 1));
        const std::string right = trimmed("|" + a, set);
        RC_ASSERT(str(text.trimRight(set)) == right.substr(1));
        CString joined(a);
        joined.append(b).append('x').prepend(set);
        RC_ASSERT(str(joined) == set + a + b + "x");
        RC_ASSERT(str(text + CString(b)) == a + b);
        RC_ASSERT(str(CString::concatenate(a, b, set)) == a + b + set);
        CString copy(text);
        copy.makeUpper();
        RC_ASSERT(str(text) == a); // a copy is one
        if (trimmed(a) != a) {
            tally.count("trimmed");
        }
    });
}

TEST(TextProperties, TokensAreThePartsBetweenDelimiters) {
    checkProperty({{"several tokens", 10}}, [](Tally& tally) {
        const std::string a = *texts();
        const std::string delimiter = *shortTexts();
        const CString text(a);
        if (a.empty() || delimiter.empty()) {
            RC_ASSERT(text.tokenCount(delimiter) == 0U);
            return;
        }
        const std::vector<std::string> tokens = split(a, delimiter);
        RC_ASSERT(text.tokenCount(delimiter) == tokens.size());
        for (std::size_t i = 0; i < tokens.size(); ++i) {
            RC_ASSERT(str(text.token(delimiter, i)) == tokens[i]);
        }
        RC_ASSERT(text.token(delimiter, tokens.size()).isEmpty());
        if (tokens.size() > 1) {
            tally.count("several tokens");
        }
    });
}

TEST(TextProperties, TheLeadingNumberIsReadAndKeptInRange) {
    checkProperty({{"out of range", 10}}, [](Tally& tally) {
        const auto value = *rc::gen::arbitrary<std::int64_t>();
        const std::int64_t divided =
            value / oneOf<std::int64_t>({1, 1'000'000'000, 1'000'000'000'000});
        const std::string before = oneOf<std::string>({"", " ", "\t  "});
        const std::string plus = divided >= 0 && oneIn(2) ? "+" : "";
        const std::string after = oneOf<std::string>({"", " ", "MB", ".5", "-1"});
        const CString text(before + plus + std::to_string(divided) + after);
        const std::int64_t least = std::numeric_limits<std::int32_t>::min();
        const std::int64_t most = std::numeric_limits<std::int32_t>::max();
        RC_ASSERT(text.toInt() == std::clamp(divided, least, most));
        RC_ASSERT(text.toUnsigned() == std::clamp<std::int64_t>(divided, 0, 4294967295));
        RC_ASSERT(str(CString::fromInt(value)) == std::to_string(value));
        if (divided < least || divided > most) {
            tally.count("out of range");
        }
    });
}

// Look-up in a settings file, line by line as its description tells it

std::optional<std::string> lookUp(const std::string& text, const std::string& section,
                                  const std::string& key) {
    bool inSection = section.empty();
    std::vector<std::string> lines = split(text, "\n");
    for (std::size_t i = 0; i < lines.size(); ++i) {
        // A CR goes with the newline behind it; at the end of the file there is none.
        if (i + 1 < lines.size() && lines[i].ends_with('\r')) {
            lines[i].pop_back();
        }
        const std::string line = trimmed(lines[i]);
        if (line.empty() || line[0] == ';') {
            continue;
        }
        if (line[0] == '[') {
            if (inSection) {
                return std::nullopt;
            }
            const std::string name = trimmed(line.substr(1, line.find(']') - 1));
            inSection = lowered(name) == lowered(section);
            continue;
        }
        const std::size_t equals = line.find('=');
        if (inSection && equals != std::string::npos &&
            lowered(trimmed(line.substr(0, equals))) == lowered(key)) {
            return trimmed(line.substr(equals + 1));
        }
    }
    return std::nullopt;
}

std::string settingsText() {
    std::string text;
    for (int n = *number(0, 30); n > 0; --n) {
        const std::string blank = oneOf<std::string>({"", " ", "\t"});
        text += blank;
        switch (*number(0, 9)) {
        case 0:
        case 1:
            text += "[" + blank + oneOf<std::string>({"one", "ONE", "two", "", "t=o"}) +
                    oneOf<std::string>({"]", " ]", "", "] = x", "]]"});
            break;
        case 2:
            text += oneOf<std::string>({";", "; [one]", ";key=1"});
            break;
        case 3:
            text += *texts();
            break;
        default:
            text += oneOf<std::string>({"key", "Key", "other", ""}) + blank +
                    oneOf<std::string>({"=", " = ", "==", ""}) +
                    oneOf<std::string>({"1", "two words", "", "a=b", "; no comment", "]"});
        }
        text += oneOf<std::string>({"\n", "\n", "\r\n", ""});
    }
    return text;
}

TEST(TextProperties, ASettingsFileAnswersAsAWalkOverItsLinesWould) {
    checkProperty({{"found", 25}, {"missing", 25}}, [](Tally& tally) {
        const std::string text = *rc::gen::exec(settingsText);
        test::FakePlatform platform;
        platform.fileFake.files["x.ini"] = text;
        IniFile file(platform.fileFake, "x.ini", true);
        for (const char* section : {"one", "TWO", "", "three", "t=o"}) {
            for (const char* key : {"key", "OTHER", "", "third"}) {
                const std::optional<std::string> expected = lookUp(text, section, key);
                const CString value = file.readString(section, key, "^~");
                tally.count(expected ? "found" : "missing");
                RC_ASSERT(str(value) == expected.value_or("^~"));
                RC_ASSERT(file.lastValue() == value);
                RC_ASSERT(file.readInteger(section, key, -7) ==
                          (expected ? CString(*expected).toInt() : -7));
            }
        }
    });
}

} // namespace
} // namespace zolex::properties
