// What the C runtime is told, with its answers in the test's hands; what comes of it, each case in a process of its
// own.
#include "zemo/locale_setter.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <iterator>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/user_locale.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

using Calls = std::vector<std::pair<int, std::string>>;

const char* currentLocale = "C";
Calls calls;

char* __cdecl recordedSetlocale(int category, const char* locale) {
    if (locale) {
        calls.emplace_back(category, locale);
        return nullptr;  // no answer may matter
    }
    return const_cast<char*>(currentLocale);
}

std::atomic<int> callsUnderWay;
std::atomic<bool> callsMet;

char* __cdecl slowSetlocale(int, const char*) {
    callsMet = ++callsUnderWay > 1 || callsMet;
    Sleep(1);
    --callsUnderWay;
    return nullptr;
}

struct CallCase {
    const char* current;
    Calls calls;
};

class LocaleSetterCalls : public testing::Test {
protected:
    LocaleSetterCalls() { calls.clear(); }
    const ZEMO::Test::ImportReplaced replaced{"setlocale", &recordedSetlocale};
};

TEST_F(LocaleSetterCalls, EachForm_LanguageKeptAndCodePageReplaced) {
    const CallCase cases[] = {
        {"C", {{0, ".UTF8"}}},
        {"English_United States.1252", {{0, "English_United States.UTF8"}}},
        {"Korean", {{0, "Korean.UTF8"}}},
        {"Korean_Korea.utf8", {{0, "Korean_Korea.UTF8"}}},
        {"", {{0, ".UTF8"}}},
        {"C.949", {}},
        {"LC_COLLATE=C;LC_CTYPE=Korean_Korea.949;LC_MONETARY=C;LC_NUMERIC=C;LC_TIME=C",
         {{0, ".UTF8"}, {2, "Korean_Korea.UTF8"}}},
        {"LC_COLLATE=a.1;LC_CTYPE=b.2;LC_MONETARY=c.3;LC_NUMERIC=d.4;LC_TIME=e.5",
         {{0, ".UTF8"}, {1, "a.UTF8"}, {2, "b.UTF8"}, {3, "c.UTF8"}, {4, "d.UTF8"}, {5, "e.UTF8"}}},
        {"LC_OTHER=Korean_Korea.949;LC_TIME=Korean", {{0, ".UTF8"}, {5, "Korean.UTF8"}}},
    };
    ASSERT_EQ(std::size(cases), 9u);
    for (const CallCase& c : cases) {
        calls.clear();
        currentLocale = c.current;
        LocaleSetter().setUTF8PreservePreSettedLocale();
        EXPECT_EQ(calls, c.calls) << c.current;
    }
}

TEST_F(LocaleSetterCalls, RuntimeThatTellsNothing_PlainUtf8) {
    currentLocale = nullptr;
    EXPECT_NO_THROW(LocaleSetter().setUTF8PreservePreSettedLocale());
    EXPECT_EQ(calls, (Calls{{0, ".UTF8"}}));
}

TEST(LocaleSetterThreads, SetterAndPlainUtf8AtOnce_RuntimeIsAskedByOneAtATime) {
    const ZEMO::Test::ImportReplaced slow{"setlocale", &slowSetlocale};
    callsMet = false;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([thread] {
                for (int i = 0; i < 20; ++i) {
                    thread % 2 ? Core::setUserLocaleInUtf8() : LocaleSetter().setUTF8PreservePreSettedLocale();
                }
            });
        }
    }
    EXPECT_FALSE(callsMet) << "the text that one reads may be freed by the other";
}

TEST_F(LocaleSetterCalls, Assignments_DoNothing) {
    LocaleSetter first;
    LocaleSetter second;
    EXPECT_EQ(&(first = second), &first);
    EXPECT_EQ(&(first = std::move(second)), &first);
    EXPECT_TRUE(calls.empty());
}

// --- the real runtime ---

/// The locale of a category at one of the probe's three moments; its code page in one spelling.
std::string localeAt(const std::vector<std::string>& lines, const std::string& when, const std::string& category) {
    const std::string start = when + " " + category + "=";
    for (const std::string& line : lines) {
        if (!line.starts_with(start)) continue;
        std::string locale = line.substr(start.size());
        for (const std::string spelling : {".65001", ".UTF8", ".UTF-8", ".utf-8"})
            if (locale.ends_with(spelling)) locale = locale.substr(0, locale.size() - spelling.size()) + ".utf8";
        return locale;
    }
    return "(missing)";
}

constexpr const char* kCategories[] = {"LC_COLLATE", "LC_CTYPE", "LC_MONETARY", "LC_NUMERIC", "LC_TIME"};

struct ProbeCase {
    const char* what;
    std::vector<std::wstring> chosen;
    const char* after[5];  ///< in the order of kCategories; null: the user's own language
};

TEST(LocaleSetterProcess, EachChoiceOfAGame_KeepsItsLanguagesInUtf8) {
    const ProbeCase cases[] = {
        {"nothing chosen", {}, {nullptr, nullptr, nullptr, nullptr, nullptr}},
        {"C by name", {L"LC_ALL=C"}, {nullptr, nullptr, nullptr, nullptr, nullptr}},
        {"English",
         {L"LC_ALL=English_United States.1252"},
         {"English_United States.utf8", "English_United States.utf8", "English_United States.utf8",
          "English_United States.utf8", "English_United States.utf8"}},
        {"Korean",
         {L"LC_ALL=Korean"},
         {"Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8"}},
        {"only the characters",
         {L"LC_CTYPE=Korean_Korea.949"},
         {nullptr, "Korean_Korea.utf8", nullptr, nullptr, nullptr}},
        {"several languages",
         {L"LC_COLLATE=German_Germany.1252", L"LC_NUMERIC=French_France.1252", L"LC_TIME=Japanese_Japan.932"},
         {"German_Germany.utf8", nullptr, nullptr, "French_France.utf8", "Japanese_Japan.utf8"}},
        {"UTF-8 already",
         {L"LC_ALL=Korean_Korea.UTF8"},
         {"Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8", "Korean_Korea.utf8"}},
    };
    ASSERT_EQ(std::size(cases), 7u);
    const auto plain = ZEMO::Test::runHelper(ZEMO::Test::helperPath(L"locale_probe.exe"), {L"LC_ALL=.UTF8"});
    const std::string own = localeAt(plain, "before", "LC_CTYPE");
    ASSERT_TRUE(own.ends_with(".utf8")) << own;
    for (const ProbeCase& c : cases) {
        const auto lines = ZEMO::Test::runHelper(ZEMO::Test::helperPath(L"locale_probe.exe"), c.chosen);
        for (size_t i = 0; i < std::size(kCategories); ++i) {
            const std::string expected = c.after[i] ? c.after[i] : own;
            EXPECT_EQ(localeAt(lines, "after", kCategories[i]), expected) << c.what << " " << kCategories[i];
            EXPECT_EQ(localeAt(lines, "again", kCategories[i]), expected) << c.what << " " << kCategories[i];
        }
        EXPECT_NE(std::find(lines.begin(), lines.end(), "narrow text is UTF-8"), lines.end())
            << c.what << testing::PrintToString(lines);
        for (const std::string& line : lines) EXPECT_FALSE(line.starts_with("refused")) << line;
    }
}

}  // namespace
}  // namespace ZEMO::UI
