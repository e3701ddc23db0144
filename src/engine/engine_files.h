#pragma once

#include <string>
#include <vector>

namespace ZEMO::UI {

/// The engine's files that it can't start without and that are not there, relative to `basePath`, where libcef.dll
/// lies. The engine ends the process without a word when it misses one, so they are looked for before.
std::vector<std::wstring> findMissingEngineFiles(const std::wstring& basePath);

}  // namespace ZEMO::UI
