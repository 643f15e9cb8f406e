#include "support/TestData.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace zolex::test {

std::string readTestData(const std::string& name) {
    const std::string path = std::string(ZOLEX_TEST_DATA) + "/" + name;
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr) {
        ADD_FAILURE() << "missing test data: " << name;
        return {};
    }
    std::string content;
    char buffer[4096];
    for (std::size_t n = std::fread(buffer, 1, sizeof buffer, file); n > 0;
         n = std::fread(buffer, 1, sizeof buffer, file)) {
        content.append(buffer, n);
    }
    std::fclose(file);
    return content;
}

} // namespace zolex::test
