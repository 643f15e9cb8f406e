#pragma once

#include "companion/lint/FindingSink.h"
#include "companion/lint/Lint.h"
#include "companion/lint/Models.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/Rules.h"

#include <cstdint>
#include <span>
#include <vector>

/// The groups of rules: the second digit of an id. Each has its rows in RulesN.cpp and its checks
/// in GroupN*.cpp; group 0 is checked while a file is scanned.
namespace zolex::companion {

[[nodiscard]] std::span<const Rule> rulesOfGroup0() noexcept; ///< shape
[[nodiscard]] std::span<const Rule> rulesOfGroup1() noexcept; ///< values
[[nodiscard]] std::span<const Rule> rulesOfGroup2() noexcept; ///< matching
[[nodiscard]] std::span<const Rule> rulesOfGroup3() noexcept; ///< drives and arrays
[[nodiscard]] std::span<const Rule> rulesOfGroup4() noexcept; ///< logical drives
[[nodiscard]] std::span<const Rule> rulesOfGroup5() noexcept; ///< spares
[[nodiscard]] std::span<const Rule> rulesOfGroup6() noexcept; ///< limits of zolex
[[nodiscard]] std::span<const Rule> rulesOfGroup7() noexcept; ///< with a machine
[[nodiscard]] std::span<const Rule> rulesOfGroup9() noexcept; ///< style

/// The checks that need no machine. Policies that are quiet are left out by each.
void checkGroup1(const PolicyDocument& document, FindingSink& sink);
void checkGroup2(const PolicyDocument& document, FindingSink& sink);
void checkGroup3(const PolicyDocument& document, FindingSink& sink);
void checkGroup4(const PolicyDocument& document, FindingSink& sink);
void checkGroup5(const PolicyDocument& document, FindingSink& sink);
void checkGroup6(const PolicyDocument& document, FindingSink& sink);
void checkGroup9(const PolicyDocument& document, FindingSink& sink);

/// The rules that need machines; without findings for a file that zolex refuses.
void checkGroup7(const PolicyDocument& document, const std::vector<const Snapshot*>& machines,
                 FindingSink& sink);

/// Groups 3, 5 and 6 on one policy. Those of group 4 are in Effects.h.
void checkDriveRules(const PolicyView& policy, Models& models, FindingSink& sink);
void checkHotspareRules(const PolicyView& policy, Models& models, FindingSink& sink);
void checkLimitRules(const PolicyView& policy, FindingSink& sink);

/// All findings of the file, in no order.
[[nodiscard]] std::vector<Finding> lintAll(const PolicyDocument& document);
/// Leaves out what is not wanted or ignored by a comment, and puts the rest in the order of the
/// file.
void arrangeFindings(const PolicyDocument& document, const LintSelection& selection,
                     std::vector<Finding>& findings);

/// ZX203, what zolex refuses of AppliesTo; a part of the values, in group 1.
void checkSpecifiers(const PolicyDocument& document, FindingSink& sink);
/// ZX112 to ZX114, ZX311, ZX312: entries that only zolexctl knows, as far as no machine is needed.
void checkKindEntries(const PolicyDocument& document, FindingSink& sink);
/// A place of the document by its line and column.
[[nodiscard]] TextPlace placeInLine(const PolicyDocument& document, std::int32_t line,
                                    std::int32_t column);
/// ZX208 and ZX610, the types of controllers that zolex does not know.
void checkFamilyTypes(const PolicyDocument& document, FindingSink& sink);
/// ZX603, keywords that zolex never looks up.
void checkUnusedKeywords(const PolicyDocument& document, FindingSink& sink);

} // namespace zolex::companion
