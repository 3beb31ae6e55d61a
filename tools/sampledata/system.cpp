#include <array>

#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kSystemType = 0x0100;
constexpr CEPROPID kPath = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kText = PropertyId(2, CEVT_LPWSTR);
constexpr CEPROPID kNumber = PropertyId(3, CEVT_UI4);
constexpr CEPROPID kTime = PropertyId(4, CEVT_FILETIME);
constexpr CEPROPID kState = PropertyId(5, CEVT_BLOB);
constexpr CEPROPID kFlag = PropertyId(6, CEVT_BOOL);

constexpr int kJournalEntries = 64;
constexpr int kDaysBetweenBackups = 7;

struct Setting {
    const WCHAR* path;
    const WCHAR* text; // null: a number
    DWORD number;
};
constexpr Setting kSettings[] = {
    {u"Clock/Alarm1/Sound", u"chimes.wav", 0},
    {u"Clock/Alarm1/Enabled", nullptr, 1},
    {u"Clock/HomeCity", u"Port Alder", 0},
    {u"Clock/VisitingCity", u"青葉町", 0},
    {u"Display/Backlight/Seconds", nullptr, 30},
    {u"Display/Brightness", nullptr, 6},
    {u"Display/Orientation", nullptr, 0},
    {u"Input/Method", u"Letter recogniser", 0},
    {u"Input/SuggestWords", nullptr, 4},
    {u"Network/Proxy", u"proxy.example.net:8080", 0},
    {u"Network/Beam/Receive", nullptr, 1},
    {u"Owner/Name", u"Ada Winterbourne", 0},
    {u"Owner/Note", u"If found, please water the plants.", 0},
    {u"Power/OffAfterMinutes", nullptr, 5},
    {u"Sounds/Volume", nullptr, 0x8000},
    {u"Sounds/Taps", nullptr, 0},
    {u"Today/Theme", u"Lighthouse", 0},
    {u"Today/Items", u"Date;Owner;Mail;Tasks;Calendar", 0},
};
constexpr const WCHAR* kCategories[] = {u"Business", u"Family",   u"Harbour",          u"Holiday", u"House",
                                        u"Music",    u"Personal", u"Reisen & Wünsche", u"語学"};

bool MakeSettings() {
    SampleTable table(u"\\ConfigMetabase", kSystemType, {{kPath, CEDB_SORT_CASEINSENSITIVE}});
    for (const Setting& setting : kSettings) {
        SampleRecord record;
        record.Text(kPath, setting.path);
        if (setting.text)
            record.Text(kText, setting.text);
        else
            record.Number(kNumber, setting.number);
        table.Add(record);
    }
    return table.Succeeded();
}

bool MakeNotifications() {
    SampleTable table(u"\\EventNotifications", kSystemType + 1, {{kTime, 0}});
    for (int week = 0; week < 6; ++week) {
        SampleRecord record;
        record.Text(kPath, u"\\Windows\\calendar.exe")
            .Text(kText, week % 2 ? u"Team meeting" : u"Backup night")
            .Time(kTime, MomentFromToday(kDaysBetweenBackups * week + 1, week % 2 ? 9 : 21, 55))
            .Number(kFlag, TRUE)
            .Number(kNumber, 5); // minutes until it repeats
        table.Add(record);
    }
    return table.Succeeded();
}

bool MakeCategories() {
    SampleTable table(u"\\CategoryStore", kSystemType + 2, {});
    DWORD number = 0;
    for (const WCHAR* category : kCategories) {
        SampleRecord record;
        record.Number(kNumber, ++number).Text(kText, category);
        table.Add(record);
    }
    return table.Succeeded();
}

bool MakeSyncJournal() {
    SampleTable table(u"\\SyncJournal", kSystemType + 3, {{kTime, CEDB_SORT_DESCENDING}});
    Chance chance(64);
    for (int entry = 0; entry < kJournalEntries; ++entry) {
        std::array<BYTE, 20> state = {};
        for (BYTE& byte : state)
            byte = static_cast<BYTE>(chance.Below(256));
        SampleRecord record;
        record.Number(kNumber, 0x0500'0000 + chance.Below(0x4000))
            .Time(kTime, Moment(2005, 3, 1 + 3 * entry, 7, chance.Between(0, 59)))
            .Bytes(kState, state);
        table.Add(record);
    }
    return table.Succeeded();
}

} // namespace

bool MakeSystemDatabases() {
    return MakeSettings() && MakeNotifications() && MakeCategories() && MakeSyncJournal();
}
