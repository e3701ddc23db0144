#include "core/json_quoted.h"

#include <gtest/gtest.h>

namespace ZEMO::Core {

TEST(JsonQuoted, PlainText_StandsInQuotes) {
    EXPECT_EQ(jsonQuoted(u""), u"\"\"");
    EXPECT_EQ(jsonQuoted(u"text / ' <"), u"\"text / ' <\"");
    EXPECT_EQ(jsonQuoted(u"\u007f\u00e9\ud55c\u2028"), u"\"\u007f\u00e9\ud55c\u2028\"");
}

TEST(JsonQuoted, QuoteBackslashAndControls_AreEscaped) {
    EXPECT_EQ(jsonQuoted(u"\"\\\b\f\n\r\t"), u"\"\\\"\\\\\\b\\f\\n\\r\\t\"");
    EXPECT_EQ(jsonQuoted({u"a\0b", 3}), u"\"a\\u0000b\"");
    EXPECT_EQ(jsonQuoted(u"\x01\x0b\x1f\x20"), u"\"\\u0001\\u000b\\u001f \"");
}

TEST(JsonQuoted, Surrogates_StayInPairsAndAreEscapedAlone) {
    const std::u16string pair = {0xD83D, 0xDE00}, high = {0xD83D}, low = {0xDE00};
    EXPECT_EQ(jsonQuoted(pair + u"x" + pair), u"\"" + pair + u"x" + pair + u"\"");
    EXPECT_EQ(jsonQuoted(high), u"\"\\ud83d\"");
    EXPECT_EQ(jsonQuoted(low + u"x"), u"\"\\ude00x\"");
    EXPECT_EQ(jsonQuoted(low + high), u"\"\\ude00\\ud83d\"");
    EXPECT_EQ(jsonQuoted(high + pair), u"\"\\ud83d" + pair + u"\"");
}

}  // namespace ZEMO::Core
