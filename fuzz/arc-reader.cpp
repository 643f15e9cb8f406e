#include "model/Codes.h"
#include "support/ReaderRun.h"

#include <array>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static constexpr std::array types = {zolex::controller_type::arcconf2,
                                         zolex::controller_type::arcconf7,
                                         zolex::controller_type::arcconf11};
    zolex::fuzz::readListings(types, zolex::fuzz::Input(data, size));
    return 0;
}
