#include "foundation/CString.h"

#include "foundation/ErrorReporter.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

namespace zolex {

namespace {

/// What a zero-terminated string can hold of `text`: the bytes before its first NUL.
std::string_view beforeTerminator(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

} // namespace

std::unique_ptr<char[]> CString::allocate(std::size_t length) {
    std::unique_ptr<char[]> buffer;
    if (length < std::numeric_limits<std::size_t>::max()) {
        buffer.reset(new (std::nothrow) char[length + 1]);
    }
    if (!buffer) {
        reportError(ReportMode::endProcess, ReportCategory::memoryAllocation,
                    "CString::CreateCharString");
    }
    buffer[0] = '\0';
    return buffer;
}

void CString::assign(std::string_view text) {
    text = beforeTerminator(text);
    // The text may be part of this string: the old buffer stays until the new one is filled.
    auto buffer = allocate(text.size());
    std::copy(text.begin(), text.end(), buffer.get());
    buffer[text.size()] = '\0';
    text_ = std::move(buffer);
    length_ = text.size();
}

CString::CString(const char* text) {
    if (text != nullptr) {
        assign(text);
    }
}

CString::CString(std::string_view text) {
    assign(text);
}

CString::CString(const std::string& text) {
    assign(text);
}

CString::CString(char character, std::size_t count) {
    if (character == '\0') {
        return;
    }
    text_ = allocate(count);
    std::fill_n(text_.get(), count, character);
    text_[count] = '\0';
    length_ = count;
}

CString::CString(std::uint32_t number) {
    char digits[16];
    const char* const end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    assign({digits, static_cast<std::size_t>(end - digits)});
}

CString::CString(const char16_t* wide, std::size_t length) {
    if (wide == nullptr) {
        return;
    }
    text_ = allocate(length);
    std::transform(wide, wide + length, text_.get(),
                   [](char16_t c) { return static_cast<char>(static_cast<unsigned char>(c)); });
    text_[length] = '\0';
    length_ = std::strlen(text_.get());
}

CString::CString(const CString& other) : error_(other.error_) {
    if (other.text_) {
        assign(other.view());
    }
}

CString::CString(CString&& other) noexcept
    : text_(std::move(other.text_)), length_(std::exchange(other.length_, 0)),
      error_(std::exchange(other.error_, false)) {}

CString& CString::operator=(const CString& other) {
    if (this != &other) {
        *this = CString(other);
    }
    return *this;
}

CString& CString::operator=(CString&& other) noexcept {
    if (this != &other) {
        text_ = std::move(other.text_);
        length_ = std::exchange(other.length_, 0);
        error_ = std::exchange(other.error_, false);
    }
    return *this;
}

CString CString::fromInt(std::int64_t number) {
    char digits[32];
    const char* const end = std::to_chars(std::begin(digits), std::end(digits), number).ptr;
    return std::string_view(digits, static_cast<std::size_t>(end - digits));
}

void CString::clear() noexcept {
    text_.reset();
    length_ = 0;
    error_ = false;
}

char CString::at(std::size_t index) const noexcept {
    return index < length_ ? text_[index] : '\0';
}

std::int32_t CString::toInt() const noexcept {
    return error_ ? 0 : text::leadingInt(view());
}

std::uint32_t CString::toUnsigned() const noexcept {
    if (error_) {
        return 0;
    }
    constexpr std::uint64_t highest = std::numeric_limits<std::uint32_t>::max();
    const char* at = c_str();
    while (std::isspace(static_cast<unsigned char>(*at)) != 0) {
        ++at;
    }
    if (*at == '+') {
        ++at;
    }
    std::uint64_t value = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        value = std::min(value * 10 + static_cast<std::uint64_t>(*at - '0'), highest);
    }
    return static_cast<std::uint32_t>(value);
}

CString& CString::append(std::string_view text) {
    text = beforeTerminator(text);
    auto buffer = allocate(length_ + text.size());
    std::copy_n(c_str(), length_, buffer.get());
    std::copy(text.begin(), text.end(), buffer.get() + length_);
    length_ += text.size();
    buffer[length_] = '\0';
    text_ = std::move(buffer);
    return *this;
}

CString& CString::append(char character) {
    return append(std::string_view(&character, 1));
}

CString& CString::prepend(std::string_view text) {
    *this = concatenate(text, view());
    return *this;
}

CString CString::concatenate(std::string_view first, std::string_view second,
                             std::string_view third) {
    first = beforeTerminator(first);
    second = beforeTerminator(second);
    third = beforeTerminator(third);
    CString result;
    result.length_ = first.size() + second.size() + third.size();
    result.text_ = allocate(result.length_);
    char* end = std::copy(first.begin(), first.end(), result.text_.get());
    end = std::copy(second.begin(), second.end(), end);
    end = std::copy(third.begin(), third.end(), end);
    *end = '\0';
    return result;
}

int CString::compareNoCase(std::string_view other) const noexcept {
    return text::compareNoCase(view(), other);
}

bool CString::equalsNoCase(std::string_view other) const noexcept {
    return text::equalsNoCase(view(), other);
}

std::int64_t CString::indexOf(std::string_view text, std::size_t from) const noexcept {
    const std::size_t at = view().find(text, from);
    return at == std::string_view::npos ? -1 : static_cast<std::int64_t>(at);
}

bool CString::contains(std::string_view text) const noexcept {
    return text::contains(view(), text);
}

bool CString::startsWith(std::string_view text) const noexcept {
    return view().starts_with(text);
}

bool CString::endsWith(std::string_view text) const noexcept {
    return view().ends_with(text);
}

std::size_t CString::count(std::string_view text) const noexcept {
    if (text.empty()) {
        return 0;
    }
    std::size_t n = 0;
    for (std::size_t at = view().find(text); at != std::string_view::npos;
         at = view().find(text, at + text.size())) {
        ++n;
    }
    return n;
}

CString CString::left(std::size_t n) const {
    return view().substr(0, n);
}

CString CString::mid(std::size_t position, std::size_t n) const {
    if (position >= length_) {
        return {};
    }
    return view().substr(position, n == 0 ? std::string_view::npos : n);
}

CString CString::right(std::size_t n) const {
    return view().substr(length_ - std::min(n, length_));
}

void CString::makeUpper() noexcept {
    for (std::size_t i = 0; i < length_; ++i) {
        text_[i] = static_cast<char>(std::toupper(static_cast<unsigned char>(text_[i])));
    }
}

void CString::makeLower() noexcept {
    for (std::size_t i = 0; i < length_; ++i) {
        text_[i] = static_cast<char>(std::tolower(static_cast<unsigned char>(text_[i])));
    }
}

CString CString::upper() const {
    CString result(*this);
    result.makeUpper();
    return result;
}

CString CString::lower() const {
    CString result(*this);
    result.makeLower();
    return result;
}

CString CString::trimLeft(std::string_view set) const {
    const std::size_t first = view().find_first_not_of(set);
    return first == std::string_view::npos ? CString() : CString(view().substr(first));
}

CString CString::trimRight(std::string_view set) const {
    const std::size_t last = view().find_last_not_of(set);
    return last == std::string_view::npos ? CString() : CString(view().substr(0, last + 1));
}

CString CString::trim(std::string_view set) const {
    return text::trim(view(), set);
}

std::size_t CString::tokenCount(std::string_view delimiter) const noexcept {
    return isEmpty() || delimiter.empty() ? 0 : count(delimiter) + 1;
}

CString CString::token(std::string_view delimiter, std::size_t index) const {
    return text::token(view(), delimiter, index);
}

CString operator+(const CString& a, const CString& b) {
    return CString::concatenate(a, b);
}
CString operator+(const CString& a, const char* b) {
    return CString::concatenate(a, b == nullptr ? "" : b);
}
CString operator+(const char* a, const CString& b) {
    return CString::concatenate(a == nullptr ? "" : a, b);
}

CString formatText(const char* format, ...) {
    std::va_list values;
    va_start(values, format);
    CString result = formatTextV(format, values);
    va_end(values);
    return result;
}

CString formatTextV(const char* format, std::va_list values) {
    std::va_list again;
    va_copy(again, values);
    char buffer[512];
    const int n = std::vsnprintf(buffer, sizeof buffer, format, values);
    CString result;
    if (n >= 0 && static_cast<std::size_t>(n) < sizeof buffer) {
        result = CString(std::string_view(buffer, static_cast<std::size_t>(n)));
    } else if (n >= 0) {
        result.text_ = CString::allocate(static_cast<std::size_t>(n));
        std::vsnprintf(result.text_.get(), static_cast<std::size_t>(n) + 1, format, again);
        result.length_ = std::strlen(result.c_str());
    }
    va_end(again);
    return result;
}

} // namespace zolex
