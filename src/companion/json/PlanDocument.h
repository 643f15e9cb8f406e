#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "companion/planning/Plan.h"
#include "foundation/FileSystem.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The document `zolex-plan`: a plan that can be kept, looked at and carried out later.
namespace zolex::companion {

/// Bytes of the largest document that is read; one of 36 controllers with 144 drives each has some
/// 10 MB.
inline constexpr std::size_t mostPlanBytes = std::size_t{64} << 20U;

/// The document. One of a plan that cannot be carried out has no "steps", and every fault stands in
/// its "diagnostics". A plan without an id gets planIdOf. Equal plans give equal bytes, but for
/// made_at, argv, plan_id and duration_ms.
[[nodiscard]] std::string planDocument(const MachinePlan& plan, const DocumentHead& head);

/// A document of the same format of a plan that could not be made: no controllers, and why in
/// `diagnostics`.
[[nodiscard]] std::string failedPlanDocument(const std::vector<Finding>& findings,
                                             const DocumentHead& head);

/// "p-" and twelve hexadecimal digits of a hash over the fingerprint, the policies, all steps and
/// the time of making.
[[nodiscard]] std::string planIdOf(const MachinePlan& plan, std::string_view madeAt);

/// What came of reading a plan.
struct PlanReading {
    std::optional<MachinePlan> plan; ///< nothing: it cannot be read; `findings` says why
    DocumentHead head;
    std::vector<Finding> findings; ///< at most one: an error
    std::string hash{};            ///< of a file: SHA-256 of its bytes
};

/// Reads the text of a document. Names that a later minor version may have added are passed over.
/// Nothing in it is trusted: types, numbers, lengths, and whatever one part says of another are
/// checked. Of the controllers it gives what the document has: no listings, no commands.
[[nodiscard]] PlanReading readPlanDocument(std::string_view text, std::string_view fileName);

/// Reads the document in a file. One that cannot be read, or is larger than mostPlanBytes, is a
/// finding too.
[[nodiscard]] PlanReading readPlanFile(FileSystem& files, const std::string& name);

} // namespace zolex::companion
