// Any lines as the arguments of the launcher, and then as the program's command line, unless a path in it may
// lead out of the scratch device.
#include "app/start/commandline.h"

#include <vector>

#include "fuzz/targets.h"
#include "platform/base/utf8.h"
#include "platform/launcher/arguments.h"
#include "platform/text.h"

namespace {

// Wherever a path begins, it stays on the device unless it steps back or enters the host's folder.
bool StaysInside(const std::u16string& line) {
    constexpr std::u16string_view kHostFolder = u"Storage Card";
    for (std::size_t place = 0; place < line.size(); ++place)
        if (lstrcmpiW(line.substr(place, kHostFolder.size()).c_str(), kHostFolder.data()) == 0)
            return false;
    return line.find(u"..") == std::u16string::npos;
}

// Paths from the host's root are switches to the program, but not within quotes.
bool NamesHostRoot(const std::u16string& line) {
    return line.find(u"\"/") != std::u16string::npos;
}

std::vector<std::string> Lines(std::string_view bytes) {
    std::vector<std::string> lines = {""};
    for (const char byte : bytes)
        if (byte == '\n')
            lines.emplace_back();
        else if (byte)
            lines.back() += byte;
    return lines;
}

} // namespace

void FuzzCommandLine(Input input) {
    Scratch::Fresh();
    const std::vector<std::string> lines = Lines(input.Rest());
    std::vector<const char*> arguments = {"pocket-strandview"};
    for (const std::string& line : lines)
        arguments.push_back(line.c_str());
    Options options;
    const bool taken = ParseArguments(static_cast<int>(arguments.size()), arguments.data(), options).empty();
    for (const std::u16string& line : {taken ? options.commandLine : u"", FromUtf8(lines[0])})
        // Switches D and P, so that no dialogs are made.
        if (StaysInside(line) && !NamesHostRoot(line))
            RunCommandLine((line + u" -D -P").c_str());
}
