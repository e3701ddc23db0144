#include "engine/engine_files.h"

#include <windows.h>

namespace ZEMO::UI {

namespace {

struct EngineFile {
    const wchar_t* name;
    bool needed;
};

// en-US.pak: the engine falls back to it from every locale text that names no pak, and dies without it. resources.pak:
// pages are shown without it, but plain: no style that the engine gives every page, none of its own pages and dialogs.
constexpr EngineFile kFiles[] = {
    {L"libcef.dll", true},
    {L"chrome_elf.dll", true},
    {L"icudtl.dat", true},
    {L"v8_context_snapshot.bin", true},
    {L"cefsubprocess\\locales\\en-US.pak", true},
    {L"resources.pak", false},
};

bool isFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace

std::vector<MissingEngineFile> findMissingEngineFiles(const std::wstring& basePath) {
    std::vector<MissingEngineFile> missing;
    for (const EngineFile& file : kFiles) {
        if (!isFile(basePath + L"\\" + file.name)) missing.push_back({file.name, file.needed});
    }
    return missing;
}

}  // namespace ZEMO::UI
