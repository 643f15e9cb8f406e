#pragma once

#include "companion/commands/Context.h"

namespace zolex::companion {

/// Does the pieces, as many at a time as they say; on Windows one after another. The first fault
/// of a piece, in their order, is thrown when all of them have ended.
void doPieces(const PiecesOfWork& pieces);

} // namespace zolex::companion
