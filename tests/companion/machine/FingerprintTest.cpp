#include "companion/machine/Fingerprint.h"

#include "companion/machine/Capture.h"
#include "companion/machine/Sha256.h"
#include "companion/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

Snapshot captured(const char* sample) {
    SimulatedPlatform platform(sample);
    return captureMachine(platform, {});
}

TEST(Fingerprint, TheSameMachineHasTheSame) {
    const Fingerprint first = fingerprintOf(captured("configured"));
    EXPECT_EQ(first, fingerprintOf(captured("configured")));
    EXPECT_EQ(first.machineType, "8837");
    EXPECT_EQ(first.serialNumber, "KQ10Z7W");
    ASSERT_EQ(first.controllers.size(), 1U);
    EXPECT_EQ(first.controllers[0],
              (Fingerprint::Controller{1, "0000:02:0e.0", "1000:0411:1000:1002",
                                       "LSI-MegaRAID-8480", "0000000001"}));
    EXPECT_EQ(first.identity.size(), 64U);
    EXPECT_EQ(Fingerprint::algorithm, "zolex-fp-1");
}

TEST(Fingerprint, AllSamplesDiffer) {
    std::set<std::string> identities;
    std::set<std::string> states;
    for (const std::string& sample : SimulatedPlatform::samples()) {
        const Fingerprint print = fingerprintOf(captured(sample.c_str()));
        identities.insert(print.identity);
        states.insert(print.state);
    }
    EXPECT_EQ(identities.size(), SimulatedPlatform::samples().size());
    EXPECT_EQ(states.size(), SimulatedPlatform::samples().size());
}

TEST(Fingerprint, EachFieldChangesItsPartAlone) {
    struct Row {
        const char* what;
        bool identity;
        std::function<void(Snapshot&)> change;
    };
    const Row rows[] = {
        {"machine type", true, [](Snapshot& s) { s.machine.machineType = "1"; }},
        {"serial number", true, [](Snapshot& s) { s.machine.serialNumber = "1"; }},
        {"pci", true, [](Snapshot& s) { s.details[0].pci = "0000:03:00.0"; }},
        {"ids", true, [](Snapshot& s) { s.details[0].pciIds = "1:2:3:4"; }},
        {"model", true, [](Snapshot& s) { s.details[0].model = "Kestrix-C1"; }},
        {"controller", true, [](Snapshot& s) { s.details[0].facts.serialNumber = "X"; }},
        {"one more", true, [](Snapshot& s) { s.details.push_back(s.details[0]); }},
        {"drive serial", false,
         [](Snapshot& s) { s.details[0].drives[3].facts.serialNumber = "X"; }},
        {"location", false, [](Snapshot& s) { s.details[0].drives[3].facts.location = "9:9"; }},
        {"size", false, [](Snapshot& s) { s.details[0].drives[3].facts.capacityBytes = 1; }},
        {"failed", false,
         [](Snapshot& s) { s.details[0].drives[3].facts.state = DriveState::failed; }},
        {"one drive less", false, [](Snapshot& s) { s.details[0].drives.pop_back(); }},
        {"layout", false, [](Snapshot& s) { s.details[0].facts.logicalDrives.pop_back(); }},
        {"spare", false,
         [](Snapshot& s) {
             s.details[0].facts.drives[7].hotspare = HotspareKind::none;
             s.details[0].facts.drives[7].state = DriveState::free;
         }},
        {"foreign", false,
         [](Snapshot& s) { s.details[0].facts.foreignConfigurations.emplace_back("x"); }},
    };
    const Snapshot before = captured("configured");
    const Fingerprint print = fingerprintOf(before);
    for (const Row& row : rows) {
        Snapshot after = before;
        row.change(after);
        const Fingerprint changed = fingerprintOf(after);
        EXPECT_EQ(changed.identity != print.identity, row.identity) << row.what;
        if (!row.identity) {
            EXPECT_NE(changed.state, print.state) << row.what;
        }
    }
}

/// Every controller behind it has another number then, and policies with c: mean another one.
TEST(Fingerprint, ACardThatIsAddedAtALowerBusMakesAnotherMachine) {
    SimulatedPlatform platform("two-controllers");
    const Fingerprint before = fingerprintOf(captureMachine(platform, {}));
    PciDevice card;
    card.bus = 1;
    card.vendorId = 0x9005;
    card.deviceId = 0x0286;
    platform.devices.push_back(card);
    const Fingerprint after = fingerprintOf(captureMachine(platform, {}));
    EXPECT_NE(after.identity, before.identity);
    ASSERT_EQ(after.controllers.size(), 3U);
    EXPECT_EQ(after.controllers[1].serialNumber, before.controllers[0].serialNumber);
    EXPECT_EQ(after.controllers[1].number, 2);
}

TEST(Fingerprint, FieldsDoNotRunIntoEachOther) {
    Snapshot one = captured("single");
    one.machine = {"AB", "C"};
    Snapshot other = one;
    other.machine = {"A", "BC"};
    EXPECT_NE(fingerprintOf(one).identity, fingerprintOf(other).identity);
}

TEST(Fingerprint, TheOrderOfTheListingsDoesNotCount) {
    Snapshot one = captured("configured");
    Snapshot other = one;
    std::swap(other.details[0].drives[1], other.details[0].drives[4]);
    EXPECT_EQ(fingerprintOf(one).state, fingerprintOf(other).state);
}

TEST(Fingerprint, TheHashOfALayoutIsThatOfItsNormalForm) {
    EXPECT_EQ(layoutHash(Facts()),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    Facts facts;
    facts.foreignConfigurations = {"one"};
    EXPECT_EQ(layoutHash(facts), sha256("foreign configuration one\n"));
}

TEST(Fingerprint, StrengthIsThatOfTheSerialNumbersThatAreTold) {
    struct Row {
        const char* sample;
        const char* strength;
    };
    for (const Row& row :
         {Row{"single", "serials"}, Row{"arcconf", "serials"}, Row{"hrconf", "serials"},
          Row{"qtcsend", "drives"}, Row{"cfggen", "drives"}, Row{"hyperwin", "machine"},
          Row{"mixed", "machine"}}) {
        EXPECT_EQ(strengthWord(fingerprintOf(captured(row.sample)).strength), row.strength)
            << row.sample;
    }
    Snapshot unknown = captured("hyperwin");
    unknown.machine.serialNumber = "To Be Filled By O.E.M.";
    const Fingerprint print = fingerprintOf(unknown);
    EXPECT_EQ(strengthWord(print.strength), "positions");
    EXPECT_EQ(print.serialNumber, "");
}

TEST(Fingerprint, PlaceholdersCountAsNotTold) {
    for (const char* const text : {"",
                                   "None",
                                   "NONE",
                                   "To Be Filled By O.E.M.",
                                   "to be filled by O.E.M",
                                   "0",
                                   "00000000",
                                   "Default string",
                                   "System Serial Number",
                                   "0123456789",
                                   "Not Specified",
                                   "N/A",
                                   "n/a",
                                   "Unknown",
                                   "xxxxxxxxxx",
                                   "FFFFFFFF",
                                   "  ",
                                   "................",
                                   "Not Available",
                                   "INVALID",
                                   "Chassis Serial Number"}) {
        EXPECT_TRUE(isPlaceholder(text)) << text;
    }
    for (const char* const text :
         {"KQ10Z7V", "1122334455", "0000000001", "00000A", "None1", "S1", "1"}) {
        EXPECT_FALSE(isPlaceholder(text)) << text;
    }
}

} // namespace
} // namespace zolex::companion
