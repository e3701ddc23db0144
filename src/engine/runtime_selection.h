#pragma once

#include <windows.h>

#include <set>
#include <string>

// Which cache directory this process uses, how other processes see that it is taken, and which child program the engine
// starts. All paths stand beside the library file, in `basePath`. Called on the engine thread during start, and on the
// stopping thread at the end; the only exclusion between processes is the unshared open of the lock file.
namespace ZEMO::UI {

/// Removes the cache directories of processes that no longer run. Throws std::filesystem::filesystem_error at the first
/// directory that can't be read or removed; the rest waits for the next start.
void cleanupStaleCaches(const std::wstring& basePath);

/// True when the directory's lock can't be taken, for whatever reason. Makes the directory when it is missing.
bool isCacheLocked(const std::wstring& cacheDirectory);

/// Takes the lock: a handle without sharing, given up by the system when the process dies. INVALID_HANDLE_VALUE when
/// another process was faster.
HANDLE openCacheLock(const std::wstring& cacheDirectory);

/// Gives the lock up and deletes its file. An invalid handle does nothing.
void releaseCacheLock(const std::wstring& cacheDirectory, HANDLE lock);

/// The directory for this process: the shared one, or one with the process id when that is taken. Throws
/// std::filesystem::filesystem_error when the latter can't be made.
std::wstring selectCacheDirectory(const std::wstring& basePath);

/// The child program: the plain one when it is there, else the one of the engine's version, whether there or not.
/// Throws std::filesystem::filesystem_error when the plain one can't be asked for.
std::wstring selectSubprocess(const std::wstring& basePath);

/// "major.minor.patch" of libcef.dll's file version; empty when it can't be read.
std::wstring getEngineFileVersion(const std::wstring& basePath);

/// The clean-up rule with the running processes given.
void cleanupStaleCaches(const std::wstring& basePath, const std::set<unsigned long>& runningProcesses);

}  // namespace ZEMO::UI
