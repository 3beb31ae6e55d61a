#include "platform/registry.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/errors.h"
#include "platform/text.h"
#include "tools/sampledata/sampledatabases.h"
#include "tools/sampledata/sampletime.h"

namespace {

constexpr DWORD kLinkType = 6;
constexpr DWORD kOwnType = 0x8001;

// One key being filled. A later step does nothing once one has failed.
class SampleKey {
public:
    SampleKey(HKEY mainKey, std::u16string_view path, const WCHAR* keyClass = nullptr) {
        succeeded =
            RegCreateKeyExW(mainKey, std::u16string(path).c_str(), 0, keyClass, REG_OPTION_NON_VOLATILE,
                            KEY_ALL_ACCESS, nullptr, &key, nullptr) == ERROR_SUCCESS;
    }
    SampleKey(const SampleKey&) = delete;
    SampleKey& operator=(const SampleKey&) = delete;
    ~SampleKey() { Close(); }

    SampleKey& Text(const WCHAR* name, std::u16string_view text) {
        const std::u16string whole(text); // the terminator goes with it
        return Set(name, REG_SZ, whole.c_str(), (whole.size() + 1) * sizeof(WCHAR));
    }
    SampleKey& Number(const WCHAR* name, DWORD number) {
        return Set(name, REG_DWORD, &number, sizeof number);
    }
    SampleKey& Texts(const WCHAR* name, std::initializer_list<std::u16string_view> texts) {
        std::u16string whole;
        for (const std::u16string_view text : texts)
            whole.append(text).push_back(0);
        return Set(name, REG_MULTI_SZ, whole.c_str(), (whole.size() + 1) * sizeof(WCHAR));
    }
    SampleKey& Set(const WCHAR* name, DWORD type, const void* data, std::size_t bytes) {
        succeeded = succeeded && RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data),
                                                static_cast<DWORD>(bytes)) == ERROR_SUCCESS;
        return *this;
    }
    // False when something could not be written.
    bool Close() {
        const HKEY open = key;
        key = 0;
        return (open == 0 || RegCloseKey(open) == ERROR_SUCCESS) && succeeded;
    }

private:
    HKEY key = 0;
    bool succeeded = false;
};

struct FileType {
    const WCHAR* ending;
    const WCHAR* name; // of its class
    const WCHAR* words;
    const WCHAR* program;
};
constexpr FileType kFileTypes[] = {
    {u"txt", u"txtfile", u"Text Document", u"notepad.exe"},
    {u"csv", u"csvfile", u"Table of Values", u"sheet.exe"},
    {u"bkp", u"bkpfile", u"Database Backup", u"strandview.exe"},
    {u"rbk", u"rbkfile", u"Registry Backup", u"strandview.exe"},
    {u"htm", u"htmlfile", u"Web Page", u"browser.exe"},
    {u"html", u"htmlfile", u"Web Page", u"browser.exe"},
    {u"bmp", u"picture", u"Picture", u"pictures.exe"},
    {u"png", u"picture", u"Picture", u"pictures.exe"},
    {u"jpg", u"picture", u"Picture", u"pictures.exe"},
    {u"gif", u"picture", u"Picture", u"pictures.exe"},
    {u"wav", u"wavfile", u"Recording", u"recorder.exe"},
    {u"mid", u"music", u"Melody", u"player.exe"},
    {u"mp3", u"music", u"Melody", u"player.exe"},
    {u"ink", u"inkfile", u"Handwritten Note", u"notes.exe"},
    {u"vcf", u"contact", u"Contact", u"contacts.exe"},
    {u"ics", u"appointment", u"Appointment", u"calendar.exe"},
    {u"exe", u"exefile", u"Program", u"%1"},
    {u"lnk", u"lnkfile", u"Shortcut", u"shell.exe"},
    {u"zip", u"archive", u"Folder in One File", u"unpack.exe"},
    {u"ttf", u"fontfile", u"Font", u"fonts.exe"},
};

bool MakeFileType(const FileType& type) {
    const std::u16string name = type.name;
    const std::u16string program = u"\\Windows\\" + std::u16string(type.program);
    return SampleKey(HKEY_CLASSES_ROOT, u"." + std::u16string(type.ending), u"FileExtension")
               .Text(nullptr, name)
               .Close() &&
           SampleKey(HKEY_CLASSES_ROOT, name, u"FileType")
               .Text(nullptr, type.words)
               .Number(u"EditFlags", 0)
               .Close() &&
           SampleKey(HKEY_CLASSES_ROOT, name + u"\\DefaultIcon").Text(nullptr, program + u",-101").Close() &&
           SampleKey(HKEY_CLASSES_ROOT, name + u"\\Shell\\Open\\Command")
               .Text(nullptr, u"\"" + program + u"\" \"%1\"")
               .Close();
}

struct Service {
    const WCHAR* name;
    DWORD order;
    const WCHAR* words;
};
constexpr Service kServices[] = {
    {u"Audio", 10, u"Sound in and out"},   {u"Beam", 40, u"Receives what others send"},
    {u"Clock", 1, u"Alarms and wake-ups"}, {u"Modem", 30, u"Telephone lines"},
    {u"Power", 0, u"Battery and lamp"},    {u"Serial", 20, u"The cable"},
    {u"Storage", 5, u"Memory cards"},      {u"Touch", 2, u"The stylus"},
    {u"USB", 25, u"The cradle"},           {u"Wireless", 35, u"Radio network"},
};

bool MakeService(const Service& service) {
    const std::u16string path = u"Services\\" + std::u16string(service.name);
    return SampleKey(HKEY_LOCAL_MACHINE, path, u"Service")
               .Text(u"Dll", std::u16string(service.name) + u".dll")
               .Number(u"Order", service.order)
               .Number(u"Keep", 1)
               .Text(u"Description", service.words)
               .Texts(u"DependsOn", {u"Power", u"Clock"})
               .Set(u"Context", REG_NONE, nullptr, 0)
               .Close() &&
           SampleKey(HKEY_LOCAL_MACHINE, path + u"\\Parameters")
               .Number(u"Retries", 3)
               .Number(u"Timeout", 15'000)
               .Close();
}

struct City {
    const WCHAR* name;
    LONG minutes; // east of Greenwich
};
constexpr City kCities[] = {
    {u"Azores", -60},  {u"Berlin", 60},    {u"Buenos Aires", -180}, {u"Cairo", 120},
    {u"Denver", -420}, {u"Helsinki", 120}, {u"Honolulu", -600},     {u"Kathmandu", 345},
    {u"Kolkata", 330}, {u"Lima", -300},    {u"London", 0},          {u"Montréal", -300},
    {u"Москва", 180},  {u"Nairobi", 180},  {u"St. John's", -210},   {u"São Paulo", -180},
    {u"Tehran", 210},  {u"Ἀθῆναι", 120},   {u"Wellington", 720},    {u"القاهرة", 120},
    {u"ירושלים", 120}, {u"กรุงเทพฯ", 420},  {u"北京", 480},          {u"東京", 540},
    {u"서울", 540},
};

bool MakeCity(const City& city) {
    const LONG bias[] = {-city.minutes, 0, -60};
    WCHAR words[64];
    const int minutes = std::abs(city.minutes);
    wsprintfW(words, u"GMT%s%02d:%02d", city.minutes < 0 ? u"-" : u"+", minutes / 60, minutes % 60);
    return SampleKey(HKEY_LOCAL_MACHINE, u"Time Zones\\" + std::u16string(city.name))
        .Text(u"Display", words)
        .Text(u"Std", u"Standard time")
        .Text(u"Dlt", u"Summer time")
        .Set(u"TZI", REG_BINARY, bias, sizeof bias)
        .Close();
}

constexpr const WCHAR* kEvents[] = {
    u"Alarm",  u"Beam received", u"Critical battery", u"Default", u"Error",   u"Mail",
    u"Menu",   u"Question",      u"Reminder",         u"Ring",    u"Startup", u"Tap",
    u"Unlock", u"Warning",       u"Weckruf für früh", u"通知"};

bool MakeSound(const WCHAR* event) {
    const std::u16string path = u"Sounds\\Events\\" + std::u16string(event);
    return SampleKey(HKEY_CURRENT_USER, path).Number(u"Volume", 0x8000).Close() &&
           SampleKey(HKEY_CURRENT_USER, path + u"\\Current")
               .Text(nullptr, u"\\Windows\\chimes.wav")
               .Close() &&
           SampleKey(HKEY_CURRENT_USER, path + u"\\Default").Text(nullptr, u"").Close();
}

constexpr const WCHAR* kPrograms[] = {u"Browser", u"Calculator", u"Calendar", u"Contacts", u"Games",
                                      u"Mail",    u"Notes",      u"Pictures", u"Player",   u"Recorder",
                                      u"Sheet",   u"Sketch",     u"Terminal", u"Today",    u"Unpack",
                                      u"Writer",  u"Журнал",     u"辞書"};

bool MakeProgram(const WCHAR* program) {
    static Chance chance(31);
    BYTE layout[44];
    for (BYTE& byte : layout)
        byte = static_cast<BYTE>(chance.Below(256));
    const std::u16string path = u"Software\\Harbour Works\\" + std::u16string(program);
    return SampleKey(HKEY_CURRENT_USER, path, u"Program")
               .Number(u"Started", chance.Below(400))
               .Set(u"Window", REG_BINARY, layout, sizeof layout)
               .Close() &&
           SampleKey(HKEY_CURRENT_USER, path + u"\\Recent")
               .Texts(u"Files",
                      {u"\\My Documents\\readme.txt", u"\\My Documents\\Übersicht.txt", u"\\覚え書き.txt"})
               .Close() &&
           SampleKey(HKEY_CURRENT_USER, path + u"\\View\\Columns\\Widths")
               .Number(u"0", 85)
               .Number(u"1", 60)
               .Close();
}

bool MakeOwnerAndNetwork() {
    return SampleKey(HKEY_CURRENT_USER, u"ControlPanel\\Owner")
               .Text(u"Name", u"Ada Winterbourne")
               .Text(u"Note", u"If found, please water the plants.\r\nThank you!")
               .Number(u"ShowAtStart", 1)
               .Close() &&
           SampleKey(HKEY_CURRENT_USER, u"ControlPanel\\Backlight")
               .Number(u"Seconds", 30)
               .Number(u"Tap", 1)
               .Close() &&
           SampleKey(HKEY_CURRENT_USER, u"ControlPanel\\Volume")
               .Number(u"Screen", 0xFFFFFFFF)
               .Number(u"Key", 0)
               .Close() &&
           SampleKey(HKEY_LOCAL_MACHINE, u"Network\\Cradle\\TcpIp")
               .Number(u"EnableDHCP", 1)
               .Texts(u"DNS", {u"192.0.2.1", u"192.0.2.2"})
               .Texts(u"WINS", {})
               .Text(u"Domain", u"example.net")
               .Close() &&
           SampleKey(HKEY_LOCAL_MACHINE, u"Network\\Proxy").Text(nullptr, u"proxy.example.net:8080").Close();
}

// What a program that reads a registry has to be ready for.
bool MakeOddKeys() {
    const std::vector<BYTE> largest(16'384, 0x5A); // the most that a backup takes
    std::u16string deep = u"Oddities";
    for (int level = 1; level <= 24; ++level)
        deep += u"\\Level" + std::u16string(1, static_cast<WCHAR>(u'a' + level - 1));
    const WCHAR unterminated[] = {u'c', u'u', u't'};
    const BYTE odd[] = {1, 2, 3};
    return SampleKey(HKEY_LOCAL_MACHINE, u"Oddities\\Types", u"All of them")
               .Text(nullptr, u"the default value")
               .Set(u"none, without data", REG_NONE, nullptr, 0)
               .Set(u"text, without data", REG_SZ, nullptr, 0)
               .Set(u"text, unterminated", REG_SZ, unterminated, sizeof unterminated)
               .Set(u"text, of three bytes", REG_SZ, odd, sizeof odd)
               .Set(u"number, of three bytes", REG_DWORD, odd, sizeof odd)
               .Set(u"link", kLinkType, u"elsewhere", sizeof u"elsewhere")
               .Set(u"type of its own", kOwnType, odd, sizeof odd)
               .Set(u"name with \\ and \"", REG_BINARY, odd, sizeof odd)
               .Set(u"𝄞 Ωmega – 漢字 – عربي", REG_BINARY, odd, sizeof odd)
               .Set(std::u16string(259, u'n').c_str(), REG_BINARY, odd, sizeof odd)
               .Set(u"largest", REG_BINARY, largest.data(), largest.size())
               .Close() &&
           SampleKey(HKEY_LOCAL_MACHINE, u"Oddities\\Empty", std::u16string(259, u'c').c_str()).Close() &&
           SampleKey(HKEY_LOCAL_MACHINE, deep).Text(u"Where", u"far below").Close();
}

template <typename Things, typename Make>
bool MakeEach(const Things& things, Make make) {
    return std::all_of(std::begin(things), std::end(things), make);
}

} // namespace

bool MakeRegistry() {
    return MakeEach(kFileTypes, MakeFileType) && MakeEach(kServices, MakeService) &&
           MakeEach(kCities, MakeCity) && MakeEach(kEvents, MakeSound) && MakeEach(kPrograms, MakeProgram) &&
           MakeOwnerAndNetwork() && MakeOddKeys();
}
