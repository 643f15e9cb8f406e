#pragma once

#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/Plan.h"
#include "policies/Policy.h"

#include <cstdint>
#include <memory>
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
    bool isDefault = false; ///< the built-in policy, which stands in no file

    /// The line of an entry in the file as it is written; 0 for the built-in policy.
    [[nodiscard]] std::int32_t fileLine(std::int32_t line) const;
    /// The same of an entry of a policy; 0 without one.
    [[nodiscard]] std::int32_t lineOfEntry(std::size_t policy, std::string_view keyword) const;
    /// Moves the places of findings to the file as it is written, or takes them away.
    void place(std::vector<Finding>& findings) const;
};

/// What was read of the policies of a request.
struct PoliciesReading {
    std::unique_ptr<PlanPolicies> policies; ///< null with an error among the findings
    std::vector<Finding> findings;          ///< of the file alone
};

/// The policies of the request, without the entries that zolex does not know.
[[nodiscard]] PoliciesReading readPlanPolicies(const PlanRequest& request);
/// The same of a text that entries were bound for; null when zolex refuses it.
[[nodiscard]] std::unique_ptr<PlanPolicies> readBoundPolicies(const std::string& file,
                                                              const BoundPolicies& bound);

} // namespace zolex::companion
