#include "core/wine/handle_moves.h"

#include <atomic>

#include "core/process_end.h"
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
    BOOL done = TRUE;
    // Without a target it is a mere close.
    if (targetProcess) {
        done = duplicate(sourceProcess, source, targetProcess, target, access, inherit,
                         options & ~static_cast<DWORD>(DUPLICATE_CLOSE_SOURCE));
    }
    // The source is closed also when the copy failed. Whoever looks at the error means the copy's.
    const DWORD error = GetLastError();
    if (!isProcessEnding()) RemoteCloser::instance(duplicate).closeLater(sourceProcess, source);
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
