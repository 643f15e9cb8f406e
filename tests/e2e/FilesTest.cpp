// Files with the line ends and names that people give them.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <string>
#include <utility>

namespace zolex::e2e {
namespace {

std::string withCrLf(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '\n' ? "\r\n" : std::string(1, c);
    }
    return result;
}

/// A file as it stands, with its line ends. The name is in the system's own encoding.
std::string bytesOf(const VirtualServer& server, const std::string& name) {
    const std::string path = server.folder().string() + "/" + name;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        ADD_FAILURE() << "no file " << name;
        return {};
    }
    std::string bytes(100'000, '\0');
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
    std::fclose(file);
    return bytes;
}

/// Whether the lines of a file end as those of the system's text files do.
void expectLineEndsOfTheSystem(const std::string& bytes) {
    EXPECT_TRUE(contains(bytes, "\n"));
#ifdef _WIN32
    EXPECT_FALSE(contains(bytes, "\r\r"));
    for (std::size_t at = bytes.find('\n'); at != std::string::npos;
         at = bytes.find('\n', at + 1)) {
        ASSERT_TRUE(at > 0 && bytes[at - 1] == '\r') << bytes.substr(0, at);
    }
#else
    EXPECT_FALSE(contains(bytes, "\r"));
#endif
}

/// "Größe" in the system's own encoding: the western code page, or UTF-8.
#ifdef _WIN32
constexpr const char* outsideAscii = "Gr\xF6\xDF"
                                     "e";
#else
constexpr const char* outsideAscii = "Gr\xC3\xB6\xC3\x9F"
                                     "e";
#endif

constexpr const char* policies = "; two policies\n"
                                 "\n"
                                 "[Policy.other]\n"
                                 "AppliesTo.1 = t:LSI-SAS-RAID\n"
                                 "[Policy.mirror]\n"
                                 "AppliesTo.1 = t:LSI-MegaRAID-8480,m:8837\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON";

/// Deploys the policies of `file` on a new server and tells what came of it: the exit code, what
/// was shown and the server's state.
std::string deployed(const std::string& text, const std::string& file,
                     std::vector<std::string> arguments) {
    VirtualServer server;
    EXPECT_TRUE(server.isReady());
    std::filesystem::create_directories((server.folder() / file).parent_path());
    server.write(file, text);
    const ProgramRun run = server.zolex(arguments);
    const ProgramRun state = server.simulator({"show"});
    EXPECT_EQ(0, state.exitCode) << state.error;
    EXPECT_TRUE(contains(state.output, "RAID1")) << state.output;
    return std::to_string(run.exitCode) + "\n" + run.output + run.error + state.output;
}

TEST(FilesTest, PoliciesWithEitherLineEndAreTheSame) {
    const std::string plain = deployed(policies, "p.ini", {"/f:p.ini"});
    EXPECT_TRUE(plain.starts_with("0\n")) << plain;
    EXPECT_EQ(plain, deployed(withCrLf(policies), "p.ini", {"/f:p.ini"}));
    EXPECT_EQ(plain, deployed(withCrLf(policies) + "\r\n", "p.ini", {"/f:p.ini"}));
}

TEST(FilesTest, AnInventoryWithEitherLineEndIsTheSame) {
    VirtualServer server;
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", policies);
    const std::string inventory = server.read("contlist.ini");
    server.write("contlist.ini", inventory);
    const ProgramRun plain = server.zolex({"/fake", "/f:p.ini", "/v:5"});
    EXPECT_EQ(0, plain.exitCode) << plain.output;
    server.write("contlist.ini", withCrLf(inventory));
    const ProgramRun other = server.zolex({"/fake", "/f:p.ini", "/v:5"});
    EXPECT_EQ(plain.exitCode, other.exitCode);
    EXPECT_EQ(plain.output, other.output);
}

TEST(FilesTest, AParameterFileWithEitherLineEndIsTheSame) {
    VirtualServer server;
    ASSERT_TRUE(server.isReady());
    server.write("p.ini", policies);
    server.write("plain.txt", "/f:p.ini\n/fake\n");
    server.write("other.txt", "/f:p.ini\r\n/fake\r\n");
    const ProgramRun plain = server.zolex({"@plain.txt"});
    EXPECT_EQ(0, plain.exitCode) << plain.output;
    EXPECT_EQ(plain.output, server.zolex({"@other.txt"}).output);
}

TEST(FilesTest, BlanksAndFoldersInANameOfPolicies) {
    for (const char* argument :
         {"/f:my policies/of one server.ini", "/f:my policies\\of one server.ini"}) {
        const std::string result = deployed(policies, "my policies/of one server.ini", {argument});
        EXPECT_TRUE(result.starts_with("0\n")) << result;
        EXPECT_TRUE(contains(result, std::string(argument + 3))) << result;
    }
}

TEST(FilesTest, LettersOutsideAsciiInANameOfPolicies) {
    const std::string name = outsideAscii + std::string(" 1.ini");
    VirtualServer server;
    ASSERT_TRUE(server.isReady());
    const std::string path = server.folder().string() + "/" + name;
    std::FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr);
    std::fputs(policies, file);
    std::fclose(file);
    const ProgramRun run = server.zolex({"/f:" + name});
    EXPECT_EQ(0, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "Checking policies file syntax: " + name + " ...\n"))
        << run.output;
}

TEST(FilesTest, ACaptureWritesLineEndsOfTheSystemAndLeavesNoOtherFile) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    ASSERT_EQ(0, server.zolex({"/c", "/f:my captured policies.ini"}).exitCode);
    const std::string bytes = bytesOf(server, "my captured policies.ini");
    expectLineEndsOfTheSystem(bytes);
    EXPECT_TRUE(contains(bytes, "[Policy.AUTO-"));
    EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
}

TEST(FilesTest, TheTemporaryFileStandsInAFolderOfAnyNameAndHasLineEndsOfTheSystem) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    const std::string folder = std::string("my ") + outsideAscii;
    std::filesystem::create_directories(server.folder().string() + "/" + folder);
    ASSERT_EQ(0, server.zolex({"/c", "/f:kept.ini", "/t:" + folder, "/debug"}).exitCode);
    const std::string kept = bytesOf(server, folder + "/ZOLEXM~~.TMP");
    expectLineEndsOfTheSystem(kept);
    EXPECT_TRUE(contains(kept, "[Policy.AUTO-"));
    // What stands there is what was appended.
    EXPECT_TRUE(bytesOf(server, "kept.ini").ends_with(kept));
    EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
    ASSERT_EQ(0, server.zolex({"/c", "/f:c.ini", "/t:" + folder}).exitCode);
    EXPECT_TRUE(std::filesystem::is_empty(server.folder().string() + "/" + folder));
}

TEST(FilesTest, UtilitiesAreStartedInTheirFolder) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    std::filesystem::create_directories(server.folder() / "tools");
#ifdef _WIN32
    server.write("tools/UTIL.BAT", "@echo %1>>used.txt\r\n@call \"%~dp0..\\UTIL.BAT\" %*\r\n");
#else
    server.write("tools/UTIL.BAT", "echo \"$1\" >>used.txt\nexec ./UTIL.BAT \"$@\"\n");
    std::filesystem::permissions(server.folder() / "tools/UTIL.BAT",
                                 std::filesystem::perms::owner_all);
#endif
    const ProgramRun run = server.zolex({"/c", "/f:c.ini", "/p:tools"});
    EXPECT_EQ(0, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "Executing:tools\\UTIL.BAT MEGACLI ")) << run.output;
    EXPECT_TRUE(server.read("used.txt").starts_with("MEGACLI\nMEGACLI\n"));
    EXPECT_TRUE(contains(server.read("c.ini"), "[Policy.AUTO-"));
}

TEST(FilesTest, ACaptureAddsToAFileWithEitherLineEnd) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    server.write("plain.ini", policies + std::string("\n"));
    server.write("other.ini", withCrLf(policies) + "\r\n");
    ASSERT_EQ(0, server.zolex({"/c", "/f:plain.ini"}).exitCode);
    ASSERT_EQ(0, server.zolex({"/c", "/f:other.ini"}).exitCode);
    // Whichever the lines of the file had, they stay, and the policies read the same.
    EXPECT_TRUE(server.read("plain.ini").starts_with(policies));
    EXPECT_EQ(withoutComments(server.read("plain.ini")), withoutComments(server.read("other.ini")));
    EXPECT_EQ(server.zolex({"/fake", "/f:plain.ini"}).exitCode,
              server.zolex({"/fake", "/f:other.ini"}).exitCode);
}

TEST(FilesTest, AFolderInThePlaceOfThePoliciesIsReported) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    std::filesystem::create_directories(server.folder() / "p.ini");
    const ProgramRun deploy = server.zolex({"/f:p.ini"});
    EXPECT_EQ(5, deploy.exitCode) << deploy.output;
    EXPECT_TRUE(contains(deploy.output, "p.ini")) << deploy.output;
    const ProgramRun capture = server.zolex({"/c", "/f:p.ini"});
    EXPECT_NE(0, capture.exitCode) << capture.output;
    EXPECT_TRUE(std::filesystem::is_empty(server.folder() / "p.ini"));
    EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
}

TEST(FilesTest, AReadOnlyPoliciesFileStaysAsItWas) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    server.write("p.ini", policies + std::string("\n"));
    const std::string before = server.read("p.ini");
    std::filesystem::permissions(server.folder() / "p.ini", std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::remove);
    const ProgramRun run = server.zolex({"/c", "/f:p.ini"});
    EXPECT_EQ(9, run.exitCode) << run.output;
    EXPECT_TRUE(contains(run.output, "p.ini")) << run.output;
    EXPECT_EQ(before, server.read("p.ini"));
    EXPECT_FALSE(server.exists("ZOLEXM~~.TMP"));
    EXPECT_EQ(0, server.zolex({"/f:p.ini", "/fake"}).exitCode);
    std::filesystem::permissions(server.folder() / "p.ini", std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
}

/// Hours and minutes of a clock that is `minutes` ahead of Greenwich.
std::string clockText(std::time_t moment, int minutes) {
    const int minute = static_cast<int>((moment / 60 + minutes) % (24 * 60));
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d", minute / 60 % 24, minute % 60);
    return text.data();
}

TEST(FilesTest, ThePoliciesTellTheTimeOfTheTimeZone) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    const std::pair<const char*, int> zones[] = {{"AAA-9:30", 570}, {"BBB-13", 780}};
    for (const auto& [zone, minutes] : zones) {
        server.environment["TZ"] = zone;
        const std::string name = std::string(zone).substr(0, 3) + ".ini";
        const std::time_t before = std::time(nullptr);
        ASSERT_EQ(0, server.zolex({"/c", "/f:" + name}).exitCode);
        const std::time_t after = std::time(nullptr);
        const auto shown = linesAfter(server.read(name), "; * System time (hh:mm:ss):   ");
        ASSERT_FALSE(shown.empty());
        EXPECT_TRUE(shown[0].starts_with(clockText(before, minutes)) ||
                    shown[0].starts_with(clockText(after, minutes)))
            << zone << ": " << shown[0] << " is not " << clockText(after, minutes);
    }
}

#ifndef _WIN32
TEST(FilesTest, ThePoliciesTellTheTimeOfAPosixZoneFile) {
    VirtualServer server;
    ASSERT_EQ(0, server.simulator({"init", ".", "--sample", "configured"}).exitCode);
    // Zones that have had no summer time for decades.
    const std::pair<const char*, int> zones[] = {{"Asia/Tokyo", 540}, {"Asia/Kolkata", 330}};
    for (const auto& [zone, minutes] : zones) {
        ASSERT_TRUE(std::filesystem::exists(std::string("/usr/share/zoneinfo/") + zone));
        server.environment["TZ"] = zone;
        const std::string name = std::string(zone).substr(5) + ".ini";
        const std::time_t before = std::time(nullptr);
        ASSERT_EQ(0, server.zolex({"/c", "/f:" + name}).exitCode);
        const std::time_t after = std::time(nullptr);
        const auto shown = linesAfter(server.read(name), "; * System time (hh:mm:ss):   ");
        ASSERT_FALSE(shown.empty());
        EXPECT_TRUE(shown[0].starts_with(clockText(before, minutes)) ||
                    shown[0].starts_with(clockText(after, minutes)))
            << zone << ": " << shown[0] << " is not " << clockText(after, minutes);
    }
}
#endif

} // namespace
} // namespace zolex::e2e
