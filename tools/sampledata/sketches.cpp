#include <cmath>
#include <vector>

#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kSketchesType = 0x3003;
constexpr CEPROPID kTitle = PropertyId(1, CEVT_LPWSTR);
constexpr CEPROPID kDrawn = PropertyId(2, CEVT_FILETIME);
constexpr CEPROPID kWidth = PropertyId(3, CEVT_UI2);
constexpr CEPROPID kHeight = PropertyId(4, CEVT_UI2);
constexpr CEPROPID kStrokes = PropertyId(5, CEVT_BLOB);

constexpr int kPaperWidth = 240;
constexpr int kPaperHeight = 268;
constexpr int kPointsPerPetal = 420;

struct Sketch {
    const WCHAR* title;
    int petals; // what is drawn is a curve of so many loops
    int twist;
};
constexpr Sketch kSketches[] = {
    {u"Rose window, south wall", 12, 5},
    {u"Gear for the kitchen clock", 24, 1},
    {u"Tide curve, Lilla Viken", 3, 2},
    {u"Dandelion", 31, 7},
    {u"Snowflake, melting", 6, 1},
    {u"Lace for the bookbinder", 40, 3},
    {u"Plan of the boat house", 4, 1},
    {u"Compass rose, cover", 16, 3},
    {u"Knot no. 51", 9, 4},
    {u"風車", 4, 3},
};

void AppendCoordinate(std::vector<BYTE>& bytes, double place) {
    const auto whole = static_cast<WORD>(std::lround(place));
    bytes.push_back(LOWORD(whole) & 0xFF);
    bytes.push_back(static_cast<BYTE>(whole >> 8));
}

// Points of the pen, two little-endian words each.
std::vector<BYTE> Strokes(const Sketch& sketch) {
    constexpr double pi = 3.14159265358979;
    const int points = sketch.petals * kPointsPerPetal;
    std::vector<BYTE> bytes;
    bytes.reserve(static_cast<std::size_t>(points) * 4);
    for (int i = 0; i < points; ++i) {
        const double turn = 2 * pi * i / points;
        const double radius = kPaperWidth / 2.0 * (0.55 + 0.4 * std::cos(turn * sketch.petals));
        AppendCoordinate(bytes, kPaperWidth / 2.0 + radius * std::cos(turn * sketch.twist));
        AppendCoordinate(bytes, kPaperHeight / 2.0 + radius * std::sin(turn * sketch.twist));
    }
    return bytes;
}

} // namespace

bool MakeSketches() {
    SampleTable table(u"Sketches", kSketchesType, {{kDrawn, 0}});
    Chance chance(10);
    int day = 200;
    for (const Sketch& sketch : kSketches) {
        day += chance.Between(15, 80);
        SampleRecord record;
        record.Text(kTitle, sketch.title)
            .Time(kDrawn, Moment(kFirstSampleYear, 1, day, chance.Between(9, 22), chance.Between(0, 59)))
            .Number(kWidth, kPaperWidth)
            .Number(kHeight, kPaperHeight)
            .Bytes(kStrokes, Strokes(sketch));
        table.Add(record);
    }
    return table.Succeeded();
}
