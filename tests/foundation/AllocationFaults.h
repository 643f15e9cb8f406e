#pragma once

#include <cstddef>

/// Memory that runs out on purpose. The test binary replaces the global allocation functions with
/// ones that count their calls and fail the one that a test asks for; until then they pass every
/// request on. Requests above `largestRequest` fail without asking for the memory, so that a test
/// may ask for more than any machine has also where the sanitizers would end the process for it.
namespace zolex::test {

enum class Allocation { throwing, nothrow };

inline constexpr std::size_t largestRequest = std::size_t{1} << 38U;

/// Counts from now on, and fails the n-th call (from 1) of this form; 0 fails none.
void failAllocation(Allocation form, std::size_t n);
/// Calls of this form since the latest failAllocation of it.
std::size_t allocationsAsked(Allocation form);

/// While one of these lives, calls are passed on without being counted: what a test's own fakes ask
/// for is not the program's.
class UncountedAllocations {
  public:
    UncountedAllocations();
    UncountedAllocations(const UncountedAllocations&) = delete;
    UncountedAllocations& operator=(const UncountedAllocations&) = delete;
    ~UncountedAllocations();
};

} // namespace zolex::test
