#pragma once

namespace zolex::win32 {

/// Makes the process fit for the run, before it opens its first file. A standard stream without a
/// handle becomes the null device. Ctrl+C, Ctrl+Break and the end of the console, of the session or
/// of the system end the process as they do by default, after the files that are entered as
/// EndingFile have been removed. A second call changes nothing.
void prepareProcess();

} // namespace zolex::win32
