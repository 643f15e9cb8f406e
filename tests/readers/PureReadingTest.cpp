#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "model/RAIDController.h"
#include "readers/ConfigurationReader.h"
#include "readers/MegaCliListings.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::test::pure_reading {
namespace {

using Texts = std::vector<std::string>;

/// Keeps what it is told, one text for each thing.
class KeepingReport : public Report {
  public:
    void fault(const Fault& fault) override { faults.push_back(fault); }
    void note(std::int32_t level, std::string_view text) override {
        texts.push_back(std::to_string(level) + std::string(text));
    }
    void trace(std::string_view text) override { texts.emplace_back(text); }
    [[nodiscard]] bool shows(std::int32_t /*level*/) const override { return true; }

    std::vector<Fault> faults;
    Texts texts;
};

/// What reading comes to.
struct Reading {
    bool read = false;
    RAIDController controller;
    std::vector<Fault> faults;
    Texts texts;
    friend bool operator==(const Reading&, const Reading&) = default;
};

struct Sample {
    std::int32_t type;
    std::string name;
    Texts listings;
};

std::vector<Sample> samples() {
    const auto megaCli = [](const std::string& state) -> Texts {
        const std::vector<PdText> drives = {{.slot = 0}, {.slot = 1}, {.slot = 2, .state = state}};
        VdText disk;
        disk.spans = {{drives[0], drives[1]}};
        return {configurationListing({disk}), driveListing(drives), "Adapter #0\nFW Version : 1\n"};
    };
    const Texts ideListings = {"Error Code (hex): 0000\nLOGICAL_ARRAY\nRAID_MODE: MIRROR\n"
                               "TOTAL_PHYSICAL_DRIVES: 2\n",
                               "Error Code (hex): 0000\n"};
    return {
        {controller_type::hrconf9, "HRCONF", {readTestData("hrconf-getconfig.txt")}},
        {controller_type::lsiIde, "HYPERWIN", ideListings},
        {controller_type::lsiIde, "HYPERWIN, fault", {"LOGICAL_ARRAY\nRAID_MODE ?\n"}},
        {controller_type::megaRaid, "MEGACLI", megaCli("Hotspare")},
        {controller_type::megaRaid, "MEGACLI, cut", {megaCli("Online")[0].substr(0, 400), "", ""}},
        {controller_type::family, "nothing", {""}},
    };
}

Reading readWith(ConfigurationReader& reader, KeepingReport& report, const Sample& sample) {
    Reading result;
    report.faults.clear();
    report.texts.clear();
    result.controller.setType(sample.type);
    result.controller.setSubtype(1);
    const Texts before = sample.listings;
    result.read = reader.readConfiguration(result.controller, sample.listings);
    EXPECT_EQ(sample.listings, before) << sample.name;
    result.faults = report.faults;
    result.texts = report.texts;
    return result;
}

TEST(PureReading, TwiceGivesEqualValuesWhateverWasReadBetween) {
    std::size_t drives = 0;
    std::size_t faults = 0;
    for (const Sample& sample : samples()) {
        KeepingReport report;
        const auto reader = findReader(sample.type)->create({.layout = true}, report);
        const Reading first = readWith(*reader, report, sample);
        drives += static_cast<std::size_t>(first.controller.numberOfDrives());
        faults += first.faults.size();
        for (const Sample& other : samples()) {
            readWith(*reader, report, {sample.type, other.name, other.listings});
            EXPECT_EQ(readWith(*reader, report, sample), first)
                << sample.name << " after " << other.name;
        }
    }
    EXPECT_GE(drives, 10U);
    EXPECT_GE(faults, 1U);
}

TEST(PureReading, FaultsAreRecords) {
    KeepingReport report;
    const auto reader = findReader(controller_type::lsiIde)->create({.layout = true}, report);
    const Reading failed = readWith(
        *reader, report, {controller_type::lsiIde, "", {"LOGICAL_ARRAY\nSTRIPE_SIZE: 3KB\n"}});
    EXPECT_FALSE(failed.read);
    ASSERT_EQ(failed.faults.size(), 1U);
    EXPECT_EQ(failed.faults[0].kind, FaultKind::listingStripeUnknown);
    EXPECT_EQ(failed.faults[0].wanted, "3KB");

    const auto mega = findReader(controller_type::megaRaid)->create({}, report);
    const Reading outside =
        readWith(*mega, report, {controller_type::megaRaid, "", {driveListing({{.slot = 36}})}});
    ASSERT_EQ(outside.faults.size(), 1U);
    EXPECT_EQ(outside.faults[0].kind, FaultKind::listingPositionInvalid);
    EXPECT_EQ(outside.faults[0].place.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(outside.faults[0].place.channel, 1);
    EXPECT_EQ(outside.faults[0].place.id, 36);
}

TEST(PureReading, ACapturedHotSpareHasItsPositionAndItsEnclosure) {
    KeepingReport report;
    const auto reader = findReader(controller_type::megaRaid)->create({.layout = true}, report);
    VdText disk;
    disk.spans = {{{.enclosure = "8", .slot = 0}, {.enclosure = "8", .slot = 1}}};
    const std::vector<PdText> drives = {{.enclosure = "8", .slot = 0},
                                        {.enclosure = "8", .slot = 1},
                                        {.enclosure = "252", .slot = 5, .state = "Hotspare"}};
    const Reading result = readWith(
        *reader, report,
        {controller_type::megaRaid, "", {configurationListing({disk}), driveListing(drives)}});
    const RAIDConfiguration* layout = result.controller.captured();
    ASSERT_NE(layout, nullptr);
    ASSERT_EQ(layout->hotspares().size(), 1U);
    EXPECT_EQ(layout->hotspares()[0].channelNumber, 2);
    EXPECT_EQ(layout->hotspares()[0].id, 5);
    EXPECT_EQ(layout->hotspares()[0].enclosure, 252);
    // A member of the layout that was read can still be taken by a plan.
    EXPECT_TRUE(result.controller.isUsed(1, 0));
    EXPECT_TRUE(result.controller.usable({1, 0}));
}

} // namespace
} // namespace zolex::test::pure_reading
