#include "layers/deck/extra_window.h"

#include "layers/deck/extra_window_button.h"
#include "layers/deck/extra_window_rules.h"
#include "layers/deck/extra_window_state.h"

namespace ZEMO::UI {
namespace {

constexpr wchar_t kViewClass[] = L"ZEMOWindowForCEFClass";

LRESULT CALLBACK viewProc(HWND view, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (extraViewMessageRoute(message)) {
        case ViewMessageRoute::ToParent:
            PostMessageW(extraWindowState().extraWindowParent, message, wParam, lParam);
            return 0;
        case ViewMessageRoute::Swallowed:
            return 0;
        case ViewMessageRoute::Default:
            break;
    }
    return DefWindowProcW(view, message, wParam, lParam);
}

void registerViewClass() {
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = &viewProc;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = reinterpret_cast<HBRUSH>(1);
    description.lpszClassName = kViewClass;
    RegisterClassExW(&description);  // the second window of a process finds the class there
}

HWND createView(HWND parent, const Rect& place) {
    return CreateWindowExW(0, kViewClass, L"cef window", WS_CHILD | WS_VISIBLE, place.x, place.y, place.width,
                           place.height, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

ZEMOExtraWindowForSteamdeck::ZEMOExtraWindowForSteamdeck(HWND parent, int clientWidth, int clientHeight)
    : width(clientWidth), height(clientHeight) {
    extraWindowState().extraWindowParent = parent;
    createExtraWindowButton(parent, extraButtonPlace(width, height));
    registerViewClass();
    viewWindow = createView(parent, extraViewPlace(width, height));
}

}  // namespace ZEMO::UI
