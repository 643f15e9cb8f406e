#pragma once

#ifndef _WIN32

#include "support/TemporaryDirectory.h"

#include <chrono>
#include <cstdlib>
#include <string>
#include <sys/types.h>
#include <thread>

namespace zolex::test {

/// The process that a shell wrote as itself, by "echo $$ > pid", into the current directory. A
/// child that was left running may not have come that far, so it is waited for; 0 when it does not
/// come within half a minute.
inline pid_t writtenProcess() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (;;) {
        const std::string text = TemporaryDirectory::read("pid");
        if (text.ends_with('\n')) {
            return std::atoi(text.c_str());
        }
        if (std::chrono::steady_clock::now() >= end) {
            return 0;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

} // namespace zolex::test

#endif
