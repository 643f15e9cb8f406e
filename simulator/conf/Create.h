#pragma once

#include "conf/Session.h"

namespace zolex_sim::conf {

/// "CREATE n LOGICALDRIVE [options] MAX|size level channel device ... NOPROMPT", from
/// "LOGICALDRIVE" on: an array of the drives and a logical drive on it.
PlayResult createFromWords(Call& call);

} // namespace zolex_sim::conf
