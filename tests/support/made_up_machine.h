#pragma once

#include <windows.h>

#include <string>

namespace ZEMO::Test {

/// A tree of registry keys that can stand for HKEY_LOCAL_MACHINE: real registry calls, made-up content. It lies below
/// HKEY_CURRENT_USER under a name of its own and goes with the object, which also gives the machine's tree back.
class MadeUpMachine {
public:
    MadeUpMachine();
    ~MadeUpMachine();
    MadeUpMachine(const MadeUpMachine&) = delete;
    MadeUpMachine& operator=(const MadeUpMachine&) = delete;

    /// Path below HKEY_CURRENT_USER, for another process.
    const std::wstring& path() const { return path_; }

    void addKey(const std::wstring& key);
    void setText(const std::wstring& key, const std::wstring& name, const std::wstring& value, DWORD type = REG_SZ);
    void setNumber(const std::wstring& key, const std::wstring& name, DWORD value);

    /// From here on this process sees the tree instead of the machine's.
    void stand();

private:
    void set(const std::wstring& key, const std::wstring& name, DWORD type, const void* data, size_t bytes);

    std::wstring path_;
};

}  // namespace ZEMO::Test
