#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "core/unique_handle.h"

namespace ZEMO::Core {

/// A key below HKEY_LOCAL_MACHINE, open for reading while the object lives. One thread at a time.
class MachineKey {
public:
    explicit MachineKey(const wchar_t* path);

    bool isOpen() const { return static_cast<bool>(key); }

    /// The value when it is there and of this very type; nothing otherwise. Text ends at its first NUL.
    std::optional<std::wstring> text(const wchar_t* name) const;
    std::optional<DWORD> number(const wchar_t* name) const;

private:
    UniqueRegistryKey key;
};

}  // namespace ZEMO::Core
