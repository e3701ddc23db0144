// Chooses locales as a game would, makes them UTF-8, and tells what the runtime says then. A process of its own,
// because a locale belongs to the whole process.
//
//   locale_probe CATEGORY=LOCALE...     CATEGORY is LC_ALL, LC_COLLATE, ...
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "zemo/locale_setter.h"

namespace {

struct Category {
    const char* name;
    int value;
};
constexpr Category kCategories[] = {{"LC_ALL", LC_ALL},           {"LC_COLLATE", LC_COLLATE}, {"LC_CTYPE", LC_CTYPE},
                                    {"LC_MONETARY", LC_MONETARY}, {"LC_NUMERIC", LC_NUMERIC}, {"LC_TIME", LC_TIME}};

bool choose(const std::string& argument) {
    const size_t equals = argument.find('=');
    for (const Category& category : kCategories)
        if (argument.compare(0, equals, category.name) == 0)
            return std::setlocale(category.value, argument.substr(equals + 1).c_str()) != nullptr;
    return false;
}

void tell(const char* when) {
    for (const Category& category : kCategories)
        std::printf("%s %s=%s\n", when, category.name, std::setlocale(category.value, nullptr));
}

}  // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (!choose(argv[i])) std::printf("refused %s\n", argv[i]);
    tell("before");
    ZEMO::UI::LocaleSetter setter;
    setter.setUTF8PreservePreSettedLocale();
    tell("after");
    wchar_t wide[4] = {};
    const size_t characters = std::mbstowcs(wide, "\xEA\xB0\x80", 3);
    std::printf("narrow text is %s\n", characters == 1 && wide[0] == 0xAC00 ? "UTF-8" : "something else");
    setter.setUTF8PreservePreSettedLocale();
    tell("again");
    return 0;
}
