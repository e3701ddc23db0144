#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zemo/export.h"

namespace ZEMO::Core {

/// How two texts are compared. Any value other than Sensitive acts as Insensitive.
enum class StringSensitive {
    Sensitive = 0,    ///< byte by byte
    Insensitive = 1,  ///< through the C runtime's `tolower`, byte by byte
};

/// Functions on byte strings.
///
/// Every text is opaque bytes: embedded NULs are kept and UTF-8 is neither checked nor understood. Characters are
/// classified by the C runtime's `tolower`, `toupper` and `isspace` in the current locale.
///
/// Thread: any, also several at once; nothing here holds state. Ownership: results are values of the caller's.
/// Failure: no function reports bad input; what each does with it stands beside it. Only the standard library's own
/// exceptions (out of memory, too long) come out.
class ZEMO_API StringUtil {
public:
    /// Direction of changeLetterCase. Any value other than Upper acts as Lower.
    enum class LetterCase {
        Upper = 0,  ///< through `toupper`
        Lower = 1,  ///< through `tolower`
    };

    /// Does nothing: there is nothing to assign.
    StringUtil& operator=(const StringUtil& other);
    /// Does nothing either.
    StringUtil& operator=(StringUtil&& other);

    /// Base64 of `data` in the standard alphabet, padded with `=`, without line breaks.
    static std::string base64Encode(const std::string& data);
    /// The same for a byte vector.
    static std::string base64Encode(const std::vector<unsigned char>& data);

    /// Bytes of a Base64 text in the standard alphabet. Decoding ends without an error at the first byte that is not in
    /// the alphabet (`=`, a line break, a blank, ...). Neither length nor padding is checked; left-over bits are
    /// dropped.
    static std::string base64DecodeString(const std::string& text);
    /// The same, as a byte vector.
    static std::vector<unsigned char> base64DecodeVector(const std::string& text);

    /// Base64 with `-` and `_` instead of `+` and `/`, without padding.
    static std::string base64URLSafeEncode(const std::string& data);
    /// Bytes of a Base64 text in either alphabet, with or without padding; ends like base64DecodeString.
    static std::string base64URLSafeDecode(const std::string& text);

    /// Two upper-case hexadecimal digits a byte, high half first.
    static std::string byteToHexStr(const std::vector<unsigned char>& data);
    /// The same for the bytes of a string.
    static std::string StrToHexStr(const std::string& data);

    /// One byte for each two characters of `hex`, a last odd character counting alone. Each piece is read by the rules
    /// of `strtol` with base 16 and its low eight bits are kept: no valid digit gives 0, "4G" gives 4, " 4" gives 4,
    /// "-1" gives 255.
    static std::string hexStrToStr(const std::string& hex);
    /// The same, as a byte vector.
    static std::vector<unsigned char> hexStrToByte(const std::string& hex);

    /// `count` random bytes (taken modulo 2^32) as two lower-case hexadecimal digits each. Reads the system's random
    /// source and seeds a generator for every byte: for short identifiers only, not for keys.
    static std::string getRandomData(size_t count);

    /// Random identifier of 68 characters: hexadecimal groups of 16, 8, 8, 8 and 24 digits joined by `-`. This is
    /// longer than an RFC 4122 UUID and has no version or variant bits.
    static std::string generateUUID();

    /// `length` random characters out of A-Z, a-z, 0-9, `-` and `_`. Not for keys.
    static std::string getUrlSafeRandomString(size_t length);

    /// Whether `s` has no byte.
    static bool isEmptyString(const std::string& s);

    /// Whether both texts have the same length and the same bytes in the sense of `mode`.
    static bool isEqual(const std::string& a, const std::string& b, StringSensitive mode);
    /// The same for views.
    static bool isEqual(std::string_view a, std::string_view b, StringSensitive mode);

    /// isEqual with StringSensitive::Insensitive.
    static bool isEqualCaseInSensitive(const std::string& a, const std::string& b);
    /// The same for views.
    static bool isEqualCaseInSensitive(std::string_view a, std::string_view b);

    /// Changes every byte of `s` in place.
    static void changeLetterCase(std::string& s, LetterCase to);

    /// Decimal text of `value`, with a leading `-` below 0.
    static std::string longlongToString(long long value);

    /// Erases every `c` from `s` in place. `c` may be a character of `s` itself.
    static void removeCharacter(std::string& s, const char& c);

    /// Copy of `text` with every occurrence of `search` replaced, left to right; replaced text is not searched again.
    /// `search` must not be empty (`text` then comes back unchanged).
    static std::string replaceAll(const std::string& text, const std::string& search, const std::string& replacement);

    /// Replaces what lies between the first `begin` at or after `startPosition` and the first `end` behind it; the
    /// markers stay. Returns the position that `end` had before the replacement, not adjusted for the new length, or
    /// std::string::npos with `text` unchanged where a marker is missing.
    static size_t replaceRangeBetweenStrings(std::string& text, const std::string& begin, const std::string& end,
                                             const std::string& replacement, size_t startPosition);

    /// Pieces of `text` between delimiters. Empty pieces at the start and in the middle are kept, one behind the last
    /// delimiter is not. A text without a delimiter, the empty text too, is one piece.
    static std::vector<std::string> splitString(const std::string& text, char delimiter);

    /// Removes the bytes for which `isspace` holds from both ends, in place.
    static void trimString(std::string& s);
};

}  // namespace ZEMO::Core
