#include "support/ReaderRun.h"
#include "show/Dumps.h"

#include "driver/Application.h"
#include "inventory/ControllerList.h"
#include "policies/PolicyText.h"
#include "readers/DiskInformation.h"
#include "support/Check.h"
#include "support/FakePlatform.h"
#include "support/ModelCheck.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace zolex::fuzz {

namespace {

/// Whatever was read, its policy is a section of short lines.
void checkPolicyText(std::string_view policy) {
    constexpr std::size_t longestLine = 255;
    check(policy.starts_with("[Policy.fuzz]\n") && policy.ends_with("\n"), "shape of a policy");
    while (!policy.empty()) {
        const std::size_t end = policy.find('\n');
        check(end <= longestLine, "a line that a policies file can hold");
        policy.remove_prefix(end + 1);
    }
}

} // namespace

void readListings(std::span<const std::int32_t> types, Input input) {
    constexpr std::array verbosities = {level::always, level::progress, level::detail,
                                        level::traces};
    const unsigned choice = input.choice();
    test::FakePlatform platform;
    Application application(platform);
    const Detail detail{.layout = (choice & 1U) != 0, .dumpRecords = (choice & 2U) != 0};
    application.printer().setVerbosity(verbosities[(choice >> 2U) & 3U]);

    ControllerList controllers;
    RAIDController& controller = *controllers.add();
    controller.setType(types[((choice >> 4U) & 3U) % types.size()]);
    controller.setSubtype(static_cast<std::int32_t>(choice >> 6U));
    controllers.setControllerScanOrders(application.report());
    // One more than a run keeps.
    constexpr std::size_t mostListings = 5;
    std::vector<std::vector<std::string>> listings(1);
    while (listings[0].empty() || (listings[0].size() < mostListings && !input.atEnd())) {
        listings[0].emplace_back(input.text());
    }

    const RAIDController before = controller;
    const auto given = listings;
    DiskInformation information(detail, application.report());
    const bool read = information.readDiskInformation(controllers, listings);
    checkController(controller);
    check(listings == given, "listings stay as they are");
    const RAIDController first = std::exchange(controller, before);
    check(information.readDiskInformation(controllers, listings) == read && controller == first,
          "reading twice gives the same");
    application.printer().printAlways(show::dumpText(controller, true));
    if (controller.captured() != nullptr) {
        CapturedFacts facts;
        facts.policyName = "Policy.fuzz";
        facts.explicitSizes = application.catalogue().acceptsExplicitSize(controller.type());
        checkPolicyText(policyBodyText(facts, "ALL", controller));
    }
}

} // namespace zolex::fuzz
