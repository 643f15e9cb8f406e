#pragma once

#include "companion/cli/Options.h"
#include "companion/commands/Commands.h"
#include "companion/text/StyleChoice.h"

#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// What a command line asks for.
struct Request {
    Command command = Command::none;
    MachineOptions machine;
    Format format = Format::text;
    std::string outputFile;
    ColourWish colours = ColourWish::automatic;
    std::optional<std::int32_t> width;
    bool quiet = false;
    bool verbose = false;
    PlanOptions plan;
    ApplyOptions apply; ///< of reset too
    DiffOptions diff;
    ShowOptions show;
    CheckOptions check;
    RecordOptions record;
    ReplayOptions replay;
    RehearseOptions rehearse;
    ConvertOptions convert;
    GuardOptions guard;
    std::string code; ///< of explain
};

/// A request, or what is to be said instead of doing anything.
struct ArgumentReading {
    Request request;
    bool wantsHelp = false;    ///< of request.command
    bool wantsVersion = false; ///
    std::string fault;         ///< empty: none; otherwise what is wrong with the arguments
    std::string help;          ///< what to do about it
};

/// Reads the arguments behind the program's name.
[[nodiscard]] ArgumentReading readArguments(const std::vector<std::string>& arguments);

} // namespace zolex::companion
