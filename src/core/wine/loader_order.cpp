#include "core/wine/loader_order.h"

#include <winternl.h>

#include <cstddef>

#include "core/system_function.h"

namespace ZEMO::Core::Wine {
namespace {

// The beginning of the loader's entry of a module, which the system's headers leave unnamed. It has not changed since
// the first 64-bit Windows, and Wine has the same.
struct LoaderEntry {
    LIST_ENTRY loadOrder;
    LIST_ENTRY memoryOrder;
    LIST_ENTRY initializationOrder;
    void* base;
    void* entryPoint;
    ULONG imageSize;
    UNICODE_STRING fullName;
    UNICODE_STRING baseName;
    ULONG flags;
};
struct LoaderData {
    ULONG length;
    BOOLEAN initialized;
    HANDLE reserved;
    LIST_ENTRY loadOrder;
    LIST_ENTRY memoryOrder;
    LIST_ENTRY initializationOrder;
};
static_assert(offsetof(LoaderEntry, base) == 0x30 && offsetof(LoaderEntry, flags) == 0x68);
static_assert(offsetof(LoaderData, initializationOrder) == 0x30);

constexpr ULONG kEntryPointWasCalled = 0x00080000;

LIST_ENTRY* initializationOrder() {
    const auto currentPeb = ntdllFunction<PEB*(NTAPI*)()>("RtlGetCurrentPeb");
    auto* const data = currentPeb ? reinterpret_cast<LoaderData*>(currentPeb()->Ldr) : nullptr;
    return data ? &data->initializationOrder : nullptr;
}

/// Null for a module that has no entry, or one whose entry is not laid out as expected.
LoaderEntry* findEntry(const void* base) {
    LIST_ENTRY* const head = initializationOrder();
    if (!head || !base) return nullptr;
    for (LIST_ENTRY* link = head->Flink; link && link != head; link = link->Flink) {
        auto* const entry = CONTAINING_RECORD(link, LoaderEntry, initializationOrder);
        if (entry->base != base) continue;
        const auto offset = static_cast<const char*>(entry->entryPoint) - static_cast<const char*>(base);
        const bool known = entry->entryPoint && offset > 0 && static_cast<size_t>(offset) < entry->imageSize &&
                           (entry->flags & kEntryPointWasCalled) != 0;
        return known ? entry : nullptr;
    }
    return nullptr;
}

HMODULE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ownModule), &module);
    return module;
}

void moveToTheEnd(LIST_ENTRY& link, LIST_ENTRY& head) {
    link.Blink->Flink = link.Flink;
    link.Flink->Blink = link.Blink;
    link.Flink = &head;
    link.Blink = head.Blink;
    head.Blink->Flink = &link;
    head.Blink = &link;
}

/// The loader's own lock, which guards its lists.
class LoaderLock {
public:
    LoaderLock() {
        using Lock = NTSTATUS(NTAPI*)(ULONG, ULONG*, ULONG_PTR*);
        const auto lock = ntdllFunction<Lock>("LdrLockLoaderLock");
        held = lock && lock(0, nullptr, &cookie) >= 0;
    }
    ~LoaderLock() {
        using Unlock = NTSTATUS(NTAPI*)(ULONG, ULONG_PTR);
        const auto unlock = held ? ntdllFunction<Unlock>("LdrUnlockLoaderLock") : nullptr;
        if (unlock) unlock(0, cookie);
    }
    LoaderLock(const LoaderLock&) = delete;
    LoaderLock& operator=(const LoaderLock&) = delete;

    explicit operator bool() const { return held; }

private:
    ULONG_PTR cookie = 0;
    bool held = false;
};

}  // namespace

bool detachOwnModuleFirst() {
    const HMODULE own = ownModule();
    const LoaderLock lock;
    if (!lock) return false;
    LoaderEntry* const entry = findEntry(own);
    if (!entry) return false;
    moveToTheEnd(entry->initializationOrder, *initializationOrder());
    return true;
}

bool skipDetach(HMODULE module) {
    LoaderEntry* const entry = findEntry(module);
    if (!entry) return false;
    entry->flags &= ~kEntryPointWasCalled;
    return true;
}

}  // namespace ZEMO::Core::Wine
