// Exports ten properties a record, for the speed of it:
//   bench-export make DIR RECORDS      makes a device with one database of so many records
//   bench-export write DIR FILE        exports it as comma-separated values
#include "export/export.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "app/application.h"
#include "platform/device.h"
#include "platform/text.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

const WCHAR* const kDatabase = u"Mixed";
constexpr const WCHAR* kWords[] = {u"harbour", u"lantern", u"quince", u"feather", u"umbrella", u"thimble"};

// Two numbers of each width, two times and two texts, one of which is a sentence with commas and quotes.
bool MakeDevice(int records) {
    SampleTable table(kDatabase, 1, {});
    Chance chance(7);
    for (int i = 0; i < records; ++i) {
        WCHAR text[96];
        SampleRecord record;
        record.Number(PropertyId(1, CEVT_UI4), i);
        record.Number(PropertyId(2, CEVT_I4), chance.Between(-1'000'000, 1'000'000));
        record.Number(PropertyId(3, CEVT_I2), chance.Between(-30'000, 30'000));
        record.Number(PropertyId(4, CEVT_UI2), chance.Between(0, 60'000));
        record.Real(PropertyId(5, CEVT_R8), chance.Between(-100'000, 100'000) / 8.0);
        record.Real(PropertyId(6, CEVT_R8), chance.Between(0, 10'000) / 100.0);
        record.Time(PropertyId(7, CEVT_FILETIME), Moment(2004, 1, 1, 0, i));
        record.Time(PropertyId(8, CEVT_FILETIME), Moment(2003, 1, chance.Between(1, 700), 0, i % 1440));
        record.Text(PropertyId(9, CEVT_LPWSTR), chance.Pick(kWords));
        wsprintfW(text, u"A %s, \"%s\" and %d more", chance.Pick(kWords), chance.Pick(kWords), i);
        record.Text(PropertyId(10, CEVT_LPWSTR), text);
        table.Add(record);
    }
    return table.Succeeded();
}

bool WriteFile(const std::string& file) {
    const auto settings = std::make_unique<Settings>();
    settings->interactive = 0;
    settings->unattended = 1;
    App().settings = settings.get();
    const auto state = std::make_unique<ExportState>(nullptr);
    const std::u16string path(file.begin(), file.end());
    const bool written = ExportDatabase(state.get(), kDatabase, path.c_str());
    App().settings = nullptr;
    return written;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view what = argc > 1 ? argv[1] : "";
    if (argc != 4 || (what != "make" && what != "write") || !UseDevice(argv[2])) {
        std::fputs("usage: bench-export make DIR RECORDS | write DIR FILE\n", stderr);
        return 2;
    }
    static char module;
    App().instance = reinterpret_cast<HINSTANCE>(&module);
    return (what == "make" ? MakeDevice(std::atoi(argv[3])) : WriteFile(argv[3])) ? 0 : 1;
}
