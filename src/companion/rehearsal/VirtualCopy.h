#pragma once

#include "companion/machine/Snapshot.h"
#include "model/Server.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// The batch file that utilities are called through, where there is one.
inline constexpr std::string_view wrapperName = "UTIL.BAT";

/// What a command line came to on a copy.
struct PlayedLine {
    std::int32_t exitCode = 0;
    std::string output;
    /// Of a family: its utility says no, whatever the exit code is, in these words.
    bool isRefused = false;
    std::string why;
    std::vector<std::string> help;
};

/// What command lines can change of a controller that STORCLI drives.
struct StorcliState {
    struct Drive {
        zolex_sim::storcli::DriveState state = zolex_sim::storcli::DriveState::good;
        std::vector<std::size_t> groups;
        friend bool operator==(const Drive&, const Drive&) = default;
    };
    std::vector<Drive> drives; ///< in the order of the copy's drives
    std::vector<zolex_sim::storcli::Group> groups;
    std::vector<zolex_sim::storcli::Volume> volumes;
    int rebuildRate = 0;
    friend bool operator==(const StorcliState&, const StorcliState&) = default;
};

/// What command lines can change of a copy.
struct CopyState {
    std::vector<zolex_sim::DriveStatus> drives; ///< in the order of the copy's drives
    std::vector<zolex_sim::Array> arrays;
    std::vector<zolex_sim::LogicalDrive> logicalDrives;
    StorcliState storcli; ///< of a copy of one that STORCLI drives; the others are empty then
    friend bool operator==(const CopyState&, const CopyState&) = default;
};

/// A controller of the virtual server that stands for a captured one. It has the original's number
/// among the adapters of its utility: a command line for another one is refused.
class VirtualCopy {
  public:
    /// `original` tells what the copy is asked when it is captured, and what listings do not
    /// change.
    VirtualCopy(const ControllerSnapshot& original, std::int32_t controllerType,
                zolex_sim::Controller copy);
    /// Of a controller that STORCLI drives.
    VirtualCopy(const ControllerSnapshot& original, zolex_sim::storcli::Controller copy);

    /// Runs a command line: a program with whatever path, be it UTIL.BAT with the utility's word or
    /// the utility itself, and its options. Where the utility refuses a word that it does not know,
    /// the line that its family has for this is run.
    PlayedLine play(const std::vector<std::string>& argv);

    /// The controller of the virtual server, as it stands.
    [[nodiscard]] const zolex_sim::Controller& controller() const { return copy(); }
    /// The same of one that STORCLI drives.
    [[nodiscard]] const zolex_sim::storcli::Controller& storcli() const {
        return server_.storcliControllers.back();
    }
    [[nodiscard]] CopyState state() const;
    void restore(const CopyState& state);
    /// The location of a dedicated hot spare that stands while fewer arrays do than before: of a
    /// real one it is not known whether it goes with an array. Empty: there is none.
    [[nodiscard]] std::string doubtfulSpare(const CopyState& before) const;

    /// What the original's listing commands say of the copy.
    [[nodiscard]] Facts read();
    /// What was read, in the place of the original: what is no matter of the layout is as captured.
    [[nodiscard]] Facts inPlaceOfOriginal(Facts found) const;
    [[nodiscard]] Facts capture() { return inPlaceOfOriginal(read()); }
    /// As `capture`, when `facts` was captured in the state `before`: only what has changed since
    /// is listed and read again.
    [[nodiscard]] Facts capture(const CopyState& before, Facts facts);

  private:
    [[nodiscard]] zolex_sim::Controller& copy() { return server_.controllers.back(); }
    [[nodiscard]] const zolex_sim::Controller& copy() const { return server_.controllers.back(); }
    [[nodiscard]] Facts readFrom(zolex_sim::Server& server) const;
    [[nodiscard]] Facts readStorcli();
    void takeChanges(std::vector<DriveFacts>& drives, const std::vector<DriveFacts>& found) const;
    [[nodiscard]] std::string lostSpare(const CopyState& before) const;
    [[nodiscard]] zolex_sim::Controller changedPart(const CopyState& before,
                                                    const std::vector<bool>& isArrayKept) const;

    std::string utility_;
    std::int32_t type_;
    bool isStorcli_ = false;
    std::int32_t adapter_ = 0;
    std::vector<std::vector<std::string>> listings_; ///< arguments of the listing commands
    std::vector<std::string> commands_;              ///< the same as lines, of a family
    std::vector<DriveFacts> first_;                  ///< STORCLI: as the copy was read first
    Facts original_;
    zolex_sim::Server server_; ///< the copy is the last of its controllers
};

} // namespace zolex::companion
