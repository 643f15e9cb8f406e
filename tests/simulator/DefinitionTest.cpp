#include "setup/Samples.h"
#include "simulator/SimulatorSupport.h"

namespace zolex_sim::test {
namespace {

constexpr const char* oneDrive = R"({"enclosure": 8, "slot": 0, "sizeMB": 1000})";

/// A definition with one controller whose fields after "utility" and "model" are given.
std::string withController(const std::string& fields) {
    return R"({"machineType": "1", "serialNumber": "2", "controllers": [
               {"utility": "MEGACLI", "model": "M", )" +
           fields + "}]}";
}

TEST(Definition, SamplesAreSound) {
    EXPECT_GE(samples().size(), 4U);
    for (const Sample& sample : samples()) {
        EXPECT_EQ(problemOf(std::string(sample.definition)), "") << sample.name;
        EXPECT_EQ(sampleNamed(sample.name), &sample);
    }
    EXPECT_EQ(sampleNamed("none"), nullptr);
    ASSERT_NE(sampleNamed("percli"), nullptr);
    EXPECT_EQ(sampleNamed("perccli"), sampleNamed("percli"));
}

TEST(Definition, Defaults) {
    const Server server = serverOf(definitionWith(oneDrive));
    EXPECT_EQ(server.machineType, "8837");
    EXPECT_EQ(server.serialNumber, "KQ1");
    EXPECT_EQ(server.detectorExitCode, 0);
    EXPECT_EQ(server.fakeraidExitCode, 0);
    ASSERT_EQ(server.controllers.size(), 1U);
    const Controller& controller = server.controllers[0];
    const ControllerIdentity& identity = controller.identity;
    EXPECT_EQ(identity.generation, Generation::early);
    EXPECT_EQ(identity.productName, "LSI-MegaRAID-8480");
    EXPECT_EQ(identity.levels.size(), 7U);
    EXPECT_EQ(identity.minStripeKb, 8);
    EXPECT_EQ(identity.maxStripeKb, 1024);
    EXPECT_EQ(identity.maxSpans, 8);
    EXPECT_EQ(identity.maxDrivesPerSpan, 32);
    EXPECT_EQ(identity.defaultStripeKb, 64);
    EXPECT_EQ(identity.defaultWritePolicy, WritePolicy::writeThrough);
    EXPECT_EQ(identity.defaultReadPolicy, ReadPolicy::none);
    EXPECT_EQ(identity.pci.classCode, 0x010400U);
    EXPECT_EQ(identity.pci.vendorId, 0x1000);
    ASSERT_EQ(controller.drives.size(), 1U);
    const Drive& drive = controller.drives[0];
    EXPECT_EQ(drive.rawSectors, (1000 + 512) * sectorsPerMb);
    EXPECT_EQ(drive.nonCoercedSectors, 1000 * sectorsPerMb);
    EXPECT_EQ(drive.interface, "SAS");
    EXPECT_EQ(drive.status, DriveStatus::good);
}

TEST(Definition, CountedDrivesCountOn) {
    const Server server = serverOf(definitionWith(R"(
        {"enclosure": 8, "slot": 4, "count": 3, "sizeMB": 1000, "serial": "AB", "deviceId": 20,
         "sasAddress": "0xffffffffffffffff"},
        {"enclosure": null, "slot": 0, "sizeMB": 1000, "serial": "SINGLE", "port": 7})"));
    std::vector<std::string> found;
    for (const Drive& drive : server.controllers[0].drives) {
        found.push_back(formatted("%s %s %d %llx %d", toText(drive.location).c_str(),
                                  drive.serial.c_str(), drive.deviceId,
                                  static_cast<unsigned long long>(drive.sasAddress), drive.port));
    }
    EXPECT_EQ(found,
              (std::vector<std::string>{"8:4 AB000 20 ffffffffffffffff 4", "8:5 AB001 21 0 5",
                                        "8:6 AB002 22 1 6", ":0 SINGLE 3 5000c50000000003 7"}));
}

TEST(Definition, NumbersMayBeHexadecimalTextsAndCommentsStand) {
    const Server server = serverOf(R"({ // a comment
        "machineType": "1", "serialNumber": "2", /* another */
        "otherDevices": [{"bus": "0xfF", "device": "0x1f", "function": 7, "vendorId": 65535,
                          "deviceId": "0XaBcD", "class": "0xffffff", "revision": 255}]})");
    ASSERT_EQ(server.otherDevices.size(), 1U);
    EXPECT_EQ(server.otherDevices[0].bus, 255);
    EXPECT_EQ(server.otherDevices[0].deviceId, 0xABCD);
    EXPECT_TRUE(server.controllers.empty());
}

TEST(Definition, FaultsNameTheField) {
    const std::string pci = R"("pci": {"bus": 1, "device": 1, "vendorId": 1, "deviceId": 1})";
    const struct {
        std::string definition;
        const char* problem;
    } rows[] = {
        {"", "parse error at line 1, column 1: syntax error while parsing value - unexpected end "
             "of input; expected '[', '{', or a literal"},
        {"[]", "the file: must be an object"},
        {"7", "the file: must be an object"},
        {"{}", "machineType: is missing"},
        {R"({"machineType": 8837})", "machineType: must be a text"},
        {R"({"machineType": "a\nb"})", "machineType: must hold printable ASCII characters only"},
        {R"({"machineType": "é"})", "machineType: must hold printable ASCII characters only"},
        {R"({"machineType": ")" + std::string(81, 'x') + "\"}",
         "machineType: must not be longer than 80 characters"},
        {R"({"machineType": "1"})", "serialNumber: is missing"},
        {R"({"machineType": "1", "serialNumber": null})", "serialNumber: is missing"},
        {R"({"machineType": "1", "serialNumber": "2", "controller": []})",
         "controller: unknown field"},
        {R"({"machineType": "1", "serialNumber": "2", "controllers": {}})",
         "controllers: must be a list"},
        {R"({"machineType": "1", "serialNumber": "2", "controllers": [7]})",
         "controllers[0]: must be an object"},
        {R"({"machineType": "1", "serialNumber": "2", "controllers": [{}]})",
         "controllers[0].utility: is missing"},
        {R"({"machineType": "1", "serialNumber": "2", "controllers": [{"utility": "X"}]})",
         "controllers[0].utility: unknown word \"X\""},
        {R"({"machineType": "1", "serialNumber": "2", "hardwareDetector": 1})",
         "hardwareDetector: must be an object"},
        {R"({"machineType": "1", "serialNumber": "2", "hardwareDetector": {"exitCode": 256}})",
         "hardwareDetector.exitCode: must be a whole number from 0 to 255"},
        {R"({"machineType": "1", "serialNumber": "2", "fakeraid": {"exitCode": -1}})",
         "fakeraid.exitCode: must be a whole number from 0 to 255"},
        {R"({"machineType": "1", "serialNumber": "2", "fakeraid": {"code": 1}})",
         "fakeraid.code: unknown field"},
        {R"({"machineType": "1", "serialNumber": "2", "faults": [{}]})",
         "faults[0].match: is missing"},
        {R"({"machineType": "1", "serialNumber": "2", "faults": [{"match": "x", "delayMs": 1.5}]})",
         "faults[0].delayMs: must be a whole number from 0 to 3600000"},
        {R"({"machineType": "1", "serialNumber": "2", "faults": [{"match": "x", "output": 1}]})",
         "faults[0].output: must be a text"},
        {R"({"machineType": "1", "serialNumber": "2", "otherDevices": [{"bus": 256}]})",
         "otherDevices[0].bus: must be a whole number from 0 to 255"},
        {withController(R"("generation": "middle")"),
         "controllers[0].generation: unknown word \"middle\""},
        {withController(R"("generation": "newest")"),
         "controllers[0].generation: only ARCCONF has the newest"},
        {withController(R"("drives": [])"), "controllers[0].pci: is missing"},
        {withController(R"("pci": {"bus": 1})"), "controllers[0].pci.device: is missing"},
        {withController(R"("pci": {"bus": 1, "device": 1, "vendorId": "1000h", "deviceId": 1})"),
         "controllers[0].pci.vendorId: must be a whole number from 0 to 65535"},
        {withController(pci + R"(, "raidLevels": ["RAID7"])"),
         "controllers[0].raidLevels[0]: unknown RAID level"},
        {withController(pci + R"(, "raidLevels": [1])"),
         "controllers[0].raidLevels[0]: unknown RAID level"},
        {withController(pci + R"(, "minStripeKB": 64, "maxStripeKB": 32)"),
         "controllers[0].maxStripeKB: must be a whole number from 64 to 65536"},
        {withController(pci + R"(, "defaultWritePolicy": "RA")"),
         "controllers[0].defaultWritePolicy: unknown word \"RA\""},
        {withController(pci + R"(, "fans": 2)"), "controllers[0].fans: unknown field"},
        {definitionWith(R"({"sizeMB": 1})"), "controllers[0].drives[0].slot: is missing"},
        {definitionWith(R"({"slot": -1, "sizeMB": 1})"),
         "controllers[0].drives[0].slot: must be a whole number from 0 to 65535"},
        {definitionWith(R"({"slot": 18446744073709551615, "sizeMB": 1})"),
         "controllers[0].drives[0].slot: must be a whole number from 0 to 65535"},
        {definitionWith(R"({"slot": true, "sizeMB": 1})"),
         "controllers[0].drives[0].slot: must be a whole number from 0 to 65535"},
        {definitionWith(R"({"slot": 1})"), "controllers[0].drives[0].sizeMB: is missing"},
        {definitionWith(R"({"slot": 1, "sizeMB": 0})"),
         "controllers[0].drives[0].sizeMB: must be a whole number from 1 to 100000000"},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "rawSectors": 204800})"),
         "controllers[0].drives[0].rawSectors: must be a whole number from 1253376 to "
         "409600000000"},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "vendor": "TOOLONGNAME"})"),
         "controllers[0].drives[0].vendor: must not be longer than 8 characters"},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "sasAddress": "0x10000000000000000"})"),
         "controllers[0].drives[0].sasAddress: must be a number from 0 to 0xffffffffffffffff"},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "status": "online"})"),
         "controllers[0].drives[0].status: unknown word \"online\""},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "count": 0})"),
         "controllers[0].drives[0].count: must be a whole number from 1 to 256"},
        {definitionWith(
             R"({"slot": 1, "sizeMB": 100, "count": 2, "serial": "123456789012345678"})"),
         "controllers[0].drives[0].serial: is too long with its number"},
        {definitionWith(R"({"slot": 1, "count": 3, "sizeMB": 100}, {"slot": 3, "sizeMB": 100})"),
         "controllers[0].drives[1].slot: there is already a drive at :3"},
        {definitionWith(R"({"slot": 0, "count": 256, "sizeMB": 1},
                           {"slot": 256, "count": 256, "sizeMB": 1},
                           {"slot": 512, "count": 256, "sizeMB": 1},
                           {"slot": 768, "count": 256, "sizeMB": 1}, {"slot": 1024, "sizeMB": 1})"),
         "controllers[0].drives[4]: a controller takes no more than 1024 drives"},
        {definitionWith(R"({"slot": 1, "sizeMB": 100, "status": "rebuild"})"),
         "controllers[0].drives: the drive at :1 rebuilds but belongs to no virtual disk"},
        {definitionWith(oneDrive, R"("virtualDisks": [{}],)"),
         "controllers[0].virtualDisks[0].level: is missing"},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0"}],)"),
         "controllers[0].virtualDisks[0].spans: is missing"},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0", "spans": "8:0"}],)"),
         "controllers[0].virtualDisks[0].spans: must be a list of lists"},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0", "spans": ["8:0"]}],)"),
         "controllers[0].virtualDisks[0].spans[0]: must be a list"},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0", "spans": [["8"]]}],)"),
         "controllers[0].virtualDisks[0].spans[0]: drives are written like \"252:0\" or \":0\""},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID1", "spans": [["8:0"]]}],)"),
         "controllers[0].virtualDisks[0]: RAID1 takes 2 to 2 physical disks in a span, not 1."},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0", "spans": [["8:1"]]}],)"),
         "controllers[0].virtualDisks[0]: There is no physical disk at 8:1."},
        {definitionWith(oneDrive, R"("virtualDisks": [{"level": "RAID0", "spans": []}],)"),
         "controllers[0].virtualDisks[0]: RAID0 takes 1 to 1 spans, not 0."},
        {definitionWith(oneDrive, R"("virtualDisks": [
             {"level": "RAID0", "spans": [["8:0"]]}, {"level": "RAID0", "spans": [["8:0"]]}],)"),
         "controllers[0].virtualDisks[1].spans: the drive at 8:0 belongs to a virtual disk "
         "already"},
        {definitionWith(oneDrive, R"("virtualDisks": [
             {"level": "RAID0", "spans": [["8:0"]], "sizeMB": 1001}],)"),
         "controllers[0].virtualDisks[0]: A size of 1001 MB does not fit: the array has room for "
         "1000 MB."},
        {definitionWith(oneDrive, "", R"(, "otherDevices": [
             {"bus": 2, "device": 1, "vendorId": 1, "deviceId": 1}])"),
         "pci: two devices at bus 2, device 1, function 0"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(problemOf(row.definition), row.problem) << row.definition;
    }
    EXPECT_NE(problemOf("{\"machineType\": \"1\",}").find("parse error at line 1, column"),
              std::string::npos);
}

/// A controller with these foreign configurations; its drives 8:0 to 8:2 and :0 are foreign.
std::string withForeign(const std::string& configurations, const char* utility = "MEGACLI") {
    std::string text = definitionWith(
        R"({"enclosure": 8, "slot": 0, "count": 3, "sizeMB": 1000, "status": "foreign"},
           {"slot": 0, "sizeMB": 1000, "status": "foreign"},
           {"slot": 1, "sizeMB": 1000})",
        R"("foreignConfigurations": [)" + configurations + "],");
    const std::string usual = "MEGACLI";
    return text.replace(text.find(usual), usual.size(), utility);
}

TEST(Definition, ForeignDrivesCarryWhatTheyWerePartOf) {
    const Server server = serverOf(withForeign(
        R"({"level": "RAID5", "drives": ["8:2", ":0"], "missing": 1, "sizeMB": 2000,
            "name": "data"}, {"level": "RAID0", "drives": ["8:0"]})"));
    const Controller& controller = server.controllers[0];
    ASSERT_EQ(controller.foreignConfigurations.size(), 2U);
    const ForeignConfiguration& first = controller.foreignConfigurations[0];
    EXPECT_EQ(first.level, RaidLevel::raid5);
    EXPECT_EQ(first.sizeMb, 2000);
    EXPECT_EQ(first.missing, 1);
    EXPECT_EQ(first.name, "data");
    std::string groups;
    for (const ForeignGroup& group : controller.foreignGroups()) {
        groups += (group.configuration ? std::to_string(*group.configuration) : "-") + "[" +
                  toText(group.drives) + "]";
    }
    EXPECT_EQ(groups, "0[8:2,:0]1[8:0]-[8:1]");
}

TEST(Definition, FaultsOfForeignConfigurationsNameTheField) {
    const struct {
        const char* configurations;
        const char* problem;
    } rows[] = {
        {R"({"drives": ["8:0"]})", ".level: is missing"},
        {R"({"level": "RAID7", "drives": ["8:0"]})", ".level: unknown word \"RAID7\""},
        {R"({"level": "RAID0"})", ".drives: is missing or empty"},
        {R"({"level": "RAID0", "drives": []})", ".drives: is missing or empty"},
        {R"({"level": "RAID0", "drives": "8:0"})", ".drives: must be a list"},
        {R"({"level": "RAID0", "drives": [0]})",
         ".drives: drives are written like \"252:0\" or \":0\""},
        {R"({"level": "RAID0", "drives": ["8:9"]})", ".drives: there is no foreign drive at 8:9"},
        {R"({"level": "RAID0", "drives": [":1"]})", ".drives: there is no foreign drive at :1"},
        {R"({"level": "RAID0", "drives": ["8:0", "8:0"]})",
         ".drives: the drive at 8:0 carries a foreign configuration already"},
        {R"({"level": "RAID0", "drives": ["8:0"], "missing": 1025})",
         ".missing: must be a whole number from 0 to 1024"},
        {R"({"level": "RAID0", "drives": ["8:0"], "sizeMB": 0})",
         ".sizeMB: must be a whole number from 1 to 200000000000"},
        {R"({"level": "RAID0", "drives": ["8:0"], "spans": []})", ".spans: unknown field"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(problemOf(withForeign(row.configurations)),
                  std::string("controllers[0].foreignConfigurations[0]") + row.problem)
            << row.configurations;
    }
    EXPECT_EQ(problemOf(withForeign("", "CFGGEN")),
              "controllers[0].foreignConfigurations: unknown field");
}

TEST(Definition, TooManyControllers) {
    std::vector<std::string> list;
    list.reserve(65);
    for (int i = 0; i < 65; ++i) {
        list.push_back(formatted(R"({"utility": "MEGACLI", "model": "M",
            "pci": {"bus": %d, "device": 1, "vendorId": 1, "deviceId": 1}})",
                                 i));
    }
    const std::string head = R"({"machineType": "1", "serialNumber": "2", "controllers": [)";
    EXPECT_EQ(problemOf(head + join(list, ",") + "]}"), "controllers[64]: too many controllers");
    list.pop_back();
    EXPECT_EQ(problemOf(head + join(list, ",") + "]}"), "");
}

} // namespace
} // namespace zolex_sim::test
