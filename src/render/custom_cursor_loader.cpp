#include "render/custom_cursor_loader.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include "core/module_paths.h"
#include "render/cursor_file.h"
#include "render/image_cursor.h"

namespace ZEMO::UI {
namespace {

namespace fs = std::filesystem;

bool fileExists(const fs::path& path) {
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (!fs::status_known(status)) throw fs::filesystem_error("exists", path, error);
    return fs::exists(status);
}

std::vector<uint8_t> readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<uint8_t> bytes;
    char block[4096];
    // Through the stream: its buffer alone would throw for a file that can't be read to its end.
    while (file.read(block, sizeof block), file.gcount() > 0) bytes.insert(bytes.end(), block, block + file.gcount());
    if (file.bad()) bytes.clear();
    return bytes;
}

bool validateDirectory(const fs::path& path, int requestedSize, int expectedType) {
    return cursorDirectoryIsValid(readFile(path), requestedSize, expectedType);
}

HANDLE loadFromFile(const std::wstring& path, UINT type, int size) {
    return LoadImageW(GetModuleHandleW(nullptr), path.c_str(), type, size, size, LR_LOADFROMFILE);
}

}  // namespace

Core::UniqueCursor CustomCursorLoader::loadCandidate(const std::wstring& path, int size) {
    const fs::path extension = fs::path(path).extension();
    if (!fileExists(path)) return {};
    if (extension == L".cur" && validateDirectory(path, size, kCursorFileType)) {
        return Core::UniqueCursor(static_cast<HCURSOR>(loadFromFile(path, IMAGE_CURSOR, size)));
    }
    if (extension == L".ico" && validateDirectory(path, size, kIconFileType)) {
        Core::UniqueIcon icon(static_cast<HICON>(loadFromFile(path, IMAGE_ICON, size)));
        return icon ? iconToCursor(std::move(icon)) : Core::UniqueCursor();
    }
    if (extension == L".png") return pngToCursor(path);
    return {};
}

HCURSOR CustomCursorLoader::load() {
    const std::map<std::wstring, int> candidates = {
        {L"resources/customcursor.cur", 0}, {L"resources/customcursor.ico", 0}, {L"resources/customcursor.png", 0}};
    const std::wstring directory = Core::libraryBaseDirectory(Core::Failures::Silent);
    std::map<std::wstring, int> files;  // sorted by path: this is the order of trial
    for (const auto& [relativePath, size] : candidates) files[directory + L"\\" + relativePath] = size;

    for (const auto& [path, size] : files) {
        cursor = loadCandidate(path, size);
        if (cursor) break;
    }
    return cursor.get();
}

}  // namespace ZEMO::UI
