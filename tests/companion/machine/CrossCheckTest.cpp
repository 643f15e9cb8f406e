#include "companion/machine/CrossCheck.h"

#include "model/ControllerCatalogue.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(CrossCheck, ModelsAreFoundInProductNames) {
    struct Row {
        const char* name;
        const char* model;
    };
    for (const Row& row :
         {Row{"Norvik Kestrix B7", "Kestrix-B7"}, Row{"KESTRIX-C1", "Kestrix-C1"},
          Row{"Kestrix A1", "Kestrix-A1"}, Row{"Kestrix A10", "Kestrix-A10"},
          Row{"Kestrix A11", ""}, Row{"LSI-MegaRAID-8480", "LSI-MegaRAID-8480"},
          Row{"LSI MegaRAID SAS 8480E", ""}, Row{"MegaRAID SAS 6G", ""}, Row{"SAS1064E", ""},
          Row{"LSI1030", ""}, Row{"", ""}, Row{"Kestrix controller", ""}}) {
        EXPECT_EQ(modelInName(row.name), row.model) << row.name;
    }
}

std::vector<std::string> findings(std::int32_t type, std::int32_t subtype,
                                  const std::string& product, const std::string& model) {
    FunctionIdentity function;
    function.type = type;
    function.subtype = subtype;
    function.pci = "0000:02:00.0";
    ControllerSnapshot snapshot;
    snapshot.facts.productName = product;
    snapshot.model = model;
    checkAgainstFunction(function, snapshot);
    std::vector<std::string> result;
    for (const Finding& finding : snapshot.findings) {
        result.push_back(finding.summary);
    }
    return result;
}

TEST(CrossCheck, AListingMayTellMoreThanThePciFunction) {
    const std::vector<std::string> none;
    EXPECT_EQ(findings(11, 2, "Norvik Kestrix B8", "Kestrix-B8"), none); // one function, two models
    EXPECT_EQ(findings(12, 8, "Kestrix-C8", "Kestrix-C8"), none);
    EXPECT_EQ(findings(1, -1, "Kestrix-A4", "Kestrix-A4"), none);
    EXPECT_EQ(findings(1, 1, "Kestrix-A1", "Kestrix-A1"), none);
    EXPECT_EQ(findings(12, 2, "RAID card", "Kestrix-C1"), none);
}

TEST(CrossCheck, AnotherModelIsTold) {
    EXPECT_EQ(findings(1, 1, "Kestrix-A3", "Kestrix-A3"),
              std::vector<std::string>{"the listing is of a Kestrix-A3, the PCI function "
                                       "0000:02:00.0 of a Kestrix-A1"});
    EXPECT_EQ(findings(12, 2, "Kestrix C3", "Kestrix-C1"),
              std::vector<std::string>{"the listing is of a Kestrix-C3, the PCI function "
                                       "0000:02:00.0 of a Kestrix-C1"});
}

TEST(CrossCheck, AddressesAreComparedWithAndWithoutADomain) {
    FunctionIdentity function;
    function.pci = "0000:02:0e.0";
    function.pciIds = "1000:0411:1000:1002";
    for (const char* const same : {"02:0e.0", "0000:02:0e.0", "02:0E.0", ""}) {
        ControllerSnapshot snapshot;
        snapshot.facts.pciAddress = same;
        snapshot.facts.pciIds = "1000:0411:1000:1002";
        checkAgainstFunction(function, snapshot);
        EXPECT_TRUE(snapshot.findings.empty()) << same;
    }
    for (const char* const other : {"02:0f.0", "12:0e.0", "0001:02:0e.0"}) {
        ControllerSnapshot snapshot;
        snapshot.facts.pciAddress = other;
        checkAgainstFunction(function, snapshot);
        EXPECT_EQ(snapshot.findings.size(), 1U) << other;
    }
}

} // namespace
} // namespace zolex::companion
