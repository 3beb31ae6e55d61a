#include <iterator>

#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kLibraryType = 0x3002;
constexpr CEPROPID kTitle = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kAuthor = PropertyId(2, CEVT_LPWSTR);
constexpr CEPROPID kYear = PropertyId(3, CEVT_I2);
constexpr CEPROPID kStars = PropertyId(4, CEVT_UI2);
constexpr CEPROPID kLentTo = PropertyId(5, CEVT_LPWSTR);
constexpr CEPROPID kLentOn = PropertyId(6, CEVT_FILETIME);

struct Book {
    const WCHAR* title;
    const WCHAR* author;
    int year;
    int stars; // 0: not read yet
    const WCHAR* lentTo;
};

constexpr Book kBooks[] = {
    {u"A Short History of Long Walks", u"Pritchard-Vaughan, G.", 1974, 5, u""},
    {u"an atlas of small harbours", u"Okonkwo-Lindqvist, R.", 1998, 5, u"Kári"},
    {u"Brot und Geduld", u"Achtermann, H.", 1961, 4, u""},
    {u"Clouds, and What They Meant", u"Raghunathan, P.", 2002, 3, u"Zoë"},
    {u"Cómo hablar con las viñas", u"Núñez Peña, T.", 1989, 0, u""},
    {u"De la reliure considérée comme un voyage", u"Delacourt, A.", 1955, 4, u"Siobhán"},
    {u"Die Uhr, die anderer Meinung war", u"Großmann, J.", 1987, 5, u""},
    {u"Εγχειρίδιο παλιρροιών", u"Παππά, Ε.", 2001, 0, u""},
    {u"Fifty Knots and One Regret", u"Harrowgate, L.", 1933, 4, u"Mikko"},
    {u"Gardens Seen From Trains", u"Żółtowski, Ł.", 1979, 5, u""},
    {u"Hvad isen ved", u"Þórsson, K.", 2003, 0, u""},
    {u"invisible bridges", u"Bellacqua, M.", 1968, 2, u""},
    {u"Jam: A Defence", u"Merriweather, O.", 1912, 4, u"Gwen"},
    {u"Kites of the Eastern Wind", u"Kim, H.", 1994, 5, u""},
    {u"Letters to a Lighthouse", u"Vasconcelos, I.", 1946, 5, u"Ada"},
    {u"Maps That Lie Kindly", u"Okonkwo-Lindqvist, R.", 2000, 4, u""},
    {u"Nocturne for Two Cats", u"Lindenbaum, S.", 1999, 3, u""},
    {u"On Being Late", u"Quillfeather, T.", 1971, 0, u""},
    {u"Petit traité du silence", u"Bouchard-Roy, A.", 1982, 4, u""},
    {u"雲の名前", u"𠮷野 さくら", 2004, 5, u"Priya"},
    {u"Тихий сад", u"Лесной, И.", 1958, 3, u""},
    {u"The Cheesemaker's Almanac", u"Pritchard-Vaughan, G.", 1991, 4, u""},
    {u"the unlettered alphabet", u"Ní Fhaoláin, S.", 1977, 5, u"Anaïs"},
    {u"Violins and Other Weather", u"Erdőhegyi, S.", 1965, 5, u""},
    {u"What the Miller Heard", u"Dijkstra-Bos, F.", 1949, 2, u""},
    {u"Zehn Arten, nichts zu tun", u"Achtermann, H.", 1963, 0, u""},
};

} // namespace

bool MakeLibrary() {
    SampleTable table(u"Library", kLibraryType,
                      {{kTitle, CEDB_SORT_CASEINSENSITIVE},
                       {kAuthor, CEDB_SORT_CASEINSENSITIVE | CEDB_SORT_DESCENDING},
                       {kYear, CEDB_SORT_DESCENDING},
                       {kStars, CEDB_SORT_UNKNOWNFIRST}});
    Chance chance(26);
    for (const Book& book : kBooks) {
        SampleRecord record;
        record.Text(kTitle, book.title).Text(kAuthor, book.author).Number(kYear, book.year);
        if (book.stars)
            record.Number(kStars, book.stars);
        if (*book.lentTo) {
            record.Text(kLentTo, book.lentTo)
                .Time(kLentOn, Moment(2005, static_cast<WORD>(chance.Between(1, 12)), chance.Between(1, 28)));
        }
        table.Add(record);
    }
    return table.Succeeded();
}
