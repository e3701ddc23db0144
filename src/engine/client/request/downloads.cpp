#include "engine/client/request/downloads.h"

#include <windows.h>

#include <shlobj.h>

#include <string>

namespace ZEMO::UI {
namespace {

// In Korean, whatever the language of the view.
constexpr char kCompleteScript[] = "alert(\"다운로드 완료 하였습니다.\")";
static_assert(sizeof kCompleteScript - 1 == 45);

// The folder is made where there is none. Empty when the system has none to give.
std::wstring documentsFolder() {
    wchar_t folder[MAX_PATH] = {};
    const HRESULT result = SHGetFolderPathW(nullptr, CSIDL_PERSONAL | CSIDL_FLAG_CREATE, nullptr, 0, folder);
    return SUCCEEDED(result) ? folder : L"";
}

}  // namespace

void proposeDownload(const CefString& suggestedName, const CefRefPtr<CefBeforeDownloadCallback>& callback) {
    std::wstring path = documentsFolder();
    if (!path.empty()) path += L'\\' + suggestedName.ToWString();
    callback->Continue(path, true);
}

void reportDownload(const CefRefPtr<CefDownloadItem>& item, const CefRefPtr<CefBrowser>& browser) {
    if (!item->IsComplete() || !browser) return;
    if (const CefRefPtr<CefFrame> frame = browser->GetMainFrame()) frame->ExecuteJavaScript(kCompleteScript, "", 0);
}

}  // namespace ZEMO::UI
