// The listing in a folder that ZOLEX_PCI_ROOT names, with names that every system's files can have.

#include "platform/FolderPciDeviceList.h"
#include "platform/Platform.h"

#include "foundation/CString.h"
#include "support/FakePlatform.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <set>
#include <string>

namespace zolex {
namespace {

void setRoot(const std::string& folder) {
#ifdef _WIN32
    _putenv_s("ZOLEX_PCI_ROOT", folder.c_str());
#else
    ::setenv("ZOLEX_PCI_ROOT", folder.c_str(), 1);
#endif
}

/// "count:" and every record in order.
std::string collect(PCI_DevList_VC& list) {
    EXPECT_FALSE(list.collect());
    std::string text = std::to_string(list.count()) + ":";
    while (const PciDevice* d = list.next()) {
        text +=
            formatText(" %d.%d.%d=%x,%x,%x,%x,%x,%x", int{d->bus}, int{d->device}, int{d->function},
                       unsigned{d->vendorId}, unsigned{d->deviceId}, unsigned{d->subsystemVendorId},
                       unsigned{d->subsystemId}, d->classCode, unsigned{d->revision})
                .view();
    }
    return text;
}

class FolderPciDevices : public ::testing::Test {
  protected:
    FolderPciDevices() { setRoot(directory.path()); }
    ~FolderPciDevices() override { setRoot(""); }

    static std::string devices() {
        const auto platform = makeSystemPlatform();
        return collect(*platform->pciDevices());
    }

    test::TemporaryDirectory directory;
};

TEST_F(FolderPciDevices, AreReadOnEverySystem) {
    directory.write("0000-02-0e.1/vendor", "0x1000\r\n");
    directory.write("0000-02-0e.1/device", "0x0060\n");
    directory.write("0000-02-0e.1/subsystem_vendor", "0x1014\n");
    directory.write("0000-02-0e.1/subsystem_device", "0x0364\n");
    directory.write("0000-02-0e.1/class", "0x010400\n");
    directory.write("0000-02-0e.1/revision", "0x04\n");
    directory.write("0000-00-1f.0/other", "");
    directory.write("0000-00-20.0/vendor", "0x1");
    directory.write("0000-00-02.0/vendor/deeper", "0x1000\n");
    directory.write("note.txt", "0x1000");
    EXPECT_EQ(devices(), "4: 0.2.0=0,0,0,0,0,0 0.31.0=0,0,0,0,0,0 2.14.1=1000,60,1014,364,10400,4");
}

TEST_F(FolderPciDevices, AreNoneWhereTheFolderIsMissingOrAFile) {
    directory.write("file", "");
    for (const char* name : {"/missing", "/file"}) {
        setRoot(directory.path() + name);
        EXPECT_EQ(devices(), "0:");
    }
}

/// Folders in memory.
class MemoryFolders : public PciFolders {
  public:
    explicit MemoryFolders(std::map<std::string, std::string> files) : files_(std::move(files)) {}
    std::vector<std::string> entries(const std::string& folder) override {
        std::set<std::string> names;
        for (const auto& [name, content] : files_) {
            if (name.starts_with(folder + "/")) {
                const std::string rest = name.substr(folder.size() + 1);
                names.insert(rest.substr(0, rest.find('/')));
            }
        }
        return {names.rbegin(), names.rend()};
    }
    std::string start(const std::string& file, std::size_t most) override {
        const auto found = files_.find(file);
        return found == files_.end() ? std::string() : found->second.substr(0, most);
    }

  private:
    std::map<std::string, std::string> files_;
};

TEST(FolderPciDeviceList, TheOrderOfNamesDecidesBetweenDomains) {
    test::FakeConsole console;
    FolderPciDeviceList list(console, "root",
                             std::make_unique<MemoryFolders>(std::map<std::string, std::string>{
                                 {"root/0001:02:00.0/vendor", "0x2"},
                                 {"root/0000:02:00.0/vendor", "0x1"},
                                 {"root/0000:ff:1f.7/class", "0xFFFFFFFF"},
                                 {"root/0000:ff:1f.7/device", "0x10000"},
                                 {"other/0000:00:00.0/vendor", "0x3"}}));
    EXPECT_EQ(collect(list), "3: 2.0.0=1,0,0,0,0,0 2.0.0=2,0,0,0,0,0 255.31.7=0,0,0,0,ffffffff,0");
}

} // namespace
} // namespace zolex
