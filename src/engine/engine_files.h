#pragma once

#include <string>
#include <vector>

namespace ZEMO::UI {

struct MissingEngineFile {
    std::wstring name;  ///< relative to the directory where libcef.dll lies
    bool needed;        ///< without it the engine ends the process, or never draws
    bool operator==(const MissingEngineFile&) const = default;
};

/// The engine's files that are not there, below `basePath`, where libcef.dll lies. The engine itself ends the process
/// without a word when it misses one that it needs, so they are looked for before. Any thread.
std::vector<MissingEngineFile> findMissingEngineFiles(const std::wstring& basePath);

}  // namespace ZEMO::UI
