// The program as it is, except that its fixed pauses take no time and that the limit of its
// children can be shortened: ZOLEX_TEST_CHILD_LIMIT gives it in milliseconds.

#include "driver/ZOLEX.h"
#include "platform/Platform.h"

#include <cstdlib>

namespace {

class UnpausedPlatform : public zolex::Platform {
  public:
    explicit UnpausedPlatform(zolex::Platform& system) : system_(system) {}
    zolex::Console& console() override { return system_.console(); }
    zolex::FileSystem& files() override { return system_.files(); }
    zolex::ChildResult runChild(std::string_view commandLine, bool capture,
                                std::chrono::milliseconds limit) override {
        return system_.runChild(commandLine, capture, limit);
    }
    std::unique_ptr<zolex::PCI_DevList_VC> pciDevices() override { return system_.pciDevices(); }
    void pauseOneSecond() override {}
    zolex::LocalTime localTime() override { return system_.localTime(); }

  private:
    zolex::Platform& system_;
};

} // namespace

int main(int argc, char** argv) {
    static const auto system = zolex::makeSystemPlatform();
    UnpausedPlatform platform(*system);
    zolex::ZOLEX application(platform);
    if (const char* limit = std::getenv("ZOLEX_TEST_CHILD_LIMIT"); limit != nullptr) {
        application.childLimit = std::chrono::milliseconds(std::atol(limit));
    }
    return application.run(argc, argv);
}
