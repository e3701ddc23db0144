#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "include/internal/cef_types_wrappers.h"

// What an input method's composition message says: its texts, and how the page is to underline them. Pure rules; the
// parts themselves come from a source, which is the window's input context or a table in a test.
namespace ZEMO::UI {

class ICompositionSource {
public:
    /// As ImmGetCompositionStringW: without a buffer the size of `part` in bytes, or the value of a part that is a
    /// number; below 1 for none.
    virtual LONG read(DWORD part, void* buffer, DWORD sizeBytes) const = 0;

protected:
    ~ICompositionSource() = default;
};

/// The characters that the user is converting, from `targetStart` to before `targetEnd`.
struct CompositionTarget {
    uint32_t targetStart = 0;
    uint32_t targetEnd = 0;
    friend bool operator==(const CompositionTarget&, const CompositionTarget&) = default;
};

using CompositionUnderlines = std::vector<CefCompositionUnderline>;

/// False when the message has no such text (`part` is its GCS_ bit); `text` is as it was then.
bool readCompositionString(const ICompositionSource& source, LPARAM flags, DWORD part, std::wstring& text);

/// Underlines and cursor of the composition `text`.
void fillCompositionInfo(const ICompositionSource& source, LPARAM flags, const std::wstring& text,
                         CompositionUnderlines& underlines, int& cursor);

/// From one attribute for each character. Without a converted one both ends are the number of attributes.
CompositionTarget findTarget(std::span<const uint8_t> attributes);

/// One line for each clause; `offsets` are the clauses' beginnings and the end of the last. The target's are thick.
CompositionUnderlines clauseUnderlines(std::span<const uint32_t> offsets, CompositionTarget target);

/// For a text without clauses: thin, thick at the target, thin.
CompositionUnderlines targetUnderlines(uint32_t length, CompositionTarget target);

}  // namespace ZEMO::UI
