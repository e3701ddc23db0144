#include "core/wine/import_table.h"

#include <string_view>

namespace ZEMO::Core::Wine {
namespace {

template <class T>
T* at(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(module) + offset);
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

bool replaceImport(void** place, void* function) {
    DWORD before = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before)) return false;
    InterlockedExchangePointer(place, function);
    VirtualProtect(place, sizeof *place, before, &before);
    return true;
}

}  // namespace ZEMO::Core::Wine
