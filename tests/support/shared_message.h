#pragma once

#include <windows.h>

#include "include/cef_process_message.h"
#ifdef ZEMO_CEF_DISTRIBUTION
#ifndef WRAPPING_CEF_SHARED
#define WRAPPING_CEF_SHARED  // these headers are the wrapper's own
#endif
#include "include/capi/cef_shared_process_message_builder_capi.h"
#include "libcef_dll/ctocpp/process_message_ctocpp.h"
#else
#include "binding_traits.h"
#endif

namespace ZEMO::Test {

/// A message that carries a region of shared memory in place of a list of arguments, as a page's process may send one.
/// Made by the engine, whose library must be loaded; null without it.
inline CefRefPtr<CefProcessMessage> makeSharedMessage(const CefString& name) {
    using Create = cef_shared_process_message_builder_t* (*)(const cef_string_t*, size_t);
    const auto create = reinterpret_cast<Create>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"libcef.dll"), "cef_shared_process_message_builder_create")));
    cef_shared_process_message_builder_t* const builder = create ? create(name.GetStruct(), 16) : nullptr;
    if (!builder) return nullptr;
    const auto built = builder->build(builder);
    builder->base.release(&builder->base);
#ifdef ZEMO_CEF_DISTRIBUTION
    return CefProcessMessageCToCpp::Wrap(built);
#else
    return cef_binding::Binding<CefProcessMessage>::take(reinterpret_cast<cef_process_message_t*>(built));
#endif
}

}  // namespace ZEMO::Test
