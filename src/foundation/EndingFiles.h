#pragma once

#include <string>

namespace zolex {

/// A file that goes when a signal, or a control event of the console, ends the process. Its name is
/// kept outside the heap, so that the handler finds it without a lock and without memory.
class EndingFile {
  public:
    /// Whether a file goes whatever it holds, or only while it is empty.
    enum class Goes { always, whileEmpty };

    EndingFile() = default;
    EndingFile(const EndingFile&) = delete;
    EndingFile& operator=(const EndingFile&) = delete;
    ~EndingFile() { forget(); }

    /// Enters the file under its name as the system takes it. A name that is longer than any file's
    /// is not entered, nor is one for which there is no place.
    void enter(const std::string& name, Goes goes) noexcept;
    /// The file stays from now on.
    void forget() noexcept;

    /// Calls `remove` for each file that is entered. Safe in a handler when `remove` is.
    static void forEach(void (*remove)(const char* name, Goes goes)) noexcept;

  private:
    static constexpr int none = -1;

    int place_ = none;
};

} // namespace zolex
