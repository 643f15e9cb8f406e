#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {
class FileSystem;
}

namespace zolex::companion {

/// One of the utilities by which controllers are driven, and the programs that it is, usually.
struct UtilityNames {
    std::string_view utility;                   ///< "MEGACLI"
    std::span<const std::string_view> programs; ///< in the order in which they are looked for
};

/// The seven utilities.
[[nodiscard]] std::span<const UtilityNames> utilityNames();
/// Those of the families beside them.
[[nodiscard]] std::vector<UtilityNames> familyUtilityNames();
/// Utilities of controllers that zolexctl does not drive yet: that one is there is told.
[[nodiscard]] std::span<const UtilityNames> undrivenUtilityNames();
/// The utility's word of a controller type: "MEGACLI" of "UTIL.BAT MEGACLI"; empty for none.
[[nodiscard]] std::string_view utilityOfType(std::int32_t controllerType);

/// Where programs are looked for, in this order.
struct ProgramFolders {
    std::string utilities;         ///< named by the user; or empty
    std::string own;               ///< of the running program; or empty
    std::vector<std::string> path; ///< of the search path, behind the current folder
    bool isWindows = false;        ///< "\" between folder and name, ".exe" behind programs
    std::function<bool(const std::string& path)> isProgram;
};

/// Those of this process; `files` tells what is a program.
[[nodiscard]] ProgramFolders systemFolders(FileSystem& files, std::string utilitiesFolder);

/// What was found.
struct Utilities {
    std::string wrapper;  ///< path of UTIL.BAT; empty: there is none
    std::string detector; ///< path of hwdetect.exe; empty: there is none
    std::map<std::string, std::string, std::less<>>
        programs; ///< "MEGACLI" -> path, beside UTIL.BAT
    /// Programs of other names that drive the same controllers, which are there and are not asked:
    /// "STORCLI" -> perccli64 beside a storcli64.
    std::map<std::string, std::vector<std::string>, std::less<>> others;
    /// Smaller drives are left alone by families that look for drives; 0: the family's own bound.
    std::uint64_t leastDriveBytes = 0;
    std::map<std::string, std::string, std::less<>> named; ///< the same, named by the user

    /// The program that the utility is started by: the one that the user named, else UTIL.BAT, else
    /// the one that was found; of a family the one that was found stands before UTIL.BAT. Empty:
    /// none.
    [[nodiscard]] std::string programOf(std::string_view utility) const;
    /// Whether that is UTIL.BAT.
    [[nodiscard]] bool usesWrapper(std::string_view utility) const;
    /// The arguments, program first, of a command line as zolex writes it ("UTIL.BAT MEGACLI
    /// -pdList -a0", "hwdetect.exe /i"), or one of a family ("STORCLI show J nolog"); none where
    /// the program is missing or is none of these.
    [[nodiscard]] std::vector<std::string> argumentsOf(std::string_view commandLine) const;
};

/// How a user names the program of a utility: "zolexctl --utility
/// MEGACLI=/path/MegaCli64 doctor".
[[nodiscard]] std::string namingOption(std::string_view utility);

/// Looks for UTIL.BAT, hwdetect.exe and each utility: in the folder that the user named, beside the
/// running program, in the current folder and along the search path. `named` are the user's own
/// ("MEGACLI" -> path, letter case of the word ignored), which are not looked for.
[[nodiscard]] Utilities findUtilities(const ProgramFolders& folders,
                                      const std::map<std::string, std::string>& named);

} // namespace zolex::companion
