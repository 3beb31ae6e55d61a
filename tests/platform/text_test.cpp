#include <gtest/gtest.h>
#include <string>

#include "platform/text.h"

namespace {

using Text = std::u16string;

TEST(Text, FormatsWhatTheStringTableUses) {
    WCHAR out[64];
    EXPECT_EQ(wsprintfW(out, u"Database \"%s\" has %u%%", u"Notes", 7u), 23);
    EXPECT_EQ(Text(out), u"Database \"Notes\" has 7%");
    wsprintfW(out, u"%d %ld %u %lu", -5, -2147483647 - 1, 4294967295u, DWORD{0});
    EXPECT_EQ(Text(out), u"-5 -2147483648 4294967295 0");
    wsprintfW(out, u"%02d|%03d|%4d|%-|%c|%x|%08X|%3s|%s", 7, -7, -7, u'\u00e9', 0xBEEFu, 0xBEEFu, u"a",
              static_cast<const WCHAR*>(nullptr));
    EXPECT_EQ(Text(out), u"07|-07|  -7|%-|\u00e9|beef|0000BEEF|  a|(null)");
    wsprintfW(out, u"100%");
    EXPECT_EQ(Text(out), u"100%");
}

TEST(Text, FillsABufferToItsEndAndNoFurther) {
    struct {
        WCHAR text[6];
        WCHAR guard = u'G';
    } out;
    EXPECT_EQ(wsprintfW(out.text, u"%s%s", u"abc", u"defgh"), 5);
    EXPECT_EQ(Text(out.text), u"abcde");
    EXPECT_EQ(wsprintfW(out.text, u"%99999999999d", 1), 5);
    EXPECT_EQ(Text(out.text), u"     ");
    EXPECT_EQ(CopyText(out.text, u"12345678"), 5);
    EXPECT_EQ(Text(out.text), u"12345");
    EXPECT_EQ(CopyText(out.text, 0, u"x"), 0);
    EXPECT_EQ(Text(out.text), u"12345");
    EXPECT_EQ(CopyText(out.text, nullptr), 0);
    EXPECT_EQ(Text(out.text), u"");
    EXPECT_EQ(out.guard, u'G');
}

TEST(Text, ComparesWithAndWithoutCase) {
    EXPECT_EQ(lstrcmpW(u"abc", u"abc"), 0);
    EXPECT_GT(lstrcmpW(u"abc", u"Abc"), 0);
    EXPECT_LT(lstrcmpW(nullptr, u"a"), 0);
    EXPECT_EQ(lstrcmpiW(u"\u00c4PFEL \u0416", u"\u00e4pfel \u0436"), 0);
    EXPECT_LT(lstrcmpiW(u"a_", u"B"), 0);
    EXPECT_EQ(lstrlenW(nullptr), 0);
    WCHAR text[] = u"\\Notes \u00c9 \u0130";
    EXPECT_EQ(lstrlenW(CharLowerW(text)), 10); // a text never grows
    EXPECT_EQ(Text(text).substr(0, 9), u"\\notes \u00e9 ");
    EXPECT_TRUE(IsSpaceCharacter(u'\t') && IsSpaceCharacter(u'\u3000') && IsSpaceCharacter(u'\n'));
    EXPECT_FALSE(IsSpaceCharacter(u'-') || IsSpaceCharacter(0) || IsSpaceCharacter(u'"'));
}

} // namespace
