#pragma once

#include <windows.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

namespace ZEMO::Test {

/// "resources/customcursor.cur" beside this program: 32x32, 32 bits, hot spot (3, 4). Taken away at the end, with the
/// directory if this made it.
class CursorFileBesideTheProgram {
public:
    CursorFileBesideTheProgram() {
        wchar_t program[MAX_PATH];
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        directory = std::filesystem::path(program).parent_path() / "resources";
        madeDirectory = std::filesystem::create_directory(directory);
        const std::vector<unsigned char> bytes = cursorBytes();
        std::ofstream(file(), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }
    ~CursorFileBesideTheProgram() {
        std::error_code ignored;
        std::filesystem::remove(file(), ignored);
        if (madeDirectory) std::filesystem::remove(directory, ignored);
    }
    CursorFileBesideTheProgram(const CursorFileBesideTheProgram&) = delete;
    CursorFileBesideTheProgram& operator=(const CursorFileBesideTheProgram&) = delete;

private:
    std::filesystem::path file() const { return directory / "customcursor.cur"; }

    static std::vector<unsigned char> cursorBytes() {
        constexpr unsigned kSide = 32, kPixels = kSide * kSide * 4, kMask = kSide * 4;
        BITMAPINFOHEADER header{};
        header.biSize = sizeof header;
        header.biWidth = kSide;
        header.biHeight = kSide * 2;
        header.biPlanes = 1;
        header.biBitCount = 32;
        const DWORD size = sizeof header + kPixels + kMask, offset = 22;
        std::vector<unsigned char> bytes = {0, 0, 2, 0, 1, 0, kSide, kSide, 0, 0, 3, 0, 4, 0};
        bytes.resize(offset + size, 0xFF);
        std::memcpy(&bytes[14], &size, 4);
        std::memcpy(&bytes[18], &offset, 4);
        std::memcpy(&bytes[offset], &header, sizeof header);
        return bytes;
    }

    std::filesystem::path directory;
    bool madeDirectory = false;
};

}  // namespace ZEMO::Test
