#include "layers/xinput_switch.h"

#include "core/system_function.h"

namespace ZEMO::UI {

namespace {

// xinput9_1_0.dll has no such function.
constexpr const wchar_t* kLibraries[] = {L"xinput1_4.dll", L"xinput1_3.dll", L"xinput1_2.dll", L"xinput1_1.dll"};

}  // namespace

XInputEnableFunction systemXInputEnable() {
    static const XInputEnableFunction found = []() -> XInputEnableFunction {
        // The library found stays loaded: the switch is wanted until the end.
        for (const wchar_t* name : kLibraries) {
            const HMODULE module = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
            if (!module) continue;
            if (const auto function = Core::systemFunction<XInputEnableFunction>(module, "XInputEnable"))
                return function;
            FreeLibrary(module);
        }
        return nullptr;
    }();
    return found;
}

void setXInputEnabled(bool enabled) {
    const BOOL state = enabled ? TRUE : FALSE;
    // Each version keeps a state of its own, and the one that counts is the one that the game reads.
    bool switched = false;
    for (const wchar_t* name : kLibraries) {
        const auto function = Core::systemFunction<XInputEnableFunction>(GetModuleHandleW(name), "XInputEnable");
        if (!function) continue;
        function(state);
        switched = true;
    }
    if (switched) return;
    if (const XInputEnableFunction function = systemXInputEnable()) function(state);
}

}  // namespace ZEMO::UI
