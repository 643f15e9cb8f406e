#pragma once

#include "foundation/CString.h"
#include "foundation/EndingTask.h"
#include "foundation/FileSystem.h"

#include <memory>

namespace zolex {

/// A file for the time of one operation. However that ends, with this object or with the process,
/// or by a signal, the file is closed and, unless it is kept, removed.
class TemporaryFile : private EndingTask {
  public:
    /// It cannot be opened when it would be the file `other`.
    TemporaryFile(FileSystem& files, CString name, CString other = {});
    ~TemporaryFile() override;

    /// Makes the file, a new one, and opens it for writing and reading; false when that fails.
    bool open();
    /// The open file; null before open and after finish.
    [[nodiscard]] File* file() const { return file_.get(); }
    [[nodiscard]] const CString& name() const { return name_; }
    /// Whether the file stays; at first it does not.
    void setKept(bool kept) { kept_ = kept; }
    /// Closes the file, and removes it unless it is kept; false when it could not be removed. Does
    /// nothing, and is true, the second time and when the file was not opened.
    bool finish();

  private:
    void processEnds() noexcept override;

    FileSystem& files_;
    CString name_;
    CString other_;
    std::unique_ptr<File> file_;
    bool made_ = false;
    bool kept_ = false;
};

} // namespace zolex
