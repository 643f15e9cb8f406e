#include "companion/machine/Firmware.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace zolex::companion {
namespace {

/// A variable of the environment while it lives.
class Variable {
  public:
    Variable(const char* name, const std::string& value) : name_(name) { put(value); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { put(""); }

  private:
    void put(const std::string& value) const {
#ifdef _WIN32
        _putenv_s(name_, value.c_str());
#else
        value.empty() ? ::unsetenv(name_) : ::setenv(name_, value.c_str(), 1);
#endif
    }

    const char* name_;
};

TEST(Firmware, IsReadFromAnotherFolderWhereOneIsNamed) {
    const zolex::test::TemporaryDirectory folder;
    folder.write("dmi/product_name", "System x3550\n");
    folder.write("dmi/product_serial", "KQ1\n");
    const Variable root("ZOLEX_DMI_ROOT", folder.path() + "/dmi");
    EXPECT_EQ(askFirmware(), (FirmwareNames{"System x3550", "KQ1", ""}));
}

TEST(Firmware, AFileThatIsMissingIsATextThatIsNotTold) {
    const zolex::test::TemporaryDirectory folder;
    folder.write("dmi/product_name", "System x3550\n");
    const Variable root("ZOLEX_DMI_ROOT", folder.path() + "/dmi");
    EXPECT_EQ(askFirmware(), (FirmwareNames{"System x3550", "", ""}));
}

TEST(Firmware, WithoutAnyFileTheReasonIsTold) {
    const zolex::test::TemporaryDirectory folder;
    const std::string root = folder.path() + "/none";
    const Variable named("ZOLEX_DMI_ROOT", root);
    EXPECT_EQ(
        askFirmware(),
        (FirmwareNames{"", "", "the firmware tells nothing: there is no product_name in " + root}));
}

} // namespace
} // namespace zolex::companion
