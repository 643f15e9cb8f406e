#include "faults/FaultRun.h"

#include "foundation/AllocationFaults.h"
#include "foundation/ErrorReporter.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <set>
#include <utility>

namespace zolex::test {

namespace {

constexpr const char* policiesName = "p.ini";
constexpr const char* tempName = "ZOLEXM~~.TMP";

/// One policy a model, as a capture of this server would name them.
constexpr const char* policies = "; of the operator\n"
                                 "[Policy.AUTO-LSI-MegaRAID-8480-1]\n"
                                 "AppliesTo.1 = t:LSI-MegaRAID-8480\n"
                                 "StripeSize = 64\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Hotspares = 3\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n"
                                 "\n"
                                 "[Policy.two-drives]\n"
                                 "AppliesTo.1 = t:Kestrix-A10\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1\n"
                                 "\n"
                                 "[Policy.rest]\n"
                                 "AppliesTo.1 = m:8837\n"
                                 "AppliesTo.2 = ALL\n";

constexpr const char* definition = "[Controller.0]\nType = 12\nSubType = 1\n"
                                   "C1S0 = 69376\nC1S1 = 69376\nC1S2 = 69376\n"
                                   "[Controller.1]\nType = 4\nC1S0 = 76000\nC1S1 = 76000\n";

constexpr const char* inventory = "[System]\nTotal_Number_Of_Controllers = 2\n"
                                  "machType = 8837\nserial = KQ12345\n"
                                  "[RAIDController.1]\nModel = LSI-MegaRAID-8480\n"
                                  "[RAIDController.1.Physical]\nTotal_Number_Of_Physicals = 3\n"
                                  "Channel.1 = 1\nID.1 = 0\nSize.1 = 69376\n"
                                  "Channel.2 = 1\nID.2 = 1\nSize.2 = 69376\n"
                                  "Channel.3 = 1\nID.3 = 2\nSize.3 = 69376\n"
                                  "[RAIDController.2]\nModel = Kestrix-A10\n"
                                  "[RAIDController.2.Physical]\nTotal_Number_Of_Physicals = 2\n"
                                  "Channel.1 = 1\nID.1 = 0\nSize.1 = 76000\n"
                                  "Channel.2 = 1\nID.2 = 1\nSize.2 = 76000\n";

/// The listing with sound drives of one size, which defaults can make an array of.
std::string withEqualDrives(std::string listing) {
    const std::size_t drives = listing.find("Physical device information");
    for (const auto& [from, to] : {std::pair{"140012 MB", "70006 MB"},
                                   {"70007 MB", "70006 MB"},
                                   {": Defunct", ": Online"}}) {
        for (std::size_t at = listing.find(from, drives); at != std::string::npos;
             at = listing.find(from, drives)) {
            listing.replace(at, std::string_view(from).size(), to);
        }
    }
    return listing;
}

ChildResult answer(const std::string& command) {
    if (holds(command, " HRCONF GETCONFIG ")) {
        return FakePlatform::ended(0, withEqualDrives(readTestData("hrconf-getconfig.txt")));
    }
    if (holds(command, " ARCCONF GETCONFIG ")) {
        return FakePlatform::ended(0, readTestData("arcconf-getconfig-plain.txt"));
    }
    if (holds(command, " CFGGEN ") && holds(command, " DISPLAY")) {
        return FakePlatform::ended(0, cfggenBusListing(5));
    }
    return FakePlatform::ended(0);
}

} // namespace

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/// Dumps name the place of an object in memory, which differs from run to run.
static std::string withoutAddresses(std::string text) {
    const std::string start = " at address ";
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
        at += start.size();
        text.erase(at, text.find('\n', at) - at);
    }
    return text;
}

std::string policiesBefore(const Scenario& scenario) {
    return scenario.policies == nullptr ? "" : scenario.policies;
}

const std::vector<Scenario>& scenarios() {
    // clang-format off
    static const std::vector<Scenario> rows = {
        {"capture into a new file",      {"/c", "/f:p.ini"},                        nullptr,  false, false},
        {"capture appends",              {"/c:m,s,t,d", "/f:p.ini"},                policies, false, false},
        {"capture for debugging",        {"/c", "/f:p.ini", "/debug"},              policies, true,  false},
        {"deploy by policies",           {"/f:p.ini", "/e1", "/e3"},                policies, false, false},
        {"deploy defaults, verbose",     {"/d", "/v:5"},                            nullptr,  false, false},
        {"restore",                      {"/r", "/y"},                              nullptr,  false, false},
        {"restore in order of bus",      {"/r", "/y"},                              nullptr,  false, true},
        {"restore, then deploy",         {"/r", "/y", "/f:p.ini"},                  policies, false, false},
        {"restore one, then deploy",     {"/r:2", "/y", "/f:p.ini"},                policies, false, false},
        {"restore one, then capture",    {"/r:1", "/y", "/c", "/f:p.ini"},          policies, false, false},
        {"detection",                    {"/e2"},                                   nullptr,  false, false},
        {"definition, capture",          {"/controllers:def.ini", "/c", "/f:p.ini"}, policies, false, false},
        {"definition, deploy",           {"/controllers:def.ini", "/f:p.ini"},      policies, false, false},
        {"inventory, capture",           {"/fake", "/c", "/f:p.ini"},               policies, false, false},
        {"inventory, deploy",            {"/fake", "/f:p.ini"},                     policies, false, false},
        {"parameters of a file",         {"@params.txt"},                           policies, false, false},
    };
    // clang-format on
    return rows;
}

FaultRun::FaultRun(const Scenario& scenario, Fault fault)
    : scenario_(scenario), platform_(server_.platform, fault) {
    server_.addMegaRaid();
    server_.addDevice(0x9005, 0x808F); // type 4
    server_.addDevice(0x9005, 0x0286); // type 11
    if (scenario.ordersByBus) {
        server_.addDevice(0x1000, 0x0058); // type 10
        server_.hardware = "Machine_Type=5941\nSerial_Number=KQ12345\n";
    }
    server_.driveList = readTestData("megacli-pdlist-early.txt");
    server_.configurationList = readTestData("megacli-ldpdinfo-early.txt");
    server_.adapterList = readTestData("megacli-adpallinfo.txt");
    server_.respond = answer;
    auto& files = server_.platform.fileFake.files;
    files["def.ini"] = definition;
    files["contlist.ini"] = inventory;
    files["params.txt"] = "/c /f:p.ini\n";
    if (scenario.policies != nullptr) {
        files[policiesName] = scenario.policies;
    }
}

std::vector<const char*> FaultRun::arguments() const {
    const UncountedAllocations uncounted;
    std::vector<const char*> values = {"zolex"};
    for (const std::string& argument : scenario_.arguments) {
        values.push_back(argument.c_str());
    }
    return values;
}

Outcome FaultRun::run() {
    constexpr int resources = 10;
    const std::vector<const char*> values = arguments();
    int code = resources;
    try {
        code = ZOLEX::run(static_cast<int>(values.size()), values.data(), platform_);
    } catch (const std::bad_alloc&) {
        reportError(platform_.console(), ReportMode::goOn, ReportCategory::memoryAllocation,
                    "ZOLEX::main");
    }
    const UncountedAllocations uncounted;
    return outcome(code);
}

void FaultRun::runMain() {
    const std::vector<const char*> values = arguments();
    ZOLEX::main(static_cast<int>(values.size()), values.data(), platform_);
}

Outcome FaultRun::outcome(int exitCode) {
    const std::set<std::string> before = {"def.ini", "contlist.ini", "params.txt"};
    Outcome outcome;
    outcome.exitCode = exitCode;
    outcome.output = withoutAddresses(server_.platform.consoleFake.output);
    outcome.error = server_.platform.consoleFake.error;
    outcome.children = server_.platform.children;
    outcome.children.erase(std::unique(outcome.children.begin(), outcome.children.end()),
                           outcome.children.end());
    for (const auto& [name, content] : server_.platform.fileFake.files) {
        if (name == policiesName) {
            outcome.hasPolicies = true;
            outcome.policies = content;
        } else if (name == tempName) {
            outcome.hasTempFile = true;
        } else if (before.count(name) == 0) {
            outcome.otherFiles.push_back(name);
        }
    }
    outcome.struck = platform_.struck;
    outcome.openFiles = platform_.openFiles;
    outcome.openKeys = platform_.openKeys;
    for (std::size_t i = 0; i < operations; ++i) {
        outcome.calls[i] = platform_.calls(static_cast<Operation>(i));
    }
    return outcome;
}

namespace {

/// The file is as it was, or holds all new policies; what is in between has been reported.
void expectWholePolicies(const Scenario& scenario, const Outcome& whole, const Outcome& got) {
    const std::string before = policiesBefore(scenario);
    const bool isPartial = holds(got.output, "Error writing to policies file.\n"
                                             "Warning: Partial data may have been written.\n");
    if (isPartial) {
        EXPECT_EQ(9, got.exitCode);
        EXPECT_TRUE(whole.policies.starts_with(got.policies)) << got.policies;
        EXPECT_TRUE(got.policies.starts_with(before)) << got.policies;
        return;
    }
    if (got.exitCode == 0) {
        EXPECT_EQ(whole.policies, got.policies);
        return;
    }
    EXPECT_TRUE(got.policies == before || got.policies == whole.policies) << got.policies;
    if (scenario.policies == nullptr && got.policies.empty()) {
        EXPECT_FALSE(got.hasPolicies) << "an empty file was made";
    }
}

} // namespace

void expectNoHarm(const Scenario& scenario, const Outcome& whole, const Outcome& got) {
    static const std::set<int> documented = {0, 1, 2, 3, 4, 5, 7, 8, 9, 10, 11};
    EXPECT_EQ(1U, documented.count(got.exitCode)) << got.exitCode;
    expectWholePolicies(scenario, whole, got);
    EXPECT_TRUE(got.otherFiles.empty()) << testing::PrintToString(got.otherFiles);
    if (!scenario.keepsTempFile) {
        EXPECT_EQ(got.hasTempFile, holds(got.error, "Could not delete temp file:  ZOLEXM~~.TMP\n"));
    }
    if (got.exitCode == 0) {
        EXPECT_EQ(whole.children, got.children);
    } else {
        ASSERT_LE(got.children.size(), whole.children.size());
        EXPECT_TRUE(std::equal(got.children.begin(), got.children.end(), whole.children.begin()))
            << testing::PrintToString(got.children);
        EXPECT_FALSE(got.output.empty() && got.error.empty()) << "nothing was said";
    }
}

} // namespace zolex::test
