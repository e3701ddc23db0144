#pragma once

#include <windows.h>

#include <imm.h>

// The structures that the system shares with an input method's module, as its driver kit documents them; the compiler's
// headers have only those of applications.
namespace ZEMO::Test {

struct ImeInfo {
    DWORD privateDataSize;
    DWORD properties;
    DWORD conversionCaps;
    DWORD sentenceCaps;
    DWORD uiCaps;
    DWORD setCompositionCaps;
    DWORD selectCaps;
};

/// A part of the composition: how many bytes (of a string: characters) and where, from the structure's beginning.
struct ImePart {
    DWORD length;
    DWORD offset;
};

struct ImeComposition {
    DWORD size;
    ImePart readingAttributes;
    ImePart readingClauses;
    ImePart reading;
    ImePart attributes;
    ImePart clauses;
    ImePart text;
    DWORD cursor;
    DWORD deltaStart;
    ImePart resultReadingClauses;
    ImePart resultReading;
    ImePart resultClauses;
    ImePart result;
    ImePart privateData;
};

struct ImeContext {
    HWND window;
    BOOL open;
    POINT statusWindow;
    POINT softKeyboard;
    DWORD conversion;
    DWORD sentence;
    LOGFONTW font;
    COMPOSITIONFORM compositionForm;
    CANDIDATEFORM candidateForms[4];
    HIMCC composition;
    HIMCC candidates;
    HIMCC guideLine;
    HIMCC privateData;
    DWORD messageCount;
    HIMCC messages;
    DWORD initialized;
    DWORD reserved[3];
};

struct ImeMessage {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

struct ImeMessageList {
    UINT capacity;
    ImeMessage messages[1];
};

extern "C" {
__declspec(dllimport) ImeContext* WINAPI ImmLockIMC(HIMC context);
__declspec(dllimport) BOOL WINAPI ImmUnlockIMC(HIMC context);
__declspec(dllimport) HIMCC WINAPI ImmCreateIMCC(DWORD size);
__declspec(dllimport) HIMCC WINAPI ImmReSizeIMCC(HIMCC block, DWORD size);
__declspec(dllimport) void* WINAPI ImmLockIMCC(HIMCC block);
__declspec(dllimport) BOOL WINAPI ImmUnlockIMCC(HIMCC block);
__declspec(dllimport) BOOL WINAPI ImmGenerateMessage(HIMC context);
}

}  // namespace ZEMO::Test
