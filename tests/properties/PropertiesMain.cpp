// Runs the properties. RC_PARAMS says how many cases, and from which seed; without it each run
// takes the same thousand.

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    constexpr int keepWhatIsGiven = 0;
    setenv("RC_PARAMS", "seed=20260 max_success=1000", keepWhatIsGiven);
    // What has been printed must not be lost when a property crashes.
    std::cout << std::unitbuf;
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
