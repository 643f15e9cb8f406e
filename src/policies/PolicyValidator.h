#pragma once

#include "policies/Policy.h"
#include "policies/PolicySection.h"

#include <optional>
#include <span>
#include <string_view>

namespace zolex {

class Application;

/// The second pass over one policy: the values of its keywords, in a fixed order.
class PolicyValidator {
  public:
    PolicyValidator(Application& application, const PolicySection& section)
        : application_(application), section_(section) {}

    /// The policy; nothing after the first fault, which has been reported.
    std::optional<Policy> validate();
    /// Names the keywords that no look-up asked for, at verbosity 3.
    void printUnused() const;

  private:
    struct WordRow;

    bool readWord(const WordRow& row);
    bool readMode(const char* keyword, bool& custom);
    bool readAppliesTo();
    bool readSpecifiers(std::string_view keyword, std::string_view value);
    bool readSpecifier(std::string_view keyword, std::string_view specifier, AppliesTo& entry);
    bool readSpecifierNumber(std::string_view keyword, std::string_view head,
                             std::string_view value, std::int32_t& number);
    bool readArrayDefaults();
    bool readMaxLogicalDriveSize();
    bool readArrays();
    bool readArray(std::string_view keyword, std::string_view value, bool afterGap);
    bool readHotspares();
    bool readLogicalDefaults();
    bool readLogicalDrives();
    bool readLogicalDrive(std::string_view keyword, std::string_view value, bool afterGap);
    bool readSpecification(std::string_view keyword, std::span<const std::string_view> fields,
                           LogicalSpecification& specification);
    [[nodiscard]] bool sharesArrayWith5E(const LogicalSpecification& specification) const;

    [[nodiscard]] std::optional<std::string_view> find(std::string_view keyword) const;
    bool fail(std::string_view keyword, std::string_view head, std::string_view value,
              std::string_view hint);
    bool failPolicy(std::string_view text);

    Application& application_;
    const PolicySection& section_;
    Policy policy_;
};

} // namespace zolex
