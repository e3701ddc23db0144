#include "core/platform_ipc.h"

#include <cstring>
#include <stdexcept>
#include <utility>

#include "core/module_pin.h"
#include "core/never_destroyed.h"
#include "zemo/platform.h"

// A text for another process: ipcSend() sends it as WM_COPYDATA to a window of the receiver, and a hook that ipcOpen()
// puts on the receiver's thread sees it before that window's procedure does. The sender waits all the while.
//
// The hook stays for the life of the process, so the module that holds its procedure must stay as well, and the
// callback is never destroyed: the receiver's windows may be sent a text while the static objects go.
namespace ZEMO::Core {

HHOOK g_ZEMOWndHook = nullptr;

std::string textOfBlock(const COPYDATASTRUCT& block) {
    const char* text = static_cast<const char*>(block.lpData);
    return text ? std::string(text, strnlen(text, block.cbData)) : std::string();
}

}  // namespace ZEMO::Core

namespace ZEMO::Platform::Misc {
namespace {

constexpr size_t kBlockBytes = 10000;

Core::NeverDestroyed<std::function<void(std::string)>> ipcCallback;

LRESULT CALLBACK onMessageSent(int code, WPARAM wParam, LPARAM lParam) {
    const auto* sent = reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (code >= 0 && sent->message == WM_COPYDATA) {
        OutputDebugStringA("################   Copy Data Called ##############################\n");
        const auto* block = reinterpret_cast<const COPYDATASTRUCT*>(sent->lParam);
        if (block && *ipcCallback) (*ipcCallback)(Core::textOfBlock(*block));
    }
    return CallNextHookEx(Core::g_ZEMOWndHook, code, wParam, lParam);
}

struct WindowSearch {
    DWORD processId;
    HWND window;
};

BOOL CALLBACK stopAtProcess(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (processId != search.processId) return TRUE;
    search.window = window;
    return FALSE;
}

void logWhat(const std::exception& error) {
    const char* what = error.what();
    OutputDebugStringA(what ? what : "Unknown exception");
}

}  // namespace

void ipcOpen(std::function<void(std::string)> callback) {
    if (Core::g_ZEMOWndHook) return;
    if (callback) *ipcCallback = std::move(callback);
    Core::pinOwnModule();
    Core::g_ZEMOWndHook = SetWindowsHookExA(WH_CALLWNDPROC, onMessageSent, nullptr, GetCurrentThreadId());
    OutputDebugStringA("################       g_ZEMOWndHook is NULL ##############################\n");
}

void ipcSend(const std::string& processId, const std::string& message) {
    try {
        WindowSearch search{static_cast<DWORD>(std::stol(processId)), nullptr};
        EnumWindows(stopAtProcess, reinterpret_cast<LPARAM>(&search));
        if (message.size() > kBlockBytes) return;
        char text[kBlockBytes + 1] = {};
        std::memcpy(text, message.c_str(), message.size() + 1);
        COPYDATASTRUCT block{};
        block.cbData = kBlockBytes;  // always the whole block; the receiver reads up to the NUL
        block.lpData = text;
        SendMessageW(search.window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&block));
    } catch (const std::invalid_argument& error) {
        logWhat(error);
    } catch (const std::exception& error) {
        logWhat(error);
    }
}

}  // namespace ZEMO::Platform::Misc
