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

/// What a command line came to on a copy.
struct PlayedLine {
    std::int32_t exitCode = 0;
    std::string output;
};

/// What command lines can change of a copy.
struct CopyState {
    std::vector<zolex_sim::DriveStatus> drives; ///< in the order of the copy's drives
    std::vector<zolex_sim::Array> arrays;
    std::vector<zolex_sim::LogicalDrive> logicalDrives;
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

    /// Runs a command line: a program with whatever path, be it UTIL.BAT with the utility's word or
    /// the utility itself, and its options.
    PlayedLine play(const std::vector<std::string>& argv);

    /// The controller of the virtual server, as it stands.
    [[nodiscard]] const zolex_sim::Controller& controller() const { return copy(); }
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
    [[nodiscard]] zolex_sim::Controller changedPart(const CopyState& before,
                                                    const std::vector<bool>& isArrayKept) const;

    std::string utility_;
    std::int32_t type_;
    std::vector<std::vector<std::string>> listings_; ///< arguments of the listing commands
    Facts original_;
    zolex_sim::Server server_; ///< the copy is the last of its controllers
};

} // namespace zolex::companion
