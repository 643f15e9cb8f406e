#include "BindingChecks.h"
#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"

#include <gtest/gtest.h>

#include <random>

namespace zolex::companion {
namespace {

using test::SimulatedPlatform;

/// Random policies of such entries, most of them of the right form.
class RandomEntries {
  public:
    explicit RandomEntries(std::uint32_t seed) : random_(seed) {}

    std::string policy(const ControllerSnapshot& controller) {
        std::string text = "; some\n[Policy.a]\nAppliesTo.1 = ALL\n";
        const int arrays = 1 + static_cast<int>(below(3));
        for (int i = 0; i < arrays; ++i) {
            text += std::string("Drives.") + static_cast<char>('A' + i) + " = " +
                    drives(controller) + end();
        }
        if (below(2) == 0) {
            text += "Spares = 1" +
                    pick({"", " covering A", " and 1", " covering a , A", " covering B"}) + end();
        }
        if (below(3) == 0) {
            text += "Level.A = " + pick({"6 else 5", "10 else 1 else 0", "5", "1E else VOLUME"}) +
                    end();
        }
        return text + pick({"", "Array_Mode = CUSTOM", "; last\r\n", "Logical_Defaults = 50%:1:ON",
                            "Logical_Mode = CUSTOM\nLogical.1 = B:FILL:1"});
    }

    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }

  private:
    std::uint32_t below(std::uint32_t end) { return static_cast<std::uint32_t>(random_()) % end; }
    std::string pick(const std::vector<std::string>& words) {
        return words[below(static_cast<std::uint32_t>(words.size()))];
    }
    std::string end() { return pick({"\n", "\n", "\r\n", "\n; x\n\n"}); }

    std::string drives(const ControllerSnapshot& controller) {
        if (below(4) == 0 && !controller.drives.empty()) {
            const auto& of = [&]() -> const DriveFacts& {
                return controller
                    .drives[below(static_cast<std::uint32_t>(controller.drives.size()))]
                    .facts;
            };
            return below(2) == 0 ? "slots " + of().location + "," + of().location
                                 : "serials " + of().serialNumber;
        }
        return pick({"", "", "smallest ", "largest "}) +
               pick({"1 x", "2 x", "3 x", "rest", "all"}) + pick({"", "", " SSD", " HDD"}) +
               pick({"", "", " SAS", " SATA", " SCSI"}) +
               pick({"", "", " <100GB", " >40GB", " =68GB", " 30GB-2TB"}) +
               pick({"", " any size", " of one size"});
    }

    std::mt19937 random_;
};

TEST(BindingProperties, HoldForRandomEntriesOnChangedSamples) {
    std::vector<Snapshot> snapshots;
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        snapshots.push_back(captureMachine(platform, {}));
    }
    RandomEntries random(13);
    std::size_t bound = 0;
    std::size_t refused = 0;
    for (int round = 0; round < 400; ++round) {
        for (const Snapshot& snapshot : snapshots) {
            ControllerSnapshot controller = snapshot.details.front();
            for (int i = 0; i < 3; ++i) {
                test::changeDrive(controller, random.byte());
            }
            const RAIDController& record = *snapshot.controllers.controller(controller.index);
            const std::string text = random.policy(controller);
            ASSERT_EQ(test::wrongBinding(text, 0, controller, record), "") << text;
            (bindPolicy(text, 0, controller, record).faults.empty() ? bound : refused) += 1;
        }
    }
    EXPECT_GT(bound, 400U);
    EXPECT_GT(refused, 1000U);
}

} // namespace
} // namespace zolex::companion
