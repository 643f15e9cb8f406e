#include "companion/machine/NormalForm.h"

#include "companion/machine/Sha256.h"

namespace zolex::companion {

std::string normalForm(const Facts& /*facts*/) {
    return {};
}

std::string layoutHash(const Facts& facts) {
    return sha256(normalForm(facts));
}

} // namespace zolex::companion
