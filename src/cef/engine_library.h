#pragma once

#include <string>

// The engine's library at run time.  Nothing links libcef.dll: it is loaded from where the caller says, by its absolute
// path, and stays until the process ends (unloading it crashes, also after a clean shutdown: a thread of its own is
// still running).

/// Loads libcef.dll from `directory` (absolute) and resolves every function the binding calls.  Call it before any
/// other operation of the engine; any thread; once it has answered true it does nothing more.
/// False with a sentence in `reason` when the file or one of its exports is missing.  Until it has answered true every
/// global function of the engine does nothing and answers 0, false, null or an empty string.
bool cefLoadLibrary(const wchar_t* directory, std::string* reason = nullptr);

/// The loaded engine's module (an HMODULE); null until cefLoadLibrary has found the file. Any thread, without a lock.
void* cefLibraryModule();

/// True when the loaded engine is the version that this binding was made for.  `found` and `expected` become texts such
/// as "131.3.5+chromium-131.0.6778.205"; `found` is empty when no engine is loaded.
bool cefVersionMatches(std::string* found = nullptr, std::string* expected = nullptr);

/// Objects of the library that the engine holds a reference to, and objects of the engine that the library holds.
/// Both are 0 after a clean shutdown.  Any thread.  Always 0 in a build against a full engine distribution.
int cefLiveClientObjects();
int cefLiveEngineObjects();
