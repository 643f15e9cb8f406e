#include "companion/cli/Main.h"
#include "platform/Platform.h"

int main(int argc, char** argv) {
    const auto platform = zolex::makeSystemPlatform();
    return zolex::companion::runProgram(argc, argv, *platform);
}
