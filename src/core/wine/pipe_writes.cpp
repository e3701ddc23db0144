#include "core/wine/pipe_writes.h"

#include <atomic>

#include "core/never_destroyed.h"
#include "core/process_end.h"
#include "core/wine/import_table.h"

namespace ZEMO::Core::Wine {
namespace {

using WriteFunction = decltype(&::WriteFile);

// What stood in the import: the system's function, or that of somebody who came earlier.
std::atomic<WriteFunction> systemWriteFile = nullptr;

/// With Wine's own words to its server no longer than what a pipe takes as a whole.
constexpr DWORD kUndividedBytes = 4096 - 256;

/// One call of WriteFile and its answer.
struct Write {
    HANDLE file;
    const void* data;
    DWORD size;
    DWORD* written;
    OVERLAPPED* overlapped;
    BOOL succeeded = FALSE;
    DWORD error = 0;
    bool made = false;

    void make() {
        succeeded = systemWriteFile.load()(file, data, size, written, overlapped);
        error = GetLastError();
    }
};

/// One thread that makes the calls of all others, to the end of the process. Its lock and its signal are those that
/// cost no call to Wine's server.
class Writer {
public:
    Writer() = default;
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    static Writer& instance() {
        static NeverDestroyed<Writer> writer;
        return *writer;
    }

    /// Blocks until the call is made. False when there is no thread for it.
    bool make(Write& write) {
        AcquireSRWLockExclusive(&lock);
        const bool serving = isServing();
        if (serving) hand(write);
        ReleaseSRWLockExclusive(&lock);
        return serving;
    }

private:
    bool isServing() {
        if (started) return true;
        const HANDLE thread = CreateThread(nullptr, 0, &serve, this, 0, nullptr);
        started = thread != nullptr;
        if (thread) CloseHandle(thread);
        return started;
    }
    void hand(Write& write) {
        while (next) wait();
        next = &write;
        WakeAllConditionVariable(&changed);
        while (!write.made) wait();
    }
    static DWORD WINAPI serve(void* self) {
        for (auto* const writer = static_cast<Writer*>(self);;) writer->serveNext();
    }
    void serveNext() {
        AcquireSRWLockExclusive(&lock);
        while (!next) wait();
        ReleaseSRWLockExclusive(&lock);
        next->make();  // its caller and all others wait for that
        AcquireSRWLockExclusive(&lock);
        next->made = true;
        next = nullptr;
        WakeAllConditionVariable(&changed);
        ReleaseSRWLockExclusive(&lock);
    }
    void wait() { SleepConditionVariableSRW(&changed, &lock, INFINITE, 0); }

    SRWLOCK lock = SRWLOCK_INIT;
    CONDITION_VARIABLE changed = CONDITION_VARIABLE_INIT;
    // Under the lock.
    Write* next = nullptr;
    bool started = false;
};

BOOL WINAPI writeWhole(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped) {
    Write write{.file = file, .data = data, .size = size, .written = written, .overlapped = overlapped};
    const bool divided = size > kUndividedBytes && overlapped && GetFileType(file) == FILE_TYPE_PIPE;
    // The other threads may be gone at the end.
    if (!divided || isProcessEnding() || !Writer::instance().make(write)) write.make();
    SetLastError(write.error);
    return write.succeeded;
}

}  // namespace

bool divertPipeWrites(HMODULE module) {
    void** const place = findImport(module, "WriteFile");
    if (!place) return false;
    if (*place == reinterpret_cast<void*>(&writeWhole)) return true;  // a second time it would be its own predecessor
    systemWriteFile = reinterpret_cast<WriteFunction>(*place);
    return replaceImport(place, reinterpret_cast<void*>(&writeWhole));
}

}  // namespace ZEMO::Core::Wine
