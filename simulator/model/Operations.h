#pragma once

#include "model/Server.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex_sim {

/// What a controller objects to. The front ends turn it into their utility's exit codes.
enum class RefusalKind : std::uint8_t {
    levelUnsupported,
    driveNotFound,
    driveNamedTwice,
    driveNotFree,
    wrongDriveCount,
    badStripe,
    badSize,
    tooMany,
    noLogicalDrive,
    notHotSpare,
};

/// Why a controller will not do something; it has then changed nothing.
struct Refusal {
    RefusalKind kind;
    std::string reason; ///< one sentence
};

/// A logical drive over an array of its own.
struct NewLogicalDrive {
    RaidLevel level = RaidLevel::raid0;
    std::vector<std::vector<DriveLocation>> spans;
    std::optional<std::int64_t> sizeMb; ///< the whole array when absent
    std::optional<int> stripeKb;        ///< the controller's default when absent, and so below
    std::optional<WritePolicy> writePolicy;
    std::optional<ReadPolicy> readPolicy;
    std::string name;
    std::optional<bool> batteryProtected;
    bool partitioned = false;
};

/// Builds the array and the logical drive, which gets the lowest free number; the members become
/// online. Each member must be a free drive (good, in no array, no spare).
std::optional<Refusal> createLogicalDrive(Controller& controller, const NewLogicalDrive& request);

/// One more logical drive on an array that exists; the request names no drives. It takes what is
/// left of the array when it asks for no size.
std::optional<Refusal> addLogicalDrive(Controller& controller, std::size_t array,
                                       const NewLogicalDrive& request);

/// Makes free drives hot spares of the whole controller: all of them or none.
std::optional<Refusal> addSpares(Controller& controller,
                                 const std::vector<DriveLocation>& locations);

/// Deletes the logical drives with these numbers: all of them or none. The others keep their
/// numbers. An array without a logical drive goes too, and its members become good again; those
/// that are failed stay so.
std::optional<Refusal> removeLogicalDrives(Controller& controller,
                                           const std::vector<std::size_t>& numbers);

/// Hot spares become good again: all of them or none.
std::optional<Refusal> removeSpares(Controller& controller,
                                    const std::vector<DriveLocation>& locations);

/// Deletes the logical drives and arrays. Members and spares become good again; failed, bad and
/// foreign drives stay what they are.
void clearConfiguration(Controller& controller);

/// Foreign drives become good and carry nothing any more.
void clearForeign(Controller& controller);

/// The parts of the checks that hold for a logical drive at any time.
std::optional<Refusal> checkShape(const Controller& controller, RaidLevel level,
                                  const std::vector<std::vector<DriveLocation>>& spans);
std::optional<Refusal> checkStripe(const Controller& controller, int stripeKb);

} // namespace zolex_sim
