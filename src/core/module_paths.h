#pragma once

#include <windows.h>

#include <memory>
#include <string>

// Everything the library brings lies beside the library file, not beside the game's executable and not in the working
// directory. These helpers find that place. All are safe on any thread, none throws on a system failure: an empty
// result and a log line say what went wrong.
namespace ZEMO::Core {

/// Full path of this library's file into `buffer` of `size` characters. False (and a log line) when it does not fit
/// with its NUL; the buffer then holds what did fit.
bool getOwnModulePath(wchar_t* buffer, DWORD size);

/// Whether a function says in the log what went wrong.
enum class Failures { Logged, Silent };

/// The base of what the engine, pages and cursors are looked for in: the path of the library's file, or of the game's
/// executable when the former is unknown or has 260 characters and more, before its last separator of either kind,
/// which is cut off ("C:" for a file in the root). Unlike getOwnModuleDirectory it has no word of its own for the log.
std::wstring libraryBaseDirectory(Failures failures = Failures::Logged);

/// Directory of the library file, or of the game's executable when the former is unknown or has 260 characters and
/// more; empty when both are.
std::wstring getOwnModuleDirectory();

/// `relativePath` against the library's directory, lexically normal; empty when the directory is unknown.
std::wstring resolveModuleRelativePath(const std::wstring& relativePath);

/// Loads a helper library that lies beside this one. Null on failure. The caller frees it with FreeLibrary.
HMODULE loadLibraryFromModuleDirectory(const std::wstring& relativePath);

/// UTF-8 to UTF-16. Invalid sequences are replaced by the system; empty means empty input or a system failure.
std::wstring to_wide(const std::string& utf8);

/// A narrow file name as this process reads them: through its active code page, the system's unless the program's
/// manifest names UTF-8.
std::wstring widenNarrowPath(const std::string& path);

/// NUL-terminated UTF-8 copy of `text`, from malloc and freed with free; empty pointer for null or on a failure.
std::shared_ptr<char> toSharedUtf8(const wchar_t* text);

}  // namespace ZEMO::Core
