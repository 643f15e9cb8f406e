#include "readers/ConfigurationReader.h"
#include "driver/Application.h"
#include "model/RAIDController.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::test {
namespace {

/// Opens the base's operations to the tests.
class OpenReader : public ConfigurationReader {
  public:
    using ConfigurationReader::addArray;
    using ConfigurationReader::addHotspare;
    using ConfigurationReader::addLogicalDrive;
    using ConfigurationReader::addMember;
    using ConfigurationReader::beginController;
    using ConfigurationReader::checkPosition;
    using ConfigurationReader::ConfigurationReader;
    using ConfigurationReader::hasListing;
    using ConfigurationReader::nextLine;
    using ConfigurationReader::setListing;
    using ConfigurationReader::skipTo;

    bool readConfiguration(RAIDController& /*controller*/, Listings /*listings*/) override {
        return true;
    }
};

class ConfigurationReaderTest : public ::testing::Test {
  protected:
    ConfigurationReaderTest() {
        controller.setType(controller_type::megaRaid);
        controller.setSubtype(1);
        reader.beginController(controller);
    }

    void give(const std::string& bytes) {
        listing = {bytes};
        reader.setListing(listing, 0);
    }
    std::vector<std::string> linesOf(const std::string& bytes) {
        give(bytes);
        std::vector<std::string> lines;
        for (std::string line(reader.nextLine()); line != "EOF"; line = reader.nextLine()) {
            lines.push_back(line);
        }
        return lines;
    }

    FakePlatform platform;
    Application application{platform};
    std::vector<std::string> listing;
    OpenReader reader{{}, application.report()};
    RAIDController controller;
    RAIDConfiguration configuration;
};

using Lines = std::vector<std::string>;

TEST_F(ConfigurationReaderTest, LinesEndAtLineFeeds) {
    EXPECT_EQ(linesOf("one\n\n two \nthree\n"), (Lines{"one", "", " two ", "three"}));
    EXPECT_EQ(linesOf(""), Lines{});
    EXPECT_EQ(linesOf("\n"), Lines{""});
}

TEST_F(ConfigurationReaderTest, CrLfAndLfGiveTheSameLines) {
    EXPECT_EQ(linesOf("one\r\n\r\ntwo\r\n"), linesOf("one\n\ntwo\n"));
}

TEST_F(ConfigurationReaderTest, ACarriageReturnOrZeroByteEndsTheText) {
    EXPECT_EQ(linesOf("one\rtwo\nthree\n"), (Lines{"one", "three"}));
    EXPECT_EQ(linesOf(std::string("on\0e\rx\nnext\n", 12)), (Lines{"on", "next"}));
    EXPECT_EQ(linesOf("\r\r\r\n"), Lines{""});
}

TEST_F(ConfigurationReaderTest, ALongLineGoesOnAsTheNext) {
    const std::string text(250, 'x');
    EXPECT_EQ(linesOf(text + "\n"), (Lines{std::string(198, 'x'), std::string(52, 'x')}));
    EXPECT_EQ(linesOf(std::string(197, 'x') + "\n"), Lines{std::string(197, 'x')});
    EXPECT_EQ(linesOf(std::string(198, 'x') + "\n"), (Lines{std::string(198, 'x'), ""}));
    EXPECT_EQ(linesOf(std::string(400, 'x') + "\n"),
              (Lines{std::string(198, 'x'), std::string(198, 'x'), std::string(4, 'x')}));
    // The carriage return counts as a byte of its line.
    EXPECT_EQ(linesOf(std::string(197, 'x') + "\r\n"), (Lines{std::string(197, 'x'), ""}));
}

TEST_F(ConfigurationReaderTest, AnUnterminatedLastLineIsLost) {
    EXPECT_EQ(linesOf("one\ntwo"), Lines{"one"});
    EXPECT_EQ(linesOf("one"), Lines{});
    EXPECT_EQ(linesOf("one\r"), Lines{});
    // 198 bytes are a line whatever follows.
    EXPECT_EQ(linesOf(std::string(198, 'x')), Lines{std::string(198, 'x')});
    EXPECT_EQ(linesOf(std::string(250, 'x')), Lines{std::string(198, 'x')});
}

TEST_F(ConfigurationReaderTest, TheEndIsEofForEver) {
    give("one\n");
    EXPECT_EQ(reader.nextLine(), "one");
    EXPECT_EQ(reader.nextLine(), "EOF");
    EXPECT_EQ(reader.nextLine(), "EOF");
    give("next\n");
    EXPECT_EQ(reader.nextLine(), "next");
}

TEST_F(ConfigurationReaderTest, ARealEofLineEndsTheOutput) {
    EXPECT_EQ(linesOf("one\nEOF\ntwo\n"), Lines{"one"});
    EXPECT_EQ(reader.nextLine(), "EOF"); // and what follows it stays unread
    EXPECT_EQ(linesOf("one\nEOF \ntwo\n"), (Lines{"one", "EOF ", "two"}));
}

TEST_F(ConfigurationReaderTest, WithoutOutputThereIsOnlyTheEnd) {
    EXPECT_FALSE(reader.hasListing());
    EXPECT_EQ(reader.nextLine(), "EOF");
    give("");
    EXPECT_TRUE(reader.hasListing());
    reader.setListing(listing, 1);
    EXPECT_FALSE(reader.hasListing());
    EXPECT_EQ(reader.nextLine(), "EOF");
}

TEST_F(ConfigurationReaderTest, SkippingStopsAtAnEqualLineOrTheEnd) {
    give("one\nwanted, not quite\nwanted\nafter\n");
    EXPECT_EQ(reader.skipTo("wanted"), "wanted");
    EXPECT_EQ(reader.nextLine(), "after");
    EXPECT_EQ(reader.skipTo("wanted"), "EOF");
}

TEST_F(ConfigurationReaderTest, PositionsOutOfRangeAreNamed) {
    for (const auto& [channel, id] : {std::pair(0, 0), {1, 0}, {4, 35}}) {
        EXPECT_TRUE(reader.checkPosition(channel, id)) << channel << ":" << id;
    }
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
    for (const auto& [channel, id] : {std::pair(-1, 3), {5, 0}, {1, -1}, {1, 36}}) {
        EXPECT_FALSE(reader.checkPosition(channel, id)) << channel << ":" << id;
        EXPECT_EQ(platform.consoleFake.takeOutput(),
                  "\n#### ERROR\n\tDrive position out of range for controller LSI-MegaRAID-8480:  "
                  "channel=" +
                      std::to_string(channel) + ", id=" + std::to_string(id) + "\n\n");
    }
}

TEST_F(ConfigurationReaderTest, WhatIsBeyondALimitIsNamedOnceForEachKind) {
    RaidArray array;
    const auto addAll = [&](int times) {
        for (int i = 0; i < times; ++i) {
            reader.addArray(configuration, RaidArray());
            reader.addLogicalDrive(configuration, LogicalDrive());
            reader.addHotspare(configuration, Hotspare());
            reader.addMember(array, {1, 0});
        }
    };
    addAll(8);
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
    addAll(1);
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 8 logical drives; the "
              "rest is not captured.\n\n"
              "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 8 hot-spare drives; the "
              "rest is not captured.\n\n");
    addAll(7);
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
    EXPECT_FALSE(reader.addArray(configuration, RaidArray()));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 16 arrays; the rest is "
              "not captured.\n\n");
    for (int i = 16; i < 32; ++i) {
        EXPECT_TRUE(reader.addMember(array, {1, 0}));
    }
    EXPECT_FALSE(reader.addMember(array, {1, 0}));
    EXPECT_FALSE(reader.addMember(array, {1, 0}));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 32 drives in an array; "
              "the rest is not captured.\n\n");
    EXPECT_EQ(configuration.arrays().size(), 16U);
    EXPECT_EQ(configuration.logicalDrives().size(), 8U);
    EXPECT_EQ(configuration.hotspares().size(), 8U);
    EXPECT_EQ(array.drives().size(), 32U);
}

TEST_F(ConfigurationReaderTest, TheNextControllerIsNamedAnew) {
    RAIDConfiguration full;
    for (int i = 0; i < 9; ++i) {
        reader.addLogicalDrive(full, LogicalDrive());
    }
    platform.consoleFake.takeOutput();
    RAIDController other;
    other.setType(controller_type::lsiSas);
    other.setSubtype(1);
    reader.beginController(other);
    EXPECT_FALSE(reader.addLogicalDrive(full, LogicalDrive()));
    EXPECT_EQ(platform.consoleFake.takeOutput(),
              "\n#### ERROR\n\tController LSI-SAS-1078-IR has more than 8 logical drives; the rest "
              "is not captured.\n\n");
}

} // namespace
} // namespace zolex::test
