#include "engine/runtime_selection.h"

#include <tlhelp32.h>

#include <cwchar>
#include <filesystem>
#include <system_error>
#include <vector>

#include "core/unique_handle.h"

namespace ZEMO::UI {
namespace fs = std::filesystem;
namespace {

constexpr wchar_t kLockName[] = L"\\cef.lock";
constexpr wchar_t kCachePrefix[] = L"cache";
constexpr int kRemoveAttempts = 10;

std::error_code systemError(DWORD code) { return {static_cast<int>(code), std::system_category()}; }

std::set<unsigned long> runningProcessIds() {
    std::set<unsigned long> ids;
    Core::UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) return ids;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more; more = Process32NextW(snapshot.get(), &entry)) {
        ids.insert(entry.th32ProcessID);
    }
    return ids;
}

// What a directory name says: the process id behind "cache", 0 for anything that is no per-process cache.
unsigned long processIdOfCacheName(const std::wstring& name) {
    if (name.size() < 6 || name.compare(0, 5, kCachePrefix) != 0) return 0;
    return std::wcstoul(name.c_str() + 5, nullptr, 10);
}

// The engine's child processes of a dead game may still be letting go of files: the directory itself is tried again
// while it answers "not empty" or "denied".
void removeAllPatiently(const fs::path& directory) {
    for (int attempt = 1;; ++attempt) {
        std::error_code error;
        fs::remove_all(directory, error);
        if (!error) return;
        const bool mayPass = error == systemError(ERROR_DIR_NOT_EMPTY) || error == systemError(ERROR_ACCESS_DENIED) ||
                             error == std::errc::directory_not_empty || error == std::errc::permission_denied;
        if (!mayPass || attempt == kRemoveAttempts) throw fs::filesystem_error("remove_all", directory, error);
    }
}

// Existence without following links: a link or mount point counts as there.
bool existsUnfollowed(const std::wstring& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    switch (const DWORD code = GetLastError()) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_BAD_NETPATH:
        case ERROR_NETNAME_DELETED:
        case ERROR_INVALID_NAME:
        case ERROR_DIRECTORY:
            return false;
        default:
            throw fs::filesystem_error("exists", path, systemError(code));
    }
}

}  // namespace

void cleanupStaleCaches(const std::wstring& basePath) { cleanupStaleCaches(basePath, runningProcessIds()); }

void cleanupStaleCaches(const std::wstring& basePath, const std::set<unsigned long>& runningProcesses) {
    std::error_code error;
    fs::directory_iterator entry(basePath, error);
    if (error) throw fs::filesystem_error("directory_iterator::directory_iterator", basePath, error);
    for (; entry != fs::directory_iterator(); entry.increment(error)) {
        if (error) break;
        std::error_code statusError;
        const bool isDirectory = entry->is_directory(statusError);
        if (statusError && statusError != std::errc::no_such_file_or_directory) {
            throw fs::filesystem_error("directory_entry::status", entry->path(), statusError);
        }
        if (!isDirectory) continue;
        const unsigned long id = processIdOfCacheName(entry->path().filename().wstring());
        if (id != 0 && !runningProcesses.contains(id)) removeAllPatiently(entry->path());
    }
    if (error) throw fs::filesystem_error("directory_iterator::operator++", basePath, error);
}

HANDLE openCacheLock(const std::wstring& cacheDirectory) {
    return CreateFileW((cacheDirectory + kLockName).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool isCacheLocked(const std::wstring& cacheDirectory) {
    std::error_code ignored;
    fs::create_directories(cacheDirectory, ignored);
    const HANDLE lock = openCacheLock(cacheDirectory);
    if (lock == INVALID_HANDLE_VALUE) return true;
    CloseHandle(lock);
    return false;
}

void releaseCacheLock(const std::wstring& cacheDirectory, HANDLE lock) {
    if (lock == INVALID_HANDLE_VALUE || !lock) return;
    CloseHandle(lock);
    DeleteFileW((cacheDirectory + kLockName).c_str());
}

std::wstring selectCacheDirectory(const std::wstring& basePath) {
    std::wstring sharedCache = basePath + L"\\cache";
    if (!isCacheLocked(sharedCache)) return sharedCache;
    std::wstring ownCache = sharedCache + std::to_wstring(GetCurrentProcessId());
    std::error_code error;
    fs::create_directory(ownCache, error);
    if (error) throw fs::filesystem_error("create_directory", ownCache, error);
    return ownCache;
}

std::wstring selectSubprocess(const std::wstring& basePath) {
    std::wstring plainPath = basePath + L"\\cefsubprocess\\cef.subprocess.exe";
    if (existsUnfollowed(plainPath)) return plainPath;
    return basePath + L"\\cefsubprocess_" + getEngineFileVersion(basePath) + L"\\cef.subprocess.exe";
}

std::wstring getEngineFileVersion(const std::wstring& basePath) {
    const std::wstring file = basePath + L"\\libcef.dll";
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(file.c_str(), &ignored);
    if (size == 0) return {};
    std::vector<std::byte> block(size);
    if (!GetFileVersionInfoW(file.c_str(), 0, size, block.data())) return {};
    void* value = nullptr;
    UINT length = 0;
    if (!VerQueryValueW(block.data(), L"\\", &value, &length) || length == 0 || !value) return {};
    const auto* info = static_cast<const VS_FIXEDFILEINFO*>(value);
    if (info->dwSignature != VS_FFI_SIGNATURE) return {};
    return std::to_wstring(HIWORD(info->dwFileVersionMS)) + L"." + std::to_wstring(LOWORD(info->dwFileVersionMS)) +
           L"." + std::to_wstring(HIWORD(info->dwFileVersionLS));
}

}  // namespace ZEMO::UI
