#include "companion/execution/SystemParts.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <windows.h>

namespace zolex::companion::system_execution {

namespace {

using std::chrono::milliseconds;

/// What the handler works on, in a thread of its own. Kept as long as the process.
struct Noted {
    std::atomic<bool> isAsked{false};
    /// Set by an interruption, and taken back by the wait that it ends.
    HANDLE wake = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    int users = 0;
};

Noted& noted() {
    static Noted noted;
    return noted;
}

/// The system ends the process as soon as a handler of these returns, or some seconds later.
bool endsTheConsole(DWORD event) {
    return event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT;
}

BOOL WINAPI noteEvent(DWORD event) {
    if (noted().isAsked.exchange(true)) {
        return FALSE; // the handlers before this one, the last of which ends the process
    }
    SetEvent(noted().wake);
    if (endsTheConsole(event)) {
        Sleep(INFINITE); // the process goes on until it ends of its own accord, or is ended
    }
    return TRUE;
}

class WindowsInterruptions : public Interruptions {
  public:
    WindowsInterruptions() {
        if (noted().users++ == 0) {
            noted().isAsked = false;
            ResetEvent(noted().wake);
            SetConsoleCtrlHandler(noteEvent, TRUE);
        }
    }
    WindowsInterruptions(const WindowsInterruptions&) = delete;
    WindowsInterruptions& operator=(const WindowsInterruptions&) = delete;
    ~WindowsInterruptions() override {
        if (--noted().users == 0) {
            SetConsoleCtrlHandler(noteEvent, FALSE);
        }
    }

    Interruption asked() override {
        // The event comes first: what is noted behind this look ends the next wait.
        ResetEvent(noted().wake);
        return noted().isAsked ? Interruption::asked : Interruption::none;
    }

    Awaited await(std::optional<std::intptr_t> object, milliseconds limit) override {
        constexpr milliseconds::rep longest = 0x7FFFFFFF; // 24 days
        const auto time =
            static_cast<DWORD>(std::clamp<milliseconds::rep>(limit.count(), 0, longest));
        std::array<HANDLE, 2> objects{};
        DWORD count = 0;
        if (object) {
            objects[count++] = reinterpret_cast<HANDLE>(*object);
        }
        const DWORD wakeIndex = count;
        objects[count++] = noted().wake;
        const DWORD result = WaitForMultipleObjects(count, objects.data(), FALSE, time);
        if (result == WAIT_OBJECT_0 + wakeIndex) {
            return Awaited::interruption;
        }
        if (result == WAIT_OBJECT_0) {
            return Awaited::object;
        }
        if (result == WAIT_FAILED) {
            constexpr DWORD slice = 20;
            Sleep(std::min(time, slice)); // time passes all the same
        }
        return Awaited::timeOver;
    }
};

} // namespace

std::shared_ptr<Interruptions> heedInterruptions() {
    return std::make_shared<WindowsInterruptions>();
}

std::optional<std::intptr_t> standardInput() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    return input == nullptr || input == INVALID_HANDLE_VALUE
               ? std::nullopt
               : std::optional(reinterpret_cast<std::intptr_t>(input));
}

} // namespace zolex::companion::system_execution
