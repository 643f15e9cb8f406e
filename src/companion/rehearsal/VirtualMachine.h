#pragma once

#include "companion/facts/Facts.h"
#include "companion/machine/Snapshot.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// The controllers of a captured machine as one virtual server: all of them answer, each with the
/// number that it has among those of its utility.
class VirtualMachine {
  public:
    /// Of all controllers of the snapshot, which must be all of the machine.
    explicit VirtualMachine(const Snapshot& snapshot);
    ~VirtualMachine();
    VirtualMachine(const VirtualMachine&) = delete;
    VirtualMachine& operator=(const VirtualMachine&) = delete;

    /// Why it does not stand for the machine: "controller 2: ..."; empty when it does.
    [[nodiscard]] const std::vector<std::string>& notCopied() const;

    struct Answer {
        std::uint32_t exitCode = 0;
        std::string output;
    };
    /// Runs a command line of UTIL.BAT, with a folder before it or not; nothing for another
    /// program.
    [[nodiscard]] std::optional<Answer> run(std::string_view commandLine);

    /// What the controller's listings say by now, in the place of the captured ones.
    [[nodiscard]] Facts capture(std::int32_t number) const;

  private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

} // namespace zolex::companion
