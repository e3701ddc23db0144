#include "core/wine/handle_moves.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "core/unique_handle.h"
#include "core/wine/remote_closer.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"

// Moves out of a real process. This program stands in for the engine: its import is the one that is diverted.
namespace ZEMO::Core::Wine {
namespace {

constexpr ULONGLONG kPatienceMs = 20'000;

/// A process with a handle of an event of ours. Nothing in it takes part.
class HandleElsewhere {
public:
    HandleElsewhere() {
        EXPECT_TRUE(helper.line("ready")) << helper.output();
        process.reset(
            OpenProcess(PROCESS_DUP_HANDLE | PROCESS_TERMINATE | PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE,
                        helper.id()));
        EXPECT_TRUE(process);
        EXPECT_TRUE(
            DuplicateHandle(GetCurrentProcess(), event.get(), process.get(), &source, 0, FALSE, DUPLICATE_SAME_ACCESS));
    }
    bool isOpen() const {
        HANDLE copy = nullptr;
        if (!DuplicateHandle(process.get(), source, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS)) {
            EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
            return false;
        }
        CloseHandle(copy);
        return true;
    }
    bool isClosedInTheEnd() const {
        const ULONGLONG end = GetTickCount64() + kPatienceMs;
        while (isOpen()) {
            if (GetTickCount64() > end) return false;
            Sleep(10);
        }
        return true;
    }

    Test::HelperProcess helper{Test::helperPath(L"sleeping_process.exe"), {}};
    UniqueKernelHandle event{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    UniqueKernelHandle process;
    HANDLE source = nullptr;
};

BOOL divertedMove(const HandleElsewhere& elsewhere, HANDLE target, HANDLE* moved, DWORD options) {
    EXPECT_TRUE(divertHandleMoves(GetModuleHandleW(nullptr)));
    return DuplicateHandle(elsewhere.process.get(), elsewhere.source, target, moved, 0, FALSE, options);
}

}  // namespace

TEST(HandleMoves, MoveOutOfAnotherProcess_CopyIsThereAtOnceAndTheSourceIsClosedInTheEnd) {
    const HandleElsewhere elsewhere;
    UniqueKernelHandle moved;
    ASSERT_TRUE(
        divertedMove(elsewhere, GetCurrentProcess(), moved.put(), DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
    EXPECT_TRUE(elsewhere.isOpen()) << "closed by another thread, later";
    EXPECT_TRUE(SetEvent(moved.get()));
    EXPECT_EQ(WaitForSingleObject(elsewhere.event.get(), 0), WAIT_OBJECT_0) << "the same object";
    EXPECT_TRUE(elsewhere.isClosedInTheEnd());
}

TEST(HandleMoves, CloseWithoutATarget_SourceIsClosedInTheEnd) {
    const HandleElsewhere elsewhere;
    EXPECT_TRUE(divertedMove(elsewhere, nullptr, nullptr, DUPLICATE_CLOSE_SOURCE));
    EXPECT_TRUE(elsewhere.isClosedInTheEnd());
}

TEST(HandleMoves, CopyOutOfAnotherProcess_SourceStaysOpen) {
    const HandleElsewhere elsewhere;
    UniqueKernelHandle copy;
    ASSERT_TRUE(divertedMove(elsewhere, GetCurrentProcess(), copy.put(), DUPLICATE_SAME_ACCESS));
    Sleep(RemoteCloser::Limits{}.delayMs + 500);
    EXPECT_TRUE(elsewhere.isOpen());
}

TEST(HandleMoves, MoveWithinTheProcess_SourceIsClosedAtOnce) {
    ASSERT_TRUE(divertHandleMoves(GetModuleHandleW(nullptr)));
    const UniqueKernelHandle ownProcess(OpenProcess(PROCESS_ALL_ACCESS, FALSE, GetCurrentProcessId()));
    for (const HANDLE from : {GetCurrentProcess(), ownProcess.get()}) {
        const HANDLE source = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        UniqueKernelHandle moved;
        ASSERT_TRUE(DuplicateHandle(from, source, GetCurrentProcess(), moved.put(), 0, FALSE,
                                    DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
        DWORD flags = 0;
        EXPECT_TRUE(moved.get() == source || !GetHandleInformation(source, &flags)) << "the source is gone";
    }
}

TEST(HandleMoves, CopyFails_ItsErrorComesThrough) {
    HandleElsewhere elsewhere;
    elsewhere.source = reinterpret_cast<HANDLE>(static_cast<intptr_t>(0x7ffc));
    HANDLE moved = elsewhere.event.get();
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(divertedMove(elsewhere, GetCurrentProcess(), &moved, DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

TEST(HandleMoves, SourceNotOpen_WhoGetsItsNumberNextKeepsIt) {
    const auto systemDuplicate =
        ZEMO::Test::systemFunction<decltype(DuplicateHandle)>(L"kernel32.dll", "DuplicateHandle");
    for (const HANDLE target : {GetCurrentProcess(), HANDLE{nullptr}}) {
        const HandleElsewhere elsewhere;
        UniqueKernelHandle taken;
        ASSERT_TRUE(systemDuplicate(elsewhere.process.get(), elsewhere.source, GetCurrentProcess(), taken.put(), 0,
                                    FALSE, DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
        ASSERT_FALSE(elsewhere.isOpen());
        HANDLE moved = nullptr;
        EXPECT_FALSE(
            divertedMove(elsewhere, target, target ? &moved : nullptr, DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
        // The process gives up handles of its own beside this, and the lowest free number goes first.
        HANDLE next = nullptr;
        for (int copies = 0; copies < 100 && next != elsewhere.source; ++copies) {
            ASSERT_TRUE(systemDuplicate(GetCurrentProcess(), elsewhere.event.get(), elsewhere.process.get(), &next, 0,
                                        FALSE, DUPLICATE_SAME_ACCESS));
        }
        ASSERT_EQ(next, elsewhere.source) << "the number is not used again";
        Sleep(RemoteCloser::Limits{}.delayMs + 500);
        EXPECT_TRUE(elsewhere.isOpen());
    }
}

TEST(HandleMoves, ProcessHandleWithoutTheRight_ItsErrorComesThrough) {
    HandleElsewhere elsewhere;
    elsewhere.process.reset(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, elsewhere.helper.id()));
    HANDLE moved = nullptr;
    EXPECT_FALSE(divertedMove(elsewhere, GetCurrentProcess(), &moved, DUPLICATE_SAME_ACCESS | DUPLICATE_CLOSE_SOURCE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

}  // namespace ZEMO::Core::Wine
