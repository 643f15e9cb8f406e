#pragma once

#include "foundation/CString.h"

#include <cstddef>
#include <vector>

namespace zolex {

/// How an argument is matched with a switch and how the switch's value is taken.
enum class SwitchKind : int {
    flag = 1,     ///< the whole argument is the name; no value
    number = 2,   ///< begins with the name; the rest must be the text of its own integer value
    text = 3,     ///< begins with the name; the value is the rest
    joined = 4,   ///< like text, extended by every following argument that is not a switch
    lastText = 5, ///< like text
};

/// Stands for an empty list of companion switches.
inline constexpr const char* emptyList = "%EmptyList%";

/// A table of switches and the arguments found for them. An entry matches at most once.
class ParameterParser {
  public:
    enum class Result : int { success = 0, unknownOrInvalid = 1, internalError = 2 };
    /// What was wrong after a parse that did not succeed.
    enum class Fault : int {
        none = 0,
        unknownArgument = 1,
        requiredMissing = 2,
        valueMissing = 3,
        notNumeric = 4,
        requiredCompanionMissing = 5,
        excludedCompanionPresent = 6,
    };

    /// Adds a switch without alternate name and companions. The order of adding is the order of
    /// matching.
    void add(const CString& name, SwitchKind kind, bool required, bool emptyValueAllowed);
    /// The companion lists hold switch names separated by blanks, or "%EmptyList%".
    void add(const CString& name, const CString& alternateName, SwitchKind kind, bool required,
             bool emptyValueAllowed, const CString& requiredCompanions,
             const CString& excludedCompanions);

    /// Parses argv[1] on; argv[0] is the program path.
    Result parse(int argc, const char* const* argv, bool caseSensitive, bool validateAfterwards);
    /// Parses further arguments into the same table.
    Result parseMore(const std::vector<CString>& arguments, bool validateAfterwards);

    /// Whether the switch was found; copies its value, which is empty when it was not.
    bool lookUp(const CString& name, CString& value) const;
    [[nodiscard]] bool isFound(const CString& name) const;
    /// Empties the table.
    void release();

    [[nodiscard]] bool hasError() const { return fault_ != Fault::none; }
    [[nodiscard]] Fault fault() const { return fault_; }
    /// Index of the offending argument, counted as in the latest parse; -1 when it was none.
    [[nodiscard]] int faultIndex() const { return faultIndex_; }
    [[nodiscard]] const CString& faultArgument() const { return faultArgument_; }
    [[nodiscard]] const CString& faultValue() const { return faultValue_; }

  private:
    struct Entry {
        CString name;
        CString alternateName;
        CString value;
        std::vector<CString> requiredCompanions;
        std::vector<CString> excludedCompanions;
        bool found = false;
        bool required = false;
        bool emptyValueAllowed = true;
        SwitchKind kind = SwitchKind::flag;
    };

    /// Length of the name that the argument matches; 0 when it does not.
    [[nodiscard]] std::size_t matchLength(const Entry& entry, std::string_view argument) const;
    [[nodiscard]] bool beginsWith(std::string_view argument, std::string_view name) const;
    [[nodiscard]] bool isSwitch(std::string_view argument) const;
    [[nodiscard]] const Entry* find(const CString& name) const;
    /// Takes the value of the entry that arguments[index] matched; the index of the last argument
    /// that belongs to it.
    std::size_t takeValue(Entry& entry, std::size_t nameLength,
                          const std::vector<CString>& arguments, std::size_t index) const;
    Result parseAll(const std::vector<CString>& arguments);
    bool validate();
    void setFault(Fault fault, int index, const CString& argument, const CString& value);

    std::vector<Entry> entries_;
    bool caseSensitive_ = false;
    Fault fault_ = Fault::none;
    int faultIndex_ = -1;
    CString faultArgument_;
    CString faultValue_;
};

} // namespace zolex
