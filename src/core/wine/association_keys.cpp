#include "core/wine/association_keys.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "core/never_destroyed.h"
#include "core/wine/import_table.h"

namespace ZEMO::Core::Wine {
namespace {

using OpenKeyFunction = decltype(&::RegOpenKeyExW);
using CloseKeyFunction = decltype(&::RegCloseKey);
// What stood in the imports.
std::atomic<OpenKeyFunction> systemOpenKey = nullptr;
std::atomic<CloseKeyFunction> systemCloseKey = nullptr;

std::atomic<DWORD> askingThread = 0;  // whose query runs; 0: nobody's
// Closed in that query and not opened anew: of its thread alone. The shell may close keys until the process ends.
NeverDestroyed<std::vector<HKEY>> closedKeys;

LSTATUS WINAPI openKey(HKEY key, const wchar_t* name, DWORD options, REGSAM access, HKEY* opened) {
    const LSTATUS status = systemOpenKey.load()(key, name, options, access, opened);
    if (status == ERROR_SUCCESS && askingThread == GetCurrentThreadId()) std::erase(*closedKeys, *opened);
    return status;
}

LSTATUS WINAPI closeKey(HKEY key) {
    if (askingThread == GetCurrentThreadId()) {
        if (std::ranges::find(*closedKeys, key) != closedKeys->end()) return ERROR_SUCCESS;
        closedKeys->push_back(key);
    }
    return systemCloseKey.load()(key);
}

}  // namespace

bool guardAssociationQueries(HMODULE shell) {
    void** const open = findImport(shell, "RegOpenKeyExW");
    void** const close = findImport(shell, "RegCloseKey");
    if (!open || !close) return false;
    if (*close == reinterpret_cast<void*>(&closeKey)) return true;  // a second time it would be its own predecessor
    systemOpenKey = reinterpret_cast<OpenKeyFunction>(*open);
    systemCloseKey = reinterpret_cast<CloseKeyFunction>(*close);
    return replaceImport(open, reinterpret_cast<void*>(&openKey)) &&
           replaceImport(close, reinterpret_cast<void*>(&closeKey));
}

void beginAssociationQuery() {
    closedKeys->clear();
    askingThread = GetCurrentThreadId();
}

void endAssociationQuery() { askingThread = 0; }

}  // namespace ZEMO::Core::Wine
