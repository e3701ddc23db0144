#include "core/wine/handle_moves.h"

#include <atomic>

#include "core/process_end.h"
#include "core/unique_handle.h"
#include "core/wine/import_table.h"
#include "core/wine/remote_closer.h"

namespace ZEMO::Core::Wine {
namespace {

// What stood in the import: the system's function, or that of somebody who came earlier.
std::atomic<DuplicateFunction> systemDuplicateHandle = nullptr;

bool isOwnProcess(HANDLE process) {
    return process == GetCurrentProcess() || GetProcessId(process) == GetCurrentProcessId();
}

BOOL WINAPI moveHandle(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess, HANDLE* target, DWORD access,
                       BOOL inherit, DWORD options) {
    const DuplicateFunction duplicate = systemDuplicateHandle;
    if (!(options & DUPLICATE_CLOSE_SOURCE) || isOwnProcess(sourceProcess)) {
        return duplicate(sourceProcess, source, targetProcess, target, access, inherit, options);
    }
    const DWORD asCopy = options & ~static_cast<DWORD>(DUPLICATE_CLOSE_SOURCE);
    BOOL done = FALSE;
    if (targetProcess) {
        done = duplicate(sourceProcess, source, targetProcess, target, access, inherit, asCopy);
    } else {  // a mere close
        UniqueKernelHandle unused;
        done = duplicate(sourceProcess, source, GetCurrentProcess(), unused.put(), 0, FALSE, asCopy);
    }
    // The source is closed also when the copy failed. Whoever looks at the error means the copy's.
    const DWORD error = GetLastError();
    // But one that is not open is not: somebody else may have its number by then.
    const bool isOpen = done || error != ERROR_INVALID_HANDLE;
    if (isOpen && !isProcessEnding()) RemoteCloser::instance(duplicate).closeLater(sourceProcess, source);
    SetLastError(error);
    return done;
}

}  // namespace

bool divertHandleMoves(HMODULE module) {
    void** const place = findImport(module, "DuplicateHandle");
    if (!place) return false;
    if (*place == reinterpret_cast<void*>(&moveHandle)) return true;  // a second time it would be its own predecessor
    systemDuplicateHandle = reinterpret_cast<DuplicateFunction>(*place);
    return replaceImport(place, reinterpret_cast<void*>(&moveHandle));
}

}  // namespace ZEMO::Core::Wine
