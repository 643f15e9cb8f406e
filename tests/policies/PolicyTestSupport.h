#pragma once

#include "controllers/Application.h"
#include "policies/PolicyReader.h"
#include "support/FakePlatform.h"

#include <memory>
#include <string>

namespace zolex::test {

/// The text of an error block.
inline std::string errorBlock(const std::string& message) {
    return "\n#### ERROR\n\t" + message + "\n";
}

/// A reader over a policies file in memory.
struct PolicyReading {
    PolicyReading() {
        application.settings.policiesFile = "p.ini";
        application.printer().setVerbosity(level::progress);
    }

    /// Reads a file of this content.
    bool read(const std::string& content) {
        platform.fileFake.files["p.ini"] = content;
        return reader.read();
    }
    /// What was printed since the last call.
    std::string output() { return platform.consoleFake.takeOutput(); }
    [[nodiscard]] const Policy& policy(std::size_t i = 0) const {
        return reader.policies()->policies().at(i);
    }

    FakePlatform platform;
    Application application{platform};
    PolicyReader reader{application};
};

} // namespace zolex::test
