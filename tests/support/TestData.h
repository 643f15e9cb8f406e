#pragma once

#include <string>

namespace zolex::test {

/// The text of a file of the tests' data folder.
std::string readTestData(const std::string& name);

} // namespace zolex::test
