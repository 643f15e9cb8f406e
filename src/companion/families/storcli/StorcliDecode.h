#pragma once

#include "companion/families/Family.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// What one call of the utility answers, controllers aside.
struct StorcliAnswer {
    std::string status;      ///< "Success", "Failure"; empty: not told
    std::string description; ///< its own words, those of a detail where there are any
    std::string cliVersion;  ///< "007.2507.0000.0000 Mar 11, 2024"; 1.x tells none
    std::int32_t errorCode = 0;
    bool isJson = false;
    std::string fault; ///< why it is none

    [[nodiscard]] bool isFailure() const;
    [[nodiscard]] bool isOfGeneration8() const { return cliVersion.starts_with("008"); }
};

/// Reads the status of an answer, in JSON or in plain text.
[[nodiscard]] StorcliAnswer storcliAnswer(std::string_view output);

/// A controller of the list of controllers.
struct StorcliListed {
    std::int32_t number = 0;
    std::string model;
};

/// What "show" lists.
struct StorcliOverview {
    std::vector<StorcliListed> controllers; ///< of RAID
    std::size_t listed = 0;                 ///< with host adapters
    std::size_t counted = 0;                ///< 0: not told
};

/// Nothing: the answer is no such list.
[[nodiscard]] std::optional<StorcliOverview> storcliControllers(std::string_view output);

/// What is to be said of a call that has ended, and whose answer lists nothing.
[[nodiscard]] FamilyFinding storcliNoAnswer(const FamilyListing& listing,
                                            const StorcliAnswer& answer);
/// The same of one that the next generation of the utility has answered.
[[nodiscard]] FamilyFinding storcliOfGeneration8(const StorcliAnswer& answer);

/// Whether the answer to "/cN show all" names drives in no enclosure, which a call for all
/// enclosures leaves out; drives in an enclosure.
struct StorcliPlaces {
    bool inEnclosures = false;
    bool outside = false;
};
[[nodiscard]] StorcliPlaces storcliPlaces(std::string_view output);

/// Decodes the listings of a controller, which say themselves what they list: facts, findings, PCI
/// function and model. Listings that are none are told. Never fails.
void decodeStorcli(FamilyController& controller);

} // namespace zolex::companion
