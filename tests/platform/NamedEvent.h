#pragma once

#ifdef _WIN32

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <windows.h>

namespace zolex::test {

/// A name that no event has or had: a child that has not quite ended keeps its event.
inline std::string newEventName() {
    static int count = 0;
    return "zolex-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
}

/// An event that children find by its name. It is not set at first, and once set it stays so.
class NamedEvent {
  public:
    explicit NamedEvent(std::string name = newEventName())
        : name_(std::move(name)), event_(CreateEventA(nullptr, TRUE, FALSE, name_.c_str())) {
        EXPECT_NE(event_, nullptr);
    }
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;
    ~NamedEvent() { CloseHandle(event_); }

    [[nodiscard]] const std::string& name() const { return name_; }
    void set() const { EXPECT_NE(SetEvent(event_), 0); }
    [[nodiscard]] bool isSetWithin(std::chrono::milliseconds time) const {
        return WaitForSingleObject(event_, static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
    }

  private:
    std::string name_;
    HANDLE event_;
};

} // namespace zolex::test

#endif
