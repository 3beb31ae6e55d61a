#include "platform/launcher/arguments.h"

#include <algorithm>
#include <string_view>

#include "platform/base/utf8.h"
#include "platform/text.h"

namespace {

// The program splits at blanks and knows double quotes, but no escapes. What already holds a quote is
// therefore handed over as it was typed.
void AppendArgument(std::u16string& commandLine, std::string_view argument) {
    const std::u16string text = FromUtf8(argument);
    const bool blanks = text.empty() || std::any_of(text.begin(), text.end(), IsSpaceCharacter);
    const bool quote = blanks && text.find(u'"') == std::u16string::npos;
    commandLine += commandLine.empty() ? u"" : u" ";
    commandLine += quote ? u'"' + text + u'"' : text;
}

} // namespace

std::string ParseArguments(int count, const char* const* arguments, Options& options) {
    constexpr std::string_view deviceIs = "--device=";
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (!argument.starts_with("--"))
            AppendArgument(options.commandLine, argument);
        else if (argument == "--help")
            options.help = true;
        else if (argument == "--version")
            options.version = true;
        else if (argument == "--device" && i + 1 < count)
            options.device = arguments[++i];
        else if (argument.starts_with(deviceIs))
            options.device = argument.substr(deviceIs.size());
        else if (argument == "--device")
            return "--device needs a folder";
        else
            return "unknown option " + std::string(argument) + "; see --help";
    }
    return {};
}
