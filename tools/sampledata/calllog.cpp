#include <string>

#include "tools/sampledata/people.h"
#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kCallLogType = 0x1040;
constexpr int kCalls = 2400;
constexpr int kMinutesBetweenCalls = 2 * 365 * 24 * 60 / kCalls;

constexpr CEPROPID kStart = PropertyId(2, CEVT_FILETIME);
constexpr CEPROPID kEnd = PropertyId(3, CEVT_FILETIME);
constexpr CEPROPID kOutgoing = PropertyId(4, CEVT_BOOL);
constexpr CEPROPID kNumber = PropertyId(6, CEVT_LPWSTR);
constexpr CEPROPID kName = PropertyId(7, CEVT_LPWSTR);

} // namespace

bool MakeCallLog() {
    SampleTable table(u"Call Log", kCallLogType, {{kStart, CEDB_SORT_DESCENDING}});
    Chance chance(2400);
    FILETIME start = Moment(kFirstSampleYear, 11, 3, 8);
    for (int i = 0; i < kCalls; ++i) {
        start = LaterBy(start, chance.Between(1, 2 * kMinutesBetweenCalls));
        SampleRecord record;
        record.Time(kStart, start);
        if (!chance.OneIn(6)) // answered
            record.Time(kEnd, LaterBy(start, chance.Between(1, 40)));
        record.Number(kOutgoing, chance.Below(2));
        if (chance.OneIn(9)) {
            record.Text(kNumber, u"555-01" + std::u16string{static_cast<WCHAR>(u'0' + chance.Below(10)),
                                                            static_cast<WCHAR>(u'0' + chance.Below(10))});
        } else {
            const SamplePerson& person = chance.Pick(kPeople);
            record.Text(kNumber, person.phone)
                .Text(kName, std::u16string(person.firstName) + u" " + person.lastName);
        }
        table.Add(record);
    }
    return table.Succeeded();
}
