#include "core/locale_names.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace ZEMO::Core {
namespace {

using Categories = std::vector<std::pair<std::string, std::string>>;

TEST(LocaleNames, CodePage_BecomesUtf8) {
    const struct {
        const char *locale, *utf8;
    } cases[] = {{"English_United States.1252", "English_United States.UTF8"},
                 {"Korean", "Korean.UTF8"},
                 {"Korean_Korea.949", "Korean_Korea.UTF8"},
                 {"Korean_Korea.UTF8", "Korean_Korea.UTF8"},
                 {"Korean_Korea.utf8", "Korean_Korea.UTF8"},
                 {"Korean_Korea.65001", "Korean_Korea.UTF8"},
                 {"ko-KR", "ko-KR.UTF8"},
                 {"a.b.c", "a.UTF8"},
                 {".UTF8", ".UTF8"},
                 {"", ".UTF8"},
                 {"C", ""},
                 {"C.949", ""},
                 {"c", "c.UTF8"},
                 {"Chinese", "Chinese.UTF8"}};
    ASSERT_EQ(std::size(cases), 14u);
    for (const auto& c : cases) EXPECT_EQ(utf8LocaleName(c.locale), c.utf8) << c.locale;
}

TEST(LocaleNames, EqualsSign_TellsTheFormWithCategories) {
    EXPECT_TRUE(isLocalePerCategory("LC_COLLATE=C;LC_CTYPE=Korean_Korea.949"));
    EXPECT_TRUE(isLocalePerCategory("="));
    EXPECT_FALSE(isLocalePerCategory("Korean_Korea.949"));
    EXPECT_FALSE(isLocalePerCategory("C;D"));
    EXPECT_FALSE(isLocalePerCategory(""));
}

TEST(LocaleNames, Categories_InTheOrderOfTheText) {
    EXPECT_EQ(splitLocaleCategories("LC_COLLATE=C;LC_CTYPE=Korean_Korea.949;LC_MONETARY=C;LC_NUMERIC=C;LC_TIME=C"),
              (Categories{{"LC_COLLATE", "C"},
                          {"LC_CTYPE", "Korean_Korea.949"},
                          {"LC_MONETARY", "C"},
                          {"LC_NUMERIC", "C"},
                          {"LC_TIME", "C"}}));
    EXPECT_EQ(splitLocaleCategories("A=1;;x;B=;=2;"), (Categories{{"A", "1"}, {"B", ""}, {"", "2"}}));
    EXPECT_EQ(splitLocaleCategories("A=b=c"), (Categories{{"A", "b=c"}}));
    EXPECT_EQ(splitLocaleCategories(""), Categories{});
}

}  // namespace
}  // namespace ZEMO::Core
