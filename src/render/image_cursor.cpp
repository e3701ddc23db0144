#include "render/image_cursor.h"

#include <objidl.h>

#include <algorithm>
#include <utility>

#ifdef _MSC_VER
namespace Gdiplus {  // its headers say min and max, which NOMINMAX takes away
using std::max;
using std::min;
}  // namespace Gdiplus
#endif
#include <gdiplus.h>

namespace ZEMO::UI {
namespace {

using namespace Gdiplus::DllExports;
using UniqueBitmap = Core::UniqueHandle<HBITMAP, &DeleteObject>;
using UniqueGpImage = Core::UniqueHandle<Gdiplus::GpBitmap*, [](Gdiplus::GpBitmap* image) { GdipDisposeImage(image); }>;

constexpr UINT kSmallestSide = 16;
constexpr UINT kLargestSide = 256;

/// Both bitmaps stay the caller's.
Core::UniqueCursor makeCursor(HBITMAP mask, HBITMAP colour) {
    ICONINFO info{};
    info.fIcon = FALSE;
    info.hbmMask = mask;
    info.hbmColor = colour;
    return Core::UniqueCursor(CreateIconIndirect(&info));
}

/// Counted by GDI+ itself: two windows may load at a time.
class GdiplusSession {
public:
    GdiplusSession() {
        Gdiplus::GdiplusStartupInput input{};
        input.GdiplusVersion = 1;
        started = Gdiplus::GdiplusStartup(&token, &input, nullptr) == Gdiplus::Ok;
    }
    ~GdiplusSession() {
        if (started) Gdiplus::GdiplusShutdown(token);
    }
    GdiplusSession(const GdiplusSession&) = delete;
    GdiplusSession& operator=(const GdiplusSession&) = delete;

    bool started = false;

private:
    ULONG_PTR token = 0;
};

bool sideInRange(UINT side) { return side >= kSmallestSide && side <= kLargestSide; }

UniqueBitmap decode(const std::wstring& path) {
    Gdiplus::GpBitmap* file = nullptr;
    if (GdipCreateBitmapFromFile(path.c_str(), &file) != Gdiplus::Ok) return {};
    const UniqueGpImage image(file);
    UINT width = 0;
    UINT height = 0;
    if (GdipGetImageWidth(image.get(), &width) != Gdiplus::Ok ||
        GdipGetImageHeight(image.get(), &height) != Gdiplus::Ok) {
        return {};
    }
    if (!sideInRange(width) || !sideInRange(height)) return {};

    const int columns = static_cast<int>(width);
    const int rows = static_cast<int>(height);
    const Gdiplus::Rect whole(0, 0, columns, rows);
    Gdiplus::BitmapData data{};
    if (GdipBitmapLockBits(image.get(), &whole, Gdiplus::ImageLockModeRead, PixelFormat32bppARGB, &data) !=
        Gdiplus::Ok) {
        return {};
    }
    // CreateBitmap reads rows without a gap, which is how this format is laid out.
    UniqueBitmap bitmap;
    if (data.Stride == columns * 4) bitmap.reset(CreateBitmap(columns, rows, 1, 32, data.Scan0));
    GdipBitmapUnlockBits(image.get(), &data);
    return bitmap;
}

}  // namespace

Core::UniqueCursor iconToCursor(Core::UniqueIcon icon) {
    ICONINFO info{};
    if (!GetIconInfo(icon.get(), &info)) return {};
    const UniqueBitmap mask(info.hbmMask);
    const UniqueBitmap colour(info.hbmColor);
    return makeCursor(mask.get(), colour.get());
}

Core::UniqueCursor pngToCursor(const std::wstring& path) {
    const GdiplusSession session;
    if (!session.started) return {};
    const UniqueBitmap bitmap = decode(path);
    if (!bitmap) return {};
    return makeCursor(bitmap.get(), bitmap.get());
}

}  // namespace ZEMO::UI
