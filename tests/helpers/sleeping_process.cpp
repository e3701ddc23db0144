// Says "ready" and sleeps until it is ended, a minute at most.
#include <windows.h>

#include <cstdio>

int main() {
    std::puts("ready");
    std::fflush(stdout);
    Sleep(60'000);
    return 0;
}
