#include "foundation/IniFile.h"

#include "foundation/ErrorReporter.h"
#include "foundation/Text.h"
#include "foundation/TextFile.h"

#include <new>
#include <utility>

namespace zolex {

std::size_t IniFile::Hash::operator()(std::string_view name) const noexcept {
    constexpr std::uint32_t start = 2166136261; // FNV-1a
    constexpr std::uint32_t factor = 16777619;
    std::uint32_t hash = start;
    for (const char c : name) {
        hash = (hash ^ static_cast<unsigned char>(text::lower(c))) * factor;
    }
    return hash;
}

bool IniFile::Equal::operator()(std::string_view a, std::string_view b) const noexcept {
    return text::equalsNoCase(a, b);
}

IniFile::IniFile(FileSystem& files, CString name, bool open)
    : files_(files), open_(open), name_(std::move(name)) {
    // The keys before the first header are those of the section without a name.
    currentSection_ = &index_[std::string_view()];
    load();
}

IniFile::~IniFile() {
    if (modified_) {
        writeBack();
    }
}

void IniFile::load() {
    TextFile file(files_);
    if (!file.open(name_, "r")) {
        return;
    }
    bool added = true;
    for (CString line; added && file.readLine(line);) {
        added = addLine(line);
    }
    loading_ = added && !file.failed() ? Loading::whole : Loading::inPart;
    file.close();
}

bool IniFile::writeBack() {
    TextFile file(files_);
    bool written = file.open(name_, "w+");
    for (const CString& line : lines_) {
        written = written && file.writeLine(line);
    }
    written = file.close() && written;
    modified_ = !written;
    return written;
}

bool IniFile::addLine(const CString& text) {
    const std::size_t number = lines_.size();
    try {
        lines_.push_back(text.trim());
        indexLine(number);
    } catch (const std::bad_alloc&) {
        lines_.resize(number); // a line is held and found, or neither
        reportError(ReportMode::goOn, ReportCategory::memoryAllocation, "IniFile.AddLine()");
        return false;
    }
    return true;
}

void IniFile::indexLine(std::size_t number) {
    const std::string_view line = lines_[number].view();
    if (line.empty() || line.front() == ';') {
        return;
    }
    if (line.front() == '[') {
        const std::string_view name = text::trim(line.substr(1, line.find(']') - 1));
        // A later section of the same name is never seen; nor is a header without a name.
        const auto [section, isFirst] = index_.try_emplace(name);
        currentSection_ = isFirst ? &section->second : nullptr;
        return;
    }
    const std::size_t equals = line.find('=');
    if (currentSection_ != nullptr && equals != std::string_view::npos) {
        currentSection_->try_emplace(text::trim(line.substr(0, equals)), number);
    }
}

std::optional<std::string_view> IniFile::find(const CString& section, const CString& key) const {
    const auto keys = index_.find(section);
    if (keys == index_.end()) {
        return std::nullopt;
    }
    const auto line = keys->second.find(key);
    if (line == keys->second.end()) {
        return std::nullopt;
    }
    const std::string_view text = lines_[line->second].view();
    return text::trim(text.substr(text.find('=') + 1));
}

CString IniFile::readString(const CString& section, const CString& key,
                            const CString& defaultValue) {
    const auto value = find(section, key);
    lastValue_ = value ? CString(*value) : defaultValue;
    return lastValue_;
}

std::int32_t IniFile::readInteger(const CString& section, const CString& key,
                                  std::int32_t defaultValue) {
    const auto value = find(section, key);
    lastValue_ = value ? CString(*value) : CString::fromInt(defaultValue);
    return lastValue_.toInt();
}

} // namespace zolex
