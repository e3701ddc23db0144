#include "engine_bench/bare_engine.h"

#include <filesystem>
#include <functional>
#include <future>
#include <stdexcept>
#include <thread>
#include <utility>

#include "cef/engine_library.h"
#include "engine/cef_module.h"
#include "engine/runtime_selection.h"
#include "engine/web_app.h"
#include "include/cef_app.h"
#include "include/cef_browser.h"
#include "include/cef_task.h"

namespace ZEMO::Bench {
namespace {

class Work final : public CefTask {
public:
    explicit Work(std::function<void()> toRun) : work(std::move(toRun)) {}
    void Execute() override { work(); }

private:
    std::function<void()> work;
    IMPLEMENT_REFCOUNTING(Work);
};

std::wstring programDirectory() {
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(nullptr, path, 1024);
    return std::filesystem::path(std::wstring(path, length)).parent_path().wstring();
}

std::wstring localeName(LCTYPE what) {
    wchar_t buffer[100] = {};
    GetLocaleInfoW(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), what, buffer, 100);
    return buffer;
}

// The library's road to a running engine (src/engine/cef_module.cpp) without all that is the library's own. Switches
// and scheme come from the library's own WebApp, so that they stay the same ones.
std::string startEngine(const std::wstring& cacheName, const std::wstring& childProgram) {
    const std::wstring base = programDirectory();
    std::string reason;
    if (!cefLoadLibrary(base.c_str(), &reason)) return reason;
    const std::wstring cache = base + L"\\" + cacheName;
    CreateDirectoryW(cache.c_str(), nullptr);
    const std::wstring languages =
        UI::buildLanguageText(localeName(LOCALE_SISO639LANGNAME), localeName(LOCALE_SISO3166CTRYNAME));
    CefSettings settings;
    settings.no_sandbox = true;
    settings.multi_threaded_message_loop = false;
    settings.windowless_rendering_enabled = true;
    CefString(&settings.cache_path).FromWString(cache);
    CefString(&settings.browser_subprocess_path)
        .FromWString(childProgram.empty() ? UI::selectSubprocess(base) : base + L"\\" + childProgram);
    CefString(&settings.locales_dir_path).FromWString(base + L"\\cefsubprocess\\locales");
    CefString(&settings.locale).FromWString(languages);
    CefString(&settings.accept_language_list).FromWString(languages);
    if (!CefInitialize(CefMainArgs(GetModuleHandleW(nullptr)), settings, new UI::WebApp, nullptr)) {
        return "the engine refused to start";
    }
    return {};
}

}  // namespace

void startBareEngine(const std::wstring& cacheName, const std::wstring& childProgram) {
    std::promise<std::string> started;
    std::future<std::string> failure = started.get_future();
    std::thread([cacheName, childProgram, started = std::move(started)]() mutable {
        const std::string reason = startEngine(cacheName, childProgram);
        started.set_value(reason);
        if (reason.empty()) CefRunMessageLoop();
    }).detach();
    if (const std::string reason = failure.get(); !reason.empty()) throw std::runtime_error(reason);
}

void BareClient::open(HWND parent, const std::string& address) {
    CefWindowInfo windowInfo;
    windowInfo.parent_window = parent;
    windowInfo.windowless_rendering_enabled = true;
    windowInfo.runtime_style = CEF_RUNTIME_STYLE_ALLOY;
    CefBrowserSettings settings;
    settings.windowless_frame_rate = 30;
    CefBrowserHost::CreateBrowser(windowInfo, this, address, settings, nullptr, nullptr);
}

void BareClient::sendKey(cef_key_event_type_t type, WPARAM virtualKey, LPARAM lParam) {
    CefKeyEvent event;
    event.windows_key_code = static_cast<int>(virtualKey);
    event.native_key_code = static_cast<int>(lParam);
    event.type = type;
    browser->GetHost()->SendKeyEvent(event);
}

void BareClient::close() {
    const CefRefPtr<BareClient> self = this;
    CefPostTask(TID_UI, new Work([self] {
                    if (self->browser) self->browser->GetHost()->CloseBrowser(true);
                }));
}

void BareClient::OnAfterCreated(CefRefPtr<CefBrowser> created) { browser = created; }

void BareClient::OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) {
    browser = nullptr;
    ended = true;
}

void BareClient::OnLoadEnd(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame, int /*httpStatusCode*/) {
    if (onLoaded) onLoaded(frame);
}

bool BareClient::OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                                          CefProcessId /*source_process*/, CefRefPtr<CefProcessMessage> message) {
    if (onMessage) onMessage(frame, message);
    return true;
}

void BareClient::GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) { rect.Set(0, 0, width, height); }

bool BareClient::GetScreenInfo(CefRefPtr<CefBrowser> /*browser*/, CefScreenInfo& screen_info) {
    screen_info.device_scale_factor = 1.0F;
    screen_info.rect = {0, 0, width, height};
    screen_info.available_rect = screen_info.rect;
    return true;
}

void BareClient::OnPaint(CefRefPtr<CefBrowser> /*browser*/, PaintElementType type, const RectList& /*dirtyRects*/,
                         const void* buffer, int paintWidth, int paintHeight) {
    if (type == PET_VIEW) paint(buffer, paintWidth, paintHeight);
}

}  // namespace ZEMO::Bench
