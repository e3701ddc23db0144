// The system's own dialog, driven by real keys.
#include "api/file_select_view.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/scratch_directory.h"
#include "support/top_windows.h"
#include "support/window_text.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Paths = std::vector<std::filesystem::path>;

bool becomes(const std::function<bool()>& claim) {
    for (const auto end = std::chrono::steady_clock::now() + kPatience;;) {
        if (claim()) return true;
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

class Receiver : public ZEMOFileSelectViewDelegate {
public:
    void fileSelected(std::vector<std::filesystem::path> files) override {
        const std::lock_guard lock(access);
        results.push_back(std::move(files));
        changed.notify_all();
    }
    void fileSelectCancelled() override {
        const std::lock_guard lock(access);
        results.emplace_back();
        changed.notify_all();
    }
    /// All results, an empty one for each cancel, once there are `count`.
    std::vector<Paths> waitFor(size_t count) {
        std::unique_lock lock(access);
        if (!changed.wait_for(lock, kPatience, [&] { return results.size() >= count; }))
            std::fprintf(stderr, "the delegate was told %zu results, not %zu\n", results.size(), count);
        return results;
    }
    size_t count() {
        const std::lock_guard lock(access);
        return results.size();
    }

private:
    std::mutex access;
    std::condition_variable changed;
    std::vector<Paths> results;
};

std::set<HWND> visibleDialogs() {
    std::set<HWND> found;
    for (const HWND window : Test::ownTopWindows(L"#32770"))
        if (IsWindowVisible(window)) found.insert(window);
    return found;
}

/// Waits for a dialog that was not there before.
HWND newDialog(const std::set<HWND>& before = {}) {
    HWND found = nullptr;
    becomes([&] {
        for (const HWND window : visibleDialogs())
            if (!before.contains(window)) found = window;
        return found != nullptr;
    });
    return found;
}

HWND focusOf(HWND dialog) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info);
    return info.hwndFocus;
}

void pressKey(WORD key) {
    INPUT input[2] = {};
    input[0].type = input[1].type = INPUT_KEYBOARD;
    input[0].ki.wVk = input[1].ki.wVk = key;
    input[1].ki.dwFlags = KEYEVENTF_KEYUP;
    EXPECT_EQ(SendInput(2, input, sizeof *input), 2u);
}

class FileSelectView : public testing::Test {
protected:
    FileSelectView() {
        view->setFileSelectViewDelegate(receiver);
        for (const wchar_t* name : {L"a.png", L"b.png", L"c.txt", L"가 나.png", L"다.png"}) files.write(name, {1});
    }
    ~FileSelectView() override {
        for (const HWND left : visibleDialogs()) PostMessageW(left, WM_CLOSE, 0, 0);
        EXPECT_TRUE(becomes([] { return visibleDialogs().empty(); }));
    }

    HWND show() {
        const std::set<HWND> before = visibleDialogs();
        view->show();
        const HWND dialog = newDialog(before);
        EXPECT_NE(dialog, nullptr);
        return dialog;
    }
    /// The field for the file's name, with the keyboard's focus.
    HWND focusedField(HWND dialog) {
        becomes([&] {
            if (GetForegroundWindow() != dialog) SetForegroundWindow(dialog);
            return GetForegroundWindow() == dialog && classOf(focusOf(dialog)) == L"Edit";
        });
        return focusOf(dialog);
    }
    /// Types the text into the field by real keys, and Return.
    void enter(HWND dialog, const std::wstring& text) {
        const HWND field = focusedField(dialog);
        ASSERT_EQ(classOf(field), L"Edit");
        for (const wchar_t c : text) {
            INPUT input[2] = {};
            input[0].type = input[1].type = INPUT_KEYBOARD;
            input[0].ki.wScan = input[1].ki.wScan = c;
            input[0].ki.dwFlags = KEYEVENTF_UNICODE;
            input[1].ki.dwFlags = KEYEVENTF_UNICODE | KEYEVENTF_KEYUP;
            ASSERT_EQ(SendInput(2, input, sizeof *input), 2u);
        }
        ASSERT_TRUE(becomes([&] { return textOf(field) == text; })) << "the field lacks what was typed";
        pressKey(VK_RETURN);
    }
    /// Goes to the test's directory.
    void enterDirectory(HWND dialog) {
        const HWND field = focusedField(dialog);
        enter(dialog, files.path().wstring());
        ASSERT_TRUE(becomes([&] { return textOf(field).empty(); })) << "the dialog did not change its directory";
    }
    std::wstring path(const wchar_t* name) const { return (files.path() / name).wstring(); }

    ScratchDirectory files;
    std::shared_ptr<Receiver> receiver = std::make_shared<Receiver>();
    std::shared_ptr<ZEMOFileSelectViewImpl> view = std::make_shared<ZEMOFileSelectViewImpl>();
};

TEST_F(FileSelectView, OneFile_ItsPathArrivesOnce) {
    const HWND dialog = show();
    EXPECT_NE(GetWindowThreadProcessId(dialog, nullptr), GetCurrentThreadId());
    enter(dialog, path(L"a.png"));
    EXPECT_EQ(receiver->waitFor(1), (std::vector<Paths>{{path(L"a.png")}}));
}

TEST_F(FileSelectView, KoreanNameWithABlank_ArrivesWhole) {
    enter(show(), path(L"가 나.png"));
    EXPECT_EQ(receiver->waitFor(1), (std::vector<Paths>{{path(L"가 나.png")}}));
}

TEST_F(FileSelectView, OneFileWhereSeveralMayBe_IsThatPath) {
    view->setMultiSelect(true);
    const HWND dialog = show();
    enterDirectory(dialog);
    enter(dialog, L"다.png");
    EXPECT_EQ(receiver->waitFor(1), (std::vector<Paths>{{path(L"다.png")}}));
}

TEST_F(FileSelectView, SeveralFiles_ArriveInTheirAccumulatedForm) {
    view->setMultiSelect(true);
    const HWND dialog = show();
    enterDirectory(dialog);
    enter(dialog, L"\"a.png\" \"가 나.png\" \"c.txt\"");
    const auto results = receiver->waitFor(1);
    ASSERT_EQ(results.size(), 1u);
    // In which order they come is the system's choice.
    std::vector<std::wstring> names{L"a.png", L"가 나.png", L"c.txt"};
    std::sort(names.begin(), names.end());
    bool matches = false;
    do {
        std::wstring text;
        Paths expected;
        for (const std::wstring& name : names) expected.emplace_back(text += path(name.c_str()));
        matches = matches || results[0] == expected;
    } while (std::next_permutation(names.begin(), names.end()));
    EXPECT_TRUE(matches) << testing::PrintToString(results[0]);
}

TEST_F(FileSelectView, EscapePressed_CancelledOnce) {
    const HWND dialog = show();
    focusedField(dialog);
    pressKey(VK_ESCAPE);
    EXPECT_EQ(receiver->waitFor(1), std::vector<Paths>{{}});
    EXPECT_TRUE(becomes([&] { return !IsWindow(dialog); }));
    EXPECT_EQ(receiver->count(), 1u);
}

TEST_F(FileSelectView, MissingFile_DialogStaysUntilItIsCancelled) {
    const HWND dialog = show();
    enter(dialog, path(L"missing.png"));
    const HWND complaint = newDialog({dialog});
    ASSERT_NE(complaint, nullptr);
    EXPECT_EQ(receiver->count(), 0u);
    becomes([&] { return SetForegroundWindow(complaint) && GetForegroundWindow() == complaint; });
    pressKey(VK_RETURN);
    ASSERT_TRUE(becomes([&] { return !IsWindow(complaint); }));
    view->close();
    EXPECT_EQ(receiver->waitFor(1), std::vector<Paths>{{}});
}

TEST_F(FileSelectView, Shown_StandsInTheMiddleOfThePrimaryScreen) {
    const HWND dialog = show();
    RECT frame{};
    GetWindowRect(dialog, &frame);
    EXPECT_EQ(frame.left, (GetSystemMetrics(SM_CXSCREEN) - (frame.right - frame.left)) / 2);
    EXPECT_EQ(frame.top, (GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top)) / 2);
}

TEST_F(FileSelectView, Extensions_ShownAsFiltersTheFirstSelected) {
    view->setFileExtensions({"png", "txt"});
    const HWND dialog = show();
    const HWND filters = GetDlgItem(dialog, 0x470);  // the dialog's list of filters
    ASSERT_NE(filters, nullptr);
    EXPECT_EQ(SendMessageW(filters, CB_GETCOUNT, 0, 0), 2);
    EXPECT_EQ(SendMessageW(filters, CB_GETCURSEL, 0, 0), 0);
    EXPECT_EQ(textOf(filters), L"png");
}

TEST_F(FileSelectView, Close_CancelsTheOpenDialog) {
    show();
    view->close();
    EXPECT_EQ(receiver->waitFor(1), std::vector<Paths>{{}});
}

TEST_F(FileSelectView, CloseAfterTheEnd_HasNoEffect) {
    show();
    view->close();
    receiver->waitFor(1);
    view->close();
    view->close();
    enter(show(), path(L"a.png"));
    EXPECT_EQ(receiver->waitFor(2), (std::vector<Paths>{{}, {path(L"a.png")}}));
}

TEST_F(FileSelectView, TwoDialogs_CloseMeansTheLater) {
    const HWND first = show();
    const HWND second = show();
    view->close();
    EXPECT_TRUE(becomes([&] { return !IsWindow(second); }));
    EXPECT_TRUE(IsWindow(first));
    receiver->waitFor(1);
    enter(first, path(L"b.png"));
    EXPECT_EQ(receiver->waitFor(2), (std::vector<Paths>{{}, {path(L"b.png")}}));
}

TEST_F(FileSelectView, ShowAndWait_ReturnsAfterTheDelegateWasTold) {
    size_t toldAtReturn = 0;
    DWORD waiting = 0;
    std::thread caller([&] {
        waiting = GetCurrentThreadId();
        view->showAndWait();
        toldAtReturn = receiver->count();
    });
    const HWND dialog = newDialog();
    EXPECT_EQ(GetWindowThreadProcessId(dialog, nullptr), waiting);
    EXPECT_EQ(receiver->count(), 0u);
    enter(dialog, path(L"a.png"));
    caller.join();
    EXPECT_EQ(toldAtReturn, 1u);
}

TEST_F(FileSelectView, ViewDroppedWhileTheDialogStands_ResultStillArrives) {
    const HWND dialog = show();
    view.reset();
    enter(dialog, path(L"a.png"));
    EXPECT_EQ(receiver->waitFor(1), (std::vector<Paths>{{path(L"a.png")}}));
}

TEST_F(FileSelectView, WorkingDirectory_IsWhatItWas) {
    const std::filesystem::path before = std::filesystem::current_path();
    enter(show(), path(L"a.png"));
    receiver->waitFor(1);
    EXPECT_EQ(std::filesystem::current_path(), before);
}

}  // namespace
}  // namespace ZEMO::Test
