#include "readers/DiskInformation.h"
#include "driver/Application.h"
#include "inventory/ControllerList.h"
#include "readers/ConfigurationReader.h"
#include "readers/MegaCliListings.h"
#include "show/Dumps.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zolex::test {
namespace {

/// What a scripted reader saw, and whether one is alive.
struct ReaderLog {
    int created = 0;
    int alive = 0;
    int reads = 0;
    bool result = true;
    std::int32_t newSubtype = subtypeNotSet;
};

class ScriptedReader : public ConfigurationReader {
  public:
    ScriptedReader(Report& report, ReaderLog& log) : ConfigurationReader({}, report), log_(log) {
        ++log_.created;
        ++log_.alive;
    }
    ~ScriptedReader() override { --log_.alive; }

    bool readConfiguration(RAIDController& controller, Listings listings) override {
        EXPECT_EQ(listings[0], "\n");
        ++log_.reads;
        if (log_.newSubtype != subtypeNotSet) {
            controller.setSubtype(log_.newSubtype);
        }
        return log_.result;
    }

  private:
    ReaderLog& log_;
};

/// Creates scripted readers, or none.
class ScriptedDiskInformation : public DiskInformation {
  public:
    ScriptedDiskInformation(Detail detail, Report& report, ReaderLog& log, bool creates = true)
        : DiskInformation(detail, report), report_(report), log_(log), creates_(creates) {}

  protected:
    std::unique_ptr<ConfigurationReader> createReader(const ReaderEntry& entry) override {
        types += std::to_string(entry.controllerType) + " ";
        return creates_ ? std::make_unique<ScriptedReader>(report_, log_) : nullptr;
    }

  public:
    std::string types;

  private:
    Report& report_;
    ReaderLog& log_;
    bool creates_;
};

class DiskInformationTest : public ::testing::Test {
  protected:
    DiskInformationTest() { application.printer().setVerbosity(level::progress); }

    RAIDController& add(std::int32_t type, std::int32_t subtype, int outputs) {
        auto controller = std::make_unique<RAIDController>();
        controller->setType(type);
        controller->setSubtype(subtype);
        listings.emplace_back(static_cast<std::size_t>(outputs), "\n");
        return *controllers.add(std::move(*controller));
    }
    bool read(bool creates = true) {
        ScriptedDiskInformation information(detail, application.report(), log, creates);
        const auto before = listings;
        const bool result = information.readDiskInformation(controllers, listings);
        EXPECT_EQ(listings, before);
        types = information.types;
        return result;
    }
    bool readDefinition() {
        ScriptedDiskInformation information(detail, application.report(), log);
        return information.readDefinition(controllers, platform.files(), "some.ini");
    }
    std::string takeOutput() { return platform.consoleFake.takeOutput(); }
    /// No reader is kept.
    void expectReadersGone() const { EXPECT_EQ(log.alive, 0); }

    FakePlatform platform;
    Application application{platform};
    ControllerList controllers;
    std::vector<std::vector<std::string>> listings;
    Detail detail;
    ReaderLog log;
    std::string types;
};

TEST_F(DiskInformationTest, NoControllerIsASuccess) {
    application.printer().setVerbosity(level::traces);
    EXPECT_TRUE(read());
    EXPECT_EQ(takeOutput(), "Entering DiskInformation::readDiskInformation\n"
                            "Exiting DiskInformation::readDiskInformation(4)\n");
}

TEST_F(DiskInformationTest, EveryControllerIsReadByTheReaderOfItsType) {
    add(12, 1, 3);
    add(4, 0, 1);
    EXPECT_TRUE(read());
    EXPECT_EQ(types, "12 4 ");
    EXPECT_EQ(log.reads, 2);
    EXPECT_EQ(log.created, 2);
    EXPECT_EQ(takeOutput(), "\tController 1:  LSI-MegaRAID-8480\n\tController 2:  " +
                                std::string(application.controllerName(4, 0).c_str()) + "\n");
    expectReadersGone();
}

TEST_F(DiskInformationTest, TheControllerLineIsAtLevel3) {
    add(12, 1, 1);
    application.printer().setVerbosity(level::always);
    EXPECT_TRUE(read());
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(DiskInformationTest, TypesWithoutReaderAreAnInternalError) {
    for (const std::int32_t type : {13, 0, -1}) {
        controllers = ControllerList();
        listings.clear();
        add(type, 1, 1);
        application.printer().setVerbosity(level::traces);
        EXPECT_FALSE(read());
        EXPECT_EQ(takeOutput(), "Entering DiskInformation::readDiskInformation\n"
                                "\tController 1:  ERROR-NO-CONTROLLER\n"
                                "\n#### ERROR\n\tAn internal error has occurred.\n\n"
                                "Exiting DiskInformation::readDiskInformation(1)\n");
        expectReadersGone();
    }
}

TEST_F(DiskInformationTest, AReaderThatCannotBeCreatedIsReported) {
    add(12, 1, 3);
    application.printer().setVerbosity(level::traces);
    EXPECT_FALSE(read(false));
    EXPECT_EQ(takeOutput(),
              "Entering DiskInformation::readDiskInformation\n"
              "\tController 1:  LSI-MegaRAID-8480\n"
              "\n#### ERROR\n\tCould not read a config file for the following controller:  "
              "LSI-MegaRAID-8480\n"
              "Exiting DiskInformation::readDiskInformation(2)\n");
    expectReadersGone();
}

TEST_F(DiskInformationTest, AControllerWithoutOutputIsReported) {
    add(12, 1, 0);
    application.printer().setVerbosity(level::traces);
    EXPECT_FALSE(read());
    EXPECT_EQ(takeOutput(),
              "Entering DiskInformation::readDiskInformation\n"
              "\tController 1:  LSI-MegaRAID-8480\n"
              "Entering DiskInformation::parseDiskInfo\n"
              "\n#### ERROR\n\tCould not read a config file for the following controller:  "
              "LSI-MegaRAID-8480\n"
              "Exiting DiskInformation::readDiskInformation(3)\n");
    EXPECT_EQ(log.reads, 0);
    expectReadersGone();
}

TEST_F(DiskInformationTest, TheFirstFormatErrorEndsTheRead) {
    add(12, 2, 3);
    add(12, 1, 3);
    log.result = false;
    log.newSubtype = 1; // the controller is named by what it is then known to be
    application.printer().setVerbosity(level::traces);
    EXPECT_FALSE(read());
    EXPECT_EQ(takeOutput(),
              "Entering DiskInformation::readDiskInformation\n"
              "\tController 1:  Kestrix-C1\n"
              "Entering DiskInformation::parseDiskInfo\n"
              "\n#### ERROR\n\tFormat error in config file for the following controller:  "
              "LSI-MegaRAID-8480\n"
              "Exiting DiskInformation::readDiskInformation(3)\n");
    EXPECT_EQ(log.reads, 1);
    expectReadersGone();
}

TEST_F(DiskInformationTest, VerboseOutputDumpsTheController) {
    for (const bool capture : {false, true}) {
        controllers = ControllerList();
        listings.clear();
        RAIDController& controller = add(12, 1, 3);
        controller.setSize(1, 2, 1000);
        controller.setCaptured(RAIDConfiguration());
        detail.layout = capture;
        application.printer().setVerbosity(level::detail);
        application.printer().printAlways(show::dumpText(controller, capture));
        const std::string dump = takeOutput();
        EXPECT_EQ(countOf(dump, "#### START Configuration dump ####\n"), capture ? 1U : 0U);
        EXPECT_TRUE(read());
        EXPECT_EQ(takeOutput(), "\tController 1:  LSI-MegaRAID-8480\n" + dump);
        application.printer().setVerbosity(4);
        EXPECT_TRUE(read());
        EXPECT_EQ(takeOutput(), "\tController 1:  LSI-MegaRAID-8480\n");
    }
}

TEST_F(DiskInformationTest, TracesOfASuccessfulRead) {
    RAIDController& controller = add(12, 1, 0);
    listings[0] = {"", ""};
    application.printer().setVerbosity(level::traces);
    application.printer().printAlways(show::dumpText(controller, false));
    const std::string dump = takeOutput();
    EXPECT_TRUE(
        DiskInformation(detail, application.report()).readDiskInformation(controllers, listings));
    EXPECT_EQ(takeOutput(), "Entering DiskInformation::readDiskInformation\n"
                            "\tController 1:  LSI-MegaRAID-8480\n"
                            "Creating MEGAReader\n"
                            "Entering DiskInformation::parseDiskInfo\n"
                            "Entering MEGAReader::readConfiguration\n"
                            "Entering MEGAReader::getDrives\n"
                            "Exiting MEGAReader::getDrives\n"
                            "Entering MEGAReader::getAdapterInfo\n"
                            "Exiting MEGAReader::getAdapterInfo\n"
                            "Exitng MEGAReader::readConfiguration, returning true\n" +
                                dump +
                                "Exiting DiskInformation::parseDiskInfo, returning true\n"
                                "Exiting DiskInformation::readDiskInformation(4)\n");
    expectReadersGone();
}

// The second capture of one run (capture after restore, deploy after restore) read the listings of
// the first one again.
TEST_F(DiskInformationTest, ALaterCaptureStartsAfresh) {
    RAIDController& controller = add(6, 1, 0);
    const auto drivesAfter = [&](const std::string& listing) {
        controller.forgetReadings();
        listings[0] = {listing};
        EXPECT_TRUE(DiskInformation(detail, application.report())
                        .readDiskInformation(controllers, listings));
        return controller.numberOfDrives();
    };
    EXPECT_EQ(drivesAfter("0000\n0000\n"), 2);
    EXPECT_EQ(drivesAfter("0000\n"), 1);
    EXPECT_EQ(drivesAfter(""), 0);
}

TEST_F(DiskInformationTest, DrivesComeFromTheDefinitionFile) {
    add(12, 1, 2);
    add(10, 1, 0);
    add(12, 1, 0);
    platform.fileFake.files["some.ini"] = "[Controller.0]\nType=12\nSubType=1\n"
                                          "C1S0=70000\nc4s35=1\nC2S7=x\nC3S1=\nC0S0=9\nC1S36=9\n"
                                          "C5S0=9\n"
                                          "[Controller.1]\nType=10\nC2S3=36000\n"
                                          "[Controller.2]\nSubType=1\nC1S0=5\n";
    application.printer().setVerbosity(level::traces);
    EXPECT_TRUE(readDefinition());
    EXPECT_EQ(takeOutput(), "Entering DiskInformation::readDiskInformation\n"
                            "Reading drives from file:  some.ini\n"
                            "\tController 1:  LSI-MegaRAID-8480\n"
                            "\tController 2:  LSI-SAS-1078-IR\n");
    const auto sizes = [this](std::size_t i) {
        std::string text;
        controllers.controller(i)->forEachDrive([&](std::int32_t channel, std::int32_t id) {
            text += std::to_string(channel) + ":" + std::to_string(id) + "=" +
                    std::to_string(controllers.controller(i)->size(channel, id)) + " ";
        });
        return text;
    };
    EXPECT_EQ(sizes(0), "1:0=70000 2:7=0 4:35=1 ");
    EXPECT_EQ(controllers.controller(0)->size(0, 0), RAIDController::noDrive);
    EXPECT_EQ(sizes(1), "2:3=36000 ");
    EXPECT_EQ(sizes(2), ""); // no "Type"
    EXPECT_EQ(log.created, 0);
    expectReadersGone();
}

TEST_F(DiskInformationTest, TheDefinitionEndsAtTheFirstSectionWithoutType) {
    add(12, 1, 0);
    add(12, 1, 0);
    platform.fileFake.files["some.ini"] = "[Controller.0]\nType=\nC1S0=1\n"
                                          "[Controller.1]\nType=12\nC1S0=1\n";
    EXPECT_TRUE(readDefinition());
    EXPECT_EQ(takeOutput(), "");
    EXPECT_EQ(controllers.controller(0)->numberOfDrives(), 0);
    EXPECT_EQ(controllers.controller(1)->numberOfDrives(), 0);
}

// Symptom: a definition file that was gone after the controllers had been read from it left them
// without drives, and the run went on.
TEST_F(DiskInformationTest, ADefinitionFileThatIsNotThereAnyMoreFails) {
    add(12, 1, 0);
    EXPECT_FALSE(readDefinition());
    EXPECT_EQ(takeOutput(),
              "\n#### ERROR\n\tCould not read controller-definition file:  some.ini\n\n");
    EXPECT_EQ(controllers.controller(0)->numberOfDrives(), 0);
}

} // namespace
} // namespace zolex::test
