#include "patch.h"

#include <tlhelp32.h>

#include <cstring>
#include <cwchar>
#include <string_view>

namespace ZEMO::GraphicsHook {
namespace {

template <class T>
T* at(HMODULE module, size_t offset) {
    return reinterpret_cast<T*>(reinterpret_cast<unsigned char*>(module) + offset);
}

HMODULE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<const wchar_t*>(&ownModule), &module);
    return module;
}

bool isOfTheSystem(const wchar_t* path) {
    wchar_t folder[MAX_PATH];
    const UINT length = GetSystemDirectoryW(folder, MAX_PATH);
    return length > 0 && _wcsnicmp(path, folder, length) == 0;
}

// The library draws windows of its own with the same functions.
bool isOurs(const MODULEENTRY32W& entry) {
    for (const wchar_t* name : {L"ZEMOUIFramework.dll", L"libcef.dll", L"chrome_elf.dll"}) {
        if (_wcsicmp(entry.szModule, name) == 0) return true;
    }
    return entry.hModule == ownModule();
}

bool exchange(void** place, void* value) {
    DWORD before = 0;
    if (!VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before)) return false;
    InterlockedExchangePointer(place, value);
    VirtualProtect(place, sizeof *place, before, &before);
    return true;
}

void patchLibrary(HMODULE module, const IMAGE_IMPORT_DESCRIPTOR& library, const ImportPatch& patch) {
    if (!library.OriginalFirstThunk) return;  // nothing tells the names of these
    const auto* wanted = at<const IMAGE_THUNK_DATA>(module, library.OriginalFirstThunk);
    auto* place = at<void*>(module, library.FirstThunk);
    for (; wanted->u1.AddressOfData; ++wanted, ++place) {
        if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
        const auto* name = at<const IMAGE_IMPORT_BY_NAME>(module, wanted->u1.AddressOfData);
        if (std::strcmp(patch.name, reinterpret_cast<const char*>(name->Name)) != 0) continue;
        if (*place != patch.replacement) exchange(place, patch.replacement);
    }
}

void patchModule(HMODULE module, const ImportPatch* patches, size_t count) {
    const auto* dos = at<const IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = at<const IMAGE_NT_HEADERS>(module, static_cast<size_t>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (!table.Size) return;
    for (auto* library = at<const IMAGE_IMPORT_DESCRIPTOR>(module, table.VirtualAddress); library->Name; ++library) {
        for (size_t i = 0; i < count; ++i) patchLibrary(module, *library, patches[i]);
    }
}

}  // namespace

void patchImports(const ImportPatch* patches, size_t count) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return;
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32FirstW(snapshot, &entry); more; more = Module32NextW(snapshot, &entry)) {
        if (!isOfTheSystem(entry.szExePath) && !isOurs(entry)) patchModule(entry.hModule, patches, count);
    }
    CloseHandle(snapshot);
}

void* patchTable(void* object, size_t entry, void* replacement) {
    void** const table = *static_cast<void***>(object);
    void* const before = table[entry];
    return before != replacement && exchange(&table[entry], replacement) ? before : nullptr;
}

void pinModule() {
    HMODULE pinned = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<const wchar_t*>(&pinModule), &pinned);
}

}  // namespace ZEMO::GraphicsHook
