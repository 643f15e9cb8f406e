#include "foundation/AllocationFaults.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace zolex::test {

namespace {

struct Countdown {
    std::size_t asked = 0;
    std::size_t fails = 0;
};

Countdown throwingCalls;
Countdown nothrowCalls;
int uncounted = 0;

Countdown& callsOf(Allocation form) {
    return form == Allocation::throwing ? throwingCalls : nothrowCalls;
}

void* request(Allocation form, std::size_t size) noexcept {
    bool fails = size > largestRequest;
    if (uncounted == 0) {
        Countdown& calls = callsOf(form);
        fails = ++calls.asked == calls.fails || fails;
    }
    return fails ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
}

void* requestOrThrow(std::size_t size) {
    void* memory = request(Allocation::throwing, size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

} // namespace

void failAllocation(Allocation form, std::size_t n) {
    callsOf(form) = {0, n};
}

std::size_t allocationsAsked(Allocation form) {
    return callsOf(form).asked;
}

UncountedAllocations::UncountedAllocations() {
    ++uncounted;
}

UncountedAllocations::~UncountedAllocations() {
    --uncounted;
}

} // namespace zolex::test

using zolex::test::Allocation;
using zolex::test::request;
using zolex::test::requestOrThrow;

void* operator new(std::size_t size) {
    return requestOrThrow(size);
}
void* operator new[](std::size_t size) {
    return requestOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return request(Allocation::nothrow, size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return request(Allocation::nothrow, size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept {
    std::free(memory);
}
