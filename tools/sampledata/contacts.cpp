#include <string>

#include "tools/sampledata/people.h"
#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kContactsType = 24;
constexpr CEPROPID kFirstName = PropertyId(0x3A06, CEVT_LPWSTR);
constexpr CEPROPID kLastName = PropertyId(0x3A11, CEVT_LPWSTR);
constexpr CEPROPID kCompany = PropertyId(0x3A16, CEVT_LPWSTR);
constexpr CEPROPID kJobTitle = PropertyId(0x3A17, CEVT_LPWSTR);
constexpr CEPROPID kPhone = PropertyId(0x3A09, CEVT_LPWSTR);
constexpr CEPROPID kMail = PropertyId(0x4083, CEVT_LPWSTR);
constexpr CEPROPID kStreet = PropertyId(0x3A29, CEVT_LPWSTR);
constexpr CEPROPID kTown = PropertyId(0x3A27, CEVT_LPWSTR);
constexpr CEPROPID kCountry = PropertyId(0x3A26, CEVT_LPWSTR);
constexpr CEPROPID kBirthday = PropertyId(0x3A42, CEVT_FILETIME);
constexpr CEPROPID kCategories = PropertyId(0x4005, CEVT_UI4);
constexpr CEPROPID kRemark = PropertyId(0x4017, CEVT_LPWSTR);

constexpr const WCHAR* kRemarks[] = {
    u"",
    u"",
    u"",
    u"Prefers to be called after six.",
    u"Met at the lantern festival. Has two cats, Comma and Semicolon.",
    u"Allergic to walnuts!",
    u"Owes me a walk along the river. Or do I owe it?",
    u"Knows the best place for soup in town.\r\nIt is closed on Mondays.",
};

} // namespace

bool MakeContacts() {
    SampleTable contacts(u"Contacts Database", kContactsType,
                         {{kLastName, CEDB_SORT_CASEINSENSITIVE}, {kCompany, CEDB_SORT_CASEINSENSITIVE}});
    Chance chance(24);
    for (const SamplePerson& person : kPeople) {
        SampleRecord record;
        record.Text(kFirstName, person.firstName)
            .Text(kLastName, person.lastName)
            .Text(kCompany, person.company)
            .Text(kJobTitle, person.jobTitle)
            .Text(kPhone, person.phone)
            .Text(kMail, person.mail)
            .Text(kStreet, person.street)
            .Text(kTown, person.town)
            .Text(kCountry, person.country)
            .Number(kCategories, 1 + chance.Below(7));
        if (person.birthMonth) {
            record.Time(kBirthday, Moment(static_cast<WORD>(chance.Between(1938, 1986)),
                                          static_cast<WORD>(person.birthMonth), person.birthDay));
        }
        record.Text(kRemark, chance.Pick(kRemarks));
        contacts.Add(record);
    }
    return contacts.Succeeded();
}
