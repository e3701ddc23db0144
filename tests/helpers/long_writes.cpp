// Sends itself a hundred texts of a megabyte over a pipe, one after the other, as the engine does: overlapped, the end
// of each heard of by a completion port. Says "ready", then "sent", or "lost" when its first thread, which writes, is
// gone.
//   long_writes.exe diverted|plain
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "core/unique_handle.h"
#include "core/wine/pipe_writes.h"

namespace {

using ZEMO::Core::UniqueKernelHandle;

constexpr int kTexts = 100;
constexpr DWORD kTextBytes = 1 << 20;
constexpr ULONGLONG kAllBytes = ULONGLONG{kTexts} * kTextBytes;

/// Reads all texts; true when each byte was right.
bool readAll(HANDLE pipe) {
    std::vector<char> part(1 << 16);
    bool right = true;
    for (ULONGLONG read = 0; read < kAllBytes;) {
        DWORD size = 0;
        if (!ReadFile(pipe, part.data(), static_cast<DWORD>(part.size()), &size, nullptr)) return false;
        for (DWORD i = 0; i < size; ++i) right = right && part[i] == static_cast<char>((read + i) / kTextBytes);
        read += size;
    }
    return right;
}

bool send(HANDLE pipe, HANDLE port, int number) {
    const std::string text(kTextBytes, static_cast<char>(number));
    OVERLAPPED order{};
    if (!WriteFile(pipe, text.data(), kTextBytes, nullptr, &order) && GetLastError() != ERROR_IO_PENDING) return false;
    DWORD size = 0;
    ULONG_PTR key = 0;
    OVERLAPPED* made = nullptr;
    return GetQueuedCompletionStatus(port, &size, &key, &made, 20'000) && made == &order && size == kTextBytes;
}

DWORD WINAPI sayWhenLost(void* thread) {
    WaitForSingleObject(thread, INFINITE);
    std::puts("lost");
    std::fflush(stdout);
    TerminateProcess(GetCurrentProcess(), 6);
    return 0;
}

bool watchThisThread() {
    const HANDLE self = OpenThread(SYNCHRONIZE, FALSE, GetCurrentThreadId());
    const UniqueKernelHandle watcher(CreateThread(nullptr, 0, &sayWhenLost, self, 0, nullptr));
    return static_cast<bool>(watcher);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    if (std::strcmp(argv[1], "diverted") == 0 && !ZEMO::Core::Wine::divertPipeWrites(GetModuleHandleW(nullptr)))
        return 3;
    const std::wstring name = L"\\\\.\\pipe\\zemo_long_writes_" + std::to_wstring(GetCurrentProcessId());
    const UniqueKernelHandle out(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_OUTBOUND | FILE_FLAG_OVERLAPPED,
                                                  PIPE_TYPE_BYTE, 1, 4096, 4096, 0, nullptr));
    const HANDLE in = CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    const UniqueKernelHandle port(CreateIoCompletionPort(out.get(), nullptr, 0, 1));
    if (in == INVALID_HANDLE_VALUE || !port || !watchThisThread()) return 4;
    bool right = false;
    std::thread reader([&] { right = readAll(in); });
    std::puts("ready");
    std::fflush(stdout);
    int sent = 0;
    while (sent < kTexts && send(out.get(), port.get(), sent)) ++sent;
    if (sent < kTexts) return 5;
    reader.join();
    CloseHandle(in);
    std::printf("%s\n", right ? "sent" : "sent otherwise");
    return 0;
}
