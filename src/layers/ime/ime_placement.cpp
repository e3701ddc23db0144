#include "layers/ime/ime_placement.h"

#include <climits>
#include <cwchar>

namespace ZEMO::UI {
namespace {

constexpr uint16_t kPrimaryLanguageBits = 0x3FF;
constexpr size_t kLanguageDigitsAt = 4;  // of the eight digits of a layout's name
constexpr int kNoCursor = -1;

// A page's rectangle may be any; its end stays within an int.
LONG endOf(LONG start, LONG length) {
    const int64_t end = int64_t{start} + length;
    return end > LONG_MAX ? LONG_MAX : end < LONG_MIN ? LONG_MIN : static_cast<LONG>(end);
}

CANDIDATEFORM candidateAt(LONG x, LONG y) { return {0, CFS_CANDIDATEPOS, {x, y}, {}}; }

}  // namespace

uint16_t primaryImeLanguage(uint16_t languageId) { return languageId & kPrimaryLanguageBits; }

uint16_t languageIdOfLayoutName(const wchar_t* layoutName) {
    return static_cast<uint16_t>(std::wcstol(layoutName + kLanguageDigitsAt, nullptr, 10));
}

std::optional<CefRect> imeCharacter(int cursorIndex, const CefRange& range, const std::vector<CefRect>& bounds) {
    const uint32_t location = cursorIndex == kNoCursor ? range.from : static_cast<uint32_t>(cursorIndex);
    const uint32_t offset = location < range.from ? location : location - range.from;
    if (offset >= bounds.size()) return {};
    return bounds[offset];
}

ImePlacement placeImeWindows(const CefRect& character, uint16_t primaryLanguage) {
    ImePlacement place;
    const LONG below = endOf(character.y, character.height);
    if (primaryLanguage == kImeChinese) {
        place.candidate = candidateAt(character.x, character.y);
    } else {
        place.composition = COMPOSITIONFORM{CFS_POINT, {character.x, character.y}, {}};
        place.candidate = candidateAt(character.x, below);
    }
    place.caret = {character.x, primaryLanguage == kImeJapanese ? below : character.y};
    const LONG top = primaryLanguage == kImeKorean ? endOf(character.y, 1) : character.y;
    place.exclude = {0,
                     CFS_EXCLUDE,
                     {character.x, top},
                     {character.x, top, endOf(character.x, character.width), endOf(top, character.height)}};
    return place;
}

}  // namespace ZEMO::UI
