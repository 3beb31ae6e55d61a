#include <string>

#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kJournalType = 0x2000;
constexpr CEPROPID kDate = PropertyId(1, CEVT_FILETIME);
constexpr CEPROPID kAmount = PropertyId(2, CEVT_R8);
constexpr CEPROPID kCurrency = PropertyId(3, CEVT_LPWSTR);
constexpr CEPROPID kWhat = PropertyId(4, CEVT_LPWSTR);
constexpr CEPROPID kPaidByCard = PropertyId(5, CEVT_BOOL);
constexpr CEPROPID kOdometer = PropertyId(10, CEVT_UI4);
constexpr CEPROPID kLitres = PropertyId(11, CEVT_R8);
constexpr CEPROPID kTank = PropertyId(12, CEVT_UI2); // per cent after filling
constexpr CEPROPID kLowest = PropertyId(20, CEVT_R8);
constexpr CEPROPID kHighest = PropertyId(21, CEVT_R8);
constexpr CEPROPID kRain = PropertyId(22, CEVT_R8);
constexpr CEPROPID kWind = PropertyId(23, CEVT_I2);
constexpr CEPROPID kSky = PropertyId(24, CEVT_LPWSTR);

constexpr int kExpenses = 160;
constexpr int kFillings = 95;
constexpr int kDiaryDays = 365;

struct Purchase {
    const WCHAR* what;
    const WCHAR* currency;
    int low; // hundredths
    int high;
};
constexpr Purchase kPurchases[] = {
    {u"Rye bread", u"EUR", 180, 420},
    {u"Ferry, return", u"EUR", 2400, 3900},
    {u"Fountain pen ink, blue-black", u"EUR", 790, 1250},
    {u"Tram tickets, ten", u"EUR", 1450, 1450},
    {u"Soup and tea", u"EUR", 690, 1140},
    {u"Violin strings", u"EUR", 2350, 4100},
    {u"Second-hand atlas", u"GBP", 400, 3500},
    {u"Hotel in Sandvík", u"ISK", 780000, 1450000},
    {u"Maple syrup, two tins", u"CAD", 1890, 2190},
    {u"Cinema", u"EUR", 650, 900},
    {u"抹茶と和菓子", u"JPY", 65000, 120000},
    {u"Bicycle tyre", u"EUR", 1495, 2995},
    {u"Stamps", u"EUR", 55, 1100},
    {u"Storage card, 256 MB", u"USD", 2999, 4999},
};
constexpr const WCHAR* kStations[] = {u"Old bridge", u"Harbour road", u"Motorway, km 112", u"Valdehoja",
                                      u"Żabno"};
constexpr const WCHAR* kServices[] = {u"Oil changed",     u"New wiper blades",   u"Winter tyres on",
                                      u"Summer tyres on", u"Left lamp replaced", u"Washed, for once"};
constexpr const WCHAR* kSkies[] = {u"clear",   u"hazy",           u"few clouds", u"overcast",
                                   u"drizzle", u"fog until noon", u"rain",       u"thunder far away"};

bool MakeExpenses() {
    SampleTable table(u"Expenses", kJournalType, {{kDate, CEDB_SORT_DESCENDING}, {kAmount, 0}});
    Chance chance(160);
    int day = 3;
    for (int i = 0; i < kExpenses; ++i) {
        day += chance.Between(1, 12);
        const Purchase& purchase = chance.Pick(kPurchases);
        SampleRecord record;
        record.Time(kDate, Moment(kFirstSampleYear, 1, day, chance.Between(8, 20), chance.Between(0, 59)))
            .Text(kWhat, purchase.what)
            .Real(kAmount, chance.Between(purchase.low, purchase.high) / 100.0)
            .Text(kCurrency, purchase.currency);
        if (chance.OneIn(3))
            record.Number(kPaidByCard, TRUE);
        table.Add(record);
    }
    return table.Succeeded();
}

bool MakeVehicleLog() {
    SampleTable table(u"Vehicle Log", kJournalType, {{kOdometer, 0}});
    Chance chance(95);
    int odometer = 48'210;
    int day = 1;
    for (int i = 0; i < kFillings; ++i) {
        const int kilometres = chance.Between(290, 720);
        odometer += kilometres;
        day += chance.Between(4, 18);
        SampleRecord record;
        record.Time(kDate, Moment(kFirstSampleYear, 1, day, chance.Between(7, 21)))
            .Number(kOdometer, odometer);
        if (chance.OneIn(8)) {
            record.Text(kWhat, chance.Pick(kServices));
        } else {
            record.Text(kWhat, chance.Pick(kStations))
                .Real(kLitres, kilometres * chance.Between(54, 68) / 1000.0)
                .Number(kTank, chance.OneIn(4) ? chance.Between(60, 95) : 100);
        }
        table.Add(record);
    }
    return table.Succeeded();
}

bool MakeWeatherDiary() {
    SampleTable table(u"Weather Diary 2004", kJournalType, {});
    Chance chance(365);
    for (int day = 0; day < kDiaryDays; ++day) {
        const int fromSummer = day < 200 ? 200 - day : day - 200;
        const double lowest = 14.0 - fromSummer * 0.09 + chance.Between(-30, 30) / 10.0;
        const WCHAR* const sky = chance.Pick(kSkies);
        SampleRecord record;
        record.Time(kDate, Moment(2004, 1, day + 1, 7))
            .Real(kLowest, lowest)
            .Real(kHighest, lowest + chance.Between(20, 110) / 10.0)
            .Number(kWind, chance.Between(0, 9))
            .Text(kSky, sky);
        if (std::u16string_view(sky) == u"rain" || chance.OneIn(5))
            record.Real(kRain, chance.Between(2, 240) / 10.0);
        table.Add(record);
    }
    return table.Succeeded();
}

} // namespace

bool MakeJournals() {
    return MakeExpenses() && MakeVehicleLog() && MakeWeatherDiary();
}
