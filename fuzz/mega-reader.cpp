#include "model/Codes.h"
#include "support/ReaderRun.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr std::array types = {zolex::controller_type::megaRaid};
    zolex::fuzz::readListings(types, zolex::fuzz::Input(data, size));
    return 0;
}
