// A game that has not started the engine yet: it links the library, calls into it and gets values back.
#include <windows.h>
#include <zemo/ui.h>

#include <cstdio>
#include <cwchar>

// The examples of the front page and the guides, as they stand there. Compiled only: an engine is not needed here.
[[maybe_unused]] static void readmeExample(const ZEMO::UI::OsrFramePresentCallback& takeFrame,
                                           const std::shared_ptr<ZEMO::UI::ZEMOWebViewDelegate>& delegate) {
#include "readme_example.inc"
}

[[maybe_unused]] static void scriptGuide(const std::shared_ptr<ZEMO::UI::IZEMOWebView>& view) {
#include "script_guide.inc"
}

int main() {
    const std::filesystem::path resources = ZEMO::UI::getLocalHTMLResourcePath();
    const std::shared_ptr<ZEMO::UI::IZEMOWebView> view = ZEMO::UI::createWebViewDefault();
    setUseExternalTsfIme(0);

    wchar_t program[MAX_PATH] = {};
    wchar_t library[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    GetModuleFileNameW(GetModuleHandleW(L"ZEMOUIFramework.dll"), library, MAX_PATH);
    const std::filesystem::path here = std::filesystem::path(program).parent_path();
    if (!view || std::filesystem::path(library).parent_path() != here) {
        std::fputs("the library is another one, or gives no view\n", stderr);
        return 1;
    }
    if (resources.generic_wstring() != (here / L"resources" / L"html").generic_wstring()) {
        std::fputs("the library looks for its resources elsewhere\n", stderr);
        return 2;
    }
    std::puts("the consumer ran with the installed library");
    return 0;
}
