#include "companion/json/FleetDocument.h"

#include "companion/picture/ExampleFleet.h"
#include "companion/support/KeptDocument.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

const DocumentHead fleetHead{{"rehearse", "site.ini", "fleet"}, "2026-11-22T09:17:00+00:00"};

TEST(FleetDocument, TellsEachServerAndAllOfThem) {
    Fleet fleet = test::exampleFleet();
    fleet.suppositions = {{Supposition::Kind::size, "32:3", 34715}};
    fleet.everyFault = true;
    fleet.servers[1].faultsTried = 15;
    fleet.servers[1].unresumed = {{1, "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT"}};
    fleet.findings = {test::fleetFinding("ZP246", Severity::warning, "a server is counted twice")};
    const std::string text = fleetDocument(fleet, fleetHead);
    test::keepDocument("fleet-by-hand", text);
    for (const char* piece :
         {"  \"format\": \"zolex-fleet\",\n  \"format_version\": \"1.0\",",
          "    \"servers\": 5,\n    \"as_planned\": 2,\n    \"same\": 1,\n    \"skipped\": 1,\n"
          "    \"error\": 1,\n    \"losing\": 1,\n    \"not_known\": 1,",
          "\"capacity_bytes\": 36401315840,", "\"servers\": 4", "\"capacity_bytes\": 217969590272",
          "\"result\": \"as-planned\"", "\"result\": \"same\"", "\"result\": \"skipped\"",
          "\"result\": \"error\"", "\"loses\": null,\n      \"commands\": null",
          "\"kind\": \"specifier\"", "\"specifier\": \"d:6\"", "\"every_fault\": true"}) {
        EXPECT_NE(text.find(piece), std::string::npos) << piece << "\n" << text;
    }
}

TEST(FleetDocument, TellsWhyThereIsNone) {
    Fleet fleet;
    const std::string text = failedFleetDocument(
        fleet, {test::fleetFinding("ZX001", Severity::error, "the file cannot be read")},
        fleetHead);
    test::keepDocument("fleet-failed", text);
    EXPECT_NE(text.find("\"policies\": null"), std::string::npos) << text;
    EXPECT_NE(text.find("\"servers\": []"), std::string::npos) << text;
    EXPECT_NE(text.find("\"code\": \"ZX001\""), std::string::npos) << text;
}

} // namespace
} // namespace zolex::companion
