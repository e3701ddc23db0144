#include "game_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <ostream>

#include "engine_files_to_ship.h"
#include "versions.h"

// Each way in which a game's folder can be wrong, made in a whole copy of the folder that games ship.
namespace ZEMO::Doctor {

void PrintTo(const Finding& finding, std::ostream* out) {
    *out << (finding.severity == Severity::Error ? "error " : "warning ") << testing::PrintToString(finding.what) << " "
         << testing::PrintToString(finding.text);
}

}  // namespace ZEMO::Doctor

namespace ZEMO::Test {
namespace {

namespace fs = std::filesystem;
using Doctor::Finding;
using Doctor::Severity;
using testing::ElementsAre;
using testing::IsEmpty;

fs::path builtFolder() {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return fs::path(program).parent_path();
}

const std::wstring kIcon = L"resources\\html\\x_button\\common-btn-icon-webview-x@2x.png";

std::vector<std::wstring> shippedFiles() {
    std::vector<std::wstring> files = {L"ZEMOUIFramework.dll", L"resources\\zemowindow.ico", kIcon};
    files.insert(files.end(), std::begin(kEngineFilesToShip), std::end(kEngineFilesToShip));
    for (const wchar_t* file :
         {L"cef.subprocess.exe", L"d3dcompiler_47.dll", L"locales\\en-US.pak", L"locales\\ko.pak"}) {
        files.push_back(std::wstring(L"cefsubprocess\\") + file);
    }
    return files;
}

bool isProcessThere(const std::wstring& id) {
    const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, std::stoul(id));
    return process && CloseHandle(process);
}

/// This program's, by its process's number. Folders of programs that have ended may still lie beside it: a link of a
/// library can't be removed while a test elsewhere has it loaded.
fs::path placeForFolders() {
    static const fs::path place = [] {
        const fs::path parent = builtFolder().parent_path() / L"doctor";
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(parent, ignored)) {
            if (!isProcessThere(entry.path().filename())) fs::remove_all(entry.path(), ignored);
        }
        return parent / std::to_wstring(GetCurrentProcessId());
    }();
    return place;
}

class ShippedFolder;
using Spoil = std::function<void(ShippedFolder&)>;

/// What a game ships (of its pages and locales what is looked for), as links of the built files, below a name of its
/// own. Gone with the object. It is spoilt before it is filled: a link of a library that some program has loaded can't
/// be removed.
class ShippedFolder {
public:
    explicit ShippedFolder(const std::wstring& name = L"game 게임", const Spoil& spoil = {}) {
        static int number = 0;
        top = placeForFolders() / std::to_wstring(++number);
        folder = top / name;
        if (spoil) spoil(*this);
        for (const std::wstring& file : files) link(file);
    }
    ~ShippedFolder() {
        std::error_code ignored;
        fs::remove_all(top, ignored);
        // Where they are empty.
        fs::remove(top.parent_path(), ignored);
        fs::remove(top.parent_path().parent_path(), ignored);
    }
    ShippedFolder(const ShippedFolder&) = delete;
    ShippedFolder& operator=(const ShippedFolder&) = delete;

    const fs::path& path() const { return folder; }
    void leaveOut(const std::wstring& file) {
        fs::create_directories((folder / file).parent_path());  // which is there without the file
        std::erase_if(files, [&](const auto& each) { return each == file || each.starts_with(file + L"\\"); });
    }

    /// Puts other bytes in the file's place.
    void write(const std::wstring& file, const std::string& bytes) {
        std::ofstream(placeFor(file), std::ios::binary) << bytes;
    }
    void copyFrom(const std::wstring& source, const std::wstring& file) {
        fs::copy_file(builtFolder() / source, placeFor(file));
    }
    void patch(const std::wstring& file, std::streamoff place, char byte) {
        copyFrom(file, file);
        std::fstream stream(folder / file, std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(place);
        stream.put(byte);
    }

private:
    fs::path placeFor(const std::wstring& file) {
        leaveOut(file);
        return folder / file;
    }
    void link(const fs::path& file) const {
        fs::create_directories((folder / file).parent_path());
        if (!CreateHardLinkW((folder / file).c_str(), (builtFolder() / file).c_str(), nullptr)) {
            fs::copy_file(builtFolder() / file, folder / file);
        }
    }

    fs::path top, folder;
    std::vector<std::wstring> files = shippedFiles();
};

std::vector<Finding> examine(const fs::path& folder) { return Doctor::examine(folder, Doctor::kVersions); }

/// The first bytes of a PNG file, as far as its size and kind of pixels.
std::string pngHead(int width, int height, char colourType) {
    std::string head("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16);
    for (const int side : {width, height}) {
        for (const int shift : {24, 16, 8, 0}) head += static_cast<char>(side >> shift & 0xFF);
    }
    return head + '\x08' + colourType + std::string("\0\0\0\0\0\0\0\0\0\0\0IDAT", 15);
}

constexpr char kColour = 2, kColourAndAlpha = 6;

struct WrongFolder {
    const char* name;
    Spoil spoil;
    Finding expected;
};

void PrintTo(const WrongFolder& row, std::ostream* out) { *out << row.name; }

Spoil without(const std::wstring& file) {
    return [file](ShippedFolder& folder) { folder.leaveOut(file); };
}

Spoil with(const std::wstring& file, const std::string& bytes) {
    return [file, bytes](ShippedFolder& folder) { folder.write(file, bytes); };
}

WrongFolder missingOfEngine(const char* name, const std::wstring& file) {
    return {name, without(file), {Severity::Warning, file, L"is missing: the engine's set is not whole"}};
}

WrongFolder missingAndNeeded(const char* name, const std::wstring& file) {
    return {name, without(file), {Severity::Error, file, L"is missing: the engine is not started"}};
}

// Where the header's machine field stands is written in the file itself.
uint32_t headerPlace(const fs::path& program) {
    std::ifstream file(program, std::ios::binary);
    file.seekg(0x3C);
    uint32_t place = 0;
    file.read(reinterpret_cast<char*>(&place), sizeof place);
    return place;
}

void makeOtherPlatform(ShippedFolder& folder) {
    const std::streamoff machine = headerPlace(builtFolder() / L"ZEMOUIFramework.dll") + std::streamoff{4};
    folder.patch(L"ZEMOUIFramework.dll", machine, '\x4C');
}

const std::wstring kOfEngine = L"; these files belong to " + Doctor::kVersions.engine;
const std::wstring kOfLibrary = L"; these files belong to " + Doctor::kVersions.library;

const WrongFolder kWrongFolders[] = {
    missingAndNeeded("EngineLibrary", L"libcef.dll"),
    missingAndNeeded("EngineStarter", L"chrome_elf.dll"),
    missingAndNeeded("UnicodeData", L"icudtl.dat"),
    missingAndNeeded("ScriptSnapshot", L"v8_context_snapshot.bin"),
    missingAndNeeded("EnglishLocale", L"cefsubprocess\\locales\\en-US.pak"),
    missingOfEngine("EngineResources", L"resources.pak"),
    missingOfEngine("Pictures100", L"chrome_100_percent.pak"),
    missingOfEngine("Pictures200", L"chrome_200_percent.pak"),
    missingOfEngine("Snapshot", L"snapshot_blob.bin"),
    missingOfEngine("Gl", L"libEGL.dll"),
    missingOfEngine("GlEs", L"libGLESv2.dll"),
    missingOfEngine("Rasterizer", L"vk_swiftshader.dll"),
    missingOfEngine("RasterizerDescription", L"vk_swiftshader_icd.json"),
    missingOfEngine("VulkanLoader", L"vulkan-1.dll"),
    missingOfEngine("ShaderCompilerOfEngine", L"d3dcompiler_47.dll"),
    {"ShaderCompiler",
     without(L"cefsubprocess\\d3dcompiler_47.dll"),
     {Severity::Warning, L"cefsubprocess\\d3dcompiler_47.dll", L"is missing: the Direct3D renderer draws nothing"}},
    {"KoreanLocale",
     without(L"cefsubprocess\\locales\\ko.pak"),
     {Severity::Warning, L"cefsubprocess\\locales\\ko.pak", L"is missing: the engine's own texts are English"}},
    {"ChildProgram",
     without(L"cefsubprocess\\cef.subprocess.exe"),
     {Severity::Error, L"cefsubprocess\\cef.subprocess.exe", L"is missing: no page can be shown"}},
    {"LocalPages",
     without(L"resources\\html"),
     {Severity::Warning, L"resources\\html",
      L"is missing: neither local pages nor the close button's icon can be shown"}},
    {"WindowIcon",
     without(L"resources\\zemowindow.ico"),
     {Severity::Warning, L"resources\\zemowindow.ico", L"is missing: a view's own window has no icon"}},
    {"CloseIcon", without(kIcon), {Severity::Warning, kIcon, L"is missing: the close button can't be seen"}},

    {"EngineOfAnotherVersion",
     [](ShippedFolder& folder) { folder.copyFrom(L"ZEMOUIFramework.dll", L"libcef.dll"); },
     {Severity::Error, L"libcef.dll", L"has version " + Doctor::kVersions.library + kOfEngine}},
    {"ChildProgramWithoutVersion",
     [](ShippedFolder& folder) { folder.copyFrom(L"zemo_minimal.exe", L"cefsubprocess\\cef.subprocess.exe"); },
     {Severity::Error, L"cefsubprocess\\cef.subprocess.exe", L"has version (none)" + kOfLibrary}},
    {"LibraryCutShort",
     with(L"ZEMOUIFramework.dll", "MZ"),
     {Severity::Error, L"ZEMOUIFramework.dll", L"is no 64-bit program: cut short, or another platform's"}},
    {"LibraryEmpty",
     with(L"ZEMOUIFramework.dll", ""),
     {Severity::Error, L"ZEMOUIFramework.dll", L"is no 64-bit program: cut short, or another platform's"}},
    {"LibraryOfAnotherPlatform",
     makeOtherPlatform,
     {Severity::Error, L"ZEMOUIFramework.dll", L"is no 64-bit program: cut short, or another platform's"}},
    {"HookModuleBroken",
     with(L"ZEMOGraphicsHook.dll", "no program"),
     {Severity::Error, L"ZEMOGraphicsHook.dll", L"is no 64-bit library"}},

    {"CloseIconWithoutAlpha",
     with(kIcon, pngHead(32, 32, kColour)),
     {Severity::Error, kIcon, L"has no alpha channel: the close button is a solid block"}},
    {"CloseIconUnreadable",
     with(kIcon, "no picture"),
     {Severity::Error, kIcon, L"is no picture that can be read: the close button can't be seen"}},
    {"CursorOfAnotherKind",
     with(L"resources\\customcursor.cur", std::string("\0\0\1\0\1\0", 6) + std::string(16, '\0')),
     {Severity::Error, L"resources\\customcursor.cur", L"is not a file of its kind: it is passed over"}},
    {"CursorIconCutShort",
     with(L"resources\\customcursor.ico", std::string("\0\0\1\0\1\0", 6)),
     {Severity::Error, L"resources\\customcursor.ico", L"is not a file of its kind: it is passed over"}},
    {"CursorPictureTooSmall",
     with(L"resources\\customcursor.png", pngHead(15, 16, kColourAndAlpha)),
     {Severity::Error, L"resources\\customcursor.png",
      L"measures 15x16: a side has 16 to 256 pixels, so it is passed over"}},
    {"CursorPictureTooLarge",
     with(L"resources\\customcursor.png", pngHead(256, 257, kColourAndAlpha)),
     {Severity::Error, L"resources\\customcursor.png",
      L"measures 256x257: a side has 16 to 256 pixels, so it is passed over"}},
    {"CursorPictureUnreadable",
     with(L"resources\\customcursor.png", "no picture"),
     {Severity::Error, L"resources\\customcursor.png", L"is no picture that can be read: it is passed over"}},
    {"CursorInCapitals",
     with(L"resources\\CustomCursor.cur", std::string("\0\0\2\0\1\0", 6) + std::string(16, '\0')),
     {Severity::Warning, L"resources\\CustomCursor.cur",
      L"is written with capitals: not found on a file system that tells them apart"}},
    {"CacheShipped",
     with(L"cache\\Local State", "{}"),
     {Severity::Warning, L"cache", L"is what a started game left behind, logins among it: do not ship it"}},
};

class WrongFolders : public testing::TestWithParam<WrongFolder> {};

}  // namespace

TEST_P(WrongFolders, WhatIsWrongIsNamedAndNothingElse) {
    const ShippedFolder folder(L"game 게임", GetParam().spoil);
    EXPECT_THAT(examine(folder.path()), ElementsAre(GetParam().expected));
}

INSTANTIATE_TEST_SUITE_P(Doctor, WrongFolders, testing::ValuesIn(kWrongFolders),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Doctor, FolderAsInstalled_NothingToSay) {
    const ShippedFolder folder;
    EXPECT_THAT(examine(folder.path()), IsEmpty());
}

TEST(Doctor, ChildProgramInFolderOfItsEngineVersion_Found) {
    const ShippedFolder folder;
    const fs::path versioned = folder.path() / (L"cefsubprocess_" + Doctor::kVersions.engine);
    fs::create_directories(versioned);
    fs::rename(folder.path() / L"cefsubprocess" / L"cef.subprocess.exe", versioned / L"cef.subprocess.exe");
    EXPECT_THAT(examine(folder.path()), IsEmpty());
}

TEST(Doctor, PathWithCharactersThatAnAddressReadsOtherwise_IsNamed) {
    for (const wchar_t* name : {L"game #1", L"game %41"}) {
        const ShippedFolder folder(name);
        EXPECT_THAT(examine(folder.path()),
                    ElementsAre(Finding{Severity::Error, L".",
                                        L"has '#' or '%' in its path: local pages in it are not found"}));
    }
}

TEST(Doctor, PathOneCharacterTooDeepForTheChildProgram_IsNamed) {
    constexpr size_t kLongestPath = 259;
    const size_t below = std::wstring(L"\\cefsubprocess\\cef.subprocess.exe").size();
    const fs::path top = builtFolder().parent_path() / (L"doctor-" + std::to_wstring(GetCurrentProcessId()) + L"-deep");
    for (const size_t length : {kLongestPath, kLongestPath + 1}) {
        const fs::path folder = top / std::wstring(length - below - top.wstring().size() - 1, L'd');
        fs::create_directories(folder);  // empty: it is the place that counts
        const Finding tooDeep = {Severity::Error, L".",
                                 L"lies too deep: paths in it reach 260 characters, 259 are possible"};
        EXPECT_EQ(std::ranges::count(examine(folder), tooDeep), length > kLongestPath);
        fs::remove_all(folder);
    }
    fs::remove_all(top);
}

TEST(Doctor, LibraryBelowTheGamesFolder_Found) {
    const ShippedFolder folder(L"game\\bin\\x64");
    const fs::path game = folder.path().parent_path().parent_path();
    EXPECT_THAT(Doctor::libraryFolders(game), ElementsAre(folder.path()));
    EXPECT_THAT(Doctor::libraryFolders(folder.path()), ElementsAre(folder.path()));
}

TEST(Doctor, ExaminedFolder_StaysAsItWas) {
    const ShippedFolder folder;
    const auto count = [&] {
        return std::distance(fs::recursive_directory_iterator(folder.path()), fs::recursive_directory_iterator());
    };
    const auto before = count();
    examine(folder.path());
    EXPECT_EQ(count(), before);
}

}  // namespace ZEMO::Test
