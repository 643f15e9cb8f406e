#include "foundation/TemporaryFile.h"

#include <new>
#include <utility>

namespace zolex {

TemporaryFile::TemporaryFile(FileSystem& files, CString name)
    : files_(files), name_(std::move(name)) {}

TemporaryFile::~TemporaryFile() {
    processEnds();
}

bool TemporaryFile::open() {
    file_ = files_.open(name_, "w+");
    made_ = file_ != nullptr;
    return made_;
}

bool TemporaryFile::finish() {
    if (!made_) {
        return true;
    }
    file_.reset();
    const bool done = kept_ || files_.remove(name_);
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
