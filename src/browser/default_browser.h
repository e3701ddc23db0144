#pragma once

#include <windows.h>

#include <shlwapi.h>

#include <string>

// Which program the system's associations name for web addresses. Any thread; an empty result means unknown.
namespace ZEMO::UI {

/// AssocQueryStringW for `assoc`, without a limit on the length up to 32768 characters.
std::wstring assocQuery(ASSOCF flags, ASSOCSTR what, const wchar_t* assoc);

/// Path of the program that handles `scheme` (null or empty: "https"), or of the one that handles "http". Empty and a
/// log line when neither is known.
std::wstring getDefaultBrowserPath(const wchar_t* scheme);

}  // namespace ZEMO::UI
