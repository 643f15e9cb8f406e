// What goes wrong with zolex on a server: with guard in front zolex is not started, the server's
// state stays as it was byte by byte, and the text says why.

#include "PlannedServer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr const char* programName = "ZOLEX.EXE";
constexpr const char* programCall = ".\\ZOLEX.EXE";
#else
constexpr const char* programName = "zolex";
constexpr const char* programCall = "./zolex";
#endif

/// A server with zolex in its folder.
class GuardedServer : public PlannedServer {
  public:
    /// With these policies deployed; without where there are none.
    explicit GuardedServer(const std::string& what, const std::string& deployed = {})
        : PlannedServer(what) {
        environment["TMPDIR"] = folder().string(); // for the lock of the machine
        fs::copy_file(ZOLEX_UNPAUSED_PROGRAM, folder() / programName);
        if (!deployed.empty()) {
            write("deployed.ini", deployed);
            deploy("deployed.ini");
        }
    }

    /// Runs guard with these options in front of zolex with these words.
    ProgramRun guard(const std::vector<std::string>& options,
                     const std::vector<std::string>& words) {
        std::vector<std::string> arguments{"guard", "--width", "80"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        arguments.insert(arguments.end(), {"--", programCall});
        arguments.insert(arguments.end(), words.begin(), words.end());
        const bool pauses = read("server.json").find("\"CFGGEN") != std::string::npos;
        return start(pauses ? ZOLEXCTL_UNPAUSED_PROGRAM : ZOLEXCTL_PROGRAM, arguments);
    }

    /// The code that the text asks for.
    static std::string codeOf(const std::string& text) {
        const std::string begin = "--destroy ";
        const std::size_t at = text.find(begin);
        constexpr std::size_t length = 9;
        return at == std::string::npos ? "" : text.substr(at + begin.size(), length);
    }
};

constexpr const char* notStarted = "error: zolex was not started, and nothing was changed\n";

/// A server, what stands on it, a command line of zolex, and what guard says of it.
struct GuardedDanger {
    const char* name;
    std::string definition;
    std::string deployed; ///< policies; empty: nothing stands
    std::string policies; ///< p.ini
    std::vector<std::string> words;
    int exitCode;
    std::vector<std::string> pieces; ///< of standard error, in this order
};

std::string controllerOf(int bus, const std::string& drives) {
    return R"({"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": )" +
           std::to_string(bus) +
           R"(, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           drives + "]}";
}

/// Two controllers with so many drives each.
std::string twoControllers(int drives) {
    const std::string each =
        R"({"enclosure": 32, "slot": 0, "sizeMB": 69376, "count": )" + std::to_string(drives) + "}";
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [)" +
           controllerOf(2, each) + "," + controllerOf(10, each) + "]}";
}

std::vector<GuardedDanger> guardedDangers() {
    const std::string failedDrive = megaServer(R"(
        {"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
        {"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
        {"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})");
    const std::string foreignDrive = megaServer(R"(
        {"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376},
        {"enclosure": 32, "slot": 7, "sizeMB": 69376, "status": "foreign"})");
    const std::string errorText = megaServer(
        eightDrives,
        R"(, "faults": [{"match": "-pdList", "output": "Failed to get data.\n", "exitCode": 0}])");
    const std::string web = webPolicies;
    const std::string all = with(web, ",d:8", "");
    const std::vector<std::string> wipe = {"/r", "/y", "/f:p.ini"};
    return {
        // Erased, and then failed.
        {"AKeywordIsMistyped",
         eight(),
         web,
         with(web, "Hotspares", "Hotspare"),
         wipe,
         3,
         {"p.ini:6:1: error: unknown keyword \"Hotspare\" [ZX007]\n"
          "   6 | Hotspare = 8\n"
          "     | ^^^^^^^^\n"
          "   help: did you mean Hotspares?\n",
          notStarted}},
        {"ThereIsNoSuchFile",
         eight(),
         web,
         web,
         {"/r", "/y", "/f:no-such.ini"},
         2,
         {"no-such.ini: error: the file cannot be read", "[ZX001]\n",
          "   help: name a policies file that is there: /f:FILE\n", notStarted}},
        {"ASwitchIsMistyped",
         eight(),
         web,
         web,
         {"/r", "/y", "/f:p.ini", "/noexecutall"},
         2,
         {"error: zolex takes \"/noexecutall\" into the value of /f:, which becomes \"p.ini\n"
          "    /noexecutall\" [ZA201]\n"
          "   help: is it a switch that is mistyped? zolexctl guard -- zolex /? lists them\n",
          notStarted}},
        {"NoPolicyFits",
         eight(),
         web,
         with(web, "d:8", "d:6"),
         wipe,
         3,
         {"error: zolex would skip it: no policy fits: Policy.web asks for d:6, and it is 8\n"
          "    [ZA206]\n",
          "   help: add a policy for it: AppliesTo.1 = c:1\n"
          "   help: to let it pass: zolexctl guard --accept ZA206 -- zolex /r /y /f:p.ini\n",
          notStarted}},
        {"AFailedDriveIsListed",
         failedDrive,
         with(with(all, "3,4,5,6,7", "3,4,5,6"), "Hotspares = 8", "Hotspares = 7"),
         all,
         wipe,
         3,
         {"[ZX701]\n", "there is no drive 8 among 7 [ZX304]\n", notStarted}},
        {"OneOfTwoControllersIsErased",
         twoControllers(8),
         all,
         all,
         {"/r:2", "/y", "/f:p.ini"},
         3,
         {"error: controller 1: zolex would stop with 11: 32:0-32:7 are in use [ZA217]\n"
          "   help: there is nothing to do: the controller stands as the policies say\n",
          notStarted}},
        {"DrivesOfAnotherServerAreErased",
         foreignDrive,
         "",
         with(with(web, "3,4,5,6,7", "3,4,5,6"), "Hotspares = 8", "Hotspares = 7"),
         wipe,
         3,
         {"This destroys 1 foreign drive:\n", "- foreign 32:7", "controller 1\n",
          "error: 1 foreign drive would be lost, and nobody has agreed to it [ZA212]\n"
          "   help: zolexctl guard --destroy ",
          "-- zolex /r /y /f:p.ini\n", notStarted}},
        // The dry run.
        {"TheRestoreBesideADryRunIsReal",
         eight(),
         web,
         web,
         {"/r", "/y", "/f:p.ini", "/noexecutedeploy"},
         3,
         {"/noexecutedeploy does not hold back the restore: controllers are erased\n    [ZA216]\n",
          "  controller 1  LSI-MegaRAID-8480  is erased\n",
          "This destroys 2 logical drives (338.8 GB) and 1 hot spare:\n", "[ZA212]\n", notStarted}},
        {"ADryRunBehindAMissingParameterFileIsReal",
         eight(),
         web,
         web,
         {"/r", "/y", "/f:p.ini", "@no-such.txt"},
         2,
         {"error: the parameter file \"no-such.txt\" cannot be opened: zolex would go on\n"
          "    without it [ZA202]\n",
          notStarted}},
        {"ASizeDoesNotFit",
         eight(),
         web,
         with(web, "A:FILL:1:ON", "A:90000:1:ON"),
         wipe,
         3,
         {"Array.A has room for 69376 MB, and Logical.1 asks for 90000\n            [ZX110]\n",
          notStarted}},
        {"ADriveIsInTwoArrays",
         eight(),
         web,
         with(web, "Array.B = 3", "Array.B = 2,3"),
         wipe,
         3,
         {"32:1 is in Array.A and in Array.B [ZX302]\n", notStarted}},
        {"TheDefaultSpareIsAMember",
         eight(),
         web,
         "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,2,3,4,5,6,7,8\n"
         "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:5:ON\n",
         wipe,
         3,
         {"no Hotspares: 32:7 becomes the hot spare, and is listed in", "[ZX501]\n",
          "   help: to let it pass: zolexctl guard --accept ZX501 -- zolex /r /y /f:p.ini\n",
          notStarted}},
        // Exit code 0, although something else was done.
        {"AnErrorTextIsNoListing",
         errorText,
         "",
         web,
         wipe,
         3,
         {"printed: Failed", "[ZP105]\n", notStarted}},
        {"TheRestoreIsDeclined",
         eight(),
         web,
         web,
         {"/r", "/f:p.ini"},
         3,
         {"error: without /y zolex asks before it erases, and deploys whatever is answered\n"
          "    [ZA207]\n"
          "   help: add /y: guard asks before zolex is started\n",
          notStarted}},
        {"ThereIsNoThirdController",
         twoControllers(8),
         all,
         all,
         {"/r:3", "/y", "/f:p.ini"},
         2,
         {"error: there is no controller 3: the server has 2 [ZA204]\n", notStarted}},
        {"ALetterIsNoController",
         eight(),
         web,
         web,
         {"/r:x", "/y", "/f:p.ini"},
         2,
         {"error: /r:x is no number of a controller [ZA201]\n", notStarted}},
        {"ZeroIsNoController",
         eight(),
         web,
         web,
         {"/r:0", "/y"},
         2,
         {"error: /r:0 is no number of a controller [ZA201]\n", notStarted}},
        {"MoreThanSixteenCommandsAreLeftOut",
         twoControllers(17),
         "",
         mirrors(8, "17"),
         {"/f:p.ini"},
         3,
         {"error: zolex runs 16 commands of 18, and says that all succeeded [ZX601]\n",
          "left out: UTIL.BAT MEGACLI", "left out: UTIL.BAT MEGACLI -PDHSP", notStarted}},
        {"SeveralLogicalDrivesOnOneArray",
         eight(),
         "",
         with(with(web, "Logical.1 = A:FILL", "Logical.1 = A:20000"), "Logical.2",
              "Logical.2 = A:FILL:1:ON\nLogical.3"),
         {"/f:p.ini"},
         3,
         {"error: zolex leaves out Logical.2: Array.A has Logical.1 already", "[ZX405]\n",
          notStarted}},
        {"ACapturedStripSizeIsNotTaken",
         eight(),
         web,
         with(web, "Array_Mode", "StripeSize = 256\nArray_Mode"),
         wipe,
         3,
         {"p.ini:3:14: error: a strip size of 256 KB is not possible [ZX403]\n", notStarted}},
        {"DrivesOfEnclosuresStandBesideOthers",
         megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
                       {"slot": 0, "count": 4, "sizeMB": 69376})"),
         "",
         with(mirrors(1, "8"), "Hotspares = 8", "Array_Defaults = 0%:0"),
         {"/f:p.ini"},
         3,
         {"error: the command line says :0 for drive 32:0, which is another\n", "[ZX711]\n",
          notStarted}},
        {"TheSpareIsInNoEnclosure",
         megaServer(R"({"slot": 0, "count": 8, "sizeMB": 69376})"),
         "",
         mirrors(1, "8"),
         {"/f:p.ini"},
         3,
         {"error: zolex's own command is another than UTIL.BAT MEGACLI -PDHSP { -Set }\n"
          "    -PhysDrv[ :7 ] -a0 [ZA210]\n"
          "   a drive in no enclosure is :7\n",
          notStarted}},
        {"BothDrivesAreTakenWhenOneIsNamed",
         "hyperwin",
         "",
         "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1\n"
         "Array_Defaults = 0%:0\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:0\n",
         {"/f:p.ini"},
         3,
         {"error: the array is planned on 1, and the command takes 1 2 [ZP222]\n", notStarted}},
        // Switches that do more than they say.
        {"InventedDrivesRunRealCommands",
         eight(),
         "",
         web,
         {"/controllers:server.json", "/f:p.ini"},
         3,
         {"error: /controllers:server.json tells of drives that are not in this server, and\n"
          "    zolex would run commands on this server all the same [ZA205]\n",
          notStarted}},
        {"InventedListingsRunRealCommands",
         eight(),
         "",
         web,
         {"/noexecutecap", "/f:p.ini"},
         3,
         {"error: /noexecutecap has fakeraid invent the drives", "[ZA205]\n", notStarted}},
        {"AMissingPolicyIsAnsweredAfterTheOthersAreConfigured",
         twoControllers(8),
         "",
         with(all, "AppliesTo.1 = t:LSI-MegaRAID-8480", "AppliesTo.1 = c:1"),
         {"/f:p.ini", "/e1"},
         3,
         {"error: controller 2: zolex would skip it: no policy fits", "[ZA206]\n",
          "with /e1 zolex ends with 1 when the others have been configured\n", notStarted}},
        {"ASecondRunStopsAtTheFirstDrive",
         eight(),
         web,
         web,
         {"/f:p.ini"},
         3,
         {"error: zolex would stop with 11: 32:0-32:7 are in use [ZA217]\n"
          "   help: there is nothing to do: the controller stands as the policies say\n",
          notStarted}},
    };
}

class GuardDanger : public testing::TestWithParam<GuardedDanger> {};

TEST_P(GuardDanger, KeepsZolexFromTheServer) {
    const GuardedDanger& danger = GetParam();
    GuardedServer server(danger.definition, danger.deployed);
    server.write("p.ini", danger.policies);
    const std::string before = server.read("state.json");
    const ProgramRun run = server.guard({}, danger.words);
    EXPECT_EQ(run.exitCode, danger.exitCode) << run.output << run.error;
    EXPECT_EQ(run.output, "") << "zolex was started";
    expectPieces(run.error, danger.pieces);
    EXPECT_EQ(server.read("state.json"), before);
}

INSTANTIATE_TEST_SUITE_P(Server, GuardDanger, testing::ValuesIn(guardedDangers()),
                         [](const testing::TestParamInfo<GuardedDanger>& danger) {
                             return danger.param.name;
                         });

TEST(Guard, StartsZolexWhenTheLossesAreAgreedTo) {
    GuardedServer server(eight(), webPolicies);
    server.write("p.ini", with(webPolicies, "Array.B = 3,4,5,6,7", "Array.B = 3,4,5,6"));
    const std::vector<std::string> words = {"/r", "/y", "/f:p.ini"};
    const std::string before = server.read("state.json");
    const ProgramRun refused = server.guard({}, words);
    EXPECT_EQ(refused.exitCode, 3);
    const std::string code = GuardedServer::codeOf(refused.error);
    // Never, and a code for something else, are no consent.
    EXPECT_EQ(server.guard({"--destroy", "never"}, words).exitCode, 3);
    const ProgramRun other = server.guard({"--destroy", "0000-0000"}, words);
    EXPECT_EQ(other.exitCode, 3);
    expectPieces(other.error, {"error: the code 0000-0000 is not for this: it is for another "
                               "machine",
                               "[ZA212]\n", notStarted});
    EXPECT_EQ(server.read("state.json"), before);
    // The same code stands for the same losses alone.
    const ProgramRun run = server.guard({"--destroy", code}, words);
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    EXPECT_EQ(run.error,

              "zolex /r /y /f:p.ini\n"
              "  controller 1  LSI-MegaRAID-8480  is erased, and configured by Policy.web\n"
              "Played on a virtual copy of this machine: zolex ends with 0, and as the policies\n"
              "say.\n"
              "This destroys 2 logical drives (338.8 GB) and 1 hot spare, agreed to: LD 0, LD 1\n"
              "and spare 32:7 of controller 1.\n");
    expectPieces(run.output, {"Started ZOLEX.\n", "All configuration commands succeeded.\n",
                              "ZOLEX completed with RC=0 \n"});
    EXPECT_EQ(server.zolexctl({"diff", "p.ini"}).exitCode, 0);
    EXPECT_EQ(server.guard({"--destroy", code}, words).exitCode, 3);
}

TEST(Guard, NeedsNoConsentWhereNothingIsLost) {
    GuardedServer server(eight());
    server.write("p.ini", webPolicies);
    const ProgramRun run = server.guard({}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.error, {"  controller 1  LSI-MegaRAID-8480  stays as it is, and gets what "
                             "Policy.web adds\n",
                             "This destroys nothing.\n"});
    EXPECT_EQ(server.zolexctl({"diff", "p.ini"}).exitCode, 0);
}

TEST(Guard, LetsThroughWhatChangesNothing) {
    GuardedServer server(eight(), webPolicies);
    server.write("p.ini", webPolicies);
    const std::string before = server.read("state.json");
    const std::vector<std::vector<std::string>> harmless = {
        {}, {"/?"}, {"/e2"}, {"/c", "/f:new.ini"}, {"/f:p.ini", "/noexecuteall"}};
    for (const std::vector<std::string>& words : harmless) {
        const ProgramRun alone = server.start((server.folder() / programName).string(), words);
        fs::remove(server.folder() / "new.ini");
        const ProgramRun run = server.guard({}, words);
        EXPECT_EQ(run.exitCode, alone.exitCode) << run.error;
        EXPECT_EQ(run.output, alone.output);
        EXPECT_EQ(run.error, alone.error);
    }
    EXPECT_EQ(server.read("state.json"), before);
}

TEST(Guard, EndsWithTheExitCodeOfZolex) {
    // The real utility refuses what the copy takes.
    GuardedServer server(megaServer(eightDrives, R"(, "faults": [{"match": "-CfgLdAdd",
        "output": "FW error.\n", "exitCode": 3}])"));
    server.write("p.ini", webPolicies);
    const ProgramRun run = server.guard({}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 11) << run.output << run.error;
    expectPieces(run.output, {"Received error return code 3", "ZOLEX failed with RC=11 \n"});
}

TEST(Guard, TellsWhatAUtilityHasLiedAbout) {
    GuardedServer server(megaServer(eightDrives, R"(, "faults": [{"match": "-PDHSP",
        "output": "Failed to set the hot spare.\n", "exitCode": 0}])"));
    server.write("p.ini", webPolicies);
    const ProgramRun run = server.guard({}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.output, {"All configuration commands succeeded.\n"});
    expectPieces(run.error,
                 {"error: zolex ended with 0, and controller 1 does not stand as it should "
                  "[ZA218]\n"});
}

TEST(Guard, RefusesWithoutTheProgramsThatZolexNeeds) {
    for (const char* const missing : {"hwdetect.exe", "UTIL.BAT"}) {
        GuardedServer server(eight(), webPolicies);
        server.write("p.ini", webPolicies);
        fs::remove(server.folder() / missing);
        const std::string before = server.read("state.json");
        const ProgramRun run = server.guard({"--destroy", "any"}, {"/r", "/y", "/f:p.ini"});
        EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
        EXPECT_EQ(run.output, "");
        expectPieces(run.error, {missing, notStarted});
        EXPECT_EQ(server.read("state.json"), before);
    }
}

TEST(Guard, RefusesAServerWithoutControllers) {
    GuardedServer server(eight());
    server.write("p.ini", webPolicies);
    server.environment["ZOLEX_PCI_ROOT"] = (server.folder() / "none").string();
    const ProgramRun run = server.guard({}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 2) << run.output << run.error;
    expectPieces(run.error, {"error: no supported RAID controller was found\n"});
}

TEST(Guard, LetsAcceptedErrorsPass) {
    GuardedServer server(twoControllers(8));
    server.write("p.ini", with(with(webPolicies, ",d:8", ""), "AppliesTo.1 = t:LSI-MegaRAID-8480",
                               "AppliesTo.1 = c:1"));
    const std::string before = server.read("state.json");
    EXPECT_EQ(server.guard({}, {"/f:p.ini"}).exitCode, 3);
    EXPECT_EQ(server.read("state.json"), before);
    const ProgramRun run = server.guard({"--accept", "za206"}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    expectPieces(run.error, {"warning: controller 2: zolex would skip it", "accepted"});
    EXPECT_NE(server.read("state.json"), before);
}

TEST(Guard, AcceptsNothingThatZolexItselfFailsAt) {
    GuardedServer server(eight());
    server.write("p.ini", "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                          "Array.A = 1,2,3,4,5,6,7,8\nLogical_Mode = CUSTOM\n"
                          "Logical.1 = A:FILL:5:ON\n");
    const std::string before = server.read("state.json");
    const ProgramRun run = server.guard({"--accept", "ZX501"}, {"/f:p.ini"});
    EXPECT_EQ(run.exitCode, 3) << run.output << run.error;
    EXPECT_EQ(run.output, "");
    expectPieces(run.error,
                 {"[ZX501]\n   accepted\n", "error: zolex would end with exit code 11 [ZA209]\n",
                  "   | The physical disk at 32:7 is not free: it is online.\n",
                  "   | ZOLEX failed with RC=11\n", notStarted});
    EXPECT_EQ(server.read("state.json"), before);
}

TEST(Guard, AgreesToWhatCertificatesTellOf) {
    GuardedServer server(eight());
    server.environment["ZOLEX_SETTLE_MS"] = "0";
    server.write("p.ini", webPolicies);
    fs::create_directory(server.folder() / "proofs");
    const ProgramRun applied = server.start(
        ZOLEXCTL_PROGRAM, {"apply", "--policies", "p.ini", "--certificates", "proofs"});
    ASSERT_EQ(applied.exitCode, 0) << applied.output << applied.error;
    const std::vector<std::string> own = {"--destroy", "own", "--certificates", "proofs"};
    const ProgramRun run = server.guard(own, {"/r", "/y", "/f:p.ini"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    // Of another layout they tell nothing.
    server.write("p.ini", with(webPolicies, "Array.B = 3,4,5,6,7", "Array.B = 3,4,5,6"));
    server.deploy("p.ini");
    const std::string before = server.read("state.json");
    const ProgramRun other = server.guard(own, {"/r", "/y", "/f:p.ini"});
    EXPECT_EQ(other.exitCode, 3) << other.output << other.error;
    expectPieces(other.error, {"error: --destroy own: ", "[ZA212]\n", notStarted});
    EXPECT_EQ(server.read("state.json"), before);
    EXPECT_EQ(server.guard({"--destroy", "own"}, {"/r", "/y"}).exitCode, 2);
}

TEST(Guard, ErasesOneControllerOfTwo) {
    const std::string all = with(webPolicies, ",d:8", "");
    GuardedServer server(twoControllers(8), all);
    const ProgramRun refused = server.guard({}, {"/r:2", "/y"});
    EXPECT_EQ(refused.exitCode, 3);
    expectPieces(refused.error, {"  controller 2  LSI-MegaRAID-8480  is erased\n",
                                 "This destroys 2 logical drives (338.8 GB) and 1 hot spare:\n"});
    EXPECT_EQ(refused.error.find("controller 1"), std::string::npos);
    const ProgramRun run =
        server.guard({"--destroy", GuardedServer::codeOf(refused.error)}, {"/r:2", "/y"});
    EXPECT_EQ(run.exitCode, 0) << run.output << run.error;
    const ProgramRun left = server.zolexctl({"show", "--controller", "2"});
    EXPECT_EQ(left.output.find("RAID"), left.output.find("RAID-8480") - 0) << left.output;
}

TEST(Guard, IsForZolexAlone) {
    PlannedServer server(eight());
    const ProgramRun other = server.zolexctl({"guard", "--", "rm", "-r"});
    EXPECT_EQ(other.exitCode, 2);
    EXPECT_EQ(other.error, "error: guard is for zolex, not for \"rm\"\n"
                           "  help: zolexctl guard -- zolex /r /y /f:site.ini\n");
    const ProgramRun none = server.zolexctl({"guard"});
    EXPECT_EQ(none.exitCode, 2);
    EXPECT_EQ(none.error, "error: guard needs zolex and its arguments behind --\n"
                          "  help: zolexctl guard -- zolex /r /y /f:site.ini\n");
    EXPECT_EQ(server.zolexctl({"guard", "--recording", "x.zrec", "--", "zolex"}).exitCode, 2);
    EXPECT_EQ(server.zolexctl({"guard", "--controller", "1", "--", "zolex"}).exitCode, 2);
}

} // namespace
} // namespace zolex::e2e
