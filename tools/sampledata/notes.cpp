#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kNotesType = 32;
constexpr CEPROPID kTitle = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kText = PropertyId(2, CEVT_LPWSTR);
constexpr CEPROPID kMade = PropertyId(3, CEVT_FILETIME);
constexpr CEPROPID kCategory = PropertyId(4, CEVT_LPWSTR);

struct SampleNote {
    const WCHAR* title;
    const WCHAR* category;
    const WCHAR* text;
};

constexpr SampleNote kNotes[] = {
    {u"Walnut-free cake", u"Kitchen",
     u"250 g flour\r\n200 g sugar\r\n180 g butter, soft\r\n4 eggs\r\n1 lemon, all of it\r\na handful of "
     u"almonds\r\n"
     u"\r\nBeat what can be beaten, fold in the rest, 50 minutes at 175 °C. Let it cool if you can."},
    {u"Knots that hold", u"Sailing",
     u"Bowline: the rabbit comes out of the hole, round the tree, and back.\r\nSheet bend: the same rabbit, "
     u"another hole.\r\nClove hitch: for posts that one trusts."},
    {u"Ideas for the atlas cover", u"Work",
     u"- compass rose, letterpress\r\n- only the sea, no land\r\n- the coast as a single line, without "
     u"lifting the "
     u"pen (tried: 41 minutes, one sneeze)"},
    {u"Wi-Fi at the harbour café", u"", u"It has none. That is why one goes there."},
    {u"Haiku", u"", u"古池や\r\n蛙飛び込む\r\n水の音\r\n\r\n(Learn to write it from memory.)"},
    {u"Measurements", u"House",
     u"Hall: 2.14 × 5.60 m\r\nKitchen window: 88 cm, or 87 on the left\r\nSofa: 2.16 m\r\n\r\nOh."},
    {u"Birds, balcony", u"Nature",
     u"Blue tit, great tit, one very proud blackbird. On 14 March something small and yellow: serin? "
     u"Ask Yael. 🐦"},
    {u"Words for snow", u"Languages",
     u"lumi, räntä, hanki, nuoska, viti, tykky. Mikko says that this is nothing, and has gone to fetch "
     u"his grandmother."},
    {u"Telephone tree, choir", u"Music",
     u"Soprano: Zoë → Inês → Gwen\r\nAlto: Siobhán → Femke\r\nTenor: Matteo (does not hear the telephone)\r\n"
     u"Bass: Łukasz → Kári"},
    {u"Packing list, ridge track", u"Travel",
     u"boots\r\nwool socks, 3\r\nmap and compass\r\nthis device, in two bags\r\nmatches, in three "
     u"bags\r\nchocolate"},
    {u"What the watchmaker said", u"House", u"«Eine Uhr geht nicht falsch. Sie ist nur anderer Meinung.»"},
    {u"Quotation for the toast", u"", u"Something short. Thaddeus will speak before, and at length."},
    {u"Greek alphabet song", u"Languages", u"Α Β Γ Δ Ε Ζ Η Θ, Ι Κ Λ Μ Ν Ξ Ο, Π Ρ Σ Τ Υ, Φ Χ Ψ Ω"},
    {u"Star watch, 12 August", u"Nature",
     u"22:40 first one, low in the north-east\r\n22:52 two at once\r\n23:10 cloud\r\n23:55 no cloud, "
     u"nineteen in "
     u"ten minutes\r\n00:20 tea\r\n00:21 naturally the brightest of all, unseen"},
    {u"Empty page", u"", u""},
};

} // namespace

bool MakeNotes() {
    SampleTable table(u"Notes", kNotesType,
                      {{kTitle, CEDB_SORT_CASEINSENSITIVE}, {kMade, CEDB_SORT_DESCENDING}});
    Chance chance(32);
    int day = 40;
    for (const SampleNote& note : kNotes) {
        day += chance.Between(20, 90);
        SampleRecord record;
        record.Text(kTitle, note.title)
            .Text(kCategory, note.category)
            .Text(kText, note.text)
            .Time(kMade, Moment(kFirstSampleYear, 1, day, chance.Between(6, 23), chance.Between(0, 59)));
        table.Add(record);
    }
    return table.Succeeded();
}
