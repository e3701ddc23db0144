#include "core/module_paths.h"

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <locale>
#include <sstream>

#include "core/log.h"

namespace ZEMO::Core {
namespace {

constexpr DWORD kPathBufferSize = 260;

bool findOwnModulePath(wchar_t* buffer, DWORD size, Failures failures) {
    const auto failed = [failures](const char* what) {
        if (failures == Failures::Logged) logDebugA("%s: %lu", what, GetLastError());
        return false;
    };
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            reinterpret_cast<const wchar_t*>(&getOwnModulePath), &module)) {
        return failed("GetModuleHandleEx failed");
    }
    const DWORD length = GetModuleFileNameW(module, buffer, size);
    return (length != 0 && length != size) || failed("GetModuleFileNameW failed or truncated");
}

}  // namespace

bool getOwnModulePath(wchar_t* buffer, DWORD size) { return findOwnModulePath(buffer, size, Failures::Logged); }

std::wstring libraryBaseDirectory(Failures failures) {
    wchar_t buffer[kPathBufferSize] = {};
    if (!findOwnModulePath(buffer, kPathBufferSize, failures)) {
        if (GetModuleFileNameW(nullptr, buffer, kPathBufferSize) == 0) buffer[0] = L'\0';
    }
    std::wstring directory = buffer;
    if (const size_t separator = directory.find_last_of(L"\\/"); separator != std::wstring::npos) {
        directory.resize(separator);
    }
    return directory;
}

std::wstring getOwnModuleDirectory() {
    wchar_t buffer[kPathBufferSize] = {};
    if (!getOwnModulePath(buffer, kPathBufferSize)) {
        logDebugA("getOwnModulePath failed, falling back to GetModuleFileName(NULL, ...)");
        if (GetModuleFileNameW(nullptr, buffer, kPathBufferSize) == 0) {
            logDebugA("Fallback GetModuleFileName(NULL, ...) failed. Error: %lu", GetLastError());
            return {};
        }
    }
    std::wstring directory = std::filesystem::path(buffer).parent_path().wstring();
    if (directory.empty()) logDebugA("Failed to get parent path from module path.");
    return directory;
}

std::wstring resolveModuleRelativePath(const std::wstring& relativePath) {
    const std::wstring directory = getOwnModuleDirectory();
    if (directory.empty()) {
        logDebugA("Error: Could not determine base directory for relative path resolution.");
        return {};
    }
    try {
        return (std::filesystem::path(directory) / relativePath).lexically_normal().wstring();
    } catch (...) {
        return {};
    }
}

HMODULE loadLibraryFromModuleDirectory(const std::wstring& relativePath) {
    std::wostringstream message;
    message.imbue(std::locale::classic());  // no thousands separators in an error code
    const std::wstring path = resolveModuleRelativePath(relativePath);
    if (path.empty()) {
        message << L"Failed to resolve absolute path for DLL: " << relativePath;
        logDebugW(L"%s", message.str().c_str());
        return nullptr;
    }
    const HMODULE module =
        LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DEFAULT_DIRS | LOAD_LIBRARY_SEARCH_USER_DIRS);
    const DWORD error = GetLastError();
    if (module) {
        message << L" Successfully loaded library from: " << path;
    } else {
        message << L"Failed to load library from: " << path << L". Error code: " << error;
    }
    logDebugW(L"%s", message.str().c_str());
    return module;
}

std::wstring to_wide(const std::string& utf8) {
    if (utf8.empty()) return {};
    // A text beyond the system's count is handed over with a count of 0, which it refuses like any other failure.
    const int size = utf8.size() <= INT_MAX ? static_cast<int>(utf8.size()) : 0;
    const int expected = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0);
    if (expected <= 0) {
        logDebugW(L"to_wide: 길이 조회 실패 (err=%lu)", GetLastError());
        return {};
    }
    std::wstring wide(static_cast<size_t>(expected), L'\0');
    const int written = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), expected);
    if (written != expected) {
        logDebugW(L"to_wide: 변환 실패 (written=%d, expected=%d, err=%lu)", written, expected, GetLastError());
        return {};
    }
    return wide;
}

std::wstring widenNarrowPath(const std::string& path) {
    const UINT codePage = AreFileApisANSI() ? CP_ACP : CP_OEMCP;
    const int length = MultiByteToWideChar(codePage, 0, path.data(), static_cast<int>(path.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(length > 0 ? length : 0), L'\0');
    MultiByteToWideChar(codePage, 0, path.data(), static_cast<int>(path.size()), wide.data(), length);
    return wide;
}

std::shared_ptr<char> toSharedUtf8(const wchar_t* text) {
    if (!text) return {};
    const int length = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (length < 1) return {};
    auto* const copy = static_cast<char*>(std::malloc(static_cast<size_t>(length) + 1));
    if (!copy) return {};
    std::shared_ptr<char> result(copy, &std::free);
    WideCharToMultiByte(CP_UTF8, 0, text, -1, copy, length, nullptr, nullptr);
    copy[length] = '\0';
    return result;
}

}  // namespace ZEMO::Core
