// The sample listings of two generations of the utility, whole and damaged in every way that a
// broken pipe or a lost line can damage them.

#include "readers/MegaCliListings.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace zolex::test::mega_samples {
namespace {

using Lines = std::vector<std::string>;

struct SampleDrive {
    std::string entry;  ///< without its serial number
    std::string serial; ///< with the blank before it
};

struct Sample {
    const char* generation;
    std::int32_t enclosure;
    std::vector<SampleDrive> drives;
    std::string hotspare; ///< as in the layout
    std::string layout;   ///< without hot spares
    std::int32_t members;
};

const Sample early{
    "early",
    32,
    {{"1:0 69376 t32 Online GOOD", " NORVIK  NV73455S        S5273LQ2A000"},
     {"1:1 69376 t32 Online GOOD", " NORVIK  NV73455S        S5273LQ2A001"},
     {"1:2 69376 t32 Online GOOD", " NORVIK  NV73455S        S5273LQ2A002"},
     {"1:3 69376 t32 Hotspare GOOD", " NORVIK  NV73455S        S5273LQ2A003"},
     {"1:4 69376 t32 Unconfigured(good) GOOD", " NORVIK  NV73455S        S5273LQ2A004"}},
    "hs=32:3:3 ",
    "A=1:0,1:1,1:2 1=A/138752/3/1/Optimal/GOOD stripe=3 ra=0",
    3};

const Sample later{
    "later",
    252,
    {{"1:0 1906312 t252 Online, Spun Up GOOD", " NORVIK  NV2000NM0023    0004Z1X0A000"},
     {"1:1 1906312 t252 Online, Spun Up GOOD", " NORVIK  NV2000NM0023    0004Z1X0A001"},
     {"1:2 1906312 t252 Hotspare, Spun down GOOD", " NORVIK  NV2000NM0023    0004Z1X0A002"},
     {"1:3 1906312 t252 Unconfigured(good), Spun Up GOOD",
      " NORVIK  NV2000NM0023    0004Z1X0A003"}},
    "hs=252:2:2 ",
    "A=1:0,1:1 1=A/1906311/1/1/Optimal/GOOD stripe=3 ra=1",
    2};

bool holds(const std::string& line, const char* part) {
    return line.find(part) != std::string::npos;
}

/// Where the n-th line that holds `key` ends, from 0, its line feed included.
std::size_t endOfLine(const std::string& text, const char* key, std::size_t n) {
    std::size_t at = text.find(key);
    for (; n > 0; --n) {
        at = text.find(key, at + 1);
    }
    return text.find('\n', at) + 1;
}

class MEGAReaderSamplesTest : public MEGAReaderFixture,
                              public ::testing::WithParamInterface<const Sample*> {
  protected:
    [[nodiscard]] const Sample& sample() const { return *GetParam(); }
    [[nodiscard]] std::string configurationText() const {
        return readTestData(std::string("megacli-ldpdinfo-") + sample().generation + ".txt");
    }
    [[nodiscard]] std::string drivesText() const {
        return readTestData(std::string("megacli-pdlist-") + sample().generation + ".txt");
    }
    [[nodiscard]] Lines allDrives(bool used) const {
        Lines entries;
        for (std::size_t i = 0; i < sample().drives.size(); ++i) {
            const bool isMember = i < static_cast<std::size_t>(sample().members);
            entries.push_back(sample().drives[i].entry + sample().drives[i].serial +
                              (used && isMember ? " used" : ""));
        }
        return entries;
    }
    [[nodiscard]] std::string wholeLayout() const {
        std::string text = sample().layout;
        return text.insert(text.find("stripe="), sample().hotspare);
    }
    /// Hands every damaged form of `text` to `check`: the line that the damage struck, its number
    /// and the lines that remain.
    static void forEachLine(const std::string& text, bool doubled,
                            const std::function<void(const std::string& line, std::size_t number,
                                                     const std::string& damaged)>& check) {
        const Lines lines = splitLines(text);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            Lines damaged = lines;
            const auto at = damaged.begin() + static_cast<std::ptrdiff_t>(i);
            if (doubled) {
                damaged.insert(at, lines[i]);
            } else {
                damaged.erase(at);
            }
            check(lines[i], i, joinLines(damaged));
        }
    }
    /// Number of lines before line `number` that hold `key`.
    static std::size_t linesBefore(const std::string& text, std::size_t number, const char* key) {
        const Lines lines = splitLines(text);
        std::size_t n = 0;
        for (std::size_t i = 0; i < number; ++i) {
            n += holds(lines[i], key) ? 1 : 0;
        }
        return n;
    }
};

TEST_P(MEGAReaderSamplesTest, GivesWhatAPersonReadsInIt) {
    const std::string adapter = readTestData("megacli-adpallinfo.txt");
    for (const bool crLf : {false, true}) {
        const auto form = [crLf](const std::string& text) { return crLf ? withCrLf(text) : text; };
        read(form(configurationText()), form(drivesText()), form(adapter));
        EXPECT_EQ(layout(), wholeLayout());
        EXPECT_EQ(drives(), allDrives(true));
        EXPECT_TRUE(controller->channelReassignment());
        EXPECT_EQ(controller->firmwareVersion(), CString("1.11.50-0300"));
        EXPECT_EQ(controller->biosVersion(), CString("NV10-1"));
        EXPECT_EQ(controller->subtype(), 1);
        EXPECT_EQ(takeOutput(), "");
    }
}

TEST_P(MEGAReaderSamplesTest, WithoutTheCaptureFlagTheDrivesAreRead) {
    detail.layout = false;
    read("", drivesText(), readTestData("megacli-adpallinfo.txt"));
    EXPECT_EQ(layout(), "none");
    EXPECT_EQ(drives(), allDrives(false));
    EXPECT_EQ(controller->biosVersion(), CString("NV10-1"));
}

TEST_P(MEGAReaderSamplesTest, DriveListingsThatBreakOff) {
    detail.layout = false;
    for (const bool crLf : {false, true}) {
        const std::string text = crLf ? withCrLf(drivesText()) : drivesText();
        std::vector<std::size_t> stateEnds;
        std::vector<std::size_t> serialEnds;
        for (std::size_t i = 0; i < sample().drives.size(); ++i) {
            stateEnds.push_back(endOfLine(text, "Firmware state", i));
            serialEnds.push_back(endOfLine(text, "Inquiry Data", i));
        }
        for (std::size_t length = 0; length <= text.size(); ++length) {
            read("", text.substr(0, length));
            Lines expected;
            for (std::size_t i = 0; i < sample().drives.size(); ++i) {
                const SampleDrive& drive = sample().drives[i];
                if (length >= stateEnds[i]) {
                    expected.push_back(drive.entry +
                                       (length >= serialEnds[i] ? drive.serial : " "));
                }
            }
            ASSERT_EQ(drives(), expected) << length;
            ASSERT_EQ(takeOutput(), "") << length;
        }
    }
}

TEST_P(MEGAReaderSamplesTest, DriveListingsThatLackALine) {
    const std::string text = drivesText();
    const std::string configuration = configurationText();
    forEachLine(
        text, false, [&](const std::string& line, std::size_t number, const std::string& damaged) {
            Lines expected = allDrives(true);
            std::string output;
            const auto place =
                static_cast<std::ptrdiff_t>(linesBefore(text, number, "Inquiry Data"));
            const bool isLast = place + 1 == static_cast<std::ptrdiff_t>(expected.size());
            const auto error = [](const std::string& where) {
                return "\n#### ERROR\n\tDrive position out of range for controller "
                       "LSI-MegaRAID-8480:  " +
                       where + "\n\n";
            };
            const bool lacksState = holds(line, "Firmware state");
            if (holds(line, "Enclosure Device ID") || holds(line, "Slot Number") || lacksState ||
                (holds(line, "Coerced Size") && !holds(line, "Non Coerced Size"))) {
                expected.erase(expected.begin() + place);
            }
            if (holds(line, "Enclosure Device ID")) {
                output = error("channel=-1, id=" + std::to_string(place));
            } else if (holds(line, "Slot Number")) {
                output = error("channel=1, id=-1");
            } else if (holds(line, "Inquiry Data") && !isLast) {
                expected.erase(expected.begin() + place); // its block goes on as the next one's
            } else if (holds(line, "Inquiry Data")) {
                expected.back() = sample().drives.back().entry + " ";
            }
            read(configuration, damaged);
            EXPECT_EQ(drives(), expected) << number << ": " << line;
            EXPECT_EQ(takeOutput(), output) << number << ": " << line;
            // A spare is known by its place and its state.
            const bool isSpare =
                holds(sample()
                          .drives[static_cast<std::size_t>(
                              std::min<std::ptrdiff_t>(place, std::ssize(sample().drives) - 1))]
                          .entry,
                      "Hotspare");
            const bool lacksPlace =
                holds(line, "Enclosure Device ID") || holds(line, "Slot Number");
            EXPECT_EQ(layout(),
                      isSpare && (lacksState || lacksPlace) ? sample().layout : wholeLayout())
                << number << ": " << line;
        });
}

TEST_P(MEGAReaderSamplesTest, DriveListingsWithADoubledLine) {
    const std::string configuration = configurationText();
    forEachLine(drivesText(), true,
                [&](const std::string& line, std::size_t number, const std::string& damaged) {
                    read(configuration, damaged);
                    EXPECT_EQ(drives(), allDrives(true)) << number << ": " << line;
                    EXPECT_EQ(layout(), wholeLayout()) << number << ": " << line;
                    EXPECT_EQ(takeOutput(), "") << number << ": " << line;
                });
}

TEST_P(MEGAReaderSamplesTest, ConfigurationListingsThatBreakOff) {
    for (const bool crLf : {false, true}) {
        const std::string text = crLf ? withCrLf(configurationText()) : configurationText();
        const std::size_t whole =
            endOfLine(text, "Slot Number", static_cast<std::size_t>(sample().members - 1));
        const std::size_t announced = endOfLine(text, "Number Of Drives", 0);
        for (std::size_t length = 0; length <= text.size(); ++length) {
            read(text.substr(0, length), "");
            ASSERT_EQ(layout(), length < whole ? "none" : sample().layout) << length;
            const bool lacksDrives = length >= announced && length < whole;
            ASSERT_EQ(takeOutput(), lacksDrives ? missingDrives : "") << length;
        }
    }
}

TEST_P(MEGAReaderSamplesTest, ConfigurationListingsThatLackALine) {
    const std::string text = configurationText();
    const auto without = [this](const std::string& value, const std::string& absent) {
        std::string layout = sample().layout;
        return layout.replace(layout.find(value), value.size(), absent);
    };
    const bool isEarly = std::string(sample().generation) == "early";
    forEachLine(
        text, false, [&](const std::string& line, std::size_t number, const std::string& damaged) {
            std::string expected = sample().layout;
            const auto begins = [&line](const char* key) { return line.rfind(key, 0) == 0; };
            if (begins("Number of Virtual") || begins("Name") || begins("RAID Level") ||
                begins("PD:") || begins("Enclosure Device ID") || begins("Slot Number")) {
                expected = "none";
            } else if (begins("Size")) {
                expected = isEarly ? without("138752", "-101") : without("1906311", "-101");
            } else if (begins("State")) {
                expected = without("Optimal/GOOD", "/");
            } else if (begins("Stripe Size") || begins("Strip Size")) {
                expected = without("stripe=3", "stripe=10");
            } else if (begins("Current Cache Policy")) {
                expected = without("/1/Optimal", "/2/Optimal");
                expected.back() = '0';
            }
            read(damaged, "");
            EXPECT_EQ(layout(), expected) << number << ": " << line;
            const bool lacksDrive =
                begins("PD:") || begins("Enclosure Device ID") || begins("Slot Number");
            EXPECT_EQ(takeOutput(), lacksDrive ? missingDrives : "") << number << ": " << line;
        });
}

TEST_P(MEGAReaderSamplesTest, ConfigurationListingsWithADoubledLine) {
    forEachLine(configurationText(), true,
                [&](const std::string& line, std::size_t number, const std::string& damaged) {
                    read(damaged, "");
                    EXPECT_EQ(layout(), sample().layout) << number << ": " << line;
                    EXPECT_EQ(takeOutput(), "") << number << ": " << line;
                });
}

INSTANTIATE_TEST_SUITE_P(Generations, MEGAReaderSamplesTest, ::testing::Values(&early, &later),
                         [](const auto& test) { return test.param->generation; });

class MEGAReaderListingsTest : public MEGAReaderFixture {
  protected:
    MEGAReaderListingsTest() { subtype = 8; }

    [[nodiscard]] std::string versions() const {
        const auto text = [](const std::optional<CString>& version) {
            return version ? std::string(version->c_str()) : std::string("-");
        };
        return text(controller->firmwareVersion()) + " " + text(controller->biosVersion()) + " " +
               std::to_string(controller->subtype());
    }
};

TEST_F(MEGAReaderListingsTest, AMirrorThatLostADriveIsNotCaptured) {
    subtype = 1;
    read(readTestData("megacli-ldpdinfo-missing.txt"), readTestData("megacli-pdlist-later.txt"));
    EXPECT_EQ(layout(), "none");
    EXPECT_GT(controller->numberOfDrives(), 0);
    EXPECT_EQ(takeOutput(), missingDrives);
}

TEST_F(MEGAReaderListingsTest, DamagedAdapterListings) {
    const std::string text = readTestData("megacli-adpallinfo.txt");
    const std::string whole = "1.11.50-0300 NV10-1 9";
    read("", "", text);
    EXPECT_EQ(versions(), whole);
    const std::size_t firmware = endOfLine(text, "FW Version", 0);
    const std::size_t bios = endOfLine(text, "BIOS Version", 0);
    const std::size_t levels = endOfLine(text, "RAID Level Supported", 0);
    for (std::size_t length = 0; length <= text.size(); ++length) {
        read("", "", text.substr(0, length));
        ASSERT_EQ(versions(), std::string(length < firmware ? "-" : "1.11.50-0300") +
                                  (length < bios ? " -" : " NV10-1") +
                                  (length < levels ? " 8" : " 9"))
            << length;
    }
    const Lines lines = splitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        Lines dropped = lines;
        dropped.erase(dropped.begin() + static_cast<std::ptrdiff_t>(i));
        read("", "", joinLines(dropped));
        const bool isHeading = holds(lines[i], "Adapter #");
        EXPECT_EQ(versions(), isHeading                            ? "- - 8"
                              : lines[i].rfind("FW Ver", 0) == 0   ? "- NV10-1 9"
                              : lines[i].rfind("BIOS Ver", 0) == 0 ? "1.11.50-0300 - 9"
                              : lines[i].rfind("RAID Lev", 0) == 0 ? "1.11.50-0300 NV10-1 8"
                                                                   : whole)
            << lines[i];
        Lines doubled = lines;
        doubled.insert(doubled.begin() + static_cast<std::ptrdiff_t>(i), lines[i]);
        read("", "", joinLines(doubled));
        // The second heading is another adapter's.
        EXPECT_EQ(versions(), isHeading ? "- - 8" : whole) << lines[i];
    }
}

TEST_F(MEGAReaderListingsTest, LayoutsOfManyVirtualDisksAreCapturedWholeOrNotAtAll) {
    std::vector<VdText> disks(3);
    disks[0].spans = {{{.slot = 0}, {.slot = 1}}, {{.enclosure = "64", .slot = 0}, {.slot = 2}}};
    disks[1].level = "Primary-5, Secondary-0";
    disks[1].spans = {{{.slot = 3}, {.slot = 4}, {.enclosure = "64", .slot = 1}}};
    disks[2].level = "Primary-6, Secondary-3";
    disks[2].spans = {{{.slot = 5}, {.slot = 6}, {.slot = 7}},
                      {{.slot = 8}, {.slot = 9}, {.slot = 10}}};
    const std::string text = configurationListing(disks);
    const std::string whole = "A=1:0,1:1,2:0,1:2 B=1:3,1:4,2:1 C=1:5,1:6,1:7,1:8,1:9,1:10 "
                              "1=A/69376/7/1/Optimal/GOOD 2=B/69376/3/1/Optimal/GOOD "
                              "3=C/69376/9/1/Optimal/GOOD stripe=3 ra=0";
    const std::size_t enough = endOfLine(text, "Slot Number: 10", 0);
    for (std::size_t length = 0; length <= text.size(); ++length) {
        read(text.substr(0, length), "");
        ASSERT_EQ(layout(), length < enough ? "none" : whole) << length;
    }
}

/// Mixes stray lines and bytes into listings, the same ones in every run.
class Noise {
  public:
    std::string into(const std::string& listing) {
        static constexpr std::string_view strays[] = {
            "Name:\n",
            "RAID Level: Primary-1, Secondary-0\n",
            "PD: 1\n",
            "Enclosure Device ID: N/A\n",
            "Enclosure Device ID: 7\n",
            "Slot Number: 99999999999\n",
            "Slot Number: 3\n",
            "Firmware state: Hotspare\n",
            "Firmware state: Unconfigured(bad)\n",
            "Coerced Size: 1e9 TB\n",
            "Coerced Size: -3 MB\n",
            "Inquiry Data\n",
            "Adapter #\n",
            "Virtual Disk:\n",
            "Number of PDs\n",
            "Size:::\n",
            "Number of Spans: -1\n",
            "\r\n",
        };
        std::string text;
        for (const std::string& line : splitLines(listing)) {
            if (next() % 16 == 0) {
                text += strays[next() % std::size(strays)];
            } else if (next() % 16 == 0) {
                text += static_cast<char>(next());
            }
            text += line;
        }
        return text;
    }

  private:
    std::uint32_t next() {
        seed_ = seed_ * 1664525 + 1013904223;
        return seed_ >> 16;
    }

    std::uint32_t seed_ = 1;
};

TEST_F(MEGAReaderListingsTest, StrayLinesAndBytesDoNoHarm) {
    std::vector<VdText> disks(2);
    disks[0].spans = {{{.slot = 0}, {.slot = 1}}};
    disks[1].spans = {{{.slot = 2}, {.slot = 3}}};
    const std::string configured = configurationListing(disks);
    const std::string listed = driveListing({{.slot = 0}, {.slot = 1}, {.slot = 2}, {.slot = 3}});
    Noise noise;
    int captured = 0;
    for (int round = 0; round < 500; ++round) {
        read(noise.into(configured), noise.into(listed), noise.into(listed));
        EXPECT_EQ(drives().size(), static_cast<std::size_t>(controller->numberOfDrives()));
        controller->forEachDrive([this](std::int32_t channel, std::int32_t id) {
            EXPECT_GT(controller->size(channel, id), 0);
        });
        const RAIDConfiguration* configuration = controller->captured();
        if (configuration == nullptr) {
            continue;
        }
        ++captured;
        EXPECT_EQ(configuration->arrays().size(), 2U);
        for (std::size_t i = 0; i < configuration->arrays().size(); ++i) {
            EXPECT_GE(configuration->arrays()[i].drives().size(), 2U);
            EXPECT_NE(configuration->logicalDrives().at(i).raidLevel, raid_level::none);
        }
    }
    // Both ends are seen: layouts that survive, and layouts that do not.
    EXPECT_GT(captured, 20);
    EXPECT_LT(captured, 480);
}

} // namespace
} // namespace zolex::test::mega_samples
