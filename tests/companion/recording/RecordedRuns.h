#pragma once

#include "companion/commands/Commands.h"
#include "companion/support/SimulatedPlatform.h"
#include "driver/ZOLEX.h"
#include "setup/ServerFiles.h"
#include "support/FakePlatform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

/// Runs of both programs on a machine in memory and on recordings, over the files of a folder.
namespace zolex::companion::test {

using zolex::test::FakePlatform;
using zolex::test::TemporaryDirectory;

/// What a run shows and leaves.
struct Seen {
    int exitCode = -1;
    std::string output;
    std::string error;
    std::string file; ///< the policies file that it writes
    friend bool operator==(const Seen&, const Seen&) = default;
    friend void PrintTo(const Seen& seen, std::ostream* out) {
        *out << "exit " << seen.exitCode << "\n--- output\n"
             << seen.output << "\n--- error\n"
             << seen.error << "\n--- file\n"
             << seen.file;
    }
};

/// A machine in memory over the files of the current folder.
template <typename Machine>
class WithFiles : public Machine {
  public:
    using Machine::Machine;
    FileSystem& files() override { return files_; }

  private:
    StandardFileSystem files_;
};

using Server = WithFiles<SimulatedPlatform>;
using Elsewhere = WithFiles<FakePlatform>;

constexpr const char* writtenFile = "written.ini";

template <typename Run>
Seen seen(FakePlatform& platform, Run run) {
    platform.consoleFake = {};
    platform.files().remove(writtenFile);
    const int exitCode = run();
    return {exitCode, platform.consoleFake.output, platform.consoleFake.error,
            TemporaryDirectory::read(writtenFile)};
}

inline Seen runZolex(FakePlatform& platform, const std::vector<std::string>& arguments) {
    std::vector<const char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    return seen(platform,
                [&] { return ZOLEX::run(static_cast<int>(argv.size()), argv.data(), platform); });
}

inline Context contextOf(Platform& platform) {
    return {platform, {}, Format::text, {}, {}, {}, false, false, {"record", "-o", "a.zrec"}};
}

inline Seen runRecord(FakePlatform& platform, const std::string& file, bool redact = false) {
    Context context = contextOf(platform);
    context.outputFile = file;
    return seen(platform, [&] { return record(context, {redact}); });
}

inline Seen runReplay(const std::string& file, const std::vector<std::string>& command) {
    Elsewhere system;
    system.now.year = 1999;
    Context context = contextOf(system);
    Seen result = seen(system, [&] { return replay(context, {file, command}); });
    EXPECT_TRUE(system.children.empty());
    return result;
}

/// A machine that finds its utilities in the current folder.
inline void layOut(const TemporaryDirectory& folder) {
    folder.write("UTIL.BAT", "", true);
    folder.write("hwdetect.exe", "", true);
}

/// Makes the layout of the sample policies on the server.
inline void configure(Server& server, const TemporaryDirectory& folder) {
    folder.write("sample.ini", zolex_sim::samplePolicies(server.server).content);
    runZolex(server, {"zolex", "/r", "/y", "/f:sample.ini"});
}

} // namespace zolex::companion::test
