#include "render/custom_cursor_loader.h"

#include <gtest/gtest.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <optional>
#include <thread>

#include "core/geometry.h"
#include "core/module_paths.h"
#include "support/image_bytes.h"
#include "support/import_replaced.h"
#include "support/scratch_directory.h"

namespace ZEMO::UI {
namespace {

using Test::Bytes;
using ZEMO::Test::makeCursorFile;
using ZEMO::Test::makePng;

constexpr wchar_t kCur[] = L"resources/customcursor.cur";
constexpr wchar_t kIco[] = L"resources/customcursor.ico";
constexpr wchar_t kCursorBesideProgram[] = L"ZEMO_TEST_CURSOR_BESIDE_PROGRAM";
constexpr wchar_t kPng[] = L"resources/customcursor.png";

uint32_t orange(int, int) { return 0xFFFF8040; }

// Each kind has a size of its own, which tells whose cursor was loaded.
Bytes goodCur() { return makeCursorFile(2, {{32, 32, orange, 5, 7}}); }
Bytes goodIco() { return makeCursorFile(1, {{24, 24, orange}}); }
Bytes goodPng() { return makePng(20, 20, orange); }

struct Loaded {
    Size size;
    Point hotSpot;
    bool cursor = false;
    std::vector<uint32_t> pixels;  // 0xAARRGGBB
};

using UniqueBitmap = Core::UniqueHandle<HBITMAP, &DeleteObject>;

std::optional<Loaded> describe(HCURSOR handle) {
    if (!handle) return std::nullopt;
    ICONINFO info{};
    if (!GetIconInfo(handle, &info)) return std::nullopt;
    const UniqueBitmap mask(info.hbmMask);
    const UniqueBitmap colour(info.hbmColor);
    BITMAP bitmap{};
    GetObjectW(colour.get(), sizeof bitmap, &bitmap);
    Loaded loaded;
    loaded.size = {bitmap.bmWidth, bitmap.bmHeight};
    loaded.hotSpot = {static_cast<int>(info.xHotspot), static_cast<int>(info.yHotspot)};
    loaded.cursor = !info.fIcon;
    BITMAPINFO layout{};
    layout.bmiHeader.biSize = sizeof layout.bmiHeader;
    layout.bmiHeader.biWidth = bitmap.bmWidth;
    layout.bmiHeader.biHeight = -bitmap.bmHeight;
    layout.bmiHeader.biPlanes = 1;
    layout.bmiHeader.biBitCount = 32;
    loaded.pixels.resize(static_cast<size_t>(bitmap.bmWidth) * bitmap.bmHeight);
    const Core::WindowDc screen(nullptr);
    GetDIBits(screen.get(), colour.get(), 0, static_cast<UINT>(bitmap.bmHeight), loaded.pixels.data(), &layout,
              DIB_RGB_COLORS);
    return loaded;
}

// Where this program seems to lie, as far as it asks for the module that holds the loader.
std::wstring modulePath;
DWORD WINAPI namedModule(HMODULE module, wchar_t* path, DWORD size) {
    if (!module) {
        return ZEMO::Test::systemFunction<decltype(GetModuleFileNameW)>(L"kernel32.dll", "GetModuleFileNameW")(
            module, path, size);
    }
    path[modulePath.copy(path, size - 1)] = L'\0';
    return static_cast<DWORD>(modulePath.size());
}

class CustomCursor : public testing::Test {
protected:
    CustomCursor() { modulePath = directory.path().wstring() + L"\\library.dll"; }

    ZEMO::Test::ScratchDirectory directory;
    CustomCursorLoader loader;
    const ZEMO::Test::ImportReplaced place{"GetModuleFileNameW", &namedModule};

    std::optional<Loaded> load() { return describe(loader.load()); }
    Size loadedSize() {
        const auto loaded = load();
        return loaded ? loaded->size : Size{};
    }
};

}  // namespace

TEST_F(CustomCursor, NoFile_Null) { EXPECT_EQ(loader.load(), nullptr); }

TEST_F(CustomCursor, AllThreePresent_CurWins) {
    directory.write(kCur, goodCur());
    directory.write(kIco, goodIco());
    directory.write(kPng, goodPng());
    EXPECT_EQ(loadedSize(), (Size{32, 32}));
}

TEST_F(CustomCursor, IcoAndPngPresent_IcoWins) {
    directory.write(kIco, goodIco());
    directory.write(kPng, goodPng());
    EXPECT_EQ(loadedSize(), (Size{24, 24}));
}

TEST_F(CustomCursor, Cur_KeepsTheHotSpotOfItsFile) {
    directory.write(kCur, goodCur());
    const auto loaded = load();
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->cursor);
    EXPECT_EQ(loaded->hotSpot, (Point{5, 7}));
    EXPECT_EQ(loaded->pixels.at(0) & 0xFFFFFF, 0xFF8040u);
}

TEST_F(CustomCursor, CurOfIconType_SkippedAndIcoTried) {
    directory.write(kCur, makeCursorFile(1, {{32, 32, orange}}));
    directory.write(kIco, goodIco());
    EXPECT_EQ(loadedSize(), (Size{24, 24}));
}

TEST_F(CustomCursor, Ico_BecomesACursorWithHotSpotTopLeft) {
    directory.write(kIco, goodIco());
    const auto loaded = load();
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->cursor);
    EXPECT_EQ(loaded->hotSpot, (Point{0, 0}));
    EXPECT_EQ(loaded->size, (Size{24, 24}));
    EXPECT_EQ(loaded->pixels.at(24 * 12 + 12), 0xFFFF8040u);
}

TEST_F(CustomCursor, Png_PixelsAndAlphaKeptHotSpotTopLeft) {
    const auto paint = [](int x, int y) { return x < 10 ? 0xFF102030u : y < 10 ? 0x00000000u : 0x80FF0000u; };
    directory.write(kPng, makePng(20, 30, paint));
    const auto loaded = load();
    ASSERT_TRUE(loaded);
    EXPECT_TRUE(loaded->cursor);
    EXPECT_EQ(loaded->hotSpot, (Point{0, 0}));
    ASSERT_EQ(loaded->size, (Size{20, 30}));
    EXPECT_EQ(loaded->pixels.at(0), 0xFF102030u);
    EXPECT_EQ(loaded->pixels.at(15), 0x00000000u);
    EXPECT_EQ(loaded->pixels.at(20 * 29 + 19), 0x80FF0000u);
}

TEST_F(CustomCursor, PngSizes_SixteenTo256OnEachSide) {
    const struct {
        int width;
        int height;
        bool taken;
    } cases[] = {{16, 16, true},    {256, 256, true},  {16, 256, true}, {256, 16, true},
                 {15, 16, false},   {16, 15, false},   {15, 15, false}, {257, 256, false},
                 {256, 257, false}, {257, 257, false}, {1, 1, false},   {17, 255, true}};
    for (const auto& one : cases) {
        directory.write(kPng, makePng(one.width, one.height, orange));
        EXPECT_EQ(loadedSize(), one.taken ? (Size{one.width, one.height}) : Size{})
            << one.width << " by " << one.height;
    }
    EXPECT_EQ(std::size(cases), 12u);
}

TEST_F(CustomCursor, ExtensionNotExactlyAsNamed_NotRecognised) {
    const struct {
        const wchar_t* name;
        Bytes bytes;
        bool taken;
    } cases[] = {{L"a.cur", goodCur(), true},      {L"b.CUR", goodCur(), false},    {L"c.Cur", goodCur(), false},
                 {L"d.ico", goodIco(), true},      {L"e.ICO", goodIco(), false},    {L"f.png", goodPng(), true},
                 {L"g.PNG", goodPng(), false},     {L"h.cursor", goodCur(), false}, {L"i", goodCur(), false},
                 {L"j.cur.bak", goodCur(), false}, {L"k.PNG.cur", goodCur(), true}};
    for (const auto& one : cases) {
        const auto file = directory.write(one.name, one.bytes);
        EXPECT_EQ(describe(CustomCursorLoader::loadCandidate(file.wstring(), 0).get()).has_value(), one.taken) << file;
    }
    EXPECT_EQ(std::size(cases), 11u);
}

TEST_F(CustomCursor, SizeAskedFor_MustBeInTheDirectoryOfTheFile) {
    const std::wstring cur = directory.write(L"a.cur", goodCur()).wstring();
    const std::wstring ico = directory.write(L"a.ico", goodIco()).wstring();
    EXPECT_TRUE(CustomCursorLoader::loadCandidate(cur, 32));
    EXPECT_FALSE(CustomCursorLoader::loadCandidate(cur, 24));
    EXPECT_TRUE(CustomCursorLoader::loadCandidate(ico, 24));
    EXPECT_FALSE(CustomCursorLoader::loadCandidate(ico, 32));
}

// A status error other than a missing path and a read error can't be made with real files everywhere: Wine tells of any
// failed status as of a missing path and does not keep a locked part of a file from being read. So the calls of the C
// runtime that ask for them are answered here, for the files in question only.
#ifdef __MINGW32__

std::wstring statusFails;
decltype(_wstat64)* systemStat = nullptr;
int __cdecl failingStat(const wchar_t* path, struct _stat64* result) {
    if (path != statusFails) return systemStat(path, result);
    errno = EACCES;
    return -1;
}

TEST_F(CustomCursor, StatusThatCannotBeTold_ThrowsExists) {
    directory.write(kCur, goodCur());
    directory.write(kIco, goodIco());
    systemStat = ZEMO::Test::systemFunction<decltype(_wstat64)>(L"ucrtbase.dll", "_wstat64");
    statusFails = directory.path().wstring() + L"\\" + kIco;
    const ZEMO::Test::ImportReplaced replaced("_wstat64", failingStat);
    EXPECT_EQ(loadedSize(), (Size{32, 32}));  // never came to the second candidate
    std::filesystem::remove(directory.path() / kCur);
    try {
        loader.load();
        ADD_FAILURE() << "did not throw";
    } catch (const std::filesystem::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("exists"), std::string::npos) << error.what();
        EXPECT_EQ(error.code(), std::errc::permission_denied);
        EXPECT_EQ(error.path1(), statusFails);
    }
}

// A module whose path is longer than is asked for; the program's own path is the real one.
decltype(GetModuleFileNameW)* systemModuleFileName = nullptr;
DWORD WINAPI endlessModulePath(HMODULE module, wchar_t* path, DWORD size) {
    if (!module) return systemModuleFileName(module, path, size);
    const std::wstring other = std::filesystem::temp_directory_path().wstring() + L"\\somewhere else\\library.dll";
    std::wmemcpy(path, other.c_str(), other.size() + 1);
    return size;
}

TEST_F(CustomCursor, PathOfTheModuleTooLong_LooksBesideTheProgram) {
    wchar_t own[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameW(nullptr, own, MAX_PATH), 0u);
    const auto elsewhere = std::filesystem::temp_directory_path() / L"somewhere else" / L"resources";
    systemModuleFileName =
        ZEMO::Test::systemFunction<decltype(GetModuleFileNameW)>(L"kernel32.dll", "GetModuleFileNameW");
    const ZEMO::Test::ImportReplaced replaced("GetModuleFileNameW", endlessModulePath);
    const auto asked = [] {
        CustomCursorLoader besideTheModule;
        return besideTheModule.load() != nullptr;
    };
    const bool besideProgram = asked();
    std::filesystem::create_directories(elsewhere);
    std::filesystem::copy_file(directory.write(kPng, goodPng()), elsewhere / L"customcursor.png",
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(asked(), besideProgram) << "half a path is nobody's";
    std::filesystem::remove_all(elsewhere.parent_path());
}

int readsToFail = 0;
int goodReadsFirst = 0;
decltype(_read)* systemRead = nullptr;
int __cdecl failingRead(int file, void* to, unsigned size) {
    if (readsToFail == 0) return systemRead(file, to, size);
    if (goodReadsFirst > 0) {
        --goodReadsFirst;
        return systemRead(file, to, size);
    }
    --readsToFail;
    errno = EIO;
    return -1;
}

TEST_F(CustomCursor, CandidateThatCannotBeRead_CountsAsEmptyAndTheNextIsTried) {
    systemRead = ZEMO::Test::systemFunction<decltype(_read)>(L"ucrtbase.dll", "_read");
    const ZEMO::Test::ImportReplaced replaced("_read", failingRead);
    directory.write(kCur, goodCur());
    directory.write(kIco, goodIco());
    readsToFail = 1;
    EXPECT_EQ(loadedSize(), (Size{24, 24}));
    EXPECT_EQ(readsToFail, 0);
    EXPECT_EQ(loadedSize(), (Size{32, 32}));
    goodReadsFirst = 1;
    readsToFail = 1;
    EXPECT_EQ(loadedSize(), (Size{24, 24})) << "a file that is read in part only";
    EXPECT_EQ(readsToFail, 0);
}

#endif

TEST_F(CustomCursor, DirectoryWithTheNameOfACandidate_PassedOver) {
    std::filesystem::create_directories(directory.path() / kCur);
    std::filesystem::create_directories(directory.path() / kIco);
    directory.write(kPng, goodPng());
    EXPECT_EQ(loadedSize(), (Size{20, 20}));
}

TEST_F(CustomCursor, LoadedAgain_FollowsTheFiles) {
    directory.write(kCur, goodCur());
    EXPECT_EQ(loadedSize(), (Size{32, 32}));
    std::filesystem::remove(directory.path() / kCur);
    EXPECT_EQ(loader.load(), nullptr);
}

TEST_F(CustomCursor, AfterALoad_NoFileIsHeldOpen) {
    for (const auto& [name, bytes] : {std::pair{kCur, goodCur()}, {kIco, goodIco()}, {kPng, goodPng()}}) {
        const auto file = directory.write(name, bytes);
        ASSERT_NE(loader.load(), nullptr);
        const Core::UniqueFileHandle alone(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr,
                                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(alone) << file.filename() << " error " << GetLastError();
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }
}

TEST_F(CustomCursor, LoaderGone_CursorDestroyed) {
    directory.write(kCur, goodCur());
    HCURSOR handle = nullptr;
    {
        CustomCursorLoader shortLived;
        handle = shortLived.load();
        ASSERT_TRUE(describe(handle));
    }
    EXPECT_FALSE(describe(handle));
}

TEST_F(CustomCursor, TwoThreadsAtATime_BothGetTheirPng) {
    directory.write(kPng, goodPng());
    int taken[2] = {};
    const auto work = [&](int& count) {
        for (int i = 0; i < 20; ++i) {
            CustomCursorLoader own;
            count += describe(own.load()).has_value();
        }
    };
    std::thread other(work, std::ref(taken[1]));
    work(taken[0]);
    other.join();
    EXPECT_EQ(taken[0], 20);
    EXPECT_EQ(taken[1], 20);
}

// A good .png always waits behind the file in question: either its own cursor comes, or the .png's.
TEST_F(CustomCursor, BrokenAndHostileFiles_NextCandidateAndNoCrash) {
    const auto patched = [](Bytes bytes, std::initializer_list<std::pair<size_t, uint8_t>> changes) {
        for (const auto& [offset, value] : changes) bytes.at(offset) = value;
        return bytes;
    };
    const auto cut = [](Bytes bytes, size_t length) {
        bytes.resize(length);
        return bytes;
    };
    const Bytes cur = goodCur();
    const Size ownCur{32, 32};
    const Size fromPng{20, 20};
    const struct {
        const char* name;
        const wchar_t* file;
        Bytes bytes;
        Size expected;
    } cases[] = {
        {"good", kCur, cur, ownCur},
        {"good icon", kIco, goodIco(), {24, 24}},
        {"empty", kCur, {}, fromPng},
        {"empty icon", kIco, {}, fromPng},
        {"text", kCur, {'h', 'e', 'l', 'l', 'o', ' ', 'w', 'o', 'r', 'l', 'd', '!', '!', '!'}, fromPng},
        {"a PNG by another name", kCur, goodPng(), fromPng},
        {"five bytes", kCur, cut(cur, 5), fromPng},
        {"header alone", kCur, cut(cur, 6), fromPng},
        {"entry cut", kCur, cut(cur, 21), fromPng},
        {"directory alone", kCur, cut(cur, 22), fromPng},
        {"image header cut", kCur, cut(cur, 40), fromPng},
        {"pixels cut", kCur, cut(cur, 600), fromPng},
        {"one byte", kIco, {0}, fromPng},
        {"reserved not 0", kCur, patched(cur, {{0, 1}}), fromPng},
        {"icon type in a cursor file", kCur, patched(cur, {{2, 1}}), fromPng},
        {"cursor type in an icon file", kIco, patched(goodIco(), {{2, 2}}), fromPng},
        {"unknown type", kCur, patched(cur, {{2, 3}}), fromPng},
        {"count 0", kCur, patched(cur, {{4, 0}}), fromPng},
        {"image offset past the end", kCur, patched(cur, {{20, 255}}), fromPng},
        {"image offset 0xFFFFFFFF", kCur, patched(cur, {{18, 255}, {19, 255}, {20, 255}, {21, 255}}), fromPng},
        {"image header of a size unknown", kCur, patched(cur, {{22, 1}}), fromPng},
        {"bits a pixel 255", kCur, patched(cur, {{36, 255}}), fromPng},
        {"width negative", kCur, patched(cur, {{26, 0}, {27, 0}, {28, 0}, {29, 128}}), fromPng},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.name);
        directory.write(kPng, goodPng());
        directory.write(one.file, one.bytes);
        EXPECT_EQ(loadedSize(), one.expected);
        std::filesystem::remove(directory.path() / one.file);
    }
    EXPECT_EQ(std::size(cases), 23u);
}

TEST_F(CustomCursor, BrokenPngs_Null) {
    Bytes cut = goodPng();
    cut.resize(cut.size() / 2);
    Bytes hugeSize = goodPng();
    hugeSize[16] = 0x7F;
    Bytes wrongCheck = goodPng();
    wrongCheck[17] = 1;
    for (const Bytes& bytes : {Bytes{}, Bytes{0x89, 'P', 'N', 'G'}, hugeSize, wrongCheck, Bytes(1000, 0xAA)}) {
        directory.write(kPng, bytes);
        EXPECT_EQ(loader.load(), nullptr) << bytes.size();
    }
    directory.write(kPng, cut);  // a decoder may show what there is; it must not crash
    loader.load();
}

// Each byte of the directory and of the image header in turn becomes one of the values that break readers. What the
// system's loader makes of that is its own affair: its cursor or the next candidate's, and never nothing.
TEST_F(CustomCursor, EveryHeaderByteDamaged_SomeCursorAndNoCrash) {
    directory.write(kPng, goodPng());
    const Bytes cur = goodCur();
    for (size_t offset = 0; offset < 62; ++offset) {
        for (const uint8_t value : Bytes{0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            Bytes damaged = cur;
            damaged[offset] = value;
            directory.write(kCur, damaged);
            ASSERT_TRUE(load()) << "byte " << offset << " set to " << int{value};
        }
    }
}

// Beside the test program lies the library's own tree, which brings no cursor. The test below runs this one a second
// time in a copy of the program that has a cursor beside it, and says so in the environment.
TEST(CustomCursorDefault, NoBaseGiven_FindsWhatLiesBesideThisProgram) {
    CustomCursorLoader loader;
    const auto loaded = describe(loader.load());
    ASSERT_EQ(loaded.has_value(), GetEnvironmentVariableW(kCursorBesideProgram, nullptr, 0) != 0);
    if (loaded) {
        EXPECT_EQ(loaded->size, (Size{20, 20}));
    }
}

// A copy of this program in a directory of its own has its own place to look at; the working directory is another.
TEST_F(CustomCursor, NoBaseGiven_LooksBesideTheModule) {
    wchar_t own[MAX_PATH] = {};
    ASSERT_NE(GetModuleFileNameW(nullptr, own, MAX_PATH), 0u);
    const std::filesystem::path copy = directory.path() / L"copy.exe";
    std::filesystem::copy_file(own, copy);
    directory.write(kPng, goodPng());
    std::wstring command = L"\"" + copy.wstring() + L"\" --gtest_filter=CustomCursorDefault.*";
    SetEnvironmentVariableW(kCursorBesideProgram, L"1");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    const BOOL created =
        CreateProcessW(copy.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    const DWORD error = GetLastError();
    SetEnvironmentVariableW(kCursorBesideProgram, nullptr);
    ASSERT_TRUE(created) << error;
    const Core::UniqueKernelHandle thread(process.hThread);
    const Core::UniqueKernelHandle child(process.hProcess);
    if (WaitForSingleObject(child.get(), 60'000) != WAIT_OBJECT_0) {
        TerminateProcess(child.get(), 1);
        WaitForSingleObject(child.get(), 10'000);
        FAIL() << "the copy did not end";
    }
    DWORD code = ~0u;
    GetExitCodeProcess(child.get(), &code);
    EXPECT_EQ(code, 0u);
}

}  // namespace ZEMO::UI
