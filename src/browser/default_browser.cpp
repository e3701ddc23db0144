#include "browser/default_browser.h"

#include "browser/browser_rules.h"
#include "core/log.h"
#include "core/wine/wine.h"

namespace ZEMO::UI {
namespace {

constexpr DWORD kLongestAnswer = 32768;  // characters, with the NUL
constexpr DWORD kFixedAnswer = 1024;
// Without it the shell answers an unknown scheme with its own "open with" program.
constexpr ASSOCF kQueryFlags = ASSOCF_INIT_IGNOREUNKNOWN;

}  // namespace

std::wstring assocQuery(ASSOCF flags, ASSOCSTR what, const wchar_t* assoc) {
    if (!assoc || !*assoc) return {};

    const Core::Wine::AssociationQuery query;
    DWORD needed = 0;
    AssocQueryStringW(flags, what, assoc, nullptr, nullptr, &needed);
    if (needed >= 1 && needed <= kLongestAnswer) {
        std::wstring text(needed, L'\0');
        if (AssocQueryStringW(flags, what, assoc, nullptr, text.data(), &needed) == S_OK) {
            while (!text.empty() && text.back() == L'\0') text.pop_back();
            return text;
        }
    }

    wchar_t fixed[kFixedAnswer] = {};
    DWORD size = kFixedAnswer;
    if (AssocQueryStringW(flags, what, assoc, nullptr, fixed, &size) != S_OK) return {};
    fixed[kFixedAnswer - 1] = L'\0';
    return fixed;
}

std::wstring getDefaultBrowserPath(const wchar_t* scheme) {
    if (!scheme || !*scheme) scheme = L"https";
    const wchar_t* const schemes[] = {scheme, L"http"};

    for (const wchar_t* candidate : schemes) {
        std::wstring path = assocQuery(kQueryFlags, ASSOCSTR_EXECUTABLE, candidate);
        if (!path.empty()) return path;
    }
    for (const wchar_t* candidate : schemes) {
        std::wstring path = extractExecutable(assocQuery(kQueryFlags, ASSOCSTR_COMMAND, candidate));
        if (!path.empty()) return path;
    }
    Core::logDebugW(L"getDefaultBrowserPath: 기본 브라우저 해석 실패 (scheme=%ls)", scheme);
    return {};
}

}  // namespace ZEMO::UI
