#include "SmbiosTable.h"

#include "InventedTables.h"

#include <gtest/gtest.h>

namespace hwdetect {
namespace {

using test::raw;
using test::structure;
using test::systemStructure;

const std::string bios = structure(0, std::string(14, '\x01'), {"Norvik", "1.2", "01/02/2026"});
const std::string noTexts = structure(4, "\x01", {});
const std::string endMark = structure(127, "", {});
const std::string ours = systemStructure({"Norvik", "Kestrel 3650", "00", "KQ1234X"});
const MachineNames oursRead{"Kestrel 3650", "KQ1234X"};

TEST(SmbiosTable, TheSystemStructureIsFoundWhereverItStands) {
    for (const std::string& table :
         {ours, bios + ours, noTexts + bios + ours + endMark, noTexts + noTexts + ours + ours,
          ours + systemStructure({"a", "b", "c", "d"}), structure(3, "", {}) + ours}) {
        EXPECT_EQ(readSmbiosTable(table), oursRead);
        EXPECT_EQ(readRawSmbiosData(raw(table)), oursRead);
    }
}

TEST(SmbiosTable, ATextThatIsNotThereIsEmpty) {
    EXPECT_EQ(readSmbiosTable(structure(1, std::string("\0\0\0\0", 4), {"a", "b"})),
              (MachineNames{"", ""}));
    EXPECT_EQ(readSmbiosTable(systemStructure({"Norvik", "Kestrel"})),
              (MachineNames{"Kestrel", ""}));
    EXPECT_EQ(readSmbiosTable(systemStructure({})), (MachineNames{"", ""}));
    // Numbers of texts that no table has; fields that an old table does not have.
    EXPECT_EQ(readSmbiosTable(structure(1, "\x01\xFF\x01\xFF", {"a"})), (MachineNames{"", ""}));
    EXPECT_EQ(readSmbiosTable(structure(1, "\x01\x02", {"a", "b"})), (MachineNames{"b", ""}));
    EXPECT_EQ(readSmbiosTable(structure(1, "", {"a", "b"})), (MachineNames{"", ""}));
    // Fields may name one text twice, in any order.
    EXPECT_EQ(readSmbiosTable(structure(1, "\x02\x02\x01\x02", {"a", "b"})),
              (MachineNames{"b", "b"}));
}

TEST(SmbiosTable, NothingIsFoundWhereThereIsNoSystemStructure) {
    EXPECT_EQ(readSmbiosTable(""), std::nullopt);
    EXPECT_EQ(readSmbiosTable(bios + noTexts), std::nullopt);
    EXPECT_EQ(readSmbiosTable(bios + endMark + ours), std::nullopt);
    EXPECT_EQ(readSmbiosTable(std::string("\x01\x03\x00\x00\x00", 5) + ours), std::nullopt);
    EXPECT_EQ(readSmbiosTable(std::string("\x00\x00\x00\x00", 4) + ours), std::nullopt);
    EXPECT_EQ(readRawSmbiosData(""), std::nullopt);
    EXPECT_EQ(readRawSmbiosData(std::string(7, '\0')), std::nullopt);
    EXPECT_EQ(readRawSmbiosData(std::string(8, '\0')), std::nullopt);
}

TEST(SmbiosTable, WhatIsCutIsNotRead) {
    const std::string table = bios + ours;
    for (std::size_t length = 0; length < table.size(); ++length) {
        EXPECT_EQ(readSmbiosTable(table.substr(0, length)), std::nullopt) << length;
        EXPECT_EQ(readRawSmbiosData(raw(table).substr(0, length + 8)), std::nullopt) << length;
        std::string shorter = raw(table.substr(0, length)) + table.substr(length);
        EXPECT_EQ(readRawSmbiosData(shorter), std::nullopt) << length;
    }
    EXPECT_EQ(readSmbiosTable(table), oursRead);
}

TEST(SmbiosTable, ALengthBeyondTheEndMeansTheEnd) {
    std::string data = raw(ours);
    data[7] = '\x7F';
    EXPECT_EQ(readRawSmbiosData(data), oursRead);
}

TEST(SmbiosTable, ABadByteAnywhereIsSurvived) {
    const std::string table = bios + ours + endMark;
    for (std::size_t i = 0; i < table.size(); ++i) {
        for (const int byte : {0, 1, 4, 127, 255}) {
            std::string bad = table;
            bad[i] = static_cast<char>(byte);
            const auto read = readSmbiosTable(bad);
            EXPECT_TRUE(!read || read->machineType.size() + read->serialNumber.size() < bad.size());
        }
    }
}

} // namespace
} // namespace hwdetect
