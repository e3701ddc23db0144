#include "api/file_selection.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

namespace ZEMO::UI {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using Files = std::vector<std::wstring>;

struct FilterCase {
    std::vector<std::string> extensions;
    std::string list;
};

TEST(FileSelection, FilterList_NameAndPatternForEachExtension) {
    const FilterCase cases[] = {
        {{"*"}, "*\0*.*\0"s}, {{"png", "jpg"}, "png\0*.png\0jpg\0*.jpg\0"s}, {{}, ""s},
        {{""}, "\0*.\0"s},    {{"tar.gz"}, "tar.gz\0*.tar.gz\0"s},           {{"그림"}, "그림\0*.그림\0"s},
    };
    ASSERT_EQ(std::size(cases), 6u);
    for (const FilterCase& c : cases) EXPECT_EQ(fileFilterList(c.extensions), c.list);
}

struct AnswerCase {
    const char* what;
    std::wstring_view answer;
    size_t fileOffset;
    bool multiSelect;
    Files files;
};

TEST(FileSelection, Answers_BecomePathsInTheirAccumulatedForm) {
    const AnswerCase cases[] = {
        {"one file", L"C:\\pics\\a.png\0\0"sv, 8, false, {L"C:\\pics\\a.png"}},
        {"one file, several allowed", L"C:\\pics\\a.png\0\0"sv, 8, true, {L"C:\\pics\\a.png"}},
        {"one file of the root, several allowed", L"C:\\a.png\0\0"sv, 3, true, {L"C:\\a.png"}},
        {"two files",
         L"C:\\pics\0a.png\0b.png\0\0"sv,
         8,
         true,
         {L"C:\\pics\\a.png", L"C:\\pics\\a.pngC:\\pics\\b.png"}},
        {"three files",
         L"C:\\p\0a\0b\0c\0\0"sv,
         5,
         true,
         {L"C:\\p\\a", L"C:\\p\\aC:\\p\\b", L"C:\\p\\aC:\\p\\bC:\\p\\c"}},
        {"two files of the root", L"C:\\\0a\0b\0\0"sv, 4, true, {L"C:\\a", L"C:\\aC:\\b"}},
        {"Korean names",
         L"C:\\그림\0가.png\0나 다.png\0\0"sv,
         6,
         true,
         {L"C:\\그림\\가.png", L"C:\\그림\\가.pngC:\\그림\\나 다.png"}},
        {"a share",
         L"\\\\host\\share\0a\0b\0\0"sv,
         13,
         true,
         {L"\\\\host\\share\\a", L"\\\\host\\share\\a\\\\host\\share\\b"}},
        {"only the first of a list when one was asked for", L"C:\\pics\0a.png\0\0"sv, 8, false, {L"C:\\pics"}},
        {"nothing at the offset", L"C:\\pics\0\0"sv, 8, true, {}},
        {"all zero", L"\0\0\0\0"sv, 0, true, {}},
        {"offset behind the buffer", L"C:\\a"sv, 40, true, {}},
        {"list that fills the buffer", L"C:\0a\0b"sv, 3, true, {L"C:\\a", L"C:\\aC:\\b"}},
    };
    ASSERT_EQ(std::size(cases), 13u);
    for (const AnswerCase& c : cases)
        EXPECT_EQ(selectedFiles(c.answer, c.fileOffset, c.multiSelect), c.files) << c.what;
}

TEST(FileSelection, ManyLongNames_AccumulateWithoutEnd) {
    std::wstring answer = L"C:\\"s + std::wstring(200, L'd') + L'\0';
    const size_t offset = answer.size();
    std::wstring expected;
    for (wchar_t name = L'a'; name <= L'j'; ++name) {
        answer += std::wstring(20, name) + L'\0';
        expected += L"C:\\"s + std::wstring(200, L'd') + L'\\' + std::wstring(20, name);
    }
    const Files files = selectedFiles(answer + L'\0', offset, true);
    ASSERT_EQ(files.size(), 10u);
    EXPECT_EQ(files.back(), expected);
}

}  // namespace
}  // namespace ZEMO::UI
