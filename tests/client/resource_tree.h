#pragma once

#include <zemo/ui.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace ZEMO::Test {

/// A folder of the test's own in the resource tree beside the library, gone with it.
class ResourceTree {
public:
    explicit ResourceTree(const std::wstring& folder)
        : root(ZEMO::UI::getLocalHTMLResourcePath()), base(root / folder) {
        std::filesystem::create_directories(base);
    }
    ~ResourceTree() {
        std::error_code ignored;
        std::filesystem::remove_all(base, ignored);
    }
    ResourceTree(const ResourceTree&) = delete;
    ResourceTree& operator=(const ResourceTree&) = delete;

    std::filesystem::path write(const std::wstring& name, const std::string& bytes) const {
        const std::filesystem::path file = base / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return file;
    }
    /// The address of `name` in this folder, whose name and own are of plain letters.
    std::string url(const std::string& name) const {
        return "zemosdkcustomscheme://resources/" + base.filename().string() + "/" + name;
    }

    const std::filesystem::path root;
    const std::filesystem::path base;
};

}  // namespace ZEMO::Test
