#pragma once

#include "companion/binding/KindFile.h"
#include "companion/families/Family.h"
#include "companion/findings/Finding.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/Plan.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// What a controller of a family is planned by.
struct FamilyCase {
    const ControllerSnapshot& detail;
    const Family& family;
    const PolicyView& view;
    /// The entries of the policy that tell drives by what they are; null without any.
    const KindSection* kinds = nullptr;
    std::string file;               ///< of the policies, as it was given; empty: none
    bool failedMembersStay = false; ///< as in BindingTerms
};

/// A command line of the family as somebody types it: "perccli64 /c0/e252/s3 set good force". The
/// program is the one that was found, else the one that the maker of the controller calls so.
[[nodiscard]] std::string typedLine(const Family& family, const ControllerSnapshot& controller,
                                    std::string line);

/// Fills arrays, volumes, spares, settings and bindings of the planning, each with its reason.
/// Without errors among what is returned it has a layout.
[[nodiscard]] std::vector<Finding> fillFamilyLayout(const FamilyCase& planned,
                                                    ControllerPlanning& planning);

} // namespace zolex::companion
