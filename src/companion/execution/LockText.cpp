#include "companion/execution/LockText.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace zolex::companion {

namespace {

constexpr std::string_view title = "zolexctl is at work on this machine\n";
constexpr std::string_view ending = "end\n";
constexpr std::size_t longestStart = 100;

/// Appends to a text; what has no room is left out.
class Writer {
  public:
    explicit Writer(LockText& text) : text_(text) {}

    Writer& operator<<(std::string_view part) noexcept {
        const std::size_t length = std::min(part.size(), text_.size() - used_);
        std::copy_n(part.begin(), length, text_.begin() + static_cast<std::ptrdiff_t>(used_));
        used_ += length;
        return *this;
    }

  private:
    LockText& text_;
    std::size_t used_ = 0;
};

bool isPlain(char c) {
    return c > ' ' && c <= '~';
}

/// "pid 4711 31337@b1946ac9\n"
void write(Writer& writer, std::string_view word, const ProcessIdentity& process) noexcept {
    std::array<char, 24> number{};
    const auto end = std::to_chars(number.data(), number.data() + number.size(), process.pid);
    const std::string_view start = process.startedAt;
    const bool isWritten =
        start.size() <= longestStart && std::all_of(start.begin(), start.end(), isPlain);
    writer << word << " "
           << std::string_view(number.data(), static_cast<std::size_t>(end.ptr - number.data()))
           << " " << (isWritten ? start : std::string_view()) << "\n";
}

/// Takes the text up if it stands at the front.
bool take(std::string_view& text, std::string_view front) {
    const bool has = text.starts_with(front);
    text.remove_prefix(has ? front.size() : 0);
    return has;
}

std::optional<ProcessIdentity> takeProcess(std::string_view& text, std::string_view word) {
    if (!take(text, word) || !take(text, " ")) {
        return std::nullopt;
    }
    ProcessIdentity process;
    const auto number = std::from_chars(text.data(), text.data() + text.size(), process.pid);
    if (number.ec != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(number.ptr - text.data()));
    if (!take(text, " ")) {
        return std::nullopt;
    }
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view start = text.substr(0, end);
    if (start.size() > longestStart || !std::all_of(start.begin(), start.end(), isPlain)) {
        return std::nullopt;
    }
    process.startedAt = start;
    text.remove_prefix(end);
    return take(text, "\n") ? std::optional(process) : std::nullopt;
}

} // namespace

LockText lockTextOf(const LockHolder& holder) noexcept {
    LockText text;
    text.fill('\n');
    Writer writer(text);
    writer << title;
    write(writer, "pid", holder.process);
    write(writer, "child", holder.child);
    writer << ending;
    return text;
}

bool mayBeLockText(std::string_view front) {
    // After a loss of power a file can be full of zeros.
    return front.starts_with(title) || title.starts_with(front) ||
           front.find_first_not_of('\0') == std::string_view::npos;
}

std::optional<LockHolder> lockHolderOf(std::string_view text) {
    if (!take(text, title)) {
        return std::nullopt;
    }
    auto process = takeProcess(text, "pid");
    auto child = process ? takeProcess(text, "child") : std::nullopt;
    if (!child || !take(text, ending)) {
        return std::nullopt;
    }
    return LockHolder{std::move(*process), std::move(*child)};
}

} // namespace zolex::companion
