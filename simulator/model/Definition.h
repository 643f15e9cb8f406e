#pragma once

#include "model/Fields.h"
#include "model/Server.h"

#include <string_view>

namespace zolex_sim {

/// The server that a definition file describes, in its initial state. A fault is reported with the
/// name of the field; what is returned then is of no use.
Server readDefinition(std::string_view text, Problem& problem);

/// The fields of a logical drive that definition and state files share: level, sizeMB, stripeKB,
/// writePolicy, readPolicy, name, batteryProtected, partitioned. Those that are absent stay with
/// the controller's defaults.
struct LogicalDriveFields {
    RaidLevel level = RaidLevel::raid0;
    std::optional<std::int64_t> sizeMb;
    std::optional<int> stripeKb;
    std::optional<WritePolicy> writePolicy;
    std::optional<ReadPolicy> readPolicy;
    std::string name;
    std::optional<bool> batteryProtected;
    bool partitioned = false;
};
LogicalDriveFields readLogicalDriveFields(Fields& fields);

/// A list of lists of drive locations: [["252:0", "252:1"], ...].
std::vector<std::vector<DriveLocation>> readSpans(const Json& list, const std::string& path,
                                                  Problem& problem);

/// Greatest size of one drive or logical drive in MB.
constexpr std::int64_t maxDriveSizeMb = 100'000'000;
constexpr std::int64_t maxLogicalDriveSizeMb = 200'000'000'000;

} // namespace zolex_sim
