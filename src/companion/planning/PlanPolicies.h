#pragma once

#include "companion/binding/WrittenPlaces.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/Plan.h"
#include "policies/Policy.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Policies as they are written and as zolex reads them. Both have the same sections.
struct PlanPolicies {
    PolicyDocument document;
    std::vector<PolicyView> views; ///< they point into the document
    PolicyList list;
    /// Of a file whose entries were bound: the line of the file as it is written, for each line of
    /// `document`. Empty: they are the same.
    std::vector<std::int32_t> lineOf;
    std::optional<WrittenPlaces> written; ///< of such a file
    std::string uncovered;                ///< as in BoundPolicies
    bool isDefault = false;               ///< the built-in policy, which stands in no file

    /// The line of an entry in the file as it is written; 0 for the built-in policy.
    [[nodiscard]] std::int32_t fileLine(std::int32_t line) const;
    /// The same of an entry of a policy; 0 without one.
    [[nodiscard]] std::int32_t lineOfEntry(std::size_t policy, std::string_view keyword) const;
    /// Tells findings of the file as it is written, or takes their places away.
    void place(std::vector<Finding>& findings) const;
};

/// What was read of the policies of a request.
struct PoliciesReading {
    std::unique_ptr<PlanPolicies> policies; ///< null with an error among the findings
    std::vector<Finding> findings;          ///< of the file alone
    std::string hash;                       ///< SHA-256 of its bytes; empty for the built-in policy
};

/// The policies of the request, without the entries that zolex does not know.
[[nodiscard]] PoliciesReading readPlanPolicies(const PlanRequest& request);
/// The same with the entries as they were bound; null when zolex refuses that.
[[nodiscard]] std::unique_ptr<PlanPolicies> readBoundPolicies(const PlanRequest& request,
                                                              const BoundPolicies& bound);

} // namespace zolex::companion
