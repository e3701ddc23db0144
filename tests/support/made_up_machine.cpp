#include "support/made_up_machine.h"

#include <atomic>
#include <stdexcept>

namespace ZEMO::Test {
namespace {

void check(LSTATUS status, const char* what) {
    if (status != ERROR_SUCCESS) throw std::runtime_error(std::string(what) + ": error " + std::to_string(status));
}

struct Key {
    HKEY handle = nullptr;
    explicit Key(const std::wstring& path) {
        check(
            RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr),
            "making a registry key");
    }
    ~Key() { RegCloseKey(handle); }
};

}  // namespace

MadeUpMachine::MadeUpMachine() {
    static std::atomic<int> count{0};
    path_ = L"Software\\ZemoMadeUp_" + std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++count);
    const Key key(path_);
}

MadeUpMachine::~MadeUpMachine() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
}

void MadeUpMachine::addKey(const std::wstring& key) { const Key made(path_ + L"\\" + key); }

void MadeUpMachine::set(const std::wstring& key, const std::wstring& name, DWORD type, const void* data, size_t bytes) {
    const Key made(path_ + L"\\" + key);
    check(RegSetValueExW(made.handle, name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(bytes)),
          "writing a registry value");
}

void MadeUpMachine::setText(const std::wstring& key, const std::wstring& name, const std::wstring& value, DWORD type) {
    set(key, name, type, value.c_str(), (value.size() + 1) * sizeof(wchar_t));
}

void MadeUpMachine::setNumber(const std::wstring& key, const std::wstring& name, DWORD value) {
    set(key, name, REG_DWORD, &value, sizeof value);
}

void MadeUpMachine::stand() {
    const Key key(path_);
    check(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.handle), "replacing the machine's root key");
}

}  // namespace ZEMO::Test
