#pragma once

#include <windows.h>

#include <string>

#include "include/cef_browser.h"
#include "include/cef_client.h"

namespace ZEMO::Test {

/// Asks the engine for a windowless browser as the library does; `client` is told of it.
void createBrowser(HWND parent, const CefRefPtr<CefClient>& client, const std::string& address);

/// Moves the mouse there and clicks, in logical pixels of the page.
void clickPage(const CefRefPtr<CefBrowserHost>& page, int x, int y);

}  // namespace ZEMO::Test
