#pragma once

#include "foundation/FileSystem.h"
#include "support/FakePlatform.h"

namespace zolex::companion::test {

/// A platform whose files are those of the system.
class FilesPlatform : public zolex::test::FakePlatform {
  public:
    FileSystem& files() override { return standardFiles; }
    StandardFileSystem standardFiles;
};

} // namespace zolex::companion::test
