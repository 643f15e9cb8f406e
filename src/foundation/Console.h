#pragma once

#include <string_view>

namespace zolex {

/// Where the program's texts go and where its one answer comes from. Text is passed on as it is and
/// is visible (flushed) when the call returns.
class Console {
  public:
    virtual ~Console() = default;
    virtual void writeOutput(std::string_view text) = 0;
    virtual void writeError(std::string_view text) = 0;
    /// One byte of standard input, 0 to 255; -1 at its end.
    virtual int readCharacter() = 0;
};

/// The console on the C runtime's standard streams.
class StandardConsole : public Console {
  public:
    void writeOutput(std::string_view text) override;
    void writeError(std::string_view text) override;
    int readCharacter() override;
};

} // namespace zolex
