#include "policies/PolicyReader.h"

#include "policies/PolicyTestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <sstream>
#include <string>

namespace zolex {
namespace {

using test::errorBlock;
using test::PolicyReading;

TEST(PolicyReaderTest, WithDefaultsOnlyTheBuiltInPolicyIsMade) {
    PolicyReading reading;
    reading.application.settings.defaults = true;
    reading.application.printer().setVerbosity(level::detail);
    ASSERT_EQ(reading.reader.policies(), nullptr);
    ASSERT_TRUE(reading.read("not a policies file"));
    ASSERT_EQ(reading.reader.policies()->count(), 1U);
    EXPECT_EQ(reading.policy().name, "Policy.default");
    EXPECT_EQ(reading.output(), "");
    EXPECT_TRUE(reading.platform.fileFake.opened.empty());
}

TEST(PolicyReaderTest, AMissingFileIsAnErrorInDeploy) {
    PolicyReading reading;
    EXPECT_FALSE(reading.reader.read());
    EXPECT_EQ(reading.output(), errorBlock("Could not open policies file:  p.ini\n"));
    EXPECT_EQ(reading.reader.policies(), nullptr);
}

TEST(PolicyReaderTest, AMissingFileIsNoErrorInCapture) {
    PolicyReading reading;
    reading.application.settings.capture = true;
    EXPECT_TRUE(reading.reader.read());
    EXPECT_EQ(reading.output(), "\tNo policies found.  Generating new policies file.\n");
    ASSERT_NE(reading.reader.policies(), nullptr);
    EXPECT_EQ(reading.reader.policies()->count(), 0U);
}

TEST(PolicyReaderTest, AFileWithoutPoliciesIsNoErrorInCapture) {
    PolicyReading reading;
    reading.application.settings.capture = true;
    reading.application.printer().setVerbosity(level::detail);
    EXPECT_TRUE(reading.read("; nothing yet\n"));
    EXPECT_EQ(reading.output(), "\tScanning policies ...\n"
                                "\tNo policies found.  Generating new policies file.\n");

    reading.application.printer().setVerbosity(level::always);
    EXPECT_TRUE(reading.read("; nothing yet\n"));
    EXPECT_EQ(reading.output(), "");
}

TEST(PolicyReaderTest, WithAnInventoryFileTheMissingPoliciesAreNotMentioned) {
    PolicyReading reading;
    reading.application.settings.capture = true;
    reading.application.settings.fake = true;
    EXPECT_TRUE(reading.reader.read());
    EXPECT_EQ(reading.output(), "");
}

TEST(PolicyReaderTest, CaptureStillRefusesAFaultyFile) {
    PolicyReading reading;
    reading.application.settings.capture = true;
    EXPECT_FALSE(reading.read("[Policy.A]\n"));
    EXPECT_EQ(reading.output(), errorBlock("Policy.A -- Each policy must have an AppliesTo.1"));
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1=x\n"));
    EXPECT_EQ(reading.output(), errorBlock("Policy.A, AppliesTo.1 -- Invalid specifier:  x\n"));
}

TEST(PolicyReaderTest, TracesNameTheExits) {
    PolicyReading reading;
    reading.application.printer().setVerbosity(level::traces);
    EXPECT_TRUE(reading.read("[Policy.A]\nAppliesTo.1=ALL\n"));
    EXPECT_EQ(reading.output(), "Entering PolicyReader::read\n"
                                "Entering PolicyReader::scan\n"
                                "\tScanning policies ...\n"
                                "\tPolicy.A\n"
                                "Exiting PolicyReader::scan(5), returning true\n"
                                "Entering PolicyReader::validate\n"
                                "\tValidating keywords and values ...\n"
                                "\tPolicy.A\n"
                                "Exiting PolicyReader::validate(2), returning true\n"
                                "Exiting PolicyReader::read(4), returning true\n");
}

struct FailingRead {
    const char* content; ///< null: there is no file
    const char* exits;   ///< the "Exiting" lines
};

TEST(PolicyReaderTest, TracesNameTheExitsOfFailingReads) {
    const FailingRead reads[] = {
        {nullptr, "Exiting PolicyReader::scan(2), returning false\n"
                  "Exiting PolicyReader::read(2), returning false\n"},
        {"x\n", "Exiting PolicyReader::scan(3), returning false\n"
                "Exiting PolicyReader::read(2), returning false\n"},
        {"; x\n", "Exiting PolicyReader::scan(4), returning false\n"
                  "Exiting PolicyReader::read(2), returning false\n"},
        {"[Policy.A]\nAppliesTo.1=x\n", "Exiting PolicyReader::scan(5), returning true\n"
                                        "Exiting PolicyReader::validate(1), returning false\n"
                                        "Exiting PolicyReader::read(3), returning false\n"},
    };
    for (const FailingRead& row : reads) {
        PolicyReading reading;
        reading.application.printer().setVerbosity(level::traces);
        if (row.content != nullptr) {
            reading.platform.fileFake.files["p.ini"] = row.content;
        }
        EXPECT_FALSE(reading.reader.read());
        std::string exits;
        std::istringstream output(reading.output());
        for (std::string line; std::getline(output, line);) {
            exits += line.rfind("Exiting", 0) == 0 ? line + "\n" : "";
        }
        EXPECT_EQ(exits, row.exits);
    }
}

TEST(PolicyReaderTest, TracesNameTheExitsWithoutAScan) {
    PolicyReading reading;
    reading.application.printer().setVerbosity(level::traces);
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "Init", "^~"), "File not found");
    EXPECT_EQ(reading.output(), "Entering PolicyReader::lookUp\n"
                                "File not found:  p.ini \n"
                                "Exiting PolicyReader::lookUp(1)\n");
    reading.platform.fileFake.files["p.ini"] = "";
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "Init", "^~"), "^~");
    EXPECT_EQ(reading.output(), "Entering PolicyReader::lookUp\n"
                                "Exiting PolicyReader::lookUp(2)\n");
    reading.application.settings.defaults = true;
    EXPECT_TRUE(reading.reader.read());
    EXPECT_EQ(reading.output(), "Entering PolicyReader::read\n"
                                "Exiting PolicyReader::read(1), returning true\n");
}

TEST(PolicyReaderTest, NamesAreToldUntilTheFaultyOne) {
    PolicyReading reading;
    reading.application.printer().setVerbosity(level::detail);
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1=ALL\n[policy.b]\nAppliesTo.1=x\n[C]\n"));
    EXPECT_EQ(reading.output(), "\tScanning policies ...\n\tPolicy.A\n\tpolicy.b\n" +
                                    errorBlock("Line 5 -- Invalid or duplicate policy name:  C\n"));
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1=ALL\nAppliesTo.16=x\n"
                              "[policy.b]\nAppliesTo.1=x\n[Policy.C]\nAppliesTo.1=ALL\n"));
    EXPECT_EQ(reading.output(), "\tScanning policies ...\n\tPolicy.A\n\tpolicy.b\n\tPolicy.C\n"
                                "\tValidating keywords and values ...\n\tPolicy.A\n"
                                "\tNote:  Policy.A, AppliesTo.16 has no effect.\n\tpolicy.b\n" +
                                    errorBlock("policy.b, AppliesTo.1 -- Invalid specifier:  x\n"));
}

TEST(PolicyReaderTest, ALaterReadForgetsTheEarlierOne) {
    PolicyReading reading;
    ASSERT_TRUE(reading.read("[Policy.A]\nAppliesTo.1=ALL\n"));
    EXPECT_TRUE(reading.reader.hasPolicy("policy.a"));
    EXPECT_FALSE(reading.read("[Policy.B]\n"));
    EXPECT_EQ(reading.reader.policies(), nullptr);
    EXPECT_FALSE(reading.reader.hasPolicy("Policy.A"));
    ASSERT_TRUE(reading.read("[Policy.C]\nAppliesTo.1=ALL\n"));
    EXPECT_EQ(reading.policy().name, "Policy.C");
}

TEST(PolicyReaderTest, TheFileIsOpenedOnceForARead) {
    PolicyReading reading;
    ASSERT_TRUE(reading.read("[Policy.A]\nAppliesTo.1=ALL\nInit=QUICK\n"));
    EXPECT_EQ(reading.platform.fileFake.opened, std::vector<std::string>{"r p.ini"});
}

TEST(PolicyReaderTest, LookUpFindsTheFirstSectionAndTheFirstKeyword) {
    PolicyReading reading;
    reading.platform.fileFake.files["p.ini"] = "Init = before\n"
                                               "  [ policy.a ] rest\n"
                                               ";Init = comment\n"
                                               "no entry\n"
                                               "\t Init\t = \t first = second \t\r\n"
                                               "INIT = later\n"
                                               "Empty =\n"
                                               "[Policy.A]\n"
                                               "Late = x\n"
                                               "[Policy.B]\n"
                                               "Init = b";
    test::SettingsReader& reader = reading.reader;
    EXPECT_EQ(reader.lookUp("Policy.A", "Init", "^~"), "first = second");
    EXPECT_EQ(reader.lookUp("POLICY.A", "iNIT", "^~"), "first = second");
    EXPECT_EQ(reader.lookUp("Policy.A", "Empty", "^~"), "");
    EXPECT_EQ(reader.lookUp("Policy.A", "Late", "^~"), "^~");
    EXPECT_EQ(reader.lookUp("Policy.A", ";Init", "none"), "none");
    EXPECT_EQ(reader.lookUp("Policy.B", "Init", "^~"), "b");
    EXPECT_EQ(reader.lookUp("Policy.C", "Init", "^~"), "^~");
    EXPECT_EQ(reading.output(), "");
    EXPECT_EQ(reading.platform.fileFake.opened.size(), 7U);
}

TEST(PolicyReaderTest, LookUpTakesAHeaderWithoutBracketForTheEndOfASection) {
    PolicyReading reading;
    reading.platform.fileFake.files["p.ini"] =
        "[Policy.A\nInit=1\n[Policy.A]\nReadAhead=2\n  [Policy.B\nStripeSize=3\n";
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "Init", "^~"), "^~");
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "ReadAhead", "^~"), "2");
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "StripeSize", "^~"), "^~");
}

TEST(PolicyReaderTest, LookUpSeesWhatTheFileHoldsAtThatTime) {
    PolicyReading reading;
    ASSERT_TRUE(reading.read("[Policy.A]\nAppliesTo.1=ALL\nInit=QUICK\n"));
    reading.platform.fileFake.files["p.ini"] = "[Policy.A]\nInit=BUILD\n";
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "Init", "^~"), "BUILD");
}

TEST(PolicyReaderTest, LookUpInAMissingFile) {
    PolicyReading reading;
    reading.application.printer().setVerbosity(level::unset);
    EXPECT_EQ(reading.reader.lookUp("Policy.A", "Init", "^~"), "File not found");
    EXPECT_EQ(reading.output(), "File not found:  p.ini \n");
}

TEST(PolicyReaderTest, AReadErrorWithinASectionIsNoFaultOfTheSection) {
    /// Gives its text in whole reads, behind comments, then the error.
    class TornFile : public File {
      public:
        explicit TornFile(const std::string& text) {
            while ((text_.size() + text.size()) % 65536 != 0) {
                text_ += text_.size() % 64 == 63 ? '\n' : ';';
            }
            text_.back() = '\n';
            text_ += text;
        }
        std::size_t read(std::span<char> bytes) override {
            const std::size_t n = std::min(bytes.size(), text_.size() - at_);
            std::copy_n(text_.begin() + static_cast<std::ptrdiff_t>(at_), n, bytes.begin());
            at_ += n;
            failed_ = n < bytes.size();
            return n;
        }
        std::size_t write(std::string_view /*bytes*/) override { return 0; }
        bool failed() const override { return failed_; }
        bool rewind() override { return true; }
        bool flush() override { return true; }
        bool close() override { return true; }

      private:
        std::string text_;
        std::size_t at_ = 0;
        bool failed_ = false;
    };
    class TornFiles : public FileSystem {
      public:
        std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
            return std::make_unique<TornFile>(text);
        }
        bool remove(std::string_view /*name*/) override { return false; }
        std::string text;
    };
    class TornPlatform : public test::FakePlatform {
      public:
        FileSystem& files() override { return torn; }
        TornFiles torn;
    };
    const char* const texts[] = {
        "[Policy.A]\n",
        "[Policy.A]\nInit = QUICK\n",
        "[Policy.A]\nInit = QUICK\nINIT = BUILD\n",
        "[Policy.A]\nAppliesTo.1 = ALL\nInit = QUICK\n",
        "[Policy.A]\nAppliesTo.1 = ALL\n[Policy.B]\n",
    };
    for (const char* text : texts) {
        for (const bool capture : {false, true}) {
            TornPlatform platform;
            platform.torn.text = text;
            Application application(platform);
            application.settings.policiesFile = "torn.ini";
            application.settings.capture = capture;
            test::SettingsReader reader(application);
            EXPECT_FALSE(reader.read());
            EXPECT_EQ(platform.consoleFake.output,
                      errorBlock("Could not open policies file:  torn.ini\n"))
                << text;
        }
    }
}

// A file that can be opened but not read, such as a folder, was taken for an empty one.
TEST(PolicyReaderTest, AFileThatCannotBeReadIsReportedInEveryMode) {
    class UnreadableFile : public File {
      public:
        std::size_t read(std::span<char> /*bytes*/) override {
            failed_ = true;
            return 0;
        }
        std::size_t write(std::string_view /*bytes*/) override { return 0; }
        bool failed() const override { return failed_; }
        bool rewind() override { return true; }
        bool flush() override { return true; }
        bool close() override { return true; }

      private:
        bool failed_ = false;
    };
    class UnreadableFiles : public FileSystem {
      public:
        std::unique_ptr<File> open(std::string_view /*name*/, const char* /*mode*/) override {
            return std::make_unique<UnreadableFile>();
        }
        bool remove(std::string_view /*name*/) override { return false; }
    };
    class UnreadablePlatform : public test::FakePlatform {
      public:
        FileSystem& files() override { return unreadable_; }

      private:
        UnreadableFiles unreadable_;
    };
    for (const bool capture : {false, true}) {
        UnreadablePlatform platform;
        Application application(platform);
        application.settings.policiesFile = "folder";
        application.settings.capture = capture;
        test::SettingsReader reader(application);
        EXPECT_FALSE(reader.read());
        EXPECT_EQ(platform.consoleFake.output,
                  errorBlock("Could not open policies file:  folder\n"));
    }
}

/// Every head that a failed read may report.
constexpr std::array<const char*, 27> documentedHeads = {
    " -- Invalid character:  ",
    " -- Invalid policy declaration.\n",
    " -- Invalid or duplicate policy name:  ",
    " -- Line not in keyword = value format:  ",
    " -- Invalid keyword:  ",
    " -- Duplicate keywords found:  ",
    " -- Each policy must have an AppliesTo.1",
    " -- Too many policies specified.\n",
    "\tYou must specify at least one policy in the policies file.\n",
    " -- Invalid specifier:  ",
    " -- Invalid controller number specified:  ",
    " -- Invalid scan order:  ",
    " -- Invalid controller type:  ",
    " -- Invalid number of drives specified:  ",
    " -- Invalid format:  ",
    " -- Missing required entry in policies file:  Array.A\n",
    " -- Missing required entry in policies file:  Logical.1\n",
    " -- Arrays must be specified in sequential-alphabetical order.\n",
    " -- Invalid array specified:  Array.",
    " -- Too many arrays specified.\n",
    " -- Too many hot-spare drives specified.\n",
    " -- Invalid write-cache mode specified:  ",
    " -- Invalid RAID level specified:  ",
    " -- Invalid size specified:  ",
    " -- Invalid array letter specified:  ",
    " -- RAID levels 5E and 5EE only permit one logical drive per array.\n",
    " -- Logical drives must be specified in sequential order.\n",
};

void expectDocumentedEnd(const std::string& content) {
    PolicyReading reading;
    const bool good = reading.read(content);
    const std::string output = reading.output();
    EXPECT_EQ(good, reading.reader.policies() != nullptr);
    EXPECT_EQ(good, output.find("\n#### ERROR\n\t") == std::string::npos) << output;
    bool documented = good;
    for (const char* head : documentedHeads) {
        documented = documented || output.find(head) != std::string::npos;
    }
    EXPECT_TRUE(documented) << output;
}

TEST(PolicyReaderTest, ArbitraryBytesEndWithSuccessOrADocumentedMessage) {
    std::mt19937 random(20260309);
    for (int round = 0; round < 500; ++round) {
        std::string content(random() % 2000, '\0');
        for (char& c : content) {
            c = static_cast<char>(random());
        }
        expectDocumentedEnd(content);
        expectDocumentedEnd("[Policy.A]\n" + content);
        expectDocumentedEnd("[Policy.A]\nAppliesTo.1 =" + content);
    }
}

TEST(PolicyReaderTest, ArbitraryPiecesOfPoliciesEndWithSuccessOrADocumentedMessage) {
    const std::array<std::string, 66> pieces = {
        "[Policy.A]\n",
        "[Policy.B]\n",
        "[",
        "]",
        "AppliesTo.1=ALL\n",
        "AppliesTo.1 = ",
        "ALL",
        "m:",
        "s:",
        "c:",
        "o:",
        "t:Kestrix-C1",
        "t:",
        "d:",
        "AppliesTo.2=",
        "RebuildRate=",
        "HIGH",
        "ReadAhead=",
        "ON",
        "StripeSize=",
        "64",
        "Init=",
        "QUICK",
        "Array_Mode=CUSTOM\n",
        "Array_Defaults=",
        "10%:2",
        "Array.A=",
        "Array.B=",
        "Array.C=",
        "Hotspares=",
        "Logical_Mode=CUSTOM\n",
        "Logical_Defaults=",
        "100%",
        "FILL",
        "Logical.1=",
        "Logical.2=",
        "Logical.3=",
        "A:",
        "B:",
        "5E",
        "5EE",
        "5",
        "10",
        "VOLUME",
        "AUTO",
        ":",
        ",",
        ",",
        "\n",
        "\n",
        "\n",
        "\r\n",
        "\r",
        " ",
        "\t",
        "0",
        "1",
        "2",
        "3:4",
        "99999999999",
        "-1",
        "%",
        "=",
        ";",
        "^~",
        "Max_Logical_Drive_Size=",
    };
    std::mt19937 random(4711);
    int accepted = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string content = "[Policy.0]\nAppliesTo.1=ALL\n";
        for (std::size_t n = random() % 12; n > 0; --n) {
            content += pieces[random() % pieces.size()];
        }
        expectDocumentedEnd(content);
        PolicyReading reading;
        accepted += reading.read(content) ? 1 : 0;
    }
    EXPECT_GT(accepted, 50); // the pieces reach the values too
}

/// The largest file that may be read: 100 policies of 50 entries on lines of 255 characters.
std::string largestFile() {
    const auto full = [](std::string line) { return line.append(255 - line.size(), ' ') + "\n"; };
    std::string content;
    for (int policy = 1; policy <= 100; ++policy) {
        content += full("[Policy." + std::to_string(policy) + "]");
        for (int i = 1; i <= 25; ++i) {
            content += full("AppliesTo." + std::to_string(i) + " = c:1,c:2,ALL");
        }
        for (char letter = 'A'; letter <= 'H'; ++letter) {
            content += full(std::string("Array.") + letter + " = 1,2,3,4,5,6,7,8,9,10,11,12");
        }
        for (int i = 1; i <= 9; ++i) {
            content += full("Logical." + std::to_string(i) + " = A:10%:5:ON");
        }
        for (const char* line : {"RebuildRate = LOW", "ReadAhead = OFF", "StripeSize = 4096",
                                 "Init = BUILD", "Array_Mode = CUSTOM", "Array_Defaults = 100%:2",
                                 "Hotspares = 1:1,1:2", "Logical_Mode = CUSTOM"}) {
            content += full(line);
        }
    }
    return content;
}

TEST(PolicyReaderTest, TheLargestLegalFileIsRead) {
    PolicyReading reading;
    reading.application.printer().setVerbosity(level::always);
    ASSERT_TRUE(reading.read(largestFile())) << reading.output();
    ASSERT_EQ(reading.reader.policies()->count(), 100U);
    EXPECT_EQ(reading.policy(99).name, "Policy.100");
    EXPECT_EQ(reading.policy(99).appliesTo.size(), 15U);
    EXPECT_EQ(reading.policy(99).arrays.size(), 8U);
    EXPECT_EQ(reading.policy(99).logicalDrives.size(), 9U);
}

} // namespace
} // namespace zolex
