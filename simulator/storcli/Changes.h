#pragma once

#include "storcli/Listing.h"
#include "storcli/Reply.h"

#include <string>
#include <vector>

namespace zolex_sim::storcli {

/// The words of a command behind its path, in lower case up to the first "=".
using Words = std::vector<std::string>;

/// One thing that a command is about, and what the command is to do with it. Nothing: done.
using DriveChange = std::optional<Refusal> (*)(Controller&, Drive&, const Words&);
using VolumeChange = std::optional<Refusal> (*)(Controller&, int number, const Words&);
using ControllerChange = std::optional<Refusal> (*)(Controller&, const Words&);

/// A changing command: its first words, what it does, and what it says.
template <typename Change>
struct Verb {
    std::string words; ///< "add hotsparedrive"; the last one may be followed by more
    Change change;
    std::string done;    ///< description where it went well
    std::string refused; ///< and where it did not; empty: the reason
};

const std::vector<Verb<DriveChange>>& driveVerbs();
const std::vector<Verb<VolumeChange>>& volumeVerbs();
const std::vector<Verb<ControllerChange>>& controllerVerbs();

/// "/cN/fall del".
std::optional<Refusal> clearForeign(Controller& controller);

} // namespace zolex_sim::storcli
