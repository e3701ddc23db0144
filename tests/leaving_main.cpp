#include <gmock/gmock.h>
#include <windows.h>

#include <cstdio>

// Ends the program at once when its tests have run. Some leave threads that stay to the end of the process, and under
// Wine such a thread may be taken away with a lock held that the exit then waits for. How games end is what the
// engine's tests show, and those return from `main`.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const int result = RUN_ALL_TESTS();
    std::fflush(nullptr);
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(result));
    return result;
}
