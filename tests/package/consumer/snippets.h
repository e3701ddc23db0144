#pragma once

// What the guides' examples take for granted.
#include <windows.h>
#include <zemo/ui.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

extern HWND gameWindow;
constexpr UINT kPageIsThere = WM_APP, kCloseThePage = WM_APP + 1;

struct Surroundings {
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
    std::shared_ptr<ZEMO::UI::ZEMOWebViewDelegate> delegate;
    ZEMO::UI::OsrFramePresentCallback takeFrame;
    std::string token;
};

// A block that makes its own view hides this one.
#define SURROUNDINGS [[maybe_unused]] auto& [view, delegate, takeFrame, token] = around;
