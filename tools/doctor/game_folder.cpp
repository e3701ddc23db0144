#include "game_folder.h"

#include <windows.h>

#include <stb_image.h>

#include <algorithm>
#include <cwctype>
#include <fstream>
#include <optional>
#include <system_error>

#include "engine/engine_files.h"
#include "engine_files_to_ship.h"
#include "render/cursor_file.h"

namespace ZEMO::Doctor {
namespace {

namespace fs = std::filesystem;
using Findings = std::vector<Finding>;

constexpr wchar_t kLibrary[] = L"ZEMOUIFramework.dll";
constexpr wchar_t kChildProgram[] = L"cef.subprocess.exe";
constexpr size_t kLongestPath = 259;  // MAX_PATH without its NUL

bool isFile(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

std::vector<uint8_t> readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

template <typename Number>
std::optional<Number> numberAt(const fs::path& path, std::streamoff offset) {
    std::ifstream file(path, std::ios::binary);
    Number number{};
    if (!file.seekg(offset) || !file.read(reinterpret_cast<char*>(&number), sizeof number)) return std::nullopt;
    return number;
}

bool isX64Program(const fs::path& path) {
    constexpr std::streamoff kHeaderPlace = 0x3C;
    if (numberAt<uint16_t>(path, 0) != IMAGE_DOS_SIGNATURE) return false;
    const std::optional<uint32_t> header = numberAt<uint32_t>(path, kHeaderPlace);
    return header && numberAt<uint32_t>(path, *header) == IMAGE_NT_SIGNATURE &&
           numberAt<uint16_t>(path, std::streamoff{*header} + 4) == IMAGE_FILE_MACHINE_AMD64;
}

// "major.minor.patch" of a program's version resource; empty without one.
std::wstring fileVersion(const fs::path& path) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &ignored);
    std::vector<std::byte> block(size);
    void* value = nullptr;
    UINT length = 0;
    if (!size || !GetFileVersionInfoW(path.c_str(), 0, size, block.data()) ||
        !VerQueryValueW(block.data(), L"\\", &value, &length) || length < sizeof(VS_FIXEDFILEINFO)) {
        return {};
    }
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(value);
    return std::to_wstring(HIWORD(info.dwFileVersionMS)) + L"." + std::to_wstring(LOWORD(info.dwFileVersionMS)) + L"." +
           std::to_wstring(HIWORD(info.dwFileVersionLS));
}

class Examination {
public:
    Examination(const fs::path& libraryFolder, const Versions& madeWith) : folder(libraryFolder), versions(madeWith) {}

    Findings run() {
        programs();
        engineFiles();
        resources();
        cursors();
        place();
        return std::move(findings);
    }

private:
    void error(const std::wstring& what, const std::wstring& text) {
        findings.push_back({Severity::Error, what, text});
    }
    void warning(const std::wstring& what, const std::wstring& text) {
        findings.push_back({Severity::Warning, what, text});
    }

    void programs() {
        program(kLibrary, versions.library);
        if (isFile(folder / L"libcef.dll")) program(L"libcef.dll", versions.engine);
        childProgram();
        const std::wstring hook = L"ZEMOGraphicsHook.dll";
        if (isFile(folder / hook) && !isX64Program(folder / hook)) error(hook, L"is no 64-bit library");
    }

    void program(const std::wstring& name, const std::wstring& version) {
        if (!isX64Program(folder / name)) return error(name, L"is no 64-bit program: cut short, or another platform's");
        const std::wstring found = fileVersion(folder / name);
        if (found == version) return;
        error(name, L"has version " + (found.empty() ? L"(none)" : found) + L"; these files belong to " + version);
    }

    void childProgram() {
        const std::wstring plain = std::wstring(L"cefsubprocess\\") + kChildProgram;
        const std::wstring versioned = L"cefsubprocess_" + versions.engine + L"\\" + kChildProgram;
        if (isFile(folder / plain)) return program(plain, versions.library);
        if (isFile(folder / versioned)) return program(versioned, versions.library);
        error(plain, L"is missing: no page can be shown");
    }

    // Without some the engine is not started; the others make a page poorer.
    void engineFiles() {
        const auto missing = UI::findMissingEngineFiles(folder.wstring());
        for (const UI::MissingEngineFile& file : missing) {
            if (file.needed) error(file.name, L"is missing: the engine is not started");
        }
        for (const wchar_t* name : kEngineFilesToShip) {
            const bool told =
                std::ranges::any_of(missing, [&](const auto& file) { return file.needed && file.name == name; });
            if (!told && !isFile(folder / name)) warning(name, L"is missing: the engine's set is not whole");
        }
        const wchar_t* compiler = L"cefsubprocess\\d3dcompiler_47.dll";
        if (!isFile(folder / compiler)) warning(compiler, L"is missing: the Direct3D renderer draws nothing");
        const wchar_t* korean = L"cefsubprocess\\locales\\ko.pak";
        if (!isFile(folder / korean)) warning(korean, L"is missing: the engine's own texts are English");
    }

    void resources() {
        std::error_code ignored;
        if (!fs::is_directory(folder / L"resources" / L"html", ignored)) {
            warning(L"resources\\html", L"is missing: neither local pages nor the close button's icon can be shown");
        } else {
            closeIcon();
        }
        const wchar_t* windowIcon = L"resources\\zemowindow.ico";
        if (!isFile(folder / windowIcon)) warning(windowIcon, L"is missing: a view's own window has no icon");
    }

    void closeIcon() {
        const wchar_t* name = L"resources\\html\\x_button\\common-btn-icon-webview-x@2x.png";
        if (!isFile(folder / name)) return warning(name, L"is missing: the close button can't be seen");
        const std::vector<uint8_t> file = readFile(folder / name);
        int width = 0, height = 0, channels = 0;
        if (!stbi_info_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels)) {
            return error(name, L"is no picture that can be read: the close button can't be seen");
        }
        if (channels != 2 && channels != 4) error(name, L"has no alpha channel: the close button is a solid block");
    }

    // The loader takes the first that it can read, and says nothing about the others.
    void cursors() {
        cursor(L"resources\\customcursor.cur", UI::kCursorFileType);
        cursor(L"resources\\customcursor.ico", UI::kIconFileType);
        const wchar_t* picture = L"resources\\customcursor.png";
        if (isFile(folder / picture)) cursorPicture(picture);
        cursorsInCapitals();
    }

    void cursor(const std::wstring& name, int type) {
        if (!isFile(folder / name) || UI::cursorDirectoryIsValid(readFile(folder / name), 0, type)) return;
        error(name, L"is not a file of its kind: it is passed over");
    }

    void cursorPicture(const std::wstring& name) {
        constexpr int kSmallest = 16, kLargest = 256;
        const std::vector<uint8_t> file = readFile(folder / name);
        int width = 0, height = 0, channels = 0;
        if (!stbi_info_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels)) {
            return error(name, L"is no picture that can be read: it is passed over");
        }
        if (std::min(width, height) >= kSmallest && std::max(width, height) <= kLargest) return;
        error(name, L"measures " + std::to_wstring(width) + L"x" + std::to_wstring(height) +
                        L": a side has 16 to 256 pixels, so it is passed over");
    }

    // Names are found in any letter case by the file system, and the kind is then told by a name that the library wrote
    // itself: only a studio that looks for its file by another name would miss it.
    void cursorsInCapitals() {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(folder / L"resources", ignored)) {
            const std::wstring name = entry.path().filename().wstring();
            std::wstring lower = name;
            std::ranges::transform(lower, lower.begin(), [](wchar_t c) { return std::towlower(c); });
            if (name != lower && lower.starts_with(L"customcursor.")) {
                warning(L"resources\\" + name,
                        L"is written with capitals: not found on a file system that tells them apart");
            }
        }
    }

    void place() {
        pathLength();
        pathCharacters();
        writable();
        std::error_code ignored;
        if (fs::exists(folder / L"cache", ignored)) {
            warning(L"cache", L"is what a started game left behind, logins among it: do not ship it");
        }
    }

    void pathLength() {
        constexpr std::wstring_view kDeepest = L"\\cefsubprocess\\cef.subprocess.exe";
        const size_t length = fs::absolute(folder).wstring().size() + kDeepest.size();
        if (length <= kLongestPath) return;
        error(L".", L"lies too deep: paths in it reach " + std::to_wstring(length) + L" characters, 259 are possible");
    }

    // Addresses of local pages are made of the path as it stands: these characters mean something else in an address.
    void pathCharacters() {
        const std::wstring path = fs::absolute(folder).wstring();
        if (path.find_first_of(L"#%") == std::wstring::npos) return;
        error(L".", L"has '#' or '%' in its path: local pages in it are not found");
    }

    void writable() {
        const fs::path probe = folder / (L"zemo_doctor_" + std::to_wstring(GetCurrentProcessId()) + L".tmp");
        const HANDLE file = CreateFileW(probe.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            return;
        }
        error(L".", L"can't be written to: the engine keeps its cache in it");
    }

    const fs::path& folder;
    const Versions& versions;
    Findings findings;
};

}  // namespace

std::vector<fs::path> libraryFolders(const fs::path& folder) {
    std::vector<fs::path> found;
    std::error_code ignored;
    const auto options = fs::directory_options::skip_permission_denied;
    if (isFile(folder / kLibrary)) found.push_back(folder);
    for (auto entry = fs::recursive_directory_iterator(folder, options, ignored);
         entry != fs::recursive_directory_iterator(); entry.increment(ignored)) {
        std::error_code unreadable;
        if (entry->is_directory(unreadable) && isFile(entry->path() / kLibrary)) found.push_back(entry->path());
    }
    std::ranges::sort(found);
    return found;
}

Findings examine(const fs::path& libraryFolder, const Versions& versions) {
    return Examination(libraryFolder, versions).run();
}

}  // namespace ZEMO::Doctor
