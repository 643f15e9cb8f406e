// The release's own hardware detector in the place of the virtual server's.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace zolex::e2e {
namespace {

TEST(HardwareDetectorTest, ItsValuesChooseThePolicy) {
    VirtualServer server;
    ASSERT_TRUE(server.isReady());
    std::filesystem::remove(server.folder() / "hwdetect.exe");
    std::filesystem::copy_file(ZOLEX_HWDETECT, server.folder() / "hwdetect.exe");
    std::filesystem::create_directory(server.folder() / "dmi");
    server.write("dmi/product_name", "Kestrel 3650\n");
    server.write("dmi/product_serial", "KQ1234X\n");
    server.environment["ZOLEX_DMI_ROOT"] = (server.folder() / "dmi").string();
    server.write("policies.ini", "[Policy.other]\nAppliesTo.1 = m:Kestrel 3650,s:1\n"
                                 "[Policy.ours]\nAppliesTo.1 = m:kestrel 3650,s:KQ1234X\n");
    const ProgramRun run = server.zolex({"/f:policies.ini", "/v:5"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.output.find("Policy.ours"), std::string::npos) << run.output;

    ASSERT_EQ(server.zolex({"/c:m,s", "/f:captured.ini"}).exitCode, 0);
    EXPECT_NE(server.read("captured.ini").find("m:Kestrel 3650,s:KQ1234X"), std::string::npos)
        << server.read("captured.ini");

    std::filesystem::remove(server.folder() / "dmi" / "product_name");
    std::filesystem::remove(server.folder() / "dmi" / "product_serial");
    EXPECT_EQ(server.zolex({"/f:policies.ini"}).exitCode, 5);
}

} // namespace
} // namespace zolex::e2e
