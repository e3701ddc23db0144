// What the system is asked, and what its answers become. Answers can't be chosen with a real dialog, so this program's
// import of it is replaced; the dialog itself is driven in the window tests.
#include "api/file_dialog.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commdlg.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "api/file_select_view.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

using namespace std::string_literals;
using Paths = std::vector<std::filesystem::path>;

struct Asked {
    OPENFILENAMEW dialog;
    std::wstring filter;
    bool bufferIsZero;
};
std::optional<Asked> asked;
std::wstring answerText;
size_t answerOffset = 0;
BOOL answer = TRUE;

/// Up to and with the empty text that ends the list.
std::wstring wholeList(const wchar_t* list) {
    const wchar_t* end = list;
    while (*end) end += wcslen(end) + 1;
    return {list, end};
}

BOOL WINAPI answered(OPENFILENAMEW* dialog) {
    asked = Asked{*dialog, wholeList(dialog->lpstrFilter),
                  std::all_of(dialog->lpstrFile, dialog->lpstrFile + 260, [](wchar_t c) { return c == 0; })};
    std::copy(answerText.begin(), answerText.end(), dialog->lpstrFile);
    dialog->nFileOffset = static_cast<WORD>(answerOffset);
    return answer;
}

class Receiver : public ZEMOFileSelectViewDelegate {
public:
    void fileSelected(std::vector<std::filesystem::path> files) override {
        ++selected;
        last = std::move(files);
    }
    void fileSelectCancelled() override { ++cancelled; }
    int selected = 0;
    int cancelled = 0;
    Paths last;
};

class FileDialog : public testing::Test {
protected:
    void answerWith(std::wstring text, size_t offset, BOOL result = TRUE) {
        answerText = std::move(text);
        answerOffset = offset;
        answer = result;
    }
    FileDialog() {
        asked.reset();
        answerWith(L"C:\\a.png", 3);
        view->setFileSelectViewDelegate(receiver);
    }

    const ZEMO::Test::ImportReplaced dialog{"GetOpenFileNameW", &answered};
    std::shared_ptr<Receiver> receiver = std::make_shared<Receiver>();
    std::shared_ptr<ZEMOFileSelectViewImpl> view = std::make_shared<ZEMOFileSelectViewImpl>();
};

TEST_F(FileDialog, Asked_AsAnExplorerDialogWithAHook) {
    view->showAndWait();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->dialog.lStructSize, 152u);
    EXPECT_EQ(asked->dialog.hwndOwner, nullptr);
    EXPECT_EQ(asked->dialog.nFilterIndex, 1u);
    EXPECT_EQ(asked->dialog.nMaxFile, 520u);
    EXPECT_EQ(asked->dialog.Flags, 0x81828u);
    EXPECT_NE(asked->dialog.lpfnHook, nullptr);
    EXPECT_EQ(asked->dialog.lpstrInitialDir, nullptr);
    EXPECT_EQ(asked->dialog.lpstrTitle, nullptr);
    EXPECT_TRUE(asked->bufferIsZero);
    view->setMultiSelect(true);
    view->showAndWait();
    EXPECT_EQ(asked->dialog.Flags, 0x81A28u);
}

TEST_F(FileDialog, DefaultFilter_ShowsAStarAndMatchesAllFiles) {
    view->showAndWait();
    EXPECT_EQ(asked->filter, L"*\0*.*\0"s);
}

TEST_F(FileDialog, TwoExtensions_TwoFiltersTheFirstSelected) {
    view->setFileExtensions({"png", "jpg"});
    view->showAndWait();
    EXPECT_EQ(asked->filter, L"png\0*.png\0jpg\0*.jpg\0"s);
    EXPECT_EQ(asked->dialog.nFilterIndex, 1u);
}

TEST_F(FileDialog, NoExtension_EmptyFilter) {
    view->setFileExtensions({});
    view->showAndWait();
    EXPECT_EQ(asked->filter, L"");
}

TEST_F(FileDialog, KoreanExtension_ArrivesInUtf16) {
    view->setFileExtensions({"그림"});
    view->showAndWait();
    EXPECT_EQ(asked->filter, L"그림\0*.그림\0"s);
}

TEST_F(FileDialog, GivenExtensions_AreLeftEmpty) {
    std::vector<std::string> extensions{"png", "jpg"};
    view->setFileExtensions(std::move(extensions));
    EXPECT_TRUE(extensions.empty());  // NOLINT(bugprone-use-after-move): that is the promise
}

TEST_F(FileDialog, AnyAnswerButOne_CountsAsACancel) {
    for (const BOOL result : {0, 2, -1}) {
        answerWith(L"C:\\a.png", 3, result);
        view->showAndWait();
    }
    EXPECT_EQ(receiver->cancelled, 3);
    EXPECT_EQ(receiver->selected, 0);
}

TEST_F(FileDialog, OneFile_SelectedOnceAndNotCancelled) {
    answerWith(L"C:\\그림\\가 나.png", 6);
    view->showAndWait();
    EXPECT_EQ(receiver->selected, 1);
    EXPECT_EQ(receiver->cancelled, 0);
    EXPECT_EQ(receiver->last, (Paths{L"C:\\그림\\가 나.png"}));
}

TEST_F(FileDialog, SeveralFiles_InTheirAccumulatedForm) {
    view->setMultiSelect(true);
    answerWith(L"C:\\그림\0가.png\0나.png\0"s, 6);
    view->showAndWait();
    EXPECT_EQ(receiver->last, (Paths{L"C:\\그림\\가.png", L"C:\\그림\\가.pngC:\\그림\\나.png"}));
}

TEST_F(FileDialog, AnswerThatFillsAllTheDialogWasTold_IsTakenWhole) {
    view->setMultiSelect(true);
    std::wstring list = L"C:\\d\0"s;
    std::wstring last;
    while (list.size() + 21 <= 519) {
        list += std::wstring(20, L'n') + L'\0';
        last += L"C:\\d\\" + std::wstring(20, L'n');
    }
    answerWith(list, 5);
    view->showAndWait();
    ASSERT_FALSE(receiver->last.empty());
    EXPECT_EQ(receiver->last.back().wstring(), last);
}

TEST_F(FileDialog, NameWithoutAUtf8Form_ThrowsARangeErrorToTheCaller) {
    answerWith(L"C:\\\xD800.png", 3);
    EXPECT_THROW(view->showAndWait(), std::range_error);
    EXPECT_EQ(receiver->selected + receiver->cancelled, 0);
    answerWith(L"C:\\\xD83D\xDE00.png", 3);
    view->showAndWait();
    EXPECT_EQ(receiver->last, (Paths{L"C:\\\xD83D\xDE00.png"}));
}

TEST_F(FileDialog, DelegateGone_NobodyIsCalled) {
    const std::weak_ptr<Receiver> gone = receiver;
    receiver.reset();
    EXPECT_TRUE(gone.expired());
    view->showAndWait();
    EXPECT_TRUE(asked);
}

TEST_F(FileDialog, OperationsOfOtherViews_HaveNoEffect) {
    view->setViewDelegate(nullptr);
    view->setSize(10, 20);
    view->setDisplayMode(1);
    view->close();
    view->showAndWait();
    EXPECT_EQ(receiver->selected, 1);
}

TEST_F(FileDialog, Hook_AnswersOneToItsFirstMessageOnly) {
    view->showAndWait();
    const LPOFNHOOKPROC hook = asked->dialog.lpfnHook;
    EXPECT_EQ(hook(nullptr, WM_INITDIALOG, 0, 0), 1u);
    for (const UINT message : {WM_NOTIFY, WM_COMMAND, WM_SIZE, WM_DESTROY}) EXPECT_EQ(hook(nullptr, message, 0, 0), 0u);
}

}  // namespace
}  // namespace ZEMO::UI
