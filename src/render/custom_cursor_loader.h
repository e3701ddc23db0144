#pragma once

#include <windows.h>

#include <string>

#include "core/unique_handle.h"

namespace ZEMO::UI {

/// Finds the mouse cursor that a game ships beside the library (see libraryBaseDirectory) as
/// resources/customcursor.cur, .ico or .png, in this order. Files that are missing, broken or of another kind are
/// passed over, without a log line. On the thread that creates the window.
class CustomCursorLoader {
public:
    /// The cursor, or null. It belongs to the loader and lives as long. Throws std::filesystem::filesystem_error when
    /// the system cannot tell whether a candidate exists.
    HCURSOR load();

    /// One candidate: what the file is stands in its extension, compared exactly. Null when it is missing, broken or of
    /// another kind. `size` 0 takes any.
    static Core::UniqueCursor loadCandidate(const std::wstring& path, int size);

private:
    Core::UniqueCursor cursor;
};

}  // namespace ZEMO::UI
