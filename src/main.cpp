#include "driver/ZOLEX.h"
#include "platform/Platform.h"

int main(int argc, char** argv) {
    // The run ends in std::exit: static, so that the console writes then what it holds back.
    static const auto platform = zolex::makeSystemPlatform();
    zolex::ZOLEX::main(argc, argv, *platform);
}
