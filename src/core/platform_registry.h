#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace ZEMO::Core {

/// A key below HKEY_LOCAL_MACHINE, open for reading while the object lives. One thread at a time.
class MachineKey {
public:
    explicit MachineKey(const wchar_t* path);
    ~MachineKey();
    MachineKey(const MachineKey&) = delete;
    MachineKey& operator=(const MachineKey&) = delete;

    bool isOpen() const { return key_ != nullptr; }

    /// The value when it is there and of this very type; nothing otherwise. Text ends at its first NUL.
    std::optional<std::wstring> text(const wchar_t* name) const;
    std::optional<DWORD> number(const wchar_t* name) const;

private:
    HKEY key_ = nullptr;
};

}  // namespace ZEMO::Core
