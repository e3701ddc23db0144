#pragma once

#include <windows.h>

// The library's private messages on the game's window and on its own. They carry work from other threads to the thread
// of the window. A text travels as the address of a std::string in lParam: see core/posted_text.h for who frees it.
namespace ZEMO::UI {

inline constexpr UINT kMessageExternalScript = WM_USER + 200;   ///< 1224, lParam: std::string*
inline constexpr UINT kMessageExternalText = WM_USER + 201;     ///< 1225, lParam: std::string*
inline constexpr UINT kMessageRemoteMouseMove = WM_USER + 202;  ///< 1226, wParam: MK_ flags, lParam: client point
inline constexpr UINT kMessageRemoteWheel = WM_USER + 203;      ///< 1227, wParam: delta in the high word
inline constexpr UINT kMessageRemotePress = WM_USER + 204;      ///< 1228, wParam: 1, lParam: client point
inline constexpr UINT kMessageImeFocus = WM_USER + 205;         ///< 1229, wParam: 1 enable, 0 disable
inline constexpr UINT kMessageImeBounds = WM_USER + 206;        ///< 1230

/// wParam of a WM_SETCURSOR that carries a page's cursor in lParam; no window handle has this value.
inline constexpr WPARAM kPageCursorMarker = WM_USER + 100;  // 1124

}  // namespace ZEMO::UI
