#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace ZEMO::Test {

/// A copy of a file whose full path has exactly `length` characters, in folders of its own that go with it.
class FarFile {
public:
    FarFile(const std::wstring& source, const std::wstring& name, std::size_t length) {
        wchar_t temporary[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temporary);
        path_ = std::wstring(temporary) + L"zemo_far_" + std::to_wstring(GetCurrentProcessId());
        top_ = path_.size();
        makeFolder();
        for (std::size_t rest = length - path_.size() - name.size() - 1; rest > 0;) {
            std::size_t step = rest > 201 ? 200 : rest;
            if (rest - step == 1) --step;  // a separator alone would be left
            path_ += L"\\" + std::wstring(step - 1, L'f');
            rest -= step;
            makeFolder();
        }
        path_ += L"\\" + name;
        if (path_.size() != length || !CopyFileW(source.c_str(), unlimited(path_).c_str(), TRUE)) fail("no copy");
    }
    ~FarFile() {
        // a program that has just ended may hold its file for a moment
        for (int i = 0; i < 200 && !DeleteFileW(unlimited(path_).c_str()); ++i) Sleep(20);
        for (std::wstring folder = parent(path_); folder.size() >= top_; folder = parent(folder))
            RemoveDirectoryW(unlimited(folder).c_str());
    }
    FarFile(const FarFile&) = delete;
    FarFile& operator=(const FarFile&) = delete;

    const std::wstring& path() const { return path_; }
    std::wstring folder() const { return parent(path_); }

private:
    static std::wstring unlimited(const std::wstring& path) { return L"\\\\?\\" + path; }
    static std::wstring parent(const std::wstring& path) { return path.substr(0, path.rfind(L'\\')); }
    static void fail(const char* what) {
        throw std::runtime_error(std::string("far file: ") + what + ", error " + std::to_string(GetLastError()));
    }
    void makeFolder() const {
        if (!CreateDirectoryW(unlimited(path_).c_str(), nullptr)) fail("no folder");
    }

    std::wstring path_;
    std::size_t top_ = 0;
};

}  // namespace ZEMO::Test
