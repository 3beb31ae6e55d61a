#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "store/datetimetext.h"
#include "store/propertyvalues.h"
#include "store/sizetext.h"

namespace {

std::u16string FloatText(double value) {
    WCHAR text[kValueTextCapacity];
    FormatFloatText(value, kFloatPlaces, text);
    return text;
}

// A property with its value's bytes, string and blob aside.
template <typename T>
CEPROPVAL Property(WORD type, T value) {
    CEPROPVAL property = {};
    property.propid = 7 << 16 | type;
    std::memcpy(&property.val, &value, sizeof(value));
    return property;
}

std::u16string TextOf(const CEPROPVAL& property) {
    WCHAR buffer[kValueTextCapacity];
    return FormatPropertyText(property, buffer);
}

std::u16string SizeOf(const CEPROPVAL& property) {
    WCHAR text[kLabelCapacity];
    TypeSizeText(property, text);
    return text;
}

} // namespace

TEST(FloatText, FixedFormUpToTwelveCharacters) {
    EXPECT_EQ(FloatText(0.0), u"0.");
    EXPECT_EQ(FloatText(-0.5), u"-0.5");
    EXPECT_EQ(FloatText(3.0), u"3.");
    EXPECT_EQ(FloatText(12.5), u"12.5");
    EXPECT_EQ(FloatText(0.05), u"0.05");
    EXPECT_EQ(FloatText(1234567.5), u"1234567.5");
    EXPECT_EQ(FloatText(9.9999999), u"10."); // rounding carries into a new digit
    EXPECT_EQ(FloatText(0.0000001), u"0.");  // nothing left of it
    EXPECT_EQ(FloatText(-0.00001), u"-0.00001");
    EXPECT_EQ(FloatText(0.015625), u"0.01563");          // exactly half a place
    EXPECT_EQ(FloatText(0.000009), u"0.00001");          // rounding brings the only digit
    EXPECT_EQ(FloatText(12345678901.), u"12345678901."); // twelve characters
}

TEST(FloatText, ExponentFormStopsAtTheFirstZeroDigit) {
    EXPECT_EQ(FloatText(123456789012.5), u"1.23456789e+011");
    EXPECT_EQ(FloatText(105000000000000.0), u"1.0e+014");
    EXPECT_EQ(FloatText(-123405000000000.0), u"-1.234e+014");
    EXPECT_EQ(FloatText(1e300), u"1.0e+300");
}

TEST(PropertyText, EachTypeShowsItsRange) {
    EXPECT_EQ(TextOf(Property<std::int16_t>(CEVT_I2, -32768)), u"-32768");
    EXPECT_EQ(TextOf(Property<WORD>(CEVT_UI2, 65535)), u"65535");
    EXPECT_EQ(TextOf(Property<LONG>(CEVT_I4, INT32_MIN)), u"-2147483648");
    EXPECT_EQ(TextOf(Property<DWORD>(CEVT_UI4, UINT32_MAX)), u"4294967295");
    EXPECT_EQ(TextOf(Property<double>(CEVT_R8, 12.5)), u"12.5");
    EXPECT_EQ(TextOf(Property<BOOL>(CEVT_BOOL, 5)), u"True");
    EXPECT_EQ(TextOf(Property<BOOL>(CEVT_BOOL, 0)), u"False");
    EXPECT_EQ(TextOf(Property<DWORD>(CEVT_BLOB, 0)), u"<Binary Data>");
    EXPECT_EQ(TextOf(Property<DWORD>(99, 0)), u"<Unknown Data Type>");
    EXPECT_EQ(TextOf(Property<DWORD>(CEVT_LPWSTR, 0)), u""); // absent
}

TEST(PropertyText, SizesCountCharactersAndBytes) {
    auto* text = static_cast<WCHAR*>(LocalAlloc(LMEM_ZEROINIT, 8 * sizeof(WCHAR)));
    std::memcpy(text, u"\U0001F600ab", 4 * sizeof(WCHAR)); // a surrogate pair and two letters
    CEPROPVAL property = Property<DWORD>(CEVT_LPWSTR, 0);
    EXPECT_EQ(SizeOf(property), u"0");
    property.val.lpwstr = text;
    EXPECT_EQ(SizeOf(property), u"4");
    EXPECT_EQ(TextOf(property), u"\U0001F600ab");
    LocalFree(text);

    EXPECT_EQ(SizeOf(Property<DWORD>(CEVT_BLOB, 70000)), u"70000");
    EXPECT_EQ(SizeOf(Property<double>(CEVT_R8, 1)), u"8");
    EXPECT_EQ(TypeListName(99), nullptr);

    WCHAR label[kLabelCapacity];
    SortMenuLabel(5 << 16 | CEVT_I4, label);
    EXPECT_EQ(std::u16string(label), u"Long (5)");
    SortMenuLabel(0xFFFF0000 | 99, label);
    EXPECT_EQ(std::u16string(label), u"Unknown (65535)");
}

TEST(SizeText, TruncatesToHundredths) {
    const auto textOf = [](DWORD bytes) {
        WCHAR text[kSizeTextCapacity];
        FormatSizeText(bytes, text);
        return std::u16string(text);
    };
    EXPECT_EQ(textOf(0), u"0.00KB");
    EXPECT_EQ(textOf(1023), u"0.99KB");
    EXPECT_EQ(textOf(1024), u"1.00KB");
    EXPECT_EQ(textOf(1535), u"1.49KB");
    EXPECT_EQ(textOf(0x80000000), u"0.00KB"); // the sign bit of the handheld's arithmetic
}

TEST(DateTimeText, MillisecondsAndWeekdayDoNotDiffer) {
    const SYSTEMTIME time = {2004, 2, 0, 29, 23, 59, 58, 1};
    SYSTEMTIME other = time;
    other.wDayOfWeek = 3;
    other.wMilliseconds = 999;
    EXPECT_FALSE(Differs(DateTimeText(time), DateTimeText(other)));
    other.wSecond = 59;
    EXPECT_TRUE(Differs(DateTimeText(time), DateTimeText(other)));
}
