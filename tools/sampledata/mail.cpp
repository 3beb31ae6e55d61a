#include "tools/sampledata/mail.h"

#include <iterator>
#include <string>

#include "tools/sampledata/people.h"
#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kFolderType = 0x0DF0;
constexpr int kRoundLetters = 90;

constexpr CEPROPID kSubject = PropertyId(0x0037, CEVT_LPWSTR);
constexpr CEPROPID kFrom = PropertyId(0x0C1A, CEVT_LPWSTR);
constexpr CEPROPID kTo = PropertyId(0x0E04, CEVT_LPWSTR);
constexpr CEPROPID kText = PropertyId(0x1000, CEVT_LPWSTR);
constexpr CEPROPID kReceived = PropertyId(0x0E06, CEVT_FILETIME);
constexpr CEPROPID kFlags = PropertyId(0x0E07, CEVT_UI4);
constexpr CEPROPID kSize = PropertyId(0x0E08, CEVT_UI4);

constexpr DWORD kRead = 1;
constexpr DWORD kAnswered = 2;

constexpr const WCHAR* kOwner = u"me@example.com";

constexpr const WCHAR* kRoundSubjects[] = {
    u"Tide table for the week",
    u"Lighthouse society: minutes",
    u"Harbour school newsletter",
    u"Soup of the day",
    u"Library: your books are due",
    u"Choir: changed rehearsal time",
    u"Tram line 4: works at night",
    u"Coastal weather, issued at 06:00",
    u"Allotment: the water is on again",
    u"Neighbourhood: who has a cat?",
    u"Market hall: first quinces arrived",
};
constexpr const WCHAR* kRoundTexts[] = {
    u"Nothing unusual is expected. Boats may go out, and should come back.",
    u"Please find everything below. If you find anything else, please tell the secretary.",
    u"This message was sent to all members. The one who left an umbrella knows who is meant.",
    u"Wind from the south-west, four, later five. Visibility good. Sea state: inviting.",
    u"We thank you for your patience, and those who had none for their letters.",
};

std::u16string Address(const SamplePerson& person) {
    return std::u16string(person.firstName) + u" " + person.lastName + u" <" + person.mail + u">";
}

void AddLetter(SampleTable& folder, const SampleLetter& letter, const FILETIME& time, DWORD flags) {
    const std::u16string address = Address(kPeople[letter.person]);
    const bool incoming = letter.folder == SampleFolder::Inbox;
    const std::u16string text = letter.text;
    SampleRecord record;
    record.Text(kSubject, letter.subject)
        .Text(kFrom, incoming ? address : kOwner)
        .Text(kTo, incoming ? kOwner : address)
        .Time(kReceived, time)
        .Number(kFlags, flags)
        .Number(kSize, static_cast<std::int64_t>(text.size() * sizeof(WCHAR)))
        .Text(kText, text);
    folder.Add(record);
}

void AddRoundLetters(SampleTable& inbox, Chance& chance) {
    for (int i = 0; i < kRoundLetters; ++i) {
        const int person = chance.Between(0, static_cast<int>(std::size(kPeople)) - 1);
        const SampleLetter letter{SampleFolder::Inbox, person, chance.Pick(kRoundSubjects),
                                  chance.Pick(kRoundTexts)};
        AddLetter(inbox, letter, Moment(2005, 1, 4 * i, 6, chance.Between(0, 59)),
                  chance.OneIn(5) ? 0 : kRead);
    }
}

bool MakeFolder(const WCHAR* name, SampleFolder folder) {
    SampleTable table(name, kFolderType, {{kReceived, CEDB_SORT_DESCENDING}});
    Chance chance(0x0DF0);
    int day = 300;
    for (const SampleLetter& letter : kLetters) {
        day += chance.Between(2, 30);
        if (letter.folder == folder) {
            const DWORD flags = kRead | (chance.OneIn(3) ? kAnswered : 0);
            AddLetter(table, letter,
                      Moment(kFirstSampleYear, 1, day, chance.Between(7, 22), chance.Between(0, 59)), flags);
        }
    }
    if (folder == SampleFolder::Inbox)
        AddRoundLetters(table, chance);
    return table.Succeeded();
}

} // namespace

bool MakeMail() {
    SampleTable outbox(u"Mail - Outbox", kFolderType, {{kReceived, CEDB_SORT_DESCENDING}}); // stays empty
    return outbox.Succeeded() && MakeFolder(u"Mail - Inbox", SampleFolder::Inbox) &&
           MakeFolder(u"Mail - Sent", SampleFolder::Sent) &&
           MakeFolder(u"Mail - Drafts", SampleFolder::Drafts);
}
