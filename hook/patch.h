#pragma once

#include <windows.h>

// How calls of the game are led here: entries of tables that hold function addresses are exchanged. No instruction is
// changed, so other tools that hook the same functions by their code, and checks of code pages, are not disturbed.
namespace ZEMO::GraphicsHook {

/// An imported function and what is called in its place.
struct ImportPatch {
    const char* name;
    void* replacement;
};

/// Leads the game's calls of these functions to their replacements: in the import tables of all modules of the process
/// except the system's, the library's, the engine's and this one. Modules that are loaded later are reached by a later
/// call. The replacements find the functions themselves by their name.
void patchImports(const ImportPatch* patches, size_t count);

/// Exchanges one entry of a COM class's table of functions, for all objects of that class. Answers what was there; null
/// when the table can't be written. `replacement` is there already: null too.
void* patchTable(void* object, size_t entry, void* replacement);

/// Keeps this module in memory for the rest of the process: calls may come through a patched entry at any time.
void pinModule();

}  // namespace ZEMO::GraphicsHook
