#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// The user's registry key of the on-screen keyboard, in a test's hands: absent at first, as the user had it at the
/// end.
class KeyboardKey {
public:
    KeyboardKey() {
        save();
        remove();
    }
    ~KeyboardKey() {
        remove();
        if (!existed) return;
        create();
        for (const Value& value : saved)
            RegSetKeyValueW(HKEY_CURRENT_USER, kPath, value.name.c_str(), value.type, value.data.data(),
                            static_cast<DWORD>(value.data.size()));
    }
    KeyboardKey(const KeyboardKey&) = delete;
    KeyboardKey& operator=(const KeyboardKey&) = delete;

    void create() {
        HKEY key = nullptr;
        RegCreateKeyExW(HKEY_CURRENT_USER, kPath, 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
        RegCloseKey(key);
    }
    void set(const wchar_t* name, DWORD value) {
        RegSetKeyValueW(HKEY_CURRENT_USER, kPath, name, REG_DWORD, &value, sizeof value);
    }
    bool exists() const {
        HKEY key = nullptr;
        if (RegOpenKeyExW(HKEY_CURRENT_USER, kPath, 0, KEY_READ, &key)) return false;
        RegCloseKey(key);
        return true;
    }
    /// Empty when it is absent or no REG_DWORD.
    std::optional<DWORD> get(const wchar_t* name) const {
        DWORD value = 0;
        DWORD size = sizeof value;
        if (RegGetValueW(HKEY_CURRENT_USER, kPath, name, RRF_RT_REG_DWORD, nullptr, &value, &size)) return {};
        return value;
    }
    /// The six values that a keyboard reads as it starts, in the order of the key's own table.
    std::vector<std::optional<DWORD>> all() const {
        std::vector<std::optional<DWORD>> values;
        for (const wchar_t* name :
             {L"WindowLeft", L"WindowTop", L"WindowWidth", L"WindowHeight", L"ShowNumPad", L"ShowClearKey"})
            values.push_back(get(name));
        return values;
    }

private:
    static constexpr wchar_t kPath[] = L"SOFTWARE\\Microsoft\\Osk";
    struct Value {
        std::wstring name;
        DWORD type;
        std::vector<BYTE> data;
    };

    void save() {
        HKEY key = nullptr;
        existed = RegOpenKeyExW(HKEY_CURRENT_USER, kPath, 0, KEY_READ, &key) == ERROR_SUCCESS;
        if (!existed) return;
        wchar_t name[1024];
        std::vector<BYTE> data(65536);
        for (DWORD i = 0;; ++i) {
            DWORD nameSize = 1024, type = 0, size = static_cast<DWORD>(data.size());
            if (RegEnumValueW(key, i, name, &nameSize, nullptr, &type, data.data(), &size)) break;
            saved.push_back({name, type, {data.begin(), data.begin() + size}});
        }
        RegCloseKey(key);
    }
    void remove() { RegDeleteTreeW(HKEY_CURRENT_USER, kPath); }

    bool existed = false;
    std::vector<Value> saved;
};

}  // namespace ZEMO::Test
