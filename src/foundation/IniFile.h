#pragma once

#include "foundation/CString.h"
#include "foundation/FileSystem.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zolex {

class Console;

/// A small sectioned text file ("[Section]" headers, "key = value" lines, ";" comments), held as
/// trimmed lines and looked up by section and key, letter case ignored. The first match wins.
class IniFile {
  public:
    /// What the load has brought.
    enum class Loading {
        notOpened, ///< the file could not be opened: no lines
        inPart,    ///< reading failed or memory was short: the first lines only
        whole,     ///< every line
    };

    /// Loads `name` at once. A file that cannot be opened leaves the list of lines empty.
    IniFile(FileSystem& files, CString name, bool open);
    /// Writes the lines back when the modified flag is set.
    ~IniFile();
    IniFile(const IniFile&) = delete;
    IniFile& operator=(const IniFile&) = delete;

    /// The trimmed text after the first "=" of the first entry `key` of the first section
    /// `section`, or `defaultValue`. An empty section name finds the keys that stand before the
    /// first header.
    CString readString(const CString& section, const CString& key, const CString& defaultValue);
    /// The same as a leading integer; a value without digits gives 0.
    std::int32_t readInteger(const CString& section, const CString& key, std::int32_t defaultValue);
    /// Appends one trimmed line. False, with a report on standard error, when memory is short.
    bool addLine(const CString& text);
    /// Writes every line to the file. The modified flag becomes the negation of success, which is
    /// returned.
    bool writeBack();

    [[nodiscard]] Loading loading() const { return loading_; }
    [[nodiscard]] const CString& name() const { return name_; }
    [[nodiscard]] bool isOpen() const { return open_; }
    [[nodiscard]] const std::vector<CString>& lines() const { return lines_; }
    [[nodiscard]] const CString& lastValue() const { return lastValue_; }
    [[nodiscard]] bool isModified() const { return modified_; }
    void setModified(bool modified) { modified_ = modified; }

  private:
    // Names of any letter case are one.
    struct Hash {
        std::size_t operator()(std::string_view name) const noexcept;
    };
    struct Equal {
        bool operator()(std::string_view a, std::string_view b) const noexcept;
    };
    template <typename Value>
    using Index = std::unordered_map<std::string_view, Value, Hash, Equal>;
    using Keys = Index<std::size_t>;

    void load();
    void indexLine(std::size_t number);
    /// The value of an entry; valid as long as its line.
    [[nodiscard]] std::optional<std::string_view> find(const CString& section,
                                                       const CString& key) const;

    FileSystem& files_;
    bool modified_ = false;
    bool open_ = false;
    Loading loading_ = Loading::notOpened;
    CString name_;
    CString lastValue_;
    std::vector<CString> lines_;
    /// Section name to key to line; the first section and the first key of a name. The names stand
    /// in the lines.
    Index<Keys> index_;
    Keys* currentSection_ = nullptr;
};

} // namespace zolex
