#include "layers/ime/composition_reader.h"

#include <imm.h>

#include <algorithm>

namespace ZEMO::UI {
namespace {

constexpr cef_color_t kBlack = 0xFF000000;
constexpr cef_color_t kTransparent = 0;

CefCompositionUnderline line(uint32_t from, uint32_t to, bool thick) {
    CefCompositionUnderline underline;
    underline.range = CefRange(from, to);
    underline.color = kBlack;
    underline.background_color = kTransparent;
    underline.thick = thick;
    underline.style = CEF_CUS_SOLID;
    return underline;
}

bool isTarget(uint8_t attribute) { return attribute == ATTR_TARGET_CONVERTED || attribute == ATTR_TARGET_NOTCONVERTED; }

/// A part that is a list; empty when there is none, or when it went between the two questions.
template <class Entry>
std::vector<Entry> readList(const ICompositionSource& source, DWORD part) {
    const LONG size = source.read(part, nullptr, 0);
    std::vector<Entry> entries(size > 0 ? static_cast<size_t>(size) / sizeof(Entry) : 0);
    if (entries.empty()) return {};
    const auto capacity = static_cast<DWORD>(entries.size() * sizeof(Entry));
    if (source.read(part, entries.data(), capacity) < 1) return {};
    return entries;
}

/// The cursor counts only where the message says that it moved, and not that the caret is to stay.
bool hasCursor(LPARAM flags) { return (flags & (GCS_CURSORPOS | CS_NOMOVECARET)) == GCS_CURSORPOS; }

}  // namespace

bool readCompositionString(const ICompositionSource& source, LPARAM flags, DWORD part, std::wstring& text) {
    if (!(static_cast<DWORD>(flags) & part)) return false;
    const LONG length = source.read(part, nullptr, 0);
    if (length < 1) return false;
    // The length is in bytes, so this is about twice what is needed; the last character is always the terminator.
    std::wstring buffer(static_cast<size_t>(length) + 2, L'\0');
    source.read(part, buffer.data(), static_cast<DWORD>(length) + 2);
    text = buffer.c_str();
    return true;
}

void fillCompositionInfo(const ICompositionSource& source, LPARAM flags, const std::wstring& text,
                         CompositionUnderlines& underlines, int& cursor) {
    underlines.clear();
    const auto length = static_cast<uint32_t>(text.size());
    CompositionTarget target{length, length};
    if (flags & GCS_COMPATTR) target = findTarget(readList<uint8_t>(source, GCS_COMPATTR));
    cursor = hasCursor(flags) ? static_cast<int>(source.read(GCS_CURSORPOS, nullptr, 0)) : 0;
    if (flags & GCS_COMPCLAUSE) underlines = clauseUnderlines(readList<uint32_t>(source, GCS_COMPCLAUSE), target);
    if (underlines.empty()) underlines = targetUnderlines(length, target);
}

CompositionTarget findTarget(std::span<const uint8_t> attributes) {
    const auto start = std::ranges::find_if(attributes, isTarget);
    const auto end = std::find_if_not(start, attributes.end(), isTarget);
    return {static_cast<uint32_t>(start - attributes.begin()), static_cast<uint32_t>(end - attributes.begin())};
}

CompositionUnderlines clauseUnderlines(std::span<const uint32_t> offsets, CompositionTarget target) {
    CompositionUnderlines lines;
    for (size_t i = 0; i + 1 < offsets.size(); ++i) {
        lines.push_back(
            line(offsets[i], offsets[i + 1], offsets[i] >= target.targetStart && offsets[i + 1] <= target.targetEnd));
    }
    return lines;
}

CompositionUnderlines targetUnderlines(uint32_t length, CompositionTarget target) {
    CompositionUnderlines lines;
    if (target.targetStart > 0) lines.push_back(line(0, target.targetStart, false));
    if (target.targetEnd > target.targetStart) lines.push_back(line(target.targetStart, target.targetEnd, true));
    if (target.targetEnd < length) lines.push_back(line(target.targetEnd, length, false));
    return lines;
}

}  // namespace ZEMO::UI
