#include "api/file_dialog.h"

#include <windows.h>

#include <commdlg.h>

#include <array>
#include <atomic>
#include <stdexcept>
#include <string_view>

#include "api/file_selection.h"
#include "core/module_paths.h"

namespace ZEMO::UI {
namespace {

constexpr DWORD kPathCharacters = 260;
/// What the dialog is told to have. All of it is there, though a single path fills half of it at most.
constexpr DWORD kToldCharacters = 2 * kPathCharacters;
using FileBuffer = std::array<wchar_t, kToldCharacters + 2>;  // with the two NULs that end a list

constexpr DWORD kFlags = OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_ENABLEHOOK | OFN_NOCHANGEDIR;
static_assert(kFlags == 0x81828 && (kFlags | OFN_ALLOWMULTISELECT) == 0x81A28);

/// The dialog that was opened last, whether it stands or not.
std::atomic<HWND> fileDialogWindow = nullptr;

void centreOnPrimaryScreen(HWND window) {
    RECT frame{};
    GetWindowRect(window, &frame);
    const int x = (GetSystemMetrics(SM_CXSCREEN) - (frame.right - frame.left)) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top)) / 2;
    SetWindowPos(window, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

// The hook's own window is a page inside the dialog.
UINT_PTR CALLBACK dialogHook(HWND page, UINT message, WPARAM, LPARAM) {
    if (message != WM_INITDIALOG) return 0;
    if (page) {
        const HWND dialog = GetParent(page);
        fileDialogWindow = dialog;
        centreOnPrimaryScreen(dialog);
    }
    return 1;
}

std::string toUtf8(const std::wstring& text) {
    const int size = static_cast<int>(text.size());
    const int bytes =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), size, nullptr, 0, nullptr, nullptr);
    if (bytes <= 0 && size > 0) throw std::range_error("a chosen file's name has no UTF-8 form");
    std::string utf8(static_cast<size_t>(bytes), '\0');
    WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), size, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

}  // namespace

std::vector<std::filesystem::path> runFileDialog(const std::vector<std::string>& extensions, bool multiSelect) {
    const std::wstring filter = Core::to_wide(fileFilterList(extensions));
    FileBuffer answer{};
    OPENFILENAMEW dialog{};
    static_assert(sizeof dialog == 152);
    dialog.lStructSize = sizeof dialog;
    dialog.lpstrFilter = filter.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = answer.data();
    dialog.nMaxFile = kToldCharacters;
    dialog.Flags = multiSelect ? kFlags | OFN_ALLOWMULTISELECT : kFlags;
    dialog.lpfnHook = &dialogHook;
    if (GetOpenFileNameW(&dialog) != TRUE) return {};

    std::vector<std::filesystem::path> files;
    for (const std::wstring& file :
         selectedFiles(std::wstring_view(answer.data(), answer.size()), dialog.nFileOffset, multiSelect))
        files.emplace_back(toUtf8(file));
    return files;
}

void closeFileDialog() {
    const HWND dialog = fileDialogWindow;
    // A dialog may be long gone, and its handle may name another program's window now.
    DWORD process = 0;
    GetWindowThreadProcessId(dialog, &process);
    if (process == GetCurrentProcessId()) PostMessageW(dialog, WM_CLOSE, 0, 0);
}

}  // namespace ZEMO::UI
