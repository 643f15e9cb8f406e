#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/machine/Utilities.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zolex::companion {

/// What is captured of a machine.
struct CaptureRequest {
    std::string machineType;                 ///< given instead of asked for; or empty
    std::string serialNumber;                ///< the same
    std::vector<std::int32_t> controllers;   ///< numbers from 1; empty: all
    std::chrono::milliseconds limit{300000}; ///< for each child
    /// Told before each child: "hardware detector", then of each listing
    /// "controller 1 of 2: UTIL.BAT MEGACLI -pdList -a0". May be empty.
    std::function<void(const std::string& text)> progress;
    /// Whether the families beside zolex's utilities are asked for their controllers.
    bool asksFamilies = false;
    /// Names of families that are asked though they have to be asked for by name.
    std::vector<std::string> families;
    /// Notes what the running system uses the logical drives of a controller for. Empty: nobody
    /// looks, as of a machine that is not this one.
    std::function<void(Facts& facts)> noteUses{};
    /// The same of logical drives that are about to be deleted; captures do not ask it. Empty:
    /// noteUses.
    std::function<void(Facts& facts)> noteHolders{};
    /// The programs behind the platform, to tell which of them is missing or cannot be started; or
    /// null. They outlive the capture.
    const Utilities* utilities = nullptr;
};

/// A controller was asked for that the machine does not have.
class NoSuchController : public std::runtime_error {
  public:
    NoSuchController(std::int32_t number, std::size_t count);
    [[nodiscard]] std::int32_t number() const { return number_; }
    /// How many controllers the machine has.
    [[nodiscard]] std::size_t count() const { return count_; }

  private:
    std::int32_t number_;
    std::size_t count_;
};

/// Looks at the machine: its names, its controllers, and of each one asked for the listings with
/// the layout, read twice. Nothing but reading command lines reach `platform`, as zolex writes them
/// ("UTIL.BAT MEGACLI -pdList -a0"): a UtilityPlatform, a recording or what replays one. What fails
/// is told in the snapshot and ends nothing else. NoSuchController is thrown before a utility of
/// zolex is asked. Controllers that zolex knows have its numbers; where a family drives such a
/// card, it takes the card's place, unless the user named the program of the card's own utility.
/// The other controllers of families follow, in the order of the bus.
[[nodiscard]] Snapshot captureMachine(Platform& platform, const CaptureRequest& request);

} // namespace zolex::companion
