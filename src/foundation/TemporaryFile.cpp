#include "foundation/TemporaryFile.h"

#include <new>
#include <utility>

namespace zolex {

TemporaryFile::TemporaryFile(FileSystem& files, CString name, CString other)
    : files_(files), name_(std::move(name)), other_(std::move(other)) {}

TemporaryFile::~TemporaryFile() {
    processEnds();
}

bool TemporaryFile::open() {
    file_ = files_.create(name_, other_,
                          kept_ ? FileSystem::WhenInterrupted::kept
                                : FileSystem::WhenInterrupted::removed);
    made_ = file_ != nullptr;
    return made_;
}

bool TemporaryFile::finish() {
    if (!made_) {
        return true;
    }
    if (kept_) {
        file_.reset();
    }
    const bool done = kept_ || files_.discard(std::move(file_), name_);
    made_ = false; // until here, memory may have run out
    return done;
}

void TemporaryFile::processEnds() noexcept {
    try {
        finish();
    } catch (const std::bad_alloc&) {
        // There is no memory even to name the file.
    }
}

} // namespace zolex
