#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace zolex::posix {

/// Owns a descriptor; -1 is none.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            descriptor_ = other.release();
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// Gives the descriptor up without closing it.
    int release() { return std::exchange(descriptor_, -1); }
    /// False when the system reports a failure; the descriptor is gone all the same. True when none
    /// was open.
    bool close() {
        const int descriptor = release();
        return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR;
    }

  private:
    int descriptor_ = -1;
};

} // namespace zolex::posix
