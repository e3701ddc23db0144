#pragma once

#include <windows.h>

#include <imm.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

// Where an input method puts its windows, so that they lie at the page's caret. Pure rules; all in client pixels of the
// view's window.
namespace ZEMO::UI {

inline constexpr uint16_t kImeChinese = 4;
inline constexpr uint16_t kImeJapanese = 17;
inline constexpr uint16_t kImeKorean = 18;

/// The language part of a language id.
uint16_t primaryImeLanguage(uint16_t languageId);

/// The language id in a keyboard layout's name ("00000412"): its last four digits, read as decimal ones. Games' players
/// know the places of the candidate window that follow from that.
uint16_t languageIdOfLayoutName(const wchar_t* layoutName);

/// The character that the windows belong to; empty when its place is not known.
std::optional<CefRect> imeCharacter(int cursorIndex, const CefRange& range, const std::vector<CefRect>& bounds);

struct ImePlacement {
    std::optional<COMPOSITIONFORM> composition;
    CANDIDATEFORM candidate{};  ///< set first
    POINT caret{};              ///< of the system's caret, where there is one
    CANDIDATEFORM exclude{};    ///< set last: the candidate window must not cover the character
};
ImePlacement placeImeWindows(const CefRect& character, uint16_t primaryLanguage);

}  // namespace ZEMO::UI
