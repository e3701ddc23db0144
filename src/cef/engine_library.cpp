#include "engine_library.h"

#include <windows.h>

#include <atomic>
#include <mutex>

#include "engine_module.h"
#include "include/cef_version.h"

namespace {

std::mutex loadMutex;
bool loaded = false;
std::atomic<HMODULE> engineModule = nullptr;

std::string utf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<size_t>(bytes > 0 ? bytes : 0), 0);
    if (bytes > 0) WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), bytes, nullptr, nullptr);
    return result;
}

/// The extended form lifts the length limit.  Only where it is needed: the engine finds its data files beside the
/// module name that it is loaded under.
std::wstring longPath(std::wstring path) {
    for (auto& c : path) {
        if (c == L'/') c = L'\\';
    }
    if (path.size() < MAX_PATH || path.starts_with(L"\\\\?\\")) return path;
    if (path.starts_with(L"\\\\")) return L"\\\\?\\UNC" + path.substr(1);
    return L"\\\\?\\" + path;
}

bool load(const std::wstring& directory, std::string& failure) {
    const bool absolute = directory.starts_with(L"\\\\") || (directory.size() > 2 && directory[1] == L':' &&
                                                             (directory[2] == L'\\' || directory[2] == L'/'));
    if (!absolute) {
        failure = "the engine's directory \"" + utf8(directory) + "\" is not an absolute path";
        return false;
    }
    std::wstring file = directory;
    if (!file.empty() && file.back() != L'\\' && file.back() != L'/') file += L'\\';
    file = longPath(file + L"libcef.dll");
    // The altered search path looks for what libcef itself imports (chrome_elf.dll) beside it, not beside the program.
    const HMODULE module = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module) {
        const DWORD error = GetLastError();
        failure = "loading " + utf8(file) + " failed with error " + std::to_string(error);
        return false;
    }
    engineModule = module;
    HMODULE pinned = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<const wchar_t*>(module), &pinned)) {
        const DWORD error = GetLastError();
        failure = "keeping " + utf8(file) + " loaded failed with error " + std::to_string(error);
        return false;
    }
    std::string missing;
    if (!cef_binding::resolveFunctions(module, missing)) {
        failure = utf8(file) + " has no " + missing;
        return false;
    }
    return true;
}

std::string versionText(int major, int minor, int patch, int chromeMajor, int chromeMinor, int chromeBuild,
                        int chromePatch) {
    return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch) + "+chromium-" +
           std::to_string(chromeMajor) + "." + std::to_string(chromeMinor) + "." + std::to_string(chromeBuild) + "." +
           std::to_string(chromePatch);
}

}  // namespace

bool cefLoadLibrary(const wchar_t* directory, std::string* reason) {
    std::lock_guard lock(loadMutex);
    std::string failure;
    if (!loaded) loaded = load(directory ? directory : L"", failure);
    if (!loaded && reason) *reason = failure;
    return loaded;
}

void* cefLibraryModule() { return engineModule; }

bool cefVersionMatches(std::string* found, std::string* expected) {
    const std::string made = versionText(CEF_VERSION_MAJOR, CEF_VERSION_MINOR, CEF_VERSION_PATCH, CHROME_VERSION_MAJOR,
                                         CHROME_VERSION_MINOR, CHROME_VERSION_BUILD, CHROME_VERSION_PATCH);
    if (expected) *expected = made;
    if (found) found->clear();
    std::lock_guard lock(loadMutex);
    if (!loaded) return false;
    // The engine's numbering of its own numbers: 3 is the commit count, which says nothing about compatibility.
    const auto number = cef_binding::versionNumber;
    const std::string have = versionText(number(0), number(1), number(2), number(4), number(5), number(6), number(7));
    if (found) *found = have;
    return have == made;
}
