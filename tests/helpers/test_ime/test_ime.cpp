// An input method module of the tests' own. The system loads it for a keyboard layout, hands it the keys, and takes
// compositions from it, as it does with any other; only its dictionaries are small: one word a language, whose keys are
// known. Space converts, Return commits, Escape cancels. A key that no dictionary knows goes through.
#include <map>
#include <string>
#include <vector>

#include "ime_module_types.h"

namespace ZEMO::Test {
namespace {

constexpr wchar_t kUiClass[] = L"ZEMOTestImeUi";
constexpr DWORD kUnicode = 0x00080000;  // IME_PROP_UNICODE

struct Step {
    std::wstring text;
    std::vector<DWORD> clauses;    ///< beginnings and end
    std::vector<BYTE> attributes;  ///< one a character
    DWORD cursor = 0;
};

Step typed(const std::wstring& text) {
    const auto length = static_cast<DWORD>(text.size());
    return {text, {0, length}, std::vector<BYTE>(length, ATTR_INPUT), length};
}

/// Keys so far, and what is composed then; a space stands for the conversion key.
using Dictionary = std::map<std::string, Step>;

const Dictionary& dictionaryOf(WORD language) {
    static const Dictionary korean{{"G", typed(L"ㅎ")}, {"GK", typed(L"하")}, {"GKS", typed(L"한")}};
    static const Dictionary japanese{
        {"K", typed(L"ｋ")},
        {"KA", typed(L"か")},
        {"KAN", typed(L"かｎ")},
        {"KANJ", typed(L"かんｊ")},
        {"KANJI", typed(L"かんじ")},
        {"KANJIW", typed(L"かんじｗ")},
        {"KANJIWO", typed(L"かんじを")},
        {"KANJIWO ", {L"漢字を", {0, 2, 3}, {ATTR_TARGET_CONVERTED, ATTR_TARGET_CONVERTED, ATTR_CONVERTED}, 0}},
    };
    static const Dictionary chinese{
        {"N", typed(L"n")},          {"NI", typed(L"ni")},
        {"NIH", typed(L"ni h")},     {"NIHA", typed(L"ni ha")},
        {"NIHAO", typed(L"ni hao")}, {"NIHAO ", {L"你好", {0, 2}, {ATTR_TARGET_CONVERTED, ATTR_TARGET_CONVERTED}, 2}}};
    static const Dictionary none;
    switch (language) {
        case LANG_KOREAN:
            return korean;
        case LANG_JAPANESE:
            return japanese;
        case LANG_CHINESE:
            return chinese;
        default:
            return none;
    }
}

std::string keys;  // of the one composition at a time

/// A layout's high word is E and the language here.
WORD language() { return HIWORD(HandleToULong(GetKeyboardLayout(0))) & 0x0FFF; }

const Step* stepOf(const std::string& typedKeys) {
    const Dictionary& dictionary = dictionaryOf(language());
    const auto entry = dictionary.find(typedKeys);
    return entry == dictionary.end() ? nullptr : &entry->second;
}

void resize(HIMCC& block, DWORD size) { block = block ? ImmReSizeIMCC(block, size) : ImmCreateIMCC(size); }

/// Builds a composition block part by part.
class BlockWriter {
public:
    void add(ImePart ImeComposition::* part, const void* data, size_t bytes, size_t length) {
        header.*part = {static_cast<DWORD>(length), static_cast<DWORD>(sizeof header + body.size())};
        body.append(static_cast<const char*>(data), bytes);
        body.resize((body.size() + 3) / 4 * 4 + 4);  // strings end with a zero, lists are aligned
    }
    void addText(ImePart ImeComposition::* part, const std::wstring& text) {
        add(part, text.data(), text.size() * sizeof(wchar_t), text.size());
    }
    void store(ImeContext* context) {
        header.size = static_cast<DWORD>(sizeof header + body.size());
        resize(context->composition, header.size);
        auto* block = static_cast<char*>(ImmLockIMCC(context->composition));
        memcpy(block, &header, sizeof header);
        memcpy(block + sizeof header, body.data(), body.size());
        ImmUnlockIMCC(context->composition);
    }
    ImeComposition header{};

private:
    std::string body;
};

using Messages = std::vector<ImeMessage>;

void store(HIMC himc, BlockWriter& writer) {
    if (ImeContext* context = ImmLockIMC(himc)) {
        writer.store(context);
        ImmUnlockIMC(himc);
    }
}

/// `finished`: what the same message commits first, null for nothing.
Messages composeStep(HIMC himc, const Step& step, bool first, const Step* finished) {
    BlockWriter writer;
    if (finished) writer.addText(&ImeComposition::result, finished->text);
    writer.add(&ImeComposition::attributes, step.attributes.data(), step.attributes.size(), step.attributes.size());
    writer.add(&ImeComposition::clauses, step.clauses.data(), step.clauses.size() * sizeof(DWORD),
               step.clauses.size() * sizeof(DWORD));
    writer.addText(&ImeComposition::text, step.text);
    writer.header.cursor = step.cursor;
    store(himc, writer);
    Messages messages;
    if (first) messages.push_back({WM_IME_STARTCOMPOSITION, 0, 0});
    LPARAM flags = GCS_COMPSTR | GCS_COMPATTR | GCS_COMPCLAUSE | GCS_CURSORPOS;
    if (finished) flags |= GCS_RESULTSTR;
    messages.push_back({WM_IME_COMPOSITION, step.text.back(), flags});
    return messages;
}

Messages commit(HIMC himc) {
    const Step* step = stepOf(keys);
    keys.clear();
    BlockWriter writer;
    if (step) writer.addText(&ImeComposition::result, step->text);
    store(himc, writer);
    return {{WM_IME_COMPOSITION, step ? step->text.back() : L'\0', GCS_RESULTSTR}, {WM_IME_ENDCOMPOSITION, 0, 0}};
}

Messages cancel(HIMC himc) {
    keys.clear();
    BlockWriter writer;
    store(himc, writer);
    return {{WM_IME_COMPOSITION, 0, 0}, {WM_IME_ENDCOMPOSITION, 0, 0}};
}

/// Korean users never say that a syllable is finished: the first letter of the next one does.
bool beginsNextSyllable(UINT key) {
    return language() == LANG_KOREAN && !keys.empty() && key < 0x80 && !stepOf(keys + static_cast<char>(key)) &&
           stepOf(std::string(1, static_cast<char>(key)));
}

Messages takeKey(HIMC himc, UINT key) {
    if (key == VK_RETURN) return commit(himc);
    if (key == VK_ESCAPE) return cancel(himc);
    const bool first = keys.empty();
    const Step* const finished = beginsNextSyllable(key) ? stepOf(keys) : nullptr;
    if (finished) keys.clear();
    keys += static_cast<char>(key);
    return composeStep(himc, *stepOf(keys), first, finished);
}

bool wants(UINT key) {
    if (key == VK_RETURN || key == VK_ESCAPE) return !keys.empty();
    return key < 0x80 && (stepOf(keys + static_cast<char>(key)) || beginsNextSyllable(key));
}

void generate(HIMC himc, const Messages& messages) {
    if (ImeContext* context = ImmLockIMC(himc)) {
        const size_t bytes = messages.size() * sizeof(ImeMessage);
        resize(context->messages, static_cast<DWORD>(bytes));
        memcpy(ImmLockIMCC(context->messages), messages.data(), bytes);
        ImmUnlockIMCC(context->messages);
        context->messageCount = static_cast<DWORD>(messages.size());
        ImmUnlockIMC(himc);
        ImmGenerateMessage(himc);
    }
}

}  // namespace
}  // namespace ZEMO::Test

using namespace ZEMO::Test;

extern "C" {

BOOL WINAPI ImeInquire(ImeInfo* info, LPWSTR uiClass, DWORD) {
    *info = {};
    info->properties = kUnicode;
    info->conversionCaps = IME_CMODE_NATIVE;
    wcscpy(uiClass, kUiClass);
    return TRUE;
}

BOOL WINAPI ImeProcessKey(HIMC himc, UINT key, LPARAM keyData, const BYTE*) {
    const bool released = keyData < 0 || (keyData & 0x80000000);
    ImeContext* context = ImmLockIMC(himc);
    const bool open = context && context->open;
    if (context) ImmUnlockIMC(himc);
    return open && !released && wants(LOWORD(key));
}

UINT WINAPI ImeToAsciiEx(UINT key, UINT, const BYTE*, ImeMessageList* list, UINT, HIMC himc) {
    const Messages messages = takeKey(himc, LOWORD(key));
    for (size_t i = 0; i < messages.size() && i < list->capacity; ++i) list->messages[i] = messages[i];
    return static_cast<UINT>(messages.size());
}

BOOL WINAPI NotifyIME(HIMC himc, DWORD action, DWORD index, DWORD) {
    if (action != NI_COMPOSITIONSTR) return TRUE;
    if (keys.empty()) return TRUE;
    generate(himc, index == CPS_COMPLETE ? commit(himc) : cancel(himc));
    return TRUE;
}

BOOL WINAPI ImeSelect(HIMC, BOOL) {
    keys.clear();
    return TRUE;
}
BOOL WINAPI ImeSetActiveContext(HIMC, BOOL) { return TRUE; }
BOOL WINAPI ImeSetCompositionString(HIMC, DWORD, const void*, DWORD, const void*, DWORD) { return FALSE; }
BOOL WINAPI ImeConfigure(HKL, HWND, DWORD, void*) { return FALSE; }
DWORD WINAPI ImeConversionList(HIMC, LPCWSTR, CANDIDATELIST*, DWORD, UINT) { return 0; }
BOOL WINAPI ImeDestroy(UINT) { return TRUE; }
LRESULT WINAPI ImeEscape(HIMC, UINT, void*) { return 0; }
UINT WINAPI ImeEnumRegisterWord(void*, LPCWSTR, DWORD, LPCWSTR, void*) { return 0; }
DWORD WINAPI ImeGetImeMenuItems(HIMC, DWORD, DWORD, void*, void*, DWORD) { return 0; }
UINT WINAPI ImeGetRegisterWordStyle(UINT, void*) { return 0; }
BOOL WINAPI ImeRegisterWord(LPCWSTR, DWORD, LPCWSTR) { return FALSE; }
BOOL WINAPI ImeUnregisterWord(LPCWSTR, DWORD, LPCWSTR) { return FALSE; }

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*) {
    if (reason == DLL_PROCESS_ATTACH) {
        WNDCLASSEXW description{};
        description.cbSize = sizeof description;
        description.style = CS_GLOBALCLASS | CS_IME;
        description.lpfnWndProc = &DefWindowProcW;
        description.cbWndExtra = 2 * sizeof(LONG_PTR);
        description.hInstance = module;
        description.lpszClassName = kUiClass;
        RegisterClassExW(&description);
    } else if (reason == DLL_PROCESS_DETACH) {
        UnregisterClassW(kUiClass, module);
    }
    return TRUE;
}
}
