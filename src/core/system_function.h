#pragma once

#include <windows.h>

#include <type_traits>

namespace ZEMO::Core {

/// A function that not every system has, by its name; null when `module` is null or lacks it. `Function` is the
/// function's type or a pointer to it. Any thread.
template <class Function>
auto systemFunction(HMODULE module, const char* name) {
    using Pointer = std::add_pointer_t<std::remove_pointer_t<Function>>;
    return module ? reinterpret_cast<Pointer>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

/// The same for ntdll.dll, which is in every process: what the system's headers do not declare.
template <class Function>
auto ntdllFunction(const char* name) {
    return systemFunction<Function>(GetModuleHandleW(L"ntdll.dll"), name);
}

}  // namespace ZEMO::Core
