#pragma once

#include <string>
#include <string_view>

namespace zolex {

/// Makes each CR LF of a text that comes in pieces a mere LF, for a stream that writes each LF as
/// CR LF. All other bytes stay.
class LineEndFolder {
  public:
    /// What to write of the next piece. A CR at its end is held back until the piece after it.
    std::string fold(std::string_view piece);
    /// What was held back, at the end of the text.
    std::string finish();

  private:
    bool holdsReturn_ = false;
};

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

/// The console on the C runtime's standard streams. On Windows a CR that ends a text is visible
/// with the next text, or when the console goes away.
class StandardConsole : public Console {
  public:
    StandardConsole() = default;
    ~StandardConsole() override;
    StandardConsole(const StandardConsole&) = delete;
    StandardConsole& operator=(const StandardConsole&) = delete;
    void writeOutput(std::string_view text) override;
    void writeError(std::string_view text) override;
    int readCharacter() override;

  private:
    LineEndFolder output_;
    LineEndFolder error_;
};

} // namespace zolex
