#include "core/wine/handle_moves.h"

#include <atomic>
#include <string_view>

#include "core/process_end.h"
#include "core/wine/remote_closer.h"

namespace ZEMO::Core::Wine {
namespace {

// What stood in the import: the system's function, or that of somebody who came earlier.
std::atomic<DuplicateFunction> original = nullptr;

bool isOwnProcess(HANDLE process) {
    return process == GetCurrentProcess() || GetProcessId(process) == GetCurrentProcessId();
}

BOOL WINAPI moveHandle(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess, HANDLE* target, DWORD access,
                       BOOL inherit, DWORD options) {
    const DuplicateFunction duplicate = original;
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

template <class T>
T* at(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(module) + offset);
}

bool put(void** place, void* function) {
    DWORD before = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before)) return false;
    InterlockedExchangePointer(place, function);
    VirtualProtect(place, sizeof *place, before, &before);
    return true;
}

/// The place of `name` among what is imported from one library.
void** findIn(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, std::string_view name) {
    const auto* wanted = at<const IMAGE_THUNK_DATA>(module, library.OriginalFirstThunk);
    auto* place = at<void*>(module, library.FirstThunk);
    for (; wanted->u1.AddressOfData; ++wanted, ++place) {
        if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
        if (name == at<const IMAGE_IMPORT_BY_NAME>(module, wanted->u1.AddressOfData)->Name) return place;
    }
    return nullptr;
}

}  // namespace

void** findImport(HMODULE module, const char* name) {
    const auto* dos = at<const IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = at<const IMAGE_NT_HEADERS>(module, static_cast<size_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!table.Size) return nullptr;
    for (auto* library = at<const IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress); library->Name; ++library) {
        // Some linkers leave the names out, and then nothing tells what a place is for.
        if (!library->OriginalFirstThunk) continue;
        if (void** place = findIn(module, *library, name)) return place;
    }
    return nullptr;
}

bool divertHandleMoves(HMODULE module) {
    void** const place = findImport(module, "DuplicateHandle");
    if (!place) return false;
    original = reinterpret_cast<DuplicateFunction>(*place);
    return put(place, reinterpret_cast<void*>(&moveHandle));
}

}  // namespace ZEMO::Core::Wine
