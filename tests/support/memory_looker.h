#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <thread>

namespace ZEMO::Test {

/// Reads in another process's memory, again and again, to the end of the scope. Wine stops that process's first thread
/// for each time.
class MemoryLooker {
public:
    explicit MemoryLooker(DWORD id) : process(OpenProcess(PROCESS_VM_READ, FALSE, id)) {
        EXPECT_NE(process, nullptr);
        thread = std::thread([this] {
            while (!over) look();
        });
    }
    ~MemoryLooker() {
        over = true;
        thread.join();
        if (process) CloseHandle(process);
        EXPECT_GT(looks, 0);
    }
    MemoryLooker(const MemoryLooker&) = delete;
    MemoryLooker& operator=(const MemoryLooker&) = delete;

private:
    void look() {
        // Where ntdll.dll lies in every process.
        unsigned char found[256];
        SIZE_T size = 0;
        if (ReadProcessMemory(process, GetModuleHandleW(L"ntdll.dll"), found, sizeof found, &size)) ++looks;
    }
    const HANDLE process;
    std::atomic<bool> over = false;
    int looks = 0;
    std::thread thread;
};

}  // namespace ZEMO::Test
