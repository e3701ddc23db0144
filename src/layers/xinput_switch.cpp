#include "layers/xinput_switch.h"

#include <initializer_list>

namespace ZEMO::UI {

XInputEnableFunction xinputEnableOverride = nullptr;

XInputEnableFunction systemXInputEnable() {
    static const XInputEnableFunction found = []() -> XInputEnableFunction {
        // xinput9_1_0.dll has no such function. The library found stays loaded: the switch is wanted until the end.
        for (const wchar_t* name : {L"xinput1_4.dll", L"xinput1_3.dll"}) {
            const HMODULE module = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
            if (!module) continue;
            if (const auto function = reinterpret_cast<XInputEnableFunction>(GetProcAddress(module, "XInputEnable")))
                return function;
            FreeLibrary(module);
        }
        return nullptr;
    }();
    return found;
}

void setXInputEnabled(bool enabled) {
    const XInputEnableFunction function = xinputEnableOverride ? xinputEnableOverride : systemXInputEnable();
    if (function) function(enabled ? TRUE : FALSE);
}

}  // namespace ZEMO::UI
