#include "foundation/EndingFiles.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

namespace zolex {

namespace {

/// Longest name of a file, its terminator included.
constexpr std::size_t nameSize = 4096;
/// The temporary file, the policies file, and two more.
constexpr std::size_t mostFiles = 4;

struct Place {
    std::atomic<bool> taken = false;
    EndingFile::Goes goes = EndingFile::Goes::always;
    std::array<char, nameSize> name = {};
};
static_assert(std::atomic<bool>::is_always_lock_free);

/// A handler knows none of the objects of the program.
constinit std::array<Place, mostFiles> places;

} // namespace

void EndingFile::enter(const std::string& name, Goes goes) noexcept {
    forget();
    const auto place = std::find_if(places.begin(), places.end(),
                                    [](const Place& candidate) { return !candidate.taken; });
    if (place == places.end() || name.size() >= nameSize) {
        return;
    }
    place->name[name.copy(place->name.data(), nameSize - 1)] = '\0';
    place->goes = goes;
    place->taken = true; // whole from here on
    place_ = static_cast<int>(place - places.begin());
}

void EndingFile::forget() noexcept {
    if (place_ != none) {
        places[static_cast<std::size_t>(place_)].taken = false;
        place_ = none;
    }
}

void EndingFile::forEach(void (*remove)(const char* name, Goes goes)) noexcept {
    for (const Place& place : places) {
        if (place.taken) {
            remove(place.name.data(), place.goes);
        }
    }
}

} // namespace zolex
