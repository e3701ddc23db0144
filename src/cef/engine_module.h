#pragma once

#include <windows.h>

#include <string>

// What differs between the generated binding and a full engine distribution; each has its own file.
namespace cef_binding {

/// False with the name of the first function that the module lacks.
bool resolveFunctions(HMODULE module, std::string& missing);

/// The engine's version numbers by its own index: 0 to 3 its own, 4 to 7 the browser's.
int versionNumber(int entry);

}  // namespace cef_binding
