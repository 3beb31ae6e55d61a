#include "platform/launcher/arguments.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/base/utf8.h"
#include "platform/text.h"
#include "platform/types.h"

namespace {

using Words = std::vector<std::u16string>;

constexpr const WCHAR* kDocuments[] = {u".bkp", u".abk", u".rbk"};

std::string Complain(std::string_view argument, const char* what) {
    return "the argument " + std::string(argument) + ' ' + what;
}

bool NeedsQuotes(const std::u16string& text) {
    return text.empty() || std::any_of(text.begin(), text.end(), IsSpaceCharacter);
}

// The switch's letter as a small one, 0 for what is no switch. The program looks no further than the letter.
WCHAR SwitchLetter(const std::u16string& word) {
    constexpr WCHAR kToSmall = u'a' - u'A';
    return word.size() > 1 && (word[0] == u'-' || word[0] == u'/') ? word[1] | kToSmall : 0;
}

bool TakesPath(WCHAR letter) {
    return letter == u'a' || letter == u'b' || letter == u'r';
}

bool PathIsNext(const Words& words) {
    bool isNext = false;
    for (const std::u16string& word : words)
        isNext = !isNext && TakesPath(SwitchLetter(word));
    return isNext;
}

// To the program a leading slash begins a switch.
bool IsHostPath(std::string_view argument, bool pathIsNext) {
    std::error_code unreadable;
    return argument.starts_with('/') && (pathIsNext || argument.find('/', 1) != std::string_view::npos ||
                                         std::filesystem::exists(argument, unreadable));
}

// Links are followed here, for the device's paths step back by name.
std::u16string DevicePathOf(std::string_view hostPath) {
    namespace fs = std::filesystem;
    std::error_code unreadable;
    const fs::path path(hostPath);
    const fs::path folder = fs::weakly_canonical(path.parent_path(), unreadable);
    std::u16string result =
        u"\\Storage Card" + FromUtf8((unreadable ? path : folder / path.filename()).string());
    std::replace(result.begin(), result.end(), u'/', u'\\');
    return result;
}

// Adds an argument for the program as it will take it. The program splits at blanks and knows double quotes,
// but no escapes, and it cuts what is too long: such an argument would name another file.
std::string AddWord(Words& words, std::string_view argument) {
    std::u16string text = FromUtf8(argument);
    if (ToUtf8(text) != argument)
        return Complain(argument, "is not UTF-8");
    if (IsHostPath(argument, PathIsNext(words))) {
        if (text.find(u'\\') != std::u16string::npos)
            return Complain(argument, "holds a backslash, which parts names on the device");
        text = DevicePathOf(argument);
    }
    if (text.size() >= MAX_PATH)
        return Complain(argument, "is too long");
    if (text.starts_with(u'"') || (NeedsQuotes(text) && text.find(u'"') != std::u16string::npos))
        return Complain(argument, "holds a double quote, which cannot be handed on");
    words.push_back(text);
    return {};
}

// A file manager names the file that the user chose, and nothing else.
bool NamesDocument(const Words& words) {
    if (words.size() != 1 || SwitchLetter(words[0]))
        return false;
    const std::size_t dot = std::min(words[0].rfind(u'.'), words[0].size());
    return std::any_of(std::begin(kDocuments), std::end(kDocuments), [&](const WCHAR* extension) {
        return lstrcmpiW(words[0].c_str() + dot, extension) == 0;
    });
}

// The same file for a process in another folder.
std::u16string FromRoot(const std::u16string& path) {
    std::error_code unreadable;
    return path.starts_with(u'\\')
               ? path
               : DevicePathOf(std::filesystem::absolute(ToUtf8(path), unreadable).string());
}

std::u16string Join(const Words& words) {
    std::u16string line;
    for (const std::u16string& word : words) {
        line += line.empty() ? u"" : u" ";
        line += NeedsQuotes(word) ? u'"' + word + u'"' : word;
    }
    return line;
}

// Of several jobs the last counts.
bool MakesDevice(const Words& words) {
    bool makes = words.empty();
    bool isPath = false;
    for (const std::u16string& word : words) {
        const WCHAR letter = isPath ? WCHAR(0) : SwitchLetter(word);
        isPath = TakesPath(letter);
        makes = isPath ? letter == u'r' : makes;
    }
    return makes;
}

// Takes one of the launcher's options that stand alone.
bool TakeFlag(std::string_view argument, Options& options) {
    const struct {
        std::string_view names[2];
        bool* flag;
    } known[] = {
        {{"--help", "-h"}, &options.help},
        {{"--version", "-v"}, &options.version},
        {{"--samples", ""}, &options.samples},
        {{"--check", ""}, &options.check},
    };
    for (const auto& [names, flag] : known)
        if (argument == names[0] || (!names[1].empty() && argument == names[1]))
            return *flag = true;
    return false;
}

// What an option that names a folder sets; null for any other argument.
std::string* FolderOf(std::string_view argument, Options& options) {
    const std::string_view name = argument.substr(0, argument.find('='));
    return name == "--device" ? &options.device : name == "--air" ? &options.air : nullptr;
}

// The folder of the option at `i`, which stands behind "=" or is the next argument.
std::string TakeFolder(int count, const char* const* arguments, int& i, std::string& folder) {
    const std::string_view option = arguments[i];
    const std::size_t equals = option.find('=');
    if (equals != std::string_view::npos)
        folder = option.substr(equals + 1);
    else
        folder = i + 1 < count ? arguments[++i] : "";
    return folder.empty() ? std::string(option.substr(0, equals)) + " needs a folder" : std::string();
}

} // namespace

std::string ParseArguments(int count, const char* const* arguments, Options& options) {
    Words words;
    std::string complaint;
    for (int i = 1; i < count && complaint.empty(); ++i) {
        const std::string_view argument = arguments[i];
        if (TakeFlag(argument, options))
            continue;
        if (!argument.starts_with("--"))
            complaint = AddWord(words, argument);
        else if (std::string* const folder = FolderOf(argument, options))
            complaint = TakeFolder(count, arguments, i, *folder);
        else
            complaint = "unknown option " + std::string(argument) + "; see --help";
    }
    if (NamesDocument(words)) {
        options.document = FromRoot(words[0]);
        words.clear();
        if (options.document.size() >= MAX_PATH)
            complaint = Complain(ToUtf8(options.document), "is too long");
    }
    options.commandLine = Join(words);
    options.makesDevice = MakesDevice(words);
    return complaint;
}
