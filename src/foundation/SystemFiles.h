#pragma once

#include "foundation/EndingFiles.h"
#include "foundation/FileSystem.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>

/// What the streams of the C runtime cannot do: StandardFileSystem asks the system for it. Names
/// are as the system takes them.
namespace zolex::system_files {

/// Makes a new file, open for writing and reading; see FileSystem::create. It is entered as
/// `ending` from before it is made, unless that is null.
std::FILE* create(const std::string& name, const std::string& other, EndingFile* ending);

/// Removes `name` while it still is the file of `stream`; see FileSystem::discard. The stream is
/// closed.
bool discard(std::FILE* stream, const std::string& name);

/// Locks `name`; see FileSystem::lock.
LockResult lock(const std::string& name, std::chrono::milliseconds wait);

} // namespace zolex::system_files
