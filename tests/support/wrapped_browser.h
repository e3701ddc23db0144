#pragma once

// The engine's structures behind its classes, with either binding: to play a browser, or to find the engine's
// functions.
#ifdef ZEMO_CEF_DISTRIBUTION
#ifndef WRAPPING_CEF_SHARED
#define WRAPPING_CEF_SHARED  // these headers are the wrapper's own
#endif
#include "libcef_dll/ctocpp/browser_ctocpp.h"
#include "libcef_dll/ctocpp/browser_host_ctocpp.h"
#else
#include "binding_traits.h"
#endif

namespace ZEMO::Test {

/// A browser as the library gets one from the engine. Takes over a reference.
inline CefRefPtr<CefBrowser> wrapBrowser(cef_browser_t* browser) {
#ifdef ZEMO_CEF_DISTRIBUTION
    return CefBrowserCToCpp::Wrap(browser);
#else
    return cef_binding::Binding<CefBrowser>::take(browser);
#endif
}

/// The structure that `host` stands for. The caller gives its reference back.
inline cef_browser_host_t* structureOf(const CefRefPtr<CefBrowserHost>& host) {
#ifdef ZEMO_CEF_DISTRIBUTION
    return CefBrowserHostCToCpp::Unwrap(host);
#else
    return cef_binding::Binding<CefBrowserHost>::give(host);
#endif
}

}  // namespace ZEMO::Test
