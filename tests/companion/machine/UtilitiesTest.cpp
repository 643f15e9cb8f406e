#include "companion/machine/Utilities.h"

#include "companion/machine/UtilityPlatform.h"
#include "companion/support/SimulatedPlatform.h"
#include "model/Codes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zolex::companion {
namespace {

/// Folders in which these files stand.
ProgramFolders folders(std::set<std::string> files, bool isWindows = false) {
    ProgramFolders places;
    places.own = isWindows ? "C:\\zolex\\" : "/own/";
    places.path =
        isWindows ? std::vector<std::string>{"D:\\bin"} : std::vector<std::string>{"/usr/bin", ""};
    places.isWindows = isWindows;
    places.isProgram = [files = std::move(files)](const std::string& path) {
        return files.count(path) != 0;
    };
    return places;
}

TEST(Utilities, EveryControllerTypeHasARowOfPrograms) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        const std::string_view utility = utilityOfType(type);
        EXPECT_EQ(std::count_if(utilityNames().begin(), utilityNames().end(),
                                [utility](const UtilityNames& row) {
                                    return row.utility == utility && !row.programs.empty();
                                }),
                  1)
            << type;
    }
    EXPECT_EQ(utilityOfType(12), "MEGACLI");
    EXPECT_EQ(utilityOfType(5), "CFGGEN1.02.02");
    EXPECT_EQ(utilityOfType(99), "");
}

TEST(Utilities, AreLookedForInTheNamedFolderThenBesideTheProgramThenHereThenAlongThePath) {
    std::set<std::string> files = {"/tools/UTIL.BAT", "/own/UTIL.BAT", "./UTIL.BAT",
                                   "/usr/bin/UTIL.BAT"};
    for (const char* const expected :
         {"/tools/UTIL.BAT", "/own/UTIL.BAT", "./UTIL.BAT", "/usr/bin/UTIL.BAT", ""}) {
        ProgramFolders places = folders(files);
        places.utilities = "/tools";
        EXPECT_EQ(findUtilities(places, {}).wrapper, expected);
        files.erase(expected);
    }
}

TEST(Utilities, TheFirstUsualNameWins) {
    const Utilities found = findUtilities(
        folders({"/own/megacli", "/usr/bin/MegaCli", "./arcconf", "/usr/bin/cfggen1.02.02"}), {});
    EXPECT_EQ(found.wrapper, "");
    EXPECT_EQ(found.detector, "");
    EXPECT_EQ(found.programs, (std::map<std::string, std::string, std::less<>>{
                                  {"MEGACLI", "/usr/bin/MegaCli"},
                                  {"ARCCONF", "./arcconf"},
                                  {"CFGGEN1.02.02", "/usr/bin/cfggen1.02.02"}}));
}

TEST(Utilities, OthersThatDriveTheSameControllersAreNoted) {
    const Utilities found =
        findUtilities(folders({"/usr/bin/perccli64", "./storcli", "/own/storcli64"}), {});
    EXPECT_EQ(found.programOf("STORCLI"), "/own/storcli64");
    EXPECT_EQ(found.others.at("STORCLI"),
              (std::vector<std::string>{"./storcli", "/usr/bin/perccli64"}));
    EXPECT_TRUE(findUtilities(folders({"/usr/bin/perccli64"}), {}).others.empty());
}

TEST(Utilities, OnWindowsTheyEndInExe) {
    ProgramFolders places = folders({"X:\\my tools\\MegaCli64.exe", "C:\\zolex\\hwdetect.exe",
                                     ".\\hrconf.exe", "D:\\bin\\arcconf", "D:\\bin\\cfggen.exe"},
                                    true);
    places.utilities = "X:\\my tools";
    const Utilities found = findUtilities(places, {});
    EXPECT_EQ(found.detector, "C:\\zolex\\hwdetect.exe");
    EXPECT_EQ(found.programs, (std::map<std::string, std::string, std::less<>>{
                                  {"CFGGEN", "D:\\bin\\cfggen.exe"},
                                  {"HRCONF", ".\\hrconf.exe"},
                                  {"MEGACLI", "X:\\my tools\\MegaCli64.exe"}}));
}

TEST(Utilities, CommandLinesOfZolexBecomeArguments) {
    using Arguments = std::vector<std::string>;
    Utilities utilities;
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT MEGACLI -pdList -a0 \n"), Arguments());
    EXPECT_EQ(utilities.argumentsOf("hwdetect.exe /i"), Arguments());
    EXPECT_EQ(utilities.argumentsOf(""), Arguments());
    utilities.programs["MEGACLI"] = "/opt/raid tools/MegaCli64";
    utilities.detector = "/own/hwdetect.exe";
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT MEGACLI -pdList -a0 \n"),
              (Arguments{"/opt/raid tools/MegaCli64", "-pdList", "-a0"}));
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT ARCCONF GETCONFIG 1 AL"), Arguments());
    EXPECT_EQ(utilities.argumentsOf("hwdetect.exe /i"), (Arguments{"/own/hwdetect.exe", "/i"}));
    EXPECT_EQ(utilities.argumentsOf("rm -rf /"), Arguments());
    utilities.wrapper = "/x y/UTIL.BAT";
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT MEGACLI -pdList -a0"),
              (Arguments{"/x y/UTIL.BAT", "MEGACLI", "-pdList", "-a0"}));
    utilities.named["MEGACLI"] = "/mine";
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT MEGACLI -pdList -a0"),
              (Arguments{"/mine", "-pdList", "-a0"}));
    EXPECT_EQ(utilities.argumentsOf("UTIL.BAT HRCONF GETCONFIG 1 AL"),
              (Arguments{"/x y/UTIL.BAT", "HRCONF", "GETCONFIG", "1", "AL"}));
}

TEST(Utilities, NamesThatTheUserGivesAreTakenInAnyLetterCase) {
    const Utilities found = findUtilities(folders({"./UTIL.BAT"}), {{"MegaCli", "/mine"}});
    EXPECT_EQ(found.programOf("MEGACLI"), "/mine");
    EXPECT_FALSE(found.usesWrapper("MEGACLI"));
    EXPECT_EQ(found.programOf("ARCCONF"), "./UTIL.BAT");
    EXPECT_TRUE(found.usesWrapper("ARCCONF"));
}

TEST(Utilities, ThePlatformStartsWhatWasFoundAndNothingElse) {
    test::SimulatedPlatform system("single");
    Utilities utilities;
    utilities.programs["MEGACLI"] = "/opt/raid tools/MegaCli64";
    UtilityPlatform platform(system, utilities);
    const ChildResult listed =
        platform.runChild("UTIL.BAT MEGACLI -pdList -a0 \n", true, std::chrono::seconds(9));
    EXPECT_EQ(listed.outcome, ChildOutcome::ended);
    EXPECT_NE(listed.output.find("Slot Number"), std::string::npos);
    EXPECT_EQ(
        platform.runChild("UTIL.BAT ARCCONF GETCONFIG 1 AL", true, std::chrono::seconds(9)).outcome,
        ChildOutcome::notStarted);
    EXPECT_EQ(platform.runChild("ls", true, std::chrono::seconds(9)).outcome,
              ChildOutcome::notStarted);
#ifdef _WIN32
    EXPECT_EQ(system.children.size(), 1U);
#else
    EXPECT_EQ(system.children,
              std::vector<std::string>{"\"/opt/raid tools/MegaCli64\" -pdList -a0"});
#endif
}

} // namespace
} // namespace zolex::companion
