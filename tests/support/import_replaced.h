#pragma once

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace ZEMO::Test {

/// Puts a function in the place of a system function that this program imports, until the end of the scope. The code
/// under test is part of this program, so its calls come here, and the system's own among themselves do not. Meant for
/// looking at calls that leave no trace (and passing them on), and for answers that a machine can't be made to give.
class ImportReplaced {
public:
    /// `replacement` has exactly the type of the function. It may still run on another thread after the scope.
    template <class Function>
    ImportReplaced(const char* name, Function* replacement) : places(find(name)) {
        if (places.empty()) {
            std::fprintf(stderr, "this program does not import %s\n", name);
            std::abort();
        }
        replaced = *places.front();
        put(reinterpret_cast<void*>(replacement));
    }
    ~ImportReplaced() { put(replaced); }
    ImportReplaced(const ImportReplaced&) = delete;
    ImportReplaced& operator=(const ImportReplaced&) = delete;

    /// What stood there before. `Function` is the pointer type.
    template <class Function>
    Function original() const {
        return reinterpret_cast<Function>(replaced);
    }

private:
    /// Import libraries may name one function twice.
    static std::vector<void**> find(const char* name) {
        auto* const base = reinterpret_cast<unsigned char*>(GetModuleHandleW(nullptr));
        const auto* headers =
            reinterpret_cast<IMAGE_NT_HEADERS*>(base + reinterpret_cast<IMAGE_DOS_HEADER*>(base)->e_lfanew);
        const auto* tables = headers->OptionalHeader.DataDirectory;
        std::vector<void**> found;
        const auto search = [&](DWORD names, DWORD addresses) {
            const auto* wanted = reinterpret_cast<IMAGE_THUNK_DATA*>(base + names);
            auto* place = reinterpret_cast<void**>(base + addresses);
            for (; wanted->u1.AddressOfData; ++wanted, ++place) {
                if (IMAGE_SNAP_BY_ORDINAL(wanted->u1.Ordinal)) continue;
                const auto* entry = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + wanted->u1.AddressOfData);
                if (std::strcmp(reinterpret_cast<const char*>(entry->Name), name) == 0) found.push_back(place);
            }
        };
        for (auto* library =
                 reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + tables[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress);
             library->Name; ++library) {
            search(library->OriginalFirstThunk, library->FirstThunk);
        }
        if (const DWORD delayed = tables[IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT].VirtualAddress) {
            for (auto* library = reinterpret_cast<IMAGE_DELAYLOAD_DESCRIPTOR*>(base + delayed); library->DllNameRVA;
                 ++library) {
                search(library->ImportNameTableRVA, library->ImportAddressTableRVA);
            }
        }
        return found;
    }

    void put(void* function) const {
        for (void** place : places) {
            DWORD before = 0;
            VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
            InterlockedExchangePointer(place, function);
            VirtualProtect(place, sizeof *place, before, &before);
        }
    }

    std::vector<void**> places;
    void* replaced = nullptr;
};

/// The system's function itself, past any replacement.
template <class Function>
Function* systemFunction(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function*>(GetProcAddress(GetModuleHandleW(library), name));
}

}  // namespace ZEMO::Test
