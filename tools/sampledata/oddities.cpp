#include <array>
#include <limits>
#include <numeric>
#include <string>

#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kOddType = 0x7FFF'0001;
constexpr CEPROPID kText = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kNumber = PropertyId(2, CEVT_I4);
constexpr CEPROPID kTime = PropertyId(3, CEVT_FILETIME);
constexpr CEPROPID kReal = PropertyId(4, CEVT_R8);
constexpr CEPROPID kBytes = PropertyId(5, CEVT_BLOB);
constexpr CEPROPID kShort = PropertyId(6, CEVT_I2);
constexpr CEPROPID kUnsignedShort = PropertyId(7, CEVT_UI2);
constexpr CEPROPID kUnsigned = PropertyId(8, CEVT_UI4);
constexpr CEPROPID kTruth = PropertyId(9, CEVT_BOOL);

// The nine types of value with values in the middle, at the low and at the high end.
bool MakeEveryKind() {
    SampleTable table(u"Every Kind of Value", kOddType, {{kNumber, 0}});
    std::array<BYTE, 256> bytes = {};
    std::iota(bytes.begin(), bytes.end(), BYTE{0});
    SampleRecord middle;
    middle.Number(kShort, -12345)
        .Number(kUnsignedShort, 54321)
        .Number(kNumber, -1'234'567'890)
        .Number(kUnsigned, 3'456'789'012)
        .Real(kReal, 3.14159265358979)
        .Number(kTruth, TRUE)
        .Time(kTime, Moment(2004, 2, 29, 12, 34))
        .Text(kText,
              u"Plain, ümläütéd, Ελληνικά, 日本語 and beyond: 𝄞 🐦\r\nSecond line, with \"quotes\"\tand a tab")
        .Bytes(kBytes, bytes);
    SampleRecord lowest;
    lowest.Number(kShort, std::numeric_limits<std::int16_t>::min())
        .Number(kUnsignedShort, 0)
        .Number(kNumber, std::numeric_limits<LONG>::min())
        .Number(kUnsigned, 0)
        .Real(kReal, -std::numeric_limits<double>::max())
        .Number(kTruth, FALSE)
        .Time(kTime, FILETIME{})
        .Bytes(kBytes, {});
    SampleRecord highest;
    highest.Number(kShort, std::numeric_limits<std::int16_t>::max())
        .Number(kUnsignedShort, std::numeric_limits<WORD>::max())
        .Number(kNumber, std::numeric_limits<LONG>::max())
        .Number(kUnsigned, std::numeric_limits<DWORD>::max())
        .Real(kReal, std::numeric_limits<double>::min())
        .Time(kTime, Moment(9999, 12, 31, 23, 59))
        .Text(kText, std::u16string(2000, u'W'));
    table.Add(middle);
    table.Add(lowest);
    table.Add(highest);
    return table.Succeeded();
}

// Hardly two records with the same properties, and a name of the full 31 characters.
bool MakeBirdWatch() {
    SampleTable table(u"Vogelbeobachtungen im Juni 2005", kOddType + 1, {});
    SampleRecord kingfisher, hoopoe, unknown, several;
    table.Add(kingfisher.Text(kText, u"Eisvogel, am Mühlbach").Time(kTime, Moment(2005, 6, 3, 5, 50)));
    table.Add(hoopoe.Text(kText, u"Wiedehopf!").Number(kTruth, TRUE).Real(kReal, 49.8731));
    table.Add(unknown.Number(kNumber, 1));
    table.Add(
        several.Number(kNumber, 14).Text(kText, u"Mauersegler").Time(kTime, Moment(2005, 6, 21, 21, 5)));
    Chance chance(2005);
    for (int day = 1; day <= 30; ++day) {
        SampleRecord record;
        if (chance.OneIn(2))
            record.Text(kText, chance.OneIn(2) ? u"Amsel" : u"Rotkehlchen");
        if (chance.OneIn(3))
            record.Number(kUnsignedShort, chance.Between(1, 9));
        table.Add(record.Time(kTime, Moment(2005, 6, day, chance.Between(4, 21), chance.Between(0, 59))));
    }
    return table.Succeeded();
}

bool MakeTravelDiary() {
    SampleTable table(u"Ταξίδια", kOddType + 2, {{kTime, 0}});
    constexpr const WCHAR* places[] = {u"青葉町：駅前の古い喫茶店。雨。", u"海岸まで歩く。灯台が見えた。",
                                       u"山の宿。星がとても近い。", u"市場で蜜柑を五つ買う。",
                                       u"帰りの船。島が小さくなる。"};
    int day = 10;
    for (const WCHAR* place : places) {
        SampleRecord record;
        table.Add(record.Time(kTime, Moment(2004, 10, day++, 20, 15)).Text(kText, place));
    }
    return table.Succeeded();
}

bool MakeEmptyOnes() {
    const SampleTable shopping(u"Shopping List", kOddType + 3, {{kText, CEDB_SORT_CASEINSENSITIVE}});
    return shopping.Succeeded();
}

} // namespace

bool MakeOddities() {
    return MakeEveryKind() && MakeBirdWatch() && MakeTravelDiary() && MakeEmptyOnes();
}
