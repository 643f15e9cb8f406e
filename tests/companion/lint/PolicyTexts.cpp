#include "companion/lint/PolicyTexts.h"

#include "setup/Samples.h"
#include "setup/ServerFiles.h"
#include "simulator/SimulatorSupport.h"
#include "support/TestData.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zolex::companion::test {

namespace {

std::size_t below(std::mt19937& random, std::size_t count) {
    return random() % count;
}

template <typename List>
const auto& oneOf(const List& list, std::mt19937& random) {
    return list[below(random, std::size(list))];
}

constexpr std::array<std::string_view, 62> words = {"ALL",
                                                    "CUSTOM",
                                                    "custom",
                                                    "1",
                                                    "2",
                                                    "3",
                                                    "0",
                                                    "00",
                                                    "01",
                                                    "9",
                                                    "10",
                                                    "15",
                                                    "16",
                                                    "32",
                                                    "64",
                                                    "4096",
                                                    "2147483647",
                                                    "2147483648",
                                                    "99999999999",
                                                    "-1",
                                                    "1:0",
                                                    "1:1",
                                                    "1 : 2",
                                                    "5%",
                                                    "0%",
                                                    "100%",
                                                    "101%",
                                                    "10%",
                                                    "50%",
                                                    "FILL",
                                                    "AUTO",
                                                    "ON",
                                                    "OFF",
                                                    "ADAPTIVE",
                                                    "HIGH",
                                                    "QUICK",
                                                    "5E",
                                                    "5EE",
                                                    "1E",
                                                    "60",
                                                    "VOLUME",
                                                    "SIMPLE VOLUME",
                                                    "m:8837",
                                                    "m: 8837",
                                                    "m:",
                                                    "t:Kestrix-C7",
                                                    "c:1",
                                                    "c:0",
                                                    "c :1",
                                                    "x:1",
                                                    "^~",
                                                    "A",
                                                    "B",
                                                    "Z",
                                                    "Hotspares",
                                                    "Hotspare",
                                                    "Init",
                                                    "AppliesTo.1",
                                                    "AppliesTo.16",
                                                    "Logical.1",
                                                    "Logical.010",
                                                    "Array.I"};

constexpr std::array<std::string_view, 32> lines = {"[Policy.a]",
                                                    "[policy.A]",
                                                    "[Policy.web-server]",
                                                    "[Policy.]",
                                                    "[Policy.a",
                                                    "[other]",
                                                    "[Policy.a b] rest",
                                                    "  [Policy.b2]",
                                                    "\t[Policy.b3]",
                                                    "\t; comment",
                                                    " ; comment",
                                                    ";",
                                                    "\t",
                                                    "  ",
                                                    "text",
                                                    "= value",
                                                    "Init",
                                                    "Init =",
                                                    "Init = QUICK",
                                                    "init = build",
                                                    "AppliesTo.1 = ALL",
                                                    "AppliesTo.2 = c:1, d:8",
                                                    "Array_Mode = CUSTOM",
                                                    "Logical_Mode = CUSTOM",
                                                    "Array.A = 1,2",
                                                    "Array.B = ALL",
                                                    "Array.C = 3",
                                                    "Logical.1 = A:FILL:1",
                                                    "Logical.2 = A:50%:5EE:ON",
                                                    "Logical.3 = B:1:5",
                                                    "Hotspares = 1:3,1:4",
                                                    "Array_Defaults = 10%:1"};

constexpr std::array<std::string_view, 16> bytes = {
    " ", "\t", "\n", "\r", "[", "]", "=", ":", ",", ";", "%", "0", "A", "\xEF", ".", "\r\n"};

/// Where each line begins; at least one.
std::vector<std::size_t> lineStarts(const std::string& text) {
    std::vector<std::size_t> starts = {0};
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
        starts.push_back(at + 1);
    }
    return starts;
}

std::size_t lineEnd(const std::string& text, std::size_t start) {
    return std::min(text.find('\n', start), text.size());
}

void changeByte(std::string& text, std::mt19937& random) {
    const std::size_t at = below(random, text.size() + 1);
    const std::size_t length = below(random, 2);
    std::string byte(oneOf(bytes, random));
    if (below(random, 8) == 0) {
        byte = std::string(1, static_cast<char>(below(random, 256)));
    }
    text.replace(at, length, below(random, 3) == 0 ? "" : byte);
}

void changeWord(std::string& text, std::mt19937& random) {
    constexpr std::string_view ends = " ,:=\n\r";
    const std::size_t start = text.find_first_not_of(ends, below(random, text.size() + 1));
    if (start != std::string::npos) {
        const std::size_t end = std::min(text.find_first_of(ends, start), text.size());
        text.replace(start, end - start, oneOf(words, random));
    }
}

void changeLine(std::string& text, std::mt19937& random) {
    const std::vector<std::size_t> starts = lineStarts(text);
    const std::size_t start = oneOf(starts, random);
    const std::size_t end = lineEnd(text, start);
    const std::string line = text.substr(start, end - start);
    const std::size_t other = oneOf(starts, random);
    switch (below(random, 9)) {
    case 0:
        text.erase(start, end + 1 - start);
        break;
    case 1:
        text.insert(other, line + "\n");
        break;
    case 2:
        text.erase(end, 1); // joins it with the next line
        break;
    case 3:
        text.insert(other, std::string(oneOf(lines, random)) + "\n");
        break;
    case 4: { // a line that zolex reads as more than one
        const std::size_t padding =
            240 + below(random, 40) - std::min<std::size_t>(line.size(), 200);
        const char filler = " ,-1\t;"[below(random, 6)];
        text.insert(end, std::string(padding, filler) + std::string(oneOf(lines, random)));
        break;
    }
    case 5: { // too many entries
        std::string many;
        for (std::size_t i = 0, count = 40 + below(random, 15); i < count; ++i) {
            many += "AppliesTo." + std::to_string(i + 3) + " = ALL\n";
        }
        text.insert(end == text.size() ? end : end + 1, many);
        break;
    }
    case 6:
        text.replace(start, end - start, oneOf(lines, random));
        break;
    case 7:
        text.insert(end, std::string(1 + below(random, 300), ' '));
        break;
    default:
        text.insert(start, below(random, 2) == 0 ? "; " : "\t");
        break;
    }
}

} // namespace

std::vector<std::string> shippedPolicies() {
    std::vector<std::string> all;
    for (const char* name : {"automatic.ini", "by-location.ini", "web-server.ini"}) {
        all.push_back(zolex::test::readTestData(std::string("../../packaging/samples/") + name));
    }
    for (const zolex_sim::Sample& sample : zolex_sim::samples()) {
        const zolex_sim::Server server = zolex_sim::test::serverOf(std::string(sample.definition));
        all.push_back(zolex_sim::samplePolicies(server).content);
    }
    return all;
}

std::string generatedPolicies(std::mt19937& random) {
    const auto chance = [&random](std::size_t of) { return below(random, of) == 0; };
    const auto word = [&random](std::initializer_list<std::string_view> list) {
        return std::string(*(list.begin() + below(random, list.size())));
    };
    std::string text;
    const std::size_t policies = chance(30) ? 98 + below(random, 5) : 1 + below(random, 4);
    for (std::size_t p = 0; p < policies; ++p) {
        text += "[Policy.p" + std::to_string(chance(40) ? 0 : p) + "]\n";
        const std::size_t entries = 1 + below(random, chance(20) ? 17 : 3);
        for (std::size_t n = 1; n <= entries; ++n) {
            text +=
                "AppliesTo." + std::to_string(n) + " = " +
                word({"ALL", "m:8837,c:1", "t:Kestrix-C7,d:8", "c:2, o:1", "s:AB12 ,d:4", "m: 1"}) +
                "\n";
        }
        if (chance(2)) {
            text += "StripeSize = " + word({"16", "64", "4096", "48"}) + "\n";
        }
        if (chance(3)) {
            text += "Init = " + word({"QUICK", "build", "^~"}) +
                    "\nReadAhead = " + word({"ON", "OFF", "adaptive"}) +
                    "\nRebuildRate = " + word({"LOW", "MED"}) + "\n";
        }
        if (chance(3)) {
            text += "Array_Defaults = " + word({"0%:0", "10%:2", "100%:1", "5 %:1"}) +
                    "\nMax_Logical_Drive_Size = " + word({"0", "4096", "1GB"}) + "\n";
        }
        const std::size_t arrays = below(random, 9);
        text += arrays > 0 || chance(10) ? "Array_Mode = CUSTOM\n" : "";
        for (std::size_t a = 0; a < arrays; ++a) {
            text += std::string("Array.") + static_cast<char>('A' + a) + " = " +
                    (a + 1 == arrays ? word({"ALL", "7,8", "2:3,2:4"})
                                     : word({"1,2", "3, 4", "1:0,1:1", "5"})) +
                    "\n";
        }
        if (chance(3)) {
            text += "Hotspares = 9";
            for (std::size_t i = below(random, chance(8) ? 20 : 3); i > 0; --i) {
                text += ",9";
            }
            text += "\n";
        }
        if (arrays > 0 && chance(2)) {
            text += "Logical_Mode = CUSTOM\n";
            for (std::size_t n = 1, count = 1 + below(random, 5); n <= count; ++n) {
                text += "Logical." + std::to_string(n) + " = " +
                        static_cast<char>('A' + below(random, arrays)) + ":" +
                        word({"FILL", "50%", "4096", "100%"}) + ":" +
                        word({"0", "1", "5", "10", "AUTO", "1", "5", "SIMPLE VOLUME", "5EE"}) +
                        word({"", ":ON", ":OFF", ":auto"}) + "\n";
            }
        }
        if (chance(3)) {
            text += "Logical_Defaults = " + word({"100%:AUTO:ON", "FILL:5", "50%:1:AUTO"}) + "\n";
        }
        text += chance(2) ? "\n; a comment\n" : "\r\n";
    }
    return text;
}

std::string mutatedPolicies(std::string text, std::mt19937& random) {
    for (std::size_t changes = 1 + below(random, 5); changes > 0; --changes) {
        switch (below(random, 3)) {
        case 0:
            changeByte(text, random);
            break;
        case 1:
            changeWord(text, random);
            break;
        default:
            changeLine(text, random);
            break;
        }
    }
    return text;
}

} // namespace zolex::companion::test
