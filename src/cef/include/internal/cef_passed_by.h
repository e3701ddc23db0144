#pragma once

#include "include/cef_base.h"

// Classes whose objects the system neither makes nor looks into.  They exist so that the operations that mention them
// have their full shape, and so that references the engine passes in are released.

//@client
class CefAccessibilityHandler : public virtual CefBaseRefCounted {};
//@client
class CefAudioHandler : public virtual CefBaseRefCounted {};
//@client
class CefCommandHandler : public virtual CefBaseRefCounted {};
//@client
class CefCookieAccessFilter : public virtual CefBaseRefCounted {};
//@client
class CefDialogHandler : public virtual CefBaseRefCounted {};
//@client
class CefDragHandler : public virtual CefBaseRefCounted {};
//@client
class CefFindHandler : public virtual CefBaseRefCounted {};
//@client
class CefFocusHandler : public virtual CefBaseRefCounted {};
//@client
class CefFrameHandler : public virtual CefBaseRefCounted {};
//@client
class CefJSDialogHandler : public virtual CefBaseRefCounted {};
//@client
class CefKeyboardHandler : public virtual CefBaseRefCounted {};
//@client
class CefPermissionHandler : public virtual CefBaseRefCounted {};
//@client
class CefPrintHandler : public virtual CefBaseRefCounted {};
//@client
class CefRequestContextHandler : public virtual CefBaseRefCounted {};
//@client
class CefResponseFilter : public virtual CefBaseRefCounted {};
//@client
class CefV8Accessor : public virtual CefBaseRefCounted {};
//@client
class CefV8Interceptor : public virtual CefBaseRefCounted {};

//@engine
class CefDragData : public virtual CefBaseRefCounted {};
//@engine
class CefRunQuickMenuCallback : public virtual CefBaseRefCounted {};
//@engine
class CefSSLInfo : public virtual CefBaseRefCounted {};
//@engine
class CefSelectClientCertificateCallback : public virtual CefBaseRefCounted {};
//@engine
class CefX509Certificate : public virtual CefBaseRefCounted {};

//@scoped
class CefPreferenceRegistrar : public CefBaseScoped {};
