#include "zemo/string_util.h"

#include <gmock/gmock.h>

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace ZEMO::Core {
namespace {

using testing::ElementsAre;
using Bytes = std::vector<unsigned char>;
using namespace std::string_literals;

Bytes toBytes(const std::string& text) { return Bytes(text.begin(), text.end()); }
std::string toText(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

// A copy whose heap block has exactly the size of the text and its NUL, so that a read behind it is seen.
std::string exact(const std::string& text) {
    std::string copy(text);
    copy.shrink_to_fit();
    return copy;
}

// Random inputs come from a fixed seed, which a failure prints; ZEMO_TEST_SEED repeats another one.
unsigned testSeed() {
    const char* given = std::getenv("ZEMO_TEST_SEED");
    return given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : 20261103u;
}

std::string randomBytes(std::mt19937& generator, size_t size) {
    std::string result(size, '\0');
    for (char& c : result) c = static_cast<char>(generator() >> 24);
    return result;
}

struct TextPair {
    std::string data;
    std::string text;
};

}  // namespace

TEST(StringUtilEnums, Values_AreThoseOfTheBoundary) {
    EXPECT_EQ(static_cast<int>(StringSensitive::Sensitive), 0);
    EXPECT_EQ(static_cast<int>(StringSensitive::Insensitive), 1);
    EXPECT_EQ(static_cast<int>(StringUtil::LetterCase::Upper), 0);
    EXPECT_EQ(static_cast<int>(StringUtil::LetterCase::Lower), 1);
}

TEST(StringUtilEnums, AnyValueButZero_ActsAsOne) {
    EXPECT_TRUE(StringUtil::isEqual("aB"s, "Ab"s, static_cast<StringSensitive>(7)));
    EXPECT_TRUE(StringUtil::isEqual("aB"s, "Ab"s, static_cast<StringSensitive>(-1)));
    std::string s = "AbC";
    StringUtil::changeLetterCase(s, static_cast<StringUtil::LetterCase>(2));
    EXPECT_EQ(s, "abc");
}

TEST(StringUtilObject, CopyAndMoveAssignment_ReturnTheObjectItself) {
    StringUtil a, b;
    EXPECT_EQ(&(a = b), &a);
    EXPECT_EQ(&(a = StringUtil()), &a);
}

// RFC 4648, section 10, and bytes that reach the last two letters of the alphabets.
TEST(Base64, KnownVectors_EncodeAndDecodeBothWays) {
    const TextPair cases[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        {"\xFB\xFF", "+/8="},
        {"\xFB\xEF\xBE", "++++"},
        {"\xFF\xFF\xFF", "////"},
        {"\x00"s, "AA=="},
        {"\x00\x00"s, "AAA="},
        {"\x00\x00\x00"s, "AAAA"},
        {"\x14\xFB\x9C\x03\xD9\x7E", "FPucA9l+"},
        {"\x14\xFB\x9C\x03\xD9", "FPucA9k="},
        {"\x14\xFB\x9C\x03", "FPucAw=="},
        {"\xED\x95\x9C\xEA\xB8\x80", "7ZWc6riA"},
    };
    ASSERT_EQ(std::size(cases), 17u);
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(StringUtil::base64Encode(exact(data)), text);
        EXPECT_EQ(StringUtil::base64Encode(toBytes(data)), text);
        EXPECT_EQ(StringUtil::base64DecodeString(exact(text)), data) << text;
        EXPECT_EQ(StringUtil::base64DecodeVector(exact(text)), toBytes(data)) << text;
        EXPECT_EQ(StringUtil::base64URLSafeDecode(exact(text)), data) << text;
    }
}

TEST(Base64, UrlSafeVectors_NoPaddingAndOtherLastLetters) {
    const TextPair cases[] = {
        {"", ""},
        {"f", "Zg"},
        {"fo", "Zm8"},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg"},
        {"fooba", "Zm9vYmE"},
        {"foobar", "Zm9vYmFy"},
        {"\xFB\xFF", "-_8"},
        {"\xFB\xEF\xBE", "----"},
        {"\xFF\xFF\xFF", "____"},
    };
    ASSERT_EQ(std::size(cases), 10u);
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(StringUtil::base64URLSafeEncode(exact(data)), text);
        EXPECT_EQ(StringUtil::base64URLSafeDecode(exact(text)), data) << text;
    }
}

TEST(Base64, DecodingEndsAtTheFirstForeignByte) {
    const TextPair cases[] = {
        {"f", "Zg"},
        {"f", "Zg=="},
        {"f", "Zg="},
        {"f", "Zh=="},  // left-over bits that are not zero are dropped as well
        {"foo", "Zm9v\nZm9v"},
        {"foo", "Zm9v\r\nZm9v"},
        {"foo", "Zm9v Zm9v"},
        {"foo", "Zm9v=Zm9v"},
        {"foo", "Zm9v\0Zm9v"s},
        {"foo", "Zm9v\xFFZm9v"},
        {"foo", "Zm9v\x80"},
        {"foo", "Zm9vZ"},
        {"f", "Zm=v"},
        {"fo", "Zm9=Zm9v"},
        {"", "=Zm9"},
        {"", "Z"},
        {"", "Z==="},
        {"", " Zm9v"},
        {"", "\nZm9v"},
        {"", "===="},
        {"fo", "Zm9-Zm9v"},  // the URL-safe letters are foreign to the standard decoder
        {"fo", "Zm9_"},
    };
    ASSERT_EQ(std::size(cases), 22u);
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(StringUtil::base64DecodeString(exact(text)), data) << text;
        EXPECT_EQ(StringUtil::base64DecodeVector(exact(text)), toBytes(data)) << text;
    }
}

TEST(Base64, EachByteAtEachPlaceOfAGroup_ForeignOrDigit) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const size_t kept[] = {3, 3, 4, 5};  // bytes before a foreign byte at places 0 to 3 of the second group
    int foreign = 0;
    for (int byte = 0; byte < 256; ++byte) {
        for (size_t place = 0; place < 4; ++place) {
            std::string text = "AAAAAAAA";
            text[4 + place] = static_cast<char>(byte);
            const bool isDigit = byte != 0 && alphabet.find(static_cast<char>(byte)) != std::string::npos;
            const bool isUrlSafeDigit = isDigit || byte == '-' || byte == '_';
            foreign += !isDigit;
            EXPECT_EQ(StringUtil::base64DecodeString(text).size(), isDigit ? 6 : kept[place])
                << byte << " at " << place;
            EXPECT_EQ(StringUtil::base64URLSafeDecode(text).size(), isUrlSafeDigit ? 6 : kept[place])
                << byte << " at " << place;
        }
    }
    EXPECT_EQ(foreign, (256 - 64) * 4);
}

TEST(Base64, UrlSafeDecoder_TakesBothAlphabetsMixed) {
    EXPECT_EQ(StringUtil::base64URLSafeDecode("-+_/"), StringUtil::base64DecodeString("++//"));
    EXPECT_EQ(StringUtil::base64URLSafeDecode("-_8="), "\xFB\xFF");
    EXPECT_EQ(StringUtil::base64URLSafeDecode("-_8\n-_8"), "\xFB\xFF");
}

TEST(Base64, RandomBytes_ComeBackFromEachPairOfFunctions) {
    SCOPED_TRACE("seed " + std::to_string(testSeed()));
    std::mt19937 generator(testSeed());
    for (int round = 0; round < 2000; ++round) {
        const std::string data = randomBytes(generator, round < 300 ? static_cast<size_t>(round) : generator() % 4096);
        const std::string standard = StringUtil::base64Encode(data);
        ASSERT_EQ(standard.size(), (data.size() + 2) / 3 * 4);
        ASSERT_EQ(StringUtil::base64DecodeString(exact(standard)), data);
        ASSERT_EQ(StringUtil::base64DecodeVector(exact(standard)), toBytes(data));
        ASSERT_EQ(StringUtil::base64Encode(toBytes(data)), standard);
        const std::string urlSafe = StringUtil::base64URLSafeEncode(data);
        ASSERT_EQ(urlSafe.find_first_of("+/="), std::string::npos);
        ASSERT_EQ(StringUtil::base64URLSafeDecode(exact(urlSafe)), data);
    }
}

TEST(Hex, KnownVectors_UpperCaseHighHalfFirst) {
    const TextPair cases[] = {
        {"", ""},
        {"f", "66"},
        {"fo", "666F"},
        {"foo", "666F6F"},
        {"foob", "666F6F62"},
        {"fooba", "666F6F6261"},
        {"foobar", "666F6F626172"},
        {"\xAB", "AB"},
        {"\0\x0F\xF0\xFF"s, "000FF0FF"},
    };
    ASSERT_EQ(std::size(cases), 9u);
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(StringUtil::StrToHexStr(exact(data)), text);
        EXPECT_EQ(StringUtil::byteToHexStr(toBytes(data)), text);
        EXPECT_EQ(StringUtil::hexStrToStr(exact(text)), data);
        EXPECT_EQ(StringUtil::hexStrToByte(exact(text)), toBytes(data));
        std::string lower = text;
        StringUtil::changeLetterCase(lower, StringUtil::LetterCase::Lower);
        EXPECT_EQ(StringUtil::hexStrToStr(lower), data);
    }
}

TEST(Hex, OddAndInvalidPieces_ReadAsTheNumberTheyBeginWith) {
    const TextPair cases[] = {
        {"\x04", "4"},
        {"\0"s, "G1"},
        {"A\x04", "414"},
        {"\x04", "4G"},
        {"\0"s, "G"},
        {"\0\0"s, "zzzz"},
        {"\x04", " 4"},
        {"\x04", "\t4"},
        {"\x04", "4 "},
        {"\0"s, "  "},
        {"\xFF", "-1"},
        {"\xF1", "-F"},
        {"\x0A", "+A"},
        {"\0"s, "-"},
        {"\0"s, "--"},
        {"\0"s, "0x"},
        {"\0\x01"s, "0x1"},
        {"\0\x10"s, "0x10"},
        {"\0"s, "\0"s + "1"},
        {"\x01", "1\0"s},
        {"\xAB\0\xCD"s, "ABxyCD"},
        {"\0"s,
         "\xFF"
         "1"},
        {"\0"s, "\x80\x81"},
        {"\xDE\xAD", "dEaD"},
    };
    ASSERT_EQ(std::size(cases), 24u);
    for (const auto& [data, text] : cases) {
        EXPECT_EQ(StringUtil::hexStrToStr(exact(text)), data) << text;
        EXPECT_EQ(StringUtil::hexStrToByte(exact(text)), toBytes(data)) << text;
    }
}

TEST(Hex, EveryPieceOfTwoBytes_AsStrtolReadsIt) {
    for (int high = 0; high < 256; ++high) {
        for (int low = 0; low < 256; ++low) {
            const char piece[] = {static_cast<char>(high), static_cast<char>(low), '\0'};
            const auto expected = static_cast<char>(std::strtol(piece, nullptr, 16));
            ASSERT_EQ(StringUtil::hexStrToStr(std::string(piece, 2)), std::string(1, expected)) << high << ' ' << low;
        }
    }
}

TEST(Hex, RandomBytes_ComeBack) {
    SCOPED_TRACE("seed " + std::to_string(testSeed()));
    std::mt19937 generator(testSeed());
    for (int round = 0; round < 1000; ++round) {
        const std::string data = randomBytes(generator, round < 100 ? static_cast<size_t>(round) : generator() % 2048);
        const std::string hex = StringUtil::StrToHexStr(data);
        ASSERT_EQ(hex.size(), data.size() * 2);
        ASSERT_EQ(StringUtil::hexStrToStr(exact(hex)), data);
        ASSERT_EQ(StringUtil::hexStrToByte(exact(hex)), toBytes(data));
    }
}

TEST(RandomText, RandomData_TwoLowerCaseDigitsAByte) {
    EXPECT_EQ(StringUtil::getRandomData(0), "");
    EXPECT_EQ(StringUtil::getRandomData(3).size(), 6u);
    const std::string data = StringUtil::getRandomData(2000);
    EXPECT_EQ(data.size(), 4000u);
    EXPECT_EQ(data.find_first_not_of("0123456789abcdef"), std::string::npos) << data;
    // 2000 bytes: all 16 digits in both halves, and neither case rule nor a lost leading zero shifts them.
    for (const size_t half : {0, 1}) {
        std::set<char> digits;
        for (size_t i = half; i < data.size(); i += 2) digits.insert(data[i]);
        EXPECT_EQ(digits.size(), 16u);
    }
    EXPECT_NE(StringUtil::getRandomData(16), StringUtil::getRandomData(16));
}

TEST(RandomText, RandomDataCount_TakenAsThirtyTwoBits) {
    static_assert(sizeof(size_t) == 8);
    EXPECT_EQ(StringUtil::getRandomData((size_t{1} << 32) + 2).size(), 4u);
}

TEST(RandomText, Uuid_SixtyEightCharactersInFiveGroups) {
    const std::string uuid = StringUtil::generateUUID();
    ASSERT_EQ(uuid.size(), 68u) << uuid;
    for (size_t i = 0; i < uuid.size(); ++i) {
        const bool hyphen = i == 16 || i == 25 || i == 34 || i == 43;
        EXPECT_EQ(uuid[i] == '-', hyphen) << i << " of " << uuid;
        if (!hyphen) {
            EXPECT_NE(std::strchr("0123456789abcdef", uuid[i]), nullptr) << uuid;
        }
    }
    EXPECT_NE(uuid, StringUtil::generateUUID());
}

TEST(RandomText, UrlSafeRandomString_EveryLetterOfTheAlphabetAndNoOther) {
    EXPECT_EQ(StringUtil::getUrlSafeRandomString(0), "");
    EXPECT_EQ(StringUtil::getUrlSafeRandomString(1).size(), 1u);
    const std::string text = StringUtil::getUrlSafeRandomString(20000);
    ASSERT_EQ(text.size(), 20000u);
    const std::set<char> seen(text.begin(), text.end());
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    EXPECT_EQ(seen, std::set<char>(alphabet.begin(), alphabet.end()));
    EXPECT_NE(StringUtil::getUrlSafeRandomString(24), StringUtil::getUrlSafeRandomString(24));
}

TEST(Compare, EmptyString_OnlyLengthZero) {
    EXPECT_TRUE(StringUtil::isEmptyString(""));
    EXPECT_FALSE(StringUtil::isEmptyString(" "));
    EXPECT_FALSE(StringUtil::isEmptyString("\0"s));
}

TEST(Compare, PairsInBothModes_StringsAndViewsAgree) {
    struct Case {
        std::string a, b;
        bool sensitive, insensitive;
    };
    const Case cases[] = {
        {"", "", true, true},
        {"a", "a", true, true},
        {"a", "A", false, true},
        {"A", "a", false, true},
        {"a", "b", false, false},
        {"a", "", false, false},
        {"", "a", false, false},
        {"ab", "a", false, false},
        {"A", "ab", false, false},
        {"a\0b"s, "a\0B"s, false, true},
        {"a\0b"s, "a\0c"s, false, false},
        {"[", "{", false, false},  // differ in the bit that letters differ in, and are no letters
        {"@", "`", false, false},
        {"gamePadInit", "GAMEPADINIT", false, true},
        {"\xED\x95\x9C", "\xED\x95\x9C", true, true},
        {"\xED\x95\x9C", "\xED\x95\x9D", false, false},
    };
    ASSERT_EQ(std::size(cases), 16u);
    for (const auto& [a, b, sensitive, insensitive] : cases) {
        const std::string x = exact(a), y = exact(b);
        EXPECT_EQ(StringUtil::isEqual(x, y, StringSensitive::Sensitive), sensitive) << a << ' ' << b;
        EXPECT_EQ(StringUtil::isEqual(x, y, StringSensitive::Insensitive), insensitive) << a << ' ' << b;
        EXPECT_EQ(StringUtil::isEqualCaseInSensitive(x, y), insensitive) << a << ' ' << b;
        const std::string_view v(x), w(y);
        EXPECT_EQ(StringUtil::isEqual(v, w, StringSensitive::Sensitive), sensitive) << a << ' ' << b;
        EXPECT_EQ(StringUtil::isEqual(v, w, StringSensitive::Insensitive), insensitive) << a << ' ' << b;
        EXPECT_EQ(StringUtil::isEqualCaseInSensitive(v, w), insensitive) << a << ' ' << b;
    }
}

TEST(Compare, ViewsIntoALongerText_NotReadBehindTheirEnd) {
    const std::string text = "Keyvalue";
    EXPECT_TRUE(
        StringUtil::isEqual(std::string_view(text).substr(0, 3), std::string_view("Key"), StringSensitive::Sensitive));
    EXPECT_TRUE(StringUtil::isEqualCaseInSensitive(std::string_view(text).substr(3), std::string_view("VALUE")));
}

// Every byte, so also those for which a negative char would be handed to the runtime.
TEST(LetterCase, EveryByte_AsTheRuntimeChangesIt) {
    std::string all(256, '\0'), upper = all, lower = all;
    for (int i = 0; i < 256; ++i) {
        all[static_cast<size_t>(i)] = static_cast<char>(i);
        upper[static_cast<size_t>(i)] = static_cast<char>(std::toupper(i));
        lower[static_cast<size_t>(i)] = static_cast<char>(std::tolower(i));
    }
    std::string s = all;
    StringUtil::changeLetterCase(s, StringUtil::LetterCase::Upper);
    EXPECT_EQ(s, upper);
    s = all;
    StringUtil::changeLetterCase(s, StringUtil::LetterCase::Lower);
    EXPECT_EQ(s, lower);
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            const char x = static_cast<char>(a), y = static_cast<char>(b);
            ASSERT_EQ(
                StringUtil::isEqual(std::string_view(&x, 1), std::string_view(&y, 1), StringSensitive::Insensitive),
                std::tolower(a) == std::tolower(b));
        }
    }
}

TEST(LetterCase, LettersChange_OtherBytesAndLengthStay) {
    std::string s = exact("Abc-\xED\x95\x9C 1z\0Z"s);
    StringUtil::changeLetterCase(s, StringUtil::LetterCase::Upper);
    EXPECT_EQ(s, "ABC-\xED\x95\x9C 1Z\0Z"s);
    StringUtil::changeLetterCase(s, StringUtil::LetterCase::Lower);
    EXPECT_EQ(s, "abc-\xED\x95\x9C 1z\0z"s);
    std::string empty;
    StringUtil::changeLetterCase(empty, StringUtil::LetterCase::Upper);
    EXPECT_EQ(empty, "");
}

TEST(LonglongToString, Limits_DecimalText) {
    const std::pair<long long, const char*> cases[] = {
        {0, "0"},
        {-1, "-1"},
        {1234567890123, "1234567890123"},
        {LLONG_MAX, "9223372036854775807"},
        {LLONG_MIN, "-9223372036854775808"},
    };
    ASSERT_EQ(std::size(cases), 5u);
    for (const auto& [value, text] : cases) EXPECT_EQ(StringUtil::longlongToString(value), text);
}

TEST(RemoveCharacter, EveryOccurrenceGone) {
    struct Case {
        std::string text;
        char c;
        std::string result;
    };
    const Case cases[] = {
        {"", 'a', ""},           {"aaa", 'a', ""},           {"banana", 'a', "bnn"}, {"banana", 'x', "banana"},
        {"a\0b\0"s, '\0', "ab"}, {"\xFFx\xFF", '\xFF', "x"},
    };
    ASSERT_EQ(std::size(cases), 6u);
    for (const auto& [text, c, result] : cases) {
        std::string s = exact(text);
        StringUtil::removeCharacter(s, c);
        EXPECT_EQ(s, result);
    }
}

TEST(RemoveCharacter, CharacterOfTheTextItself_WholeTextSearchedForIt) {
    std::string s = "abcabcabc";
    StringUtil::removeCharacter(s, s[0]);
    EXPECT_EQ(s, "bcbcbc");
    StringUtil::removeCharacter(s, s[3]);
    EXPECT_EQ(s, "bbb");
}

TEST(ReplaceAll, LeftToRight_ReplacedTextNotSearchedAgain) {
    struct Case {
        std::string text, search, replacement, result;
    };
    const Case cases[] = {
        {"aaa", "a", "aa", "aaaaaa"},
        {"", "a", "b", ""},
        {"abc", "x", "y", "abc"},
        {"abc", "abcd", "y", "abc"},
        {"aaaa", "aa", "a", "aa"},
        {"aaaaa", "aa", "b", "bba"},
        {"a.b.c", ".", "", "abc"},
        {"abab", "ab", "", ""},
        {"aabb", "ab", "", "ab"},  // a hit that only the removal makes is left alone
        {"../x/../y", "../", "scheme://resources/", "scheme://resources/x/scheme://resources/y"},
        {"x", "x", "x", "x"},
        {"a\0b\0"s, "\0"s, "00", "a00b00"},
        {"abc", "abc", "xyz", "xyz"},
    };
    ASSERT_EQ(std::size(cases), 13u);
    for (const auto& [text, search, replacement, result] : cases)
        EXPECT_EQ(StringUtil::replaceAll(exact(text), exact(search), exact(replacement)), result) << text;
}

TEST(ReplaceAll, EmptySearch_TextUnchangedInsteadOfAnEndlessLoop) {
    EXPECT_EQ(StringUtil::replaceAll("abc", "", "x"), "abc");
    EXPECT_EQ(StringUtil::replaceAll("", "", ""), "");
}

TEST(ReplaceRange, BetweenMarkers_PositionOfTheEndBeforeTheChange) {
    struct Case {
        std::string text, begin, end, replacement;
        size_t start;
        std::string result;
        size_t position;
    };
    constexpr size_t npos = std::string::npos;
    const Case cases[] = {
        {"a<b>c", "<", ">", "XYZ", 0, "a<XYZ>c", 3},
        {"a<>c", "<", ">", "XYZ", 0, "a<XYZ>c", 2},
        {"a<bbbb>c", "<", ">", "", 0, "a<>c", 6},
        {"a<b>c<d>", "<", ">", "X", 2, "a<b>c<X>", 7},  // begin only at or after the start
        {"a<b>c<d>", "<", ">", "X", 1, "a<X>c<d>", 3},
        {"a<b>c", "<", ">", "X", 2, "a<b>c", npos},
        {">a<b", "<", ">", "X", 0, ">a<b", npos},  // end only behind begin
        {">a<b>", "<", ">", "X", 0, ">a<X>", 4},
        {"a<b", "<", ">", "X", 0, "a<b", npos},
        {"ab>", "<", ">", "X", 0, "ab>", npos},
        {"", "<", ">", "X", 0, "", npos},
        {"a<b>c", "<", ">", "X", 5, "a<b>c", npos},
        {"a<b>c", "<", ">", "X", 99, "a<b>c", npos},
        {"a<b>c", "<", ">", "X", npos, "a<b>c", npos},
        {"||x|", "|", "|", "-", 0, "|-|x|", 1},
        {"begin mid end", "begin", "end", "!", 0, "begin!end", 10},
        {"beginend", "begin", "nend", "!", 0, "beginend", npos},  // the markers may not overlap
        {"abc", "", "c", "X", 1, "aXc", 2},
        {"abc", "a", "", "X", 0, "aXbc", 1},
    };
    ASSERT_EQ(std::size(cases), 19u);
    for (const auto& [text, begin, end, replacement, start, result, position] : cases) {
        std::string s = exact(text);
        EXPECT_EQ(StringUtil::replaceRangeBetweenStrings(s, begin, end, replacement, start), position) << text;
        EXPECT_EQ(s, result);
    }
}

TEST(Split, Pieces_LastOneOnlyIfNotEmpty) {
    struct Case {
        std::string text;
        std::vector<std::string> pieces;
    };
    const Case cases[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a,", {"a"}},
        {",a", {"", "a"}},
        {",", {""}},
        {",,", {"", ""}},
        {"a,,b", {"a", "", "b"}},
        {"a,b,", {"a", "b"}},
        {"a,b,,", {"a", "b", ""}},
        {" a , b ", {" a ", " b "}},
        {"a\nb,c\n", {"a\nb", "c\n"}},
        {"a\0b,c"s, {"a\0b"s, "c"}},
    };
    ASSERT_EQ(std::size(cases), 12u);
    for (const auto& [text, pieces] : cases) EXPECT_EQ(StringUtil::splitString(exact(text), ','), pieces) << text;
}

TEST(Split, AnyByteMayBeTheDelimiter) {
    EXPECT_THAT(StringUtil::splitString("a\0b"s, '\0'), ElementsAre("a", "b"));
    EXPECT_THAT(StringUtil::splitString("a\xFF\xFF", '\xFF'), ElementsAre("a", ""));
    EXPECT_THAT(StringUtil::splitString("a\r\nb\r\n", '\n'), ElementsAre("a\r", "b\r"));
}

TEST(Trim, BothEnds_InnerBlanksStay) {
    const TextPair cases[] = {
        {"", ""},
        {"a", "a"},
        {" a ", "a"},
        {"\t\n\v\f\r a b \r\n", "a b"},
        {" ", ""},
        {" \t\r\n\v\f ", ""},
        {"a ", "a"},
        {" a", "a"},
        {"\0 "s, "\0"s},
        {" \0 "s, "\0"s},
        {"\xED\x95\x9C ", "\xED\x95\x9C"},
    };
    ASSERT_EQ(std::size(cases), 11u);
    for (const auto& [text, result] : cases) {
        std::string s = exact(text);
        StringUtil::trimString(s);
        EXPECT_EQ(s, result);
    }
}

TEST(Trim, EveryByte_RemovedWhereTheRuntimeCallsItSpace) {
    int spaces = 0;
    for (int byte = 0; byte < 256; ++byte) {
        std::string s = {static_cast<char>(byte), 'x', static_cast<char>(byte)};
        StringUtil::trimString(s);
        EXPECT_EQ(s.size(), std::isspace(byte) ? 1u : 3u) << byte;
        spaces += std::isspace(byte) != 0;
    }
    EXPECT_EQ(spaces, 6);
}

TEST(Threads, AllFunctionsFromSeveralThreads_SameAnswers) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (size_t t = 0; t < wrong.size(); ++t) {
        threads.emplace_back([&count = wrong[t], t] {
            std::mt19937 generator(static_cast<unsigned>(t));
            for (int i = 0; i < 200; ++i) {
                const std::string data = randomBytes(generator, 64);
                count += StringUtil::base64DecodeString(StringUtil::base64Encode(data)) != data;
                count += toText(StringUtil::hexStrToByte(StringUtil::StrToHexStr(data))) != data;
                count += StringUtil::generateUUID().size() != 68;
                count += StringUtil::replaceAll("a.b", ".", "-") != "a-b";
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(wrong, ElementsAre(0, 0, 0, 0));
}

}  // namespace ZEMO::Core
