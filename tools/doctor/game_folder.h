#pragma once

#include <filesystem>
#include <string>
#include <vector>

// Looks at the folder that a game ships: what is missing, of another version, or not as the library needs it. Reads
// files only, and makes and removes one empty file to see whether the folder can be written to.
namespace ZEMO::Doctor {

enum class Severity { Warning, Error };

struct Finding {
    Severity severity;
    std::wstring what;  ///< the file, relative to the library's folder, or the folder itself
    std::wstring text;  ///< what is wrong, and what follows from it
    bool operator==(const Finding&) const = default;
};

/// What this program was built with, and what a folder must therefore hold.
struct Versions {
    std::wstring library;  ///< "1.0.0"
    std::wstring engine;   ///< "131.3.5"
};

/// The folders below `folder`, itself included, that hold the library; sorted.
std::vector<std::filesystem::path> libraryFolders(const std::filesystem::path& folder);

/// All that is wrong with the folder of one library; empty when it can be shipped as it is.
std::vector<Finding> examine(const std::filesystem::path& libraryFolder, const Versions& versions);

}  // namespace ZEMO::Doctor
