#include "support/ime_keyboard.h"

#include <imm.h>

#include <format>
#include <string>

#include "core/unique_handle.h"
#include "support/real_key.h"

namespace ZEMO::Test {
namespace {

constexpr wchar_t kModuleName[] = L"zemotest.ime";
constexpr WORD kImeLayouts = 0xE000;  // an input method's layouts begin with E

/// The low word must be the user's own language: the system here takes no other layout. The high one is free for an
/// input method, so it says which of the module's dictionaries is meant.
HKL layoutOf(WORD language) {
    return static_cast<HKL>(
        UlongToHandle(MAKELONG(LOWORD(HandleToULong(GetKeyboardLayout(0))), kImeLayouts + language)));
}

/// What installing an input method writes: which module belongs to the layout.
bool registerModule(HKL layout) {
    const std::wstring path =
        std::format(L"System\\CurrentControlSet\\Control\\Keyboard Layouts\\{:08x}", HandleToULong(layout));
    Core::UniqueRegistryKey key;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(), nullptr))
        return false;
    const auto write = [&](const wchar_t* name, const std::wstring& value) {
        return RegSetValueExW(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
    };
    return write(L"Ime File", kModuleName) && write(L"Layout Text", L"Zemo test input method") &&
           write(L"Layout File", L"kbdus.dll");
}

/// The system looks for the module by its name alone; one that is loaded already is found by it.
bool loadModule() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring directory(path, length);
    directory.resize(directory.find_last_of(L"\\/") + 1);
    return LoadLibraryW((directory + L"test_helpers\\" + kModuleName).c_str()) != nullptr;
}

}  // namespace

ImeKeyboard::ImeKeyboard(WORD language) : before(GetKeyboardLayout(0)), layout(layoutOf(language)) {
    active = loadModule() && registerModule(layout) && ActivateKeyboardLayout(layout, 0) && ImmIsIME(layout) &&
             GetKeyboardLayout(0) == layout;
}

ImeKeyboard::~ImeKeyboard() { ActivateKeyboardLayout(before, 0); }

void ImeKeyboard::setOpen(HWND window, bool open) {
    const HIMC context = ImmGetContext(window);
    ImmSetOpenStatus(context, open);
    ImmReleaseContext(window, context);
}

bool ImeKeyboard::isOpen(HWND window) {
    const HIMC context = ImmGetContext(window);
    const bool open = context && ImmGetOpenStatus(context);
    ImmReleaseContext(window, context);
    return open;
}

void pressKeys(std::initializer_list<WORD> virtualKeys) {
    for (const WORD key : virtualKeys) {
        sendRealKey(key, 0);
        sendRealKey(key, KEYEVENTF_KEYUP);
    }
}

void pressKeysWithShift(std::initializer_list<WORD> virtualKeys) {
    sendRealKey(VK_SHIFT, 0);
    pressKeys(virtualKeys);
    sendRealKey(VK_SHIFT, KEYEVENTF_KEYUP);
}

}  // namespace ZEMO::Test
