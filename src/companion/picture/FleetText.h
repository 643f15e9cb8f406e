#pragma once

#include "companion/rehearsal/Fleet.h"
#include "companion/text/Terminal.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// What `rehearse` writes on a terminal. Quiet: only the servers that end in error.
struct FleetTextTerms {
    bool verbose = false;
    bool quiet = false;
    std::string pageFile; ///< of --html; empty: none was written
};
[[nodiscard]] std::string fleetText(const Fleet& fleet, const TextStyle& style,
                                    const FleetTextTerms& terms = {});

// Pieces that texts and pages have in common. None is escaped or made printable.

/// "as planned", "same", "skipped", "ERROR".
[[nodiscard]] std::string_view serverResultText(ServerResult result);
/// Names of the policies without "Policy.": "web, db"; "none".
[[nodiscard]] std::string usedPoliciesText(const FleetServer& server);
/// "2 LD, 203.3 GB", "1 spare", "nothing"; "-" without a plan.
[[nodiscard]] std::string lossesText(const FleetServer& server);
/// "50 servers: 44 as planned, 3 same, 2 skipped, 1 error".
[[nodiscard]] std::string fleetCountsText(const Fleet& fleet);
/// "nothing on 41 servers, 17 logical drives (3.1 TB) on 9".
[[nodiscard]] std::string fleetLossesText(const Fleet& fleet);
/// "Never used by any server", and what: "Policy.rest (site.ini:40)".
[[nodiscard]] std::string unusedTitle(const Fleet& fleet);
[[nodiscard]] std::vector<std::string> unusedTexts(const Fleet& fleet);
/// What is supposed, and on how many servers: "drive 32:3 has failed, on 3 of 50 servers".
[[nodiscard]] std::vector<std::string> suppositionTexts(const Fleet& fleet);
/// What came of making every command fail; empty when none was.
[[nodiscard]] std::string drillText(const Fleet& fleet);
/// "site.ini:17:11: controller 2: drive 7 does not exist [ZX304]".
[[nodiscard]] std::string serverFindingText(const FleetServer& server,
                                            const ServerFinding& finding);
/// How many servers a warning is told of, the most frequent first: "ZX703 on 3 servers".
[[nodiscard]] std::vector<std::string> warningCounts(const Fleet& fleet);
/// What is typed to see the plan of one server.
[[nodiscard]] std::string planOfServer(const Fleet& fleet, const FleetServer& server);

} // namespace zolex::companion
