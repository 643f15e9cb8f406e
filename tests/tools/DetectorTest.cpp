#include "Detector.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <map>

namespace hwdetect {
namespace {

using Arguments = std::vector<std::string>;

class Detector : public ::testing::Test {
  protected:
    Detection run(const Arguments& arguments) {
        return detect(arguments, {[this](const char* name) { return variables[name]; },
                                  [this] {
                                      ++asked;
                                      return answer;
                                  },
                                  [this](const std::string& folder) {
                                      folders.push_back(folder);
                                      return readDmiFolder(folder);
                                  }});
    }

    FirmwareAnswer answer{{"Kestrel 3650", "KQ1234X"}, "", ""};
    std::map<std::string, std::string> variables;
    std::vector<std::string> folders;
    int asked = 0;
};

void expectRun(const Detection& detection, int exitCode, const std::string& output,
               const std::string& error) {
    EXPECT_EQ(detection.exitCode, exitCode);
    EXPECT_EQ(detection.output, output);
    EXPECT_EQ(detection.error, error);
}

TEST_F(Detector, PrintsWhatTheFirmwareTells) {
    for (const char* option : {"/i", "-i"}) {
        expectRun(run({option}), 0, "Machine_Type=Kestrel 3650\nSerial_Number=KQ1234X\n", "");
    }
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(folders.empty());
}

TEST_F(Detector, OptionsStandBeforeVariablesAndVariablesBeforeTheFirmware) {
    expectRun(run({"/i", "--machine-type", "8837"}), 0,
              "Machine_Type=8837\nSerial_Number=KQ1234X\n", "");
    variables["ZOLEX_SERIAL_NUMBER"] = "V1";
    expectRun(run({"/i"}), 0, "Machine_Type=Kestrel 3650\nSerial_Number=V1\n", "");
    EXPECT_EQ(asked, 2);
    variables["ZOLEX_MACHINE_TYPE"] = "V2";
    expectRun(run({"/i"}), 0, "Machine_Type=V2\nSerial_Number=V1\n", "");
    expectRun(run({"--serial-number", "O1", "/i"}), 0, "Machine_Type=V2\nSerial_Number=O1\n", "");
    expectRun(run({"/i", "--serial-number", "", "--machine-type", "/i"}), 0,
              "Machine_Type=/i\nSerial_Number=\n", "");
    EXPECT_EQ(asked, 2);
}

TEST_F(Detector, AValueFitsIntoALineAndIntoAPolicy) {
    answer.names = {" \tStandard PC (i440FX, 1996)\r\n", "a=b\x01"
                                                         "c\x7F d"};
    expectRun(run({"/i"}), 0, "Machine_Type=Standard PC (i440FX_ 1996)\nSerial_Number=a_b_c_ d\n",
              "");
    answer.names = {"", "\xC4"};
    expectRun(run({"/i", "--machine-type", " x,y "}), 0, "Machine_Type=x_y\nSerial_Number=\xC4\n",
              "");
}

TEST_F(Detector, WhatTheFirmwareLeavesEmptyIsPrintedEmptyWithANote) {
    answer.names.serialNumber = " ";
    expectRun(run({"/i"}), 0, "Machine_Type=Kestrel 3650\nSerial_Number=\n",
              "hwdetect.exe: the firmware leaves the serial number empty; --serial-number or "
              "ZOLEX_SERIAL_NUMBER gives it\n");
    answer.names.machineType = "";
    expectRun(run({"/i", "--serial-number", "1"}), 0, "Machine_Type=\nSerial_Number=1\n",
              "hwdetect.exe: the firmware leaves the machine type empty; --machine-type or "
              "ZOLEX_MACHINE_TYPE gives it\n");
}

TEST_F(Detector, WhatCannotBeReadIsAFailureUnlessItIsGiven) {
    answer = {{"Kestrel", ""}, "", "cannot read x: Permission denied"};
    expectRun(run({"/i"}), 2, "",
              "hwdetect.exe: cannot read x: Permission denied; --serial-number or "
              "ZOLEX_SERIAL_NUMBER gives it\n");
    expectRun(run({"/i", "--serial-number", "1"}), 0, "Machine_Type=Kestrel\nSerial_Number=1\n",
              "");
    answer = {{}, "no type", "no number"};
    expectRun(run({"/i"}), 2, "",
              "hwdetect.exe: no type; --machine-type or ZOLEX_MACHINE_TYPE gives it\n"
              "hwdetect.exe: no number; --serial-number or ZOLEX_SERIAL_NUMBER gives it\n");
    expectRun(run({"/i", "--serial-number", "1"}), 2, "",
              "hwdetect.exe: no type; --machine-type or ZOLEX_MACHINE_TYPE gives it\n");
    expectRun(run({"/i", "--serial-number", "1", "--machine-type", "2"}), 0,
              "Machine_Type=2\nSerial_Number=1\n", "");
}

TEST_F(Detector, AFolderStandsInThePlaceOfTheFirmware) {
    const zolex::test::TemporaryDirectory directory;
    directory.write("dmi/product_name", "Kestrel 1\r\nmore\n");
    directory.write("dmi/product_serial", "S");
    directory.write("half/product_name", "Kestrel 2\n");
    directory.write("bad/product_name", "Kestrel 3\n");
    directory.write("bad/product_serial/deeper", "");
    directory.write("empty/other", "");
    variables["ZOLEX_DMI_ROOT"] = "dmi";
    expectRun(run({"/i"}), 0, "Machine_Type=Kestrel 1\nSerial_Number=S\n", "");
    variables["ZOLEX_DMI_ROOT"] = "half";
    expectRun(run({"/i", "--serial-number", "7"}), 0, "Machine_Type=Kestrel 2\nSerial_Number=7\n",
              "");
    EXPECT_NE(run({"/i"}).error.find("leaves the serial number empty"), std::string::npos);
    variables["ZOLEX_DMI_ROOT"] = "bad";
    EXPECT_EQ(run({"/i"}).exitCode, 2);
    EXPECT_EQ(run({"/i"}).error.find("hwdetect.exe: cannot read bad/product_serial: "), 0U);
    for (const char* folder : {"empty", "missing", "dmi/product_name"}) {
        variables["ZOLEX_DMI_ROOT"] = folder;
        const Detection none = run({"/i"});
        EXPECT_EQ(none.exitCode, 2) << folder;
        EXPECT_EQ(none.error,
                  std::string("hwdetect.exe: the firmware tells nothing: there is no product_name "
                              "in ") +
                      folder +
                      "; --machine-type or ZOLEX_MACHINE_TYPE gives it\n"
                      "hwdetect.exe: the firmware tells nothing: there is no product_serial in " +
                      folder + "; --serial-number or ZOLEX_SERIAL_NUMBER gives it\n");
    }
    EXPECT_EQ(asked, 0);
}

TEST_F(Detector, HelpAndVersionArePrintedAlone) {
    for (const Arguments& arguments : {Arguments{"--help"}, Arguments{"/?"},
                                       Arguments{"/i", "--help"}, Arguments{"x", "--help"}}) {
        const Detection help = run(arguments);
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.error, "");
        EXPECT_EQ(help.output.find("hwdetect.exe, ZOLEX Version "), 0U);
        for (const char* text : {"Usage: hwdetect.exe /i ", "--machine-type", "--serial-number",
                                 "ZOLEX_DMI_ROOT", "Exit codes: 0 "}) {
            EXPECT_NE(help.output.find(text), std::string::npos) << text;
        }
    }
    const Detection version = run({"--version"});
    EXPECT_EQ(version.output.find("hwdetect.exe, ZOLEX Version "), 0U);
    EXPECT_EQ(version.output.find('\n'), version.output.size() - 1);
    EXPECT_EQ(asked, 0);
}

TEST_F(Detector, OtherCommandLinesAreRefused) {
    const struct {
        Arguments arguments;
        const char* fault;
    } rows[] = {
        {{}, "/i is missing"},
        {{"--machine-type", "x"}, "/i is missing"},
        {{"/i", "x"}, "unknown parameter x"},
        {{"/I"}, "unknown parameter /I"},
        {{"/i", ""}, "unknown parameter "},
        {{"/i", "--machine-type"}, "--machine-type needs a text"},
        {{"/i", "--serial-number"}, "--serial-number needs a text"},
        {{"/i", "--serial"}, "unknown parameter --serial"},
    };
    for (const auto& row : rows) {
        const Detection refused = run(row.arguments);
        EXPECT_EQ(refused.exitCode, 1) << row.fault;
        EXPECT_EQ(refused.output, "") << row.fault;
        EXPECT_EQ(refused.error.find(std::string("hwdetect.exe: ") + row.fault + "\nUsage: "), 0U)
            << refused.error;
    }
    EXPECT_EQ(asked, 0);
}

} // namespace
} // namespace hwdetect
