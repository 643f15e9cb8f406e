#pragma once

#include <cstddef>
#include <random>
#include <string>
#include <vector>

/// Policies files for the tests of the linter.
namespace zolex::companion::test {

/// The samples that are shipped and those of every sample of the virtual server.
[[nodiscard]] std::vector<std::string> shippedPolicies();

/// Policies with every keyword, and values of many kinds, most of them valid.
[[nodiscard]] std::string generatedPolicies(std::mt19937& random);

/// The text with one to five changes of bytes, words or lines.
[[nodiscard]] std::string mutatedPolicies(std::string text, std::mt19937& random);

} // namespace zolex::companion::test
