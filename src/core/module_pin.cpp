#include "core/module_pin.h"

#include <windows.h>

namespace ZEMO::Core {

void pinOwnModule() {
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&pinOwnModule), &module);
}

}  // namespace ZEMO::Core
