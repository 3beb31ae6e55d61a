#include "bench/codeccorpus.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

constexpr std::string_view kProgramMark = "\177ELF";
constexpr std::size_t kLeastFile = 1024;

using Bytes = std::vector<BYTE>;

std::vector<std::filesystem::path> FilesBelow(const char* folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    constexpr auto quietly = std::filesystem::directory_options::skip_permission_denied;
    for (std::filesystem::recursive_directory_iterator each(folder, quietly, error), end; each != end;
         each.increment(error))
        if (!each->is_symlink(error) && each->is_regular_file(error))
            files.push_back(each->path());
    std::sort(files.begin(), files.end());
    return files;
}

// The file's bytes when it is of the wanted kind.
std::string FileOfKind(const std::filesystem::path& path, bool binary) {
    std::ifstream file(path, std::ios::binary);
    std::string head(kLeastFile, '\0');
    if (!file.read(head.data(), static_cast<std::streamsize>(head.size())))
        return {};
    const bool fits = binary ? head.starts_with(kProgramMark) : head.find('\0') == std::string::npos;
    if (!fits)
        return {};
    return head + std::string(std::istreambuf_iterator<char>(file), {});
}

Bytes FromFiles(std::initializer_list<const char*> folders, bool binary, std::size_t size) {
    Bytes corpus;
    for (std::size_t before = 1; corpus.size() < size && corpus.size() != before;) {
        before = corpus.size();
        for (const char* folder : folders) {
            for (const std::filesystem::path& path : FilesBelow(folder)) {
                const std::string content = FileOfKind(path, binary);
                corpus.insert(corpus.end(), content.begin(), content.end());
                if (corpus.size() >= size)
                    break;
            }
        }
    }
    corpus.resize(corpus.empty() ? 0 : size);
    return corpus;
}

// A record of the object store: entries of 16 bytes, then the texts that they refer to by offset.
class RecordMaker {
public:
    Bytes Make() {
        const std::u16string name = Pick(kFirstNames) + u" " + Pick(kLastNames);
        texts.clear();
        entries.clear();
        AddText(0x4013, name);
        AddText(0x4023, Pick(kStreets) + u" " + Digits(1 + random() % 3));
        AddText(0x4027, Pick(kTowns));
        AddText(0x4003, u"+44 " + Digits(4) + u" " + Digits(6));
        if (random() % 3)
            AddText(0x4083, Pick(kLastNames) + u"@" + Pick(kTowns) + u".example");
        AddNumber(0x4041, random() % 64);
        AddNumber(0x0040, 0x1C00000u + random() % 4000); // a date, roughly
        if (random() % 4 == 0)
            AddText(0x0017,
                    u"Met " + Pick(kFirstNames) + u" in " + Pick(kTowns) + u"; call back on " + Digits(2));
        return Whole();
    }

private:
    using Words = std::vector<std::u16string>;
    struct Entry {
        DWORD property;
        WORD length;
        WORD flags;
        DWORD value;
        DWORD rest;
    };
    static_assert(sizeof(Entry) == 16);

    std::mt19937 random{19991231};
    std::vector<Entry> entries;
    std::u16string texts;

    const Words kFirstNames = {u"Ada",  u"Bruno", u"Carla", u"David", u"Edith", u"Frank", u"Grete", u"Hugo",
                               u"Iris", u"Jonas", u"Karin", u"Louis", u"Marta", u"Niels", u"Olive", u"Piet"};
    const Words kLastNames = {u"Abbott", u"Berger", u"Carlsen", u"Dupont",  u"Evans",  u"Fischer",
                              u"Garner", u"Holm",   u"Ivanov",  u"Jackson", u"Keller", u"Lemaire",
                              u"Moore",  u"Novak",  u"Ortega",  u"Perry"};
    const Words kStreets = {u"High Street", u"Mill Lane",     u"Church Road", u"Station Road",
                            u"Park Avenue", u"Bridge Street", u"Queens Road", u"Market Square"};
    const Words kTowns = {u"Alton",  u"Bexhill", u"Corby",  u"Dorking", u"Epsom",  u"Frome",
                          u"Goole",  u"Hythe",   u"Ilkley", u"Jarrow",  u"Kendal", u"Ludlow",
                          u"Malton", u"Nairn",   u"Oakham", u"Penrith"};

    std::u16string Pick(const Words& words) { return words[random() % words.size()]; }
    std::u16string Digits(std::size_t count) {
        std::u16string digits(count, u'0');
        for (char16_t& digit : digits)
            digit = static_cast<char16_t>(u'0' + random() % 10);
        return digits;
    }
    void AddText(DWORD property, const std::u16string& text) {
        entries.push_back({property << 16 | 0x1F, 0, 0, static_cast<DWORD>(2 * texts.size()), 0});
        texts += text + u'\0';
    }
    void AddNumber(DWORD property, DWORD value) {
        entries.push_back({property << 16 | 0x13, 0, 0, value, 0});
    }

    Bytes Whole() {
        const std::size_t front = entries.size() * sizeof(Entry);
        for (Entry& entry : entries)
            if ((entry.property & 0xFFFF) == 0x1F)
                entry.value += static_cast<DWORD>(front);
        Bytes record(front + 2 * texts.size());
        std::memcpy(record.data(), entries.data(), front);
        std::memcpy(record.data() + front, texts.data(), 2 * texts.size());
        return record;
    }
};

Bytes Records(std::size_t size) {
    RecordMaker maker;
    Bytes corpus;
    while (corpus.size() < size) {
        const Bytes record = maker.Make();
        corpus.insert(corpus.end(), record.begin(), record.end());
    }
    corpus.resize(size);
    return corpus;
}

} // namespace

std::vector<BYTE> MakeCorpus(std::string_view kind, std::size_t size) {
    if (kind == "text")
        return FromFiles({"/usr/share/doc", "/usr/share/perl", "/usr/include"}, false, size);
    if (kind == "binaries")
        return FromFiles({"/usr/bin", "/usr/lib"}, true, size);
    if (kind == "records")
        return Records(size);
    return {};
}
