#include "foundation/IniFile.h"

#include "foundation/ErrorReporter.h"
#include "foundation/Text.h"
#include "foundation/TextFile.h"

#include <algorithm>
#include <new>
#include <utility>

namespace zolex {

namespace {

std::string fold(std::string_view text) {
    std::string folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), text::lower);
    return folded;
}

} // namespace

IniFile::IniFile(FileSystem& files, CString name, bool open)
    : files_(files), open_(open), name_(std::move(name)) {
    // The keys before the first header are those of the section without a name.
    currentSection_ = &index_[std::string()];
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
    CString line;
    while (file.readLine(line)) {
        if (!addLine(line)) {
            break;
        }
    }
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
        const auto [section, isFirst] = index_.try_emplace(fold(name));
        currentSection_ = isFirst ? &section->second : nullptr;
        return;
    }
    const std::size_t equals = line.find('=');
    if (currentSection_ != nullptr && equals != std::string_view::npos) {
        currentSection_->try_emplace(fold(text::trim(line.substr(0, equals))), number);
    }
}

const CString* IniFile::find(const CString& section, const CString& key) const {
    const auto keys = index_.find(fold(section));
    if (keys == index_.end()) {
        return nullptr;
    }
    const auto line = keys->second.find(fold(key));
    return line == keys->second.end() ? nullptr : &lines_[line->second];
}

CString IniFile::readString(const CString& section, const CString& key,
                            const CString& defaultValue) {
    const CString* line = find(section, key);
    lastValue_ = line == nullptr
                     ? defaultValue
                     : CString(text::trim(line->view().substr(line->view().find('=') + 1)));
    return lastValue_;
}

std::int32_t IniFile::readInteger(const CString& section, const CString& key,
                                  std::int32_t defaultValue) {
    return readString(section, key, CString::fromInt(defaultValue)).toInt();
}

} // namespace zolex
