#pragma once

#include <csignal>

namespace zolex::posix {

/// Makes the process fit for the run, before it opens its first file. A standard stream that is
/// closed becomes the null device, so that no file gets its descriptor. SIGPIPE and SIGXFSZ are
/// ignored: a write fails instead. SIGTERM, SIGINT and SIGHUP end the process as they do by default
/// (one that is ignored stays so), after the files that are entered as EndingFile have been
/// removed. A second call changes nothing.
void prepareProcess();

/// The signals that prepareProcess has made ignored, which a child must not inherit.
sigset_t signalsOfChildren();

} // namespace zolex::posix
