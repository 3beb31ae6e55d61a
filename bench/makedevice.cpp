// Makes a device of so many databases with so many records of about 100 bytes each:
// bench-makedevice DIR DATABASES RECORDS
#include <cstdio>
#include <cstdlib>

#include "platform/device.h"
#include "platform/errors.h"
#include "platform/text.h"
#include "tools/sampledata/sampletable.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr CEPROPID kNumber = PropertyId(1, CEVT_UI4);
constexpr CEPROPID kTime = PropertyId(2, CEVT_FILETIME);
constexpr CEPROPID kText = PropertyId(3, CEVT_LPWSTR);

constexpr const WCHAR* kWords[] = {u"harbour", u"lantern", u"quince", u"feather", u"umbrella", u"thimble"};

// Three properties and 25 to 27 characters: 98 to 104 bytes.
bool MakeDatabase(const WCHAR* name, int records) {
    SampleTable table(name, 1, {});
    Chance chance(7);
    for (int i = 0; i < records; ++i) {
        WCHAR text[64];
        wsprintfW(text, u"%s no. %06d, %s", chance.Pick(kWords), i, chance.Pick(kWords));
        SampleRecord record;
        record.Number(kNumber, i).Time(kTime, Moment(2004, 1, 1, 0, i)).Text(kText, text);
        table.Add(record);
    }
    return table.Succeeded();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4 || !UseDevice(argv[1])) {
        std::fputs("usage: bench-makedevice DIR DATABASES RECORDS\n", stderr);
        return 2;
    }
    const int databases = std::atoi(argv[2]);
    for (int i = 0; i < databases; ++i) {
        WCHAR name[CEDB_MAXDBASENAMELEN];
        // Spread, so that the order in which they were made is not the order by name.
        wsprintfW(name, u"Database %05d", i * 7919 % 100'000);
        if (!MakeDatabase(name, std::atoi(argv[3]))) {
            std::fprintf(stderr, "bench-makedevice: error %u\n", GetLastError());
            return 1;
        }
    }
    return 0;
}
