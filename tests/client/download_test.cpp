#include <gtest/gtest.h>

#include <shlobj.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "client/page_browser.h"
#include "client/page_report.h"
#include "core/wine/wine.h"
#include "engine/client/request/downloads.h"
#include "support/import_replaced.h"
#include "support/scratch_directory.h"
#include "support/window_text.h"

// Downloads through the engine's save dialog, driven by real keys, and the context menu that is not there.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// The library's client, with a record of what the engine said of each download.
class DownloadWatch : public CefAdapter {
public:
    using CefAdapter::CefAdapter;
    void OnDownloadUpdated(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDownloadItem> item,
                           CefRefPtr<CefDownloadItemCallback> callback) override {
        {
            const std::lock_guard lock(mutex);
            cancelled = cancelled || item->IsCanceled();
            if (item->IsComplete()) savedTo = item->GetFullPath().ToWString(), ++completions;
        }
        CefAdapter::OnDownloadUpdated(browser, item, callback);
    }
    std::filesystem::path saved() {
        const std::lock_guard lock(mutex);
        return savedTo;
    }
    bool isCancelled() {
        const std::lock_guard lock(mutex);
        return cancelled;
    }
    int completed() {
        const std::lock_guard lock(mutex);
        return completions;
    }

private:
    std::mutex mutex;
    std::filesystem::path savedTo;
    bool cancelled = false;
    int completions = 0;
};

std::wstring documentsFolder() {
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_PERSONAL | CSIDL_FLAG_CREATE, nullptr, 0, folder);
    return folder;
}

/// Visible top-level windows of this process.
std::set<HWND> visibleWindows() {
    std::set<HWND> found;
    EnumWindows(
        [](HWND window, LPARAM to) -> BOOL {
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId() && IsWindowVisible(window)) {
                reinterpret_cast<std::set<HWND>*>(to)->insert(window);
            }
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&found));
    return found;
}

void press(WORD key, bool typed = false) {
    INPUT input[2] = {};
    for (INPUT& each : input) {
        each.type = INPUT_KEYBOARD;
        (typed ? each.ki.wScan : each.ki.wVk) = key;
        each.ki.dwFlags = typed ? KEYEVENTF_UNICODE : 0;
    }
    input[1].ki.dwFlags |= KEYEVENTF_KEYUP;
    EXPECT_EQ(SendInput(2, input, sizeof *input), 2u);
}

/// A page that offers a download as it opens and tells of its own alerts.
class Download : public ::testing::Test {
protected:
    Download() : bytes(300'000, '\0') {
        for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 >> 3);
        reports.server.serve("/file",
                             {.contentType = "application/octet-stream",
                              .body = bytes,
                              .extraHeaders = "Content-Disposition: attachment; filename=\"zemo saved.bin\"\r\n"});
        reports.server.serveHtml("/", "<!doctype html><body style='margin:0;background:#0a0'>" + reports.script() +
                                          "<script>window.alert=text=>report('alert '+text);</script>");
        client = new DownloadWatch({facade, events}, game.window, WindowStyle::Layer, false, nullptr, 0,
                                   game.frames.callback());
        createBrowser(game.window, client, reports.server.url("/"));
    }
    ~Download() override {
        client->close();
        std::error_code ignored;
        std::filesystem::remove(client->saved(), ignored);
    }

    void run(const std::string& script) { client->getBrowser()->GetMainFrame()->ExecuteJavaScript(script, "", 0); }
    /// The save dialog of a download that the page begins now, in the foreground, with the field for the name focused.
    HWND offer() {
        EXPECT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
        const std::set<HWND> before = visibleWindows();
        run("location='/file'");
        HWND dialog = nullptr;
        EXPECT_TRUE(game.waitFor("the save dialog", [&] {
            for (const HWND window : visibleWindows()) {
                if (!before.contains(window) && classOf(window) == L"#32770") dialog = window;
            }
            return dialog != nullptr;
        }));
        if (!dialog) return nullptr;
        EXPECT_TRUE(game.waitFor("the dialog's field", [&] {
            if (GetForegroundWindow() != dialog) SetForegroundWindow(dialog);
            field = focusOf(dialog);
            return GetForegroundWindow() == dialog && classOf(field) == L"Edit";
        }));
        return dialog;
    }
    static HWND focusOf(HWND dialog) {
        GUITHREADINFO info{};
        info.cbSize = sizeof info;
        GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
        return info.hwndFocus;
    }
    /// Types over what the field holds.
    void type(const std::wstring& text) {
        SendMessageW(field, EM_SETSEL, 0, -1);
        for (const wchar_t c : text) press(c, true);
        EXPECT_TRUE(game.waitFor("the typed text", [&] { return textOf(field) == text; })) << "the field lacks it";
    }

    GameHost game;
    PageReports reports;
    std::string bytes;
    std::shared_ptr<NavigationRecorder> events = std::make_shared<NavigationRecorder>();
    std::shared_ptr<IZEMOWebView> facade = createWebViewDefault();
    CefRefPtr<DownloadWatch> client;
    HWND field = nullptr;
};

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Stands in for the engine's, which tells nobody what it was called with.
class ProposalRecorder : public CefBeforeDownloadCallback {
public:
    void Continue(const CefString& download_path, bool show_dialog) override {
        path = download_path.ToWString();
        withDialog = show_dialog;
        ++calls;
    }
    std::wstring path = L"none";
    bool withDialog = false;
    int calls = 0;
    IMPLEMENT_REFCOUNTING(ProposalRecorder);
};

HRESULT WINAPI noFolder(HWND, int, HANDLE, DWORD, LPWSTR) { return E_FAIL; }

}  // namespace

TEST_F(Download, AcceptedInTheDialog_ForegroundFileIsTheServersAndThePageIsToldOnce) {
    const HWND dialog = offer();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(textOf(field), L"zemo saved.bin") << "the suggested name";
    press(VK_RETURN);
    EXPECT_EQ(reports.wait(game), "alert 다운로드 완료 하였습니다.");
    EXPECT_EQ(client->saved().filename(), L"zemo saved.bin");
    // Wine's dialog takes the name of a proposal and opens in a folder of its own choice.
    const std::filesystem::path folder = client->saved().parent_path();
    EXPECT_TRUE(folder == documentsFolder() || Core::Wine::isRunningUnderWine()) << folder.string();
    EXPECT_TRUE(contentOf(client->saved()) == bytes) << client->saved().string();
    game.pass(500ms);
    EXPECT_EQ(reports.server.requestCount("/report"), static_cast<size_t>(client->completed()));
    EXPECT_FALSE(IsWindow(dialog));
}

TEST_F(Download, UserTypesAnotherPlace_ForegroundFileIsThere) {
    const ScratchDirectory folder;
    const std::filesystem::path wanted = folder.path() / L"내 파일.bin";
    ASSERT_NE(offer(), nullptr);
    type(wanted.wstring());
    press(VK_RETURN);
    EXPECT_EQ(reports.wait(game), "alert 다운로드 완료 하였습니다.");
    EXPECT_EQ(client->saved(), wanted);
    EXPECT_TRUE(contentOf(wanted) == bytes);
}

TEST_F(Download, CancelledInTheDialog_ForegroundNoFileAndNoAlert) {
    const HWND dialog = offer();
    ASSERT_NE(dialog, nullptr);
    press(VK_ESCAPE);
    ASSERT_TRUE(game.waitFor("the cancelled download", [&] { return client->isCancelled(); }));
    run("report('later')");
    EXPECT_EQ(reports.wait(game), "later");
    game.pass(500ms);
    EXPECT_EQ(reports.server.requestCount("/report"), 1u);
    EXPECT_EQ(client->completed(), 0);
    EXPECT_FALSE(IsWindow(dialog));
}

TEST_F(Download, ViewClosedWithItsDialogOpen_ForegroundNothingHangs) {
    const HWND dialog = offer();
    ASSERT_NE(dialog, nullptr);
    client->close();
    EXPECT_FALSE(client->getBrowser());
    game.pass(300ms);
    if (IsWindow(dialog)) PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
    EXPECT_TRUE(game.waitFor("the dialog's end", [&] { return !IsWindow(dialog); }));
    EXPECT_EQ(client->completed(), 0);
}

TEST_F(Download, RightClickOnAPage_ForegroundShowsNothing) {
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
    ASSERT_TRUE(game.waitFor("completion", [&] { return events->has("completed"); }));
    run("oncontextmenu=()=>report('menu')");
    const std::set<HWND> before = visibleWindows();
    CefMouseEvent event;
    event.x = 100;
    event.y = 100;
    ASSERT_TRUE(game.waitFor("the page hears the click", [&] {
        client->getBrowser()->GetHost()->SendMouseMoveEvent(event, false);
        client->getBrowser()->GetHost()->SendMouseClickEvent(event, MBT_RIGHT, false, 1);
        client->getBrowser()->GetHost()->SendMouseClickEvent(event, MBT_RIGHT, true, 1);
        game.pass(100ms);
        return reports.server.requestCount("/report") > 0;
    }));
    game.pass(1000ms);
    EXPECT_EQ(visibleWindows(), before);
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    EXPECT_TRUE(GetGUIThreadInfo(0, &info));
    EXPECT_EQ(info.flags & (GUI_INMENUMODE | GUI_POPUPMENUMODE), 0u);
}

TEST_F(Download, Proposal_SuggestedNameInTheDocumentsFolderWithADialogAndAnAnswerOfFalse) {
    ASSERT_TRUE(game.waitFor("the page", [&] { return events->has("completed"); }));
    CefRefPtr<ProposalRecorder> proposal = new ProposalRecorder;
    for (const wchar_t* name : {L"plain.zip", L"한글 이름.zip", L""}) {
        bool answer = true;
        ASSERT_TRUE(runOnEngine(
            game, [&] { answer = client->OnBeforeDownload(client->getBrowser(), nullptr, name, proposal); }));
        EXPECT_EQ(proposal->path, documentsFolder() + L"\\" + name);
        EXPECT_TRUE(proposal->withDialog);
        EXPECT_FALSE(answer);
    }
    EXPECT_EQ(proposal->calls, 3);
    EXPECT_TRUE(std::filesystem::is_directory(documentsFolder()));
}

TEST(DownloadProposal, SystemHasNoDocumentsFolder_EmptyPathAndTheDialogAllTheSame) {
    const ImportReplaced folder("SHGetFolderPathW", &noFolder);
    CefRefPtr<ProposalRecorder> proposal = new ProposalRecorder;
    proposeDownload("name.zip", proposal);
    EXPECT_EQ(proposal->path, L"");
    EXPECT_TRUE(proposal->withDialog);
    EXPECT_EQ(proposal->calls, 1);
}

}  // namespace ZEMO::Test
