#pragma once

#include <limits>

#include "include/internal/cef_string.h"
#include "include/internal/cef_types.h"

// Each class here adds construction and helpers to a C structure and nothing to its layout: an engine's structure is
// passed on to the library as it is, by reference.

class CefPoint : public cef_point_t {
public:
    CefPoint() : cef_point_t{} {}
    CefPoint(const cef_point_t& r) : cef_point_t(r) {}
    CefPoint(int x, int y) : cef_point_t{x, y} {}
    bool IsEmpty() const { return x <= 0 && y <= 0; }
    void Set(int xValue, int yValue) { x = xValue, y = yValue; }
};
inline bool operator==(const CefPoint& a, const CefPoint& b) { return a.x == b.x && a.y == b.y; }

class CefSize : public cef_size_t {
public:
    CefSize() : cef_size_t{} {}
    CefSize(const cef_size_t& r) : cef_size_t(r) {}
    CefSize(int width, int height) : cef_size_t{width, height} {}
    bool IsEmpty() const { return width <= 0 || height <= 0; }
    void Set(int widthValue, int heightValue) { width = widthValue, height = heightValue; }
};
inline bool operator==(const CefSize& a, const CefSize& b) { return a.width == b.width && a.height == b.height; }

class CefRect : public cef_rect_t {
public:
    CefRect() : cef_rect_t{} {}
    CefRect(const cef_rect_t& r) : cef_rect_t(r) {}
    CefRect(int x, int y, int width, int height) : cef_rect_t{x, y, width, height} {}
    bool IsEmpty() const { return width <= 0 || height <= 0; }
    void Set(int xValue, int yValue, int widthValue, int heightValue) {
        x = xValue, y = yValue, width = widthValue, height = heightValue;
    }
    /// The left and top edges belong to the rectangle, the right and bottom ones do not.
    bool Contains(int px, int py) const { return px >= x && px < x + width && py >= y && py < y + height; }
    bool Contains(const CefPoint& point) const { return Contains(point.x, point.y); }
};
inline bool operator==(const CefRect& a, const CefRect& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

class CefRange : public cef_range_t {
public:
    CefRange() : cef_range_t{} {}
    CefRange(const cef_range_t& r) : cef_range_t(r) {}
    CefRange(uint32_t from, uint32_t to) : cef_range_t{from, to} {}
    static CefRange InvalidRange() {
        constexpr uint32_t kNone = (std::numeric_limits<uint32_t>::max)();
        return CefRange(kNone, kNone);
    }
    void Set(int fromValue, int toValue) {
        from = static_cast<uint32_t>(fromValue), to = static_cast<uint32_t>(toValue);
    }
};
inline bool operator==(const CefRange& a, const CefRange& b) { return a.from == b.from && a.to == b.to; }

class CefScreenInfo : public cef_screen_info_t {
public:
    CefScreenInfo() : cef_screen_info_t{} {}
    CefScreenInfo(const cef_screen_info_t& r) : cef_screen_info_t(r) {}
    CefScreenInfo(float deviceScaleFactor, int depth, int depthPerComponent, bool isMonochrome, const cef_rect_t& rect,
                  const cef_rect_t& availableRect)
        : cef_screen_info_t{deviceScaleFactor, depth, depthPerComponent, isMonochrome, rect, availableRect} {}
    void Set(float deviceScaleFactor, int depthValue, int depthPerComponent, bool isMonochrome,
             const CefRect& rectValue, const CefRect& availableRect) {
        *this = CefScreenInfo(deviceScaleFactor, depthValue, depthPerComponent, isMonochrome, rectValue, availableRect);
    }
};

/// Plain structures: zeroed at construction, copied as they are.
template <class Struct>
class CefPlainStruct : public Struct {
public:
    CefPlainStruct() : Struct{} {}
    CefPlainStruct(const Struct& r) : Struct(r) {}
};
class CefKeyEvent : public CefPlainStruct<cef_key_event_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefMouseEvent : public CefPlainStruct<cef_mouse_event_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefTouchEvent : public CefPlainStruct<cef_touch_event_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefPopupFeatures : public CefPlainStruct<cef_popup_features_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefCursorInfo : public CefPlainStruct<cef_cursor_info_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefTouchHandleState : public CefPlainStruct<cef_touch_handle_state_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefAcceleratedPaintInfo : public CefPlainStruct<cef_accelerated_paint_info_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefCompositionUnderline : public CefPlainStruct<cef_composition_underline_t> {
public:
    using CefPlainStruct::CefPlainStruct;
};
class CefMainArgs : public CefPlainStruct<cef_main_args_t> {
public:
    using CefPlainStruct::CefPlainStruct;
    explicit CefMainArgs(HINSTANCE instance) : CefPlainStruct(cef_main_args_t{instance}) {}
};

/// Structures with strings in them.  `forEachString` (generated) names the members; all else is copied as it is.
template <class Struct>
class CefStructBase : public Struct {
public:
    typedef Struct struct_type;

    CefStructBase() : Struct{} { init(); }
    CefStructBase(const CefStructBase& r) : CefStructBase(static_cast<const Struct&>(r)) {}
    CefStructBase(const Struct& r) : Struct{} {
        init();
        Set(r, true);
    }
    ~CefStructBase() { clear(); }
    CefStructBase& operator=(const CefStructBase& r) { return *this = static_cast<const Struct&>(r); }
    CefStructBase& operator=(const Struct& r) {
        if (&r != this) Set(r, true);
        return *this;
    }
    /// Takes over the values of `source`; with `copy` false its strings are only referred to.
    void Set(const Struct& source, bool copy) {
        clear();
        static_cast<Struct&>(*this) = source;
        cef_binding::forEachString(static_cast<Struct&>(*this), [copy](cef_string_t& member) {
            const cef_string_t from = member;
            member = {};
            if (from.str) CefString(&member).FromString(from.str, from.length, copy);
        });
    }

private:
    void init() {
        if constexpr (requires(Struct& s) { s.size = sizeof(Struct); }) this->size = sizeof(Struct);
    }
    void clear() {
        cef_binding::forEachString(static_cast<Struct&>(*this),
                                   [](cef_string_t& member) { CefString(&member).clear(); });
    }
};

typedef CefStructBase<cef_settings_t> CefSettings;
typedef CefStructBase<cef_browser_settings_t> CefBrowserSettings;
typedef CefStructBase<cef_request_context_settings_t> CefRequestContextSettings;
typedef CefStructBase<cef_cookie_t> CefCookie;
typedef CefStructBase<cef_urlparts_t> CefURLParts;
