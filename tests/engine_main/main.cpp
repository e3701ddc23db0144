#include <gtest/gtest.h>

#include <windows.h>

#include <cstdio>

// A test that has started the engine ends its process here, at once. An ordinary end runs the engine's own library
// through its process detach after the system has taken the engine's threads away in the middle of whatever they did,
// and under Wine that has been seen, rarely, to wait for a lock of such a thread for ever. How a process ends is the
// matter of the tests of the ways out, which end theirs in every ordinary way.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(result));
}
