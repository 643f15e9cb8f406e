#include "driver/ZOLEX.h"
#include "platform/Platform.h"

int main(int argc, char** argv) {
    const auto platform = zolex::makeSystemPlatform();
    zolex::ZOLEX::main(argc, argv, *platform);
}
