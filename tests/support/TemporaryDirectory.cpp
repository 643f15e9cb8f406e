#include "support/TemporaryDirectory.h"

#include "support/RemoveTree.h"

#include <fstream>
#include <iterator>
#include <random>

namespace zolex::test {

namespace fs = std::filesystem;

TemporaryDirectory::TemporaryDirectory() : before_(fs::current_path()) {
    std::random_device random;
    do {
        path_ = fs::temp_directory_path() / ("zolex-test-" + std::to_string(random()));
    } while (!fs::create_directory(path_));
    fs::current_path(path_);
}

TemporaryDirectory::~TemporaryDirectory() {
    std::error_code ignored;
    fs::current_path(before_, ignored);
    removeTree(path_);
}

void TemporaryDirectory::write(const std::string& name, const std::string& content,
                               bool executable) const {
    const fs::path file = path_ / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    if (executable) {
        fs::permissions(file, fs::perms::owner_all);
    }
}

std::string TemporaryDirectory::read(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace zolex::test
