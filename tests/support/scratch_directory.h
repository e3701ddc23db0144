#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// An empty directory of this test's own, gone with it. Its name holds a space and Korean letters, as an installation
/// may.
class ScratchDirectory {
public:
    ScratchDirectory() {
        static LONG number = 0;
        path_ = std::filesystem::temp_directory_path() / (L"zemo 시험 " + std::to_wstring(GetCurrentProcessId()) +
                                                          L"-" + std::to_wstring(InterlockedIncrement(&number)));
        std::filesystem::create_directories(path_);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }

    /// Writes a file, with the directories on its way.
    std::filesystem::path write(const std::wstring& relativePath, const std::vector<uint8_t>& bytes) const {
        const std::filesystem::path file = path_ / relativePath;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return file;
    }

private:
    std::filesystem::path path_;
};

}  // namespace ZEMO::Test
