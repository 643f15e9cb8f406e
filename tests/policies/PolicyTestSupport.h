#pragma once

#include "driver/Application.h"
#include "driver/PolicyArguments.h"
#include "policies/PolicyReader.h"
#include "support/FakePlatform.h"

#include <memory>
#include <string>

namespace zolex::test {

/// The text of an error block.
inline std::string errorBlock(const std::string& message) {
    return "\n#### ERROR\n\t" + message + "\n";
}

/// The reader of an application, which reads what the settings say at that time.
class SettingsReader {
  public:
    explicit SettingsReader(Application& application)
        : application_(application),
          reader_(application.platform().files(), application.catalogue(), application.report()) {}

    bool read() { return reader_.read(policySource(application_.settings)); }
    CString lookUp(const CString& policyName, const CString& keyword, const CString& defaultValue) {
        return reader_.lookUp(application_.settings.policiesFile, policyName, keyword,
                              defaultValue);
    }
    [[nodiscard]] const PolicyList* policies() const { return reader_.policies(); }
    [[nodiscard]] bool hasPolicy(const CString& name) const { return reader_.hasPolicy(name); }

  private:
    Application& application_;
    PolicyReader reader_;
};

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
    SettingsReader reader{application};
};

} // namespace zolex::test
