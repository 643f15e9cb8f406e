#pragma once

#include "companion/execution/Journal.h"
#include "companion/facts/Facts.h"
#include "companion/layout/Layout.h"
#include "companion/machine/Fingerprint.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// The proof of a run that ended as planned: what stands on the machine, drive by drive.
struct Certificate {
    struct Controller {
        std::int32_t number = 0;
        std::string model;
        std::string utility;
        Facts facts; ///< drives with serial numbers, logical drives, arrays
        Layout layout;
        std::string layoutHash;
    };

    std::string planId;
    std::string planHash;
    std::string policiesFile;
    std::string journalFile;
    std::string journalHash; ///< SHA-256 of the journal's bytes up to `verified`
    std::string madeAt;
    Fingerprint fingerprint; ///< of what stands now
    std::vector<Controller> controllers;
    std::vector<ControllerResult> results;
};

} // namespace zolex::companion
