#pragma once

#include "include/cef_download_handler.h"

// What becomes of a download that a page offers. Engine thread.
namespace ZEMO::UI {

/// Has the engine's save dialog propose `suggestedName` in the user's documents folder; the user has the last word.
void proposeDownload(const CefString& suggestedName, const CefRefPtr<CefBeforeDownloadCallback>& callback);

/// Tells the page of a complete download by an alert; progress, failure and a cancelled one are not told. `browser` may
/// be null: the file stays, nobody is told.
void reportDownload(const CefRefPtr<CefDownloadItem>& item, const CefRefPtr<CefBrowser>& browser);

}  // namespace ZEMO::UI
