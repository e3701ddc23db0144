#include "core/wine/pipe_writes.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "core/unique_handle.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"
#include "support/memory_looker.h"

// Long texts over real pipes, from a process whose memory is looked at meanwhile: its first thread is stopped for each
// look. It stands in for the engine: its import is the one that is diverted.
namespace ZEMO::Core::Wine {
namespace {

/// What a program that sends long texts says in the end.
std::string sendLongTexts(const wchar_t* way) {
    ZEMO::Test::HelperProcess helper(ZEMO::Test::helperPath(L"long_writes.exe"), {way});
    EXPECT_TRUE(helper.line("ready")) << helper.output();
    const ZEMO::Test::MemoryLooker looker(helper.id());
    return helper.line("").value_or("nothing: " + helper.output());
}

decltype(&::WriteFile) realWrite = nullptr;
std::atomic<DWORD> writer = 0;
BOOL WINAPI noteWriter(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    writer = GetCurrentThreadId();
    return realWrite(file, data, size, written, overlapped);
}

/// A pipe with both ends here.
struct Pipe {
    explicit Pipe(DWORD flags = FILE_FLAG_OVERLAPPED) {
        const std::wstring name = L"\\\\.\\pipe\\zemo_pipe_writes_" + std::to_wstring(GetCurrentProcessId());
        out.reset(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_OUTBOUND | flags, PIPE_TYPE_BYTE, 1, 1 << 20, 1 << 20, 0,
                                   nullptr));
        in.reset(CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }
    UniqueKernelHandle out, in, event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
};

/// Which thread makes a write of that size; the one that asked for it is this one.
bool isMadeElsewhere(DWORD size, bool overlapped) {
    const Pipe pipe(overlapped ? FILE_FLAG_OVERLAPPED : 0);
    const std::vector<char> data(size);
    OVERLAPPED order{.hEvent = pipe.event.get()};
    DWORD written = 0;
    if (!WriteFile(pipe.out.get(), data.data(), size, &written, overlapped ? &order : nullptr)) {
        EXPECT_EQ(GetLastError(), DWORD{ERROR_IO_PENDING});
    }
    EXPECT_TRUE(!overlapped || GetOverlappedResult(pipe.out.get(), &order, &written, TRUE));
    EXPECT_EQ(written, size);
    return writer != GetCurrentThreadId();
}

class DivertedWrites : public testing::Test {
protected:
    DivertedWrites() {
        realWrite = noted.original<decltype(realWrite)>();
        EXPECT_TRUE(divertPipeWrites(GetModuleHandleW(nullptr)));
    }
    const ZEMO::Test::ImportReplaced noted{"WriteFile", &noteWriter};
};

}  // namespace

TEST(PipeWrites, DivertedWhileOthersLookAtTheProcess_AllArrive) { EXPECT_EQ(sendLongTexts(L"diverted"), "sent"); }

// The other half: this is what happens without. Where it fails, pipe_writes may go.
TEST(PipeWrites, PlainWhileOthersLookAtTheProcess_WriterIsLost) { EXPECT_EQ(sendLongTexts(L"plain"), "lost"); }

TEST_F(DivertedWrites, OnlyLongOverlappedOnes_AreMadeByTheThreadOfTheirOwn) {
    EXPECT_TRUE(isMadeElsewhere(100'000, true));
    EXPECT_TRUE(isMadeElsewhere(4096, true));
    EXPECT_FALSE(isMadeElsewhere(3000, true));
    EXPECT_FALSE(isMadeElsewhere(100'000, false));
}

TEST_F(DivertedWrites, WriteFails_ItsErrorComesThrough) {
    Pipe pipe;
    pipe.in.reset();
    const std::vector<char> data(100'000);
    OVERLAPPED order{.hEvent = pipe.event.get()};
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(WriteFile(pipe.out.get(), data.data(), 100'000, nullptr, &order));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_DATA});
}

TEST_F(DivertedWrites, ThreadsWriteToPipesOfTheirOwn_EachGetsItsOwnAnswer) {
    std::vector<std::thread> threads;
    std::atomic<int> right = 0;
    for (DWORD i = 1; i <= 4; ++i) {
        threads.emplace_back([&right, size = 10'000 * i] {
            const UniqueKernelHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
            const std::wstring name = L"\\\\.\\pipe\\zemo_own_" + std::to_wstring(GetCurrentThreadId());
            const UniqueKernelHandle out(CreateNamedPipeW(name.c_str(), PIPE_ACCESS_OUTBOUND | FILE_FLAG_OVERLAPPED,
                                                          PIPE_TYPE_BYTE, 1, 1 << 20, 1 << 20, 0, nullptr));
            const UniqueKernelHandle in(CreateFileW(name.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
            std::vector<char> data(size);
            for (int round = 0; round < 20; ++round) {
                OVERLAPPED order{.hEvent = event.get()};
                DWORD written = 0;
                DWORD read = 0;
                WriteFile(out.get(), data.data(), size, nullptr, &order);
                right += GetOverlappedResult(out.get(), &order, &written, TRUE) && written == size &&
                         ReadFile(in.get(), data.data(), size, &read, nullptr) && read == size;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(right, 4 * 20);
}

}  // namespace ZEMO::Core::Wine
