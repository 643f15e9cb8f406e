#pragma once

#include <utility>
#include <windows.h>

namespace zolex::win32 {

/// Owns a handle of a process, a thread or a pipe; null is none.
class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle) {}
    Handle(Handle&& other) noexcept : handle_(other.release()) {}
    Handle& operator=(Handle&& other) noexcept {
        if (this != &other) {
            close();
            handle_ = other.release();
        }
        return *this;
    }
    ~Handle() { close(); }

    [[nodiscard]] HANDLE get() const { return handle_; }
    /// Gives the handle up without closing it.
    HANDLE release() { return std::exchange(handle_, nullptr); }
    /// False when the system could not close it; it is given up all the same. True when there was
    /// none.
    bool close() {
        HANDLE const handle = release();
        return handle == nullptr || CloseHandle(handle) != 0;
    }

  private:
    HANDLE handle_ = nullptr;
};

} // namespace zolex::win32
