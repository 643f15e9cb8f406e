#pragma once

#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "policies/Policy.h"
#include "policies/PolicyFaults.h"
#include "policies/PolicySection.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {

/// The second pass over one policy: the values of its keywords, in a fixed order.
class PolicyValidator {
  public:
    /// `catalogue` knows the model names. With `debug` the maximum size is shown. All must outlive
    /// this object.
    PolicyValidator(const PolicySection& section, const ControllerCatalogue& catalogue, bool debug,
                    PolicyFaults& faults, Report& report)
        : section_(section), catalogue_(catalogue), debug_(debug), faults_(faults),
          report_(report) {}

    /// The policy; nothing with a fault. Unless the read goes on, the first fault ends it.
    std::optional<Policy> validate();
    /// Names the keywords that no look-up asked for, at verbosity 3.
    void printUnused() const;

  private:
    struct WordRow;

    bool readAll();
    bool readWord(const WordRow& row);
    bool readMode(const char* keyword, bool& custom);
    bool readAppliesTo();
    bool readSpecifiers(const PolicyEntry& entry);
    bool readSpecifier(const PolicyEntry& entry, std::string_view specifier, AppliesTo& given);
    bool readSpecifierNumber(const PolicyEntry& entry, FaultKind kind, std::string_view value,
                             std::int32_t& number);
    bool readArrayDefaults();
    bool readMaxLogicalDriveSize();
    bool readArrays();
    bool readArray(const PolicyEntry& entry, bool afterGap);
    bool checkPlaceOfArray(const PolicyEntry& entry, bool afterGap);
    bool readHotspares();
    bool readLogicalDefaults();
    bool readLogicalDrives();
    bool readLogicalDrive(const PolicyEntry& entry, bool afterGap);
    bool readArrayLetter(const PolicyEntry& entry, std::string_view letter, std::int32_t& index);
    bool readSpecification(const PolicyEntry& entry, std::span<const std::string_view> fields,
                           LogicalSpecification& specification);
    [[nodiscard]] bool sharesArrayWith5E(const LogicalSpecification& specification) const;

    const PolicyEntry* find(std::string_view keyword);
    [[nodiscard]] bool goesOnAfter(bool isValid) const { return isValid || faults_.goOn(); }
    [[nodiscard]] bool wasTold(FaultKind kind, std::int32_t array = -1) const;
    bool isToBeTold(FaultKind kind, std::int32_t array = -1);
    bool fail(FaultKind kind, const PolicyEntry& entry, std::string_view piece,
              std::string_view possible = {});
    bool failEntry(FaultKind kind, const PolicyEntry& entry, std::string_view wanted = {});
    bool failMissing(FaultKind kind);
    bool add(FaultKind kind, std::int32_t line, std::int32_t column, std::string_view wanted,
             std::string_view possible);

    struct Told {
        FaultKind kind;
        std::int32_t array;
        friend bool operator==(const Told&, const Told&) = default;
    };

    const PolicySection& section_;
    const ControllerCatalogue& catalogue_;
    bool debug_;
    PolicyFaults& faults_;
    Report& report_;
    Policy policy_;
    bool isFaulty_ = false;
    std::string keyword_;        ///< looked up last
    std::size_t arrayCount_ = 0; ///< array letters up to the last one given
    std::vector<Told> told_;     ///< faults that are reported once a policy
};

} // namespace zolex
