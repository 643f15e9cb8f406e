#include "companion/cli/Pieces.h"

namespace zolex::companion {

void doPieces(const PiecesOfWork& pieces) {
    for (std::size_t i = 0; i < pieces.count; ++i) {
        pieces.work(i);
        if (pieces.progress) {
            pieces.progress(i + 1);
        }
    }
}

} // namespace zolex::companion
