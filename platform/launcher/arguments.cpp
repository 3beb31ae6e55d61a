#include "platform/launcher/arguments.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "platform/base/utf8.h"
#include "platform/text.h"
#include "platform/types.h"

namespace {

using Words = std::vector<std::u16string>;

std::string Complain(std::string_view argument, const char* what) {
    return "the argument " + std::string(argument) + ' ' + what;
}

bool NeedsQuotes(const std::u16string& text) {
    return text.empty() || std::any_of(text.begin(), text.end(), IsSpaceCharacter);
}

// Adds an argument for the program as it will take it. The program splits at blanks and knows double quotes,
// but no escapes, and it cuts what is too long: such an argument would name another file.
std::string AddWord(Words& words, std::string_view argument) {
    const std::u16string text = FromUtf8(argument);
    if (ToUtf8(text) != argument)
        return Complain(argument, "is not UTF-8");
    if (text.size() >= MAX_PATH)
        return Complain(argument, "is too long");
    if (text.starts_with(u'"') || (NeedsQuotes(text) && text.find(u'"') != std::u16string::npos))
        return Complain(argument, "holds a double quote, which cannot be handed on");
    words.push_back(text);
    return {};
}

std::u16string Join(const Words& words) {
    std::u16string line;
    for (const std::u16string& word : words) {
        line += line.empty() ? u"" : u" ";
        line += NeedsQuotes(word) ? u'"' + word + u'"' : word;
    }
    return line;
}

// Of the program's switches, those for jobs are followed by a path; the last of them counts.
bool MakesDevice(const Words& words) {
    constexpr WCHAR kToSmall = u'a' - u'A';
    bool makes = words.empty();
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::u16string& word = words[i];
        const WCHAR letter = word.size() > 1 && (word[0] == u'-' || word[0] == u'/') ? word[1] | kToSmall : 0;
        if (letter == u'a' || letter == u'b' || letter == u'r') {
            makes = letter == u'r';
            ++i;
        }
    }
    return makes;
}

} // namespace

std::string ParseArguments(int count, const char* const* arguments, Options& options) {
    constexpr std::string_view deviceIs = "--device=";
    Words words;
    std::string complaint;
    for (int i = 1; i < count && complaint.empty(); ++i) {
        const std::string_view argument = arguments[i];
        if (!argument.starts_with("--"))
            complaint = AddWord(words, argument);
        else if (argument == "--help")
            options.help = true;
        else if (argument == "--version")
            options.version = true;
        else if (argument == "--device" && i + 1 < count && *arguments[i + 1])
            options.device = arguments[++i];
        else if (argument.starts_with(deviceIs) && argument != deviceIs)
            options.device = argument.substr(deviceIs.size());
        else if (argument == "--device" || argument == deviceIs)
            complaint = "--device needs a folder";
        else
            complaint = "unknown option " + std::string(argument) + "; see --help";
    }
    options.commandLine = Join(words);
    options.makesDevice = MakesDevice(words);
    return complaint;
}
