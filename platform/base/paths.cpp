#include "platform/base/paths.h"

#include <QStringView>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>
#include <vector>

#include "platform/base/utf8.h"
#include "platform/device.h"
#include "platform/text.h"

namespace {

constexpr const WCHAR* kHostFolder = u"Storage Card";

using Names = std::vector<std::u16string>;

bool IsSeparator(WCHAR character) {
    return character == u'\\' || character == u'/';
}

Names SplitPath(std::u16string_view path) {
    Names names;
    std::u16string name;
    for (std::size_t i = 0; i <= path.size(); ++i) {
        if (i < path.size() && !IsSeparator(path[i])) {
            name += path[i];
        } else if (!name.empty() && name != u".") {
            names.push_back(std::move(name));
            name.clear();
        } else {
            name.clear();
        }
    }
    return names;
}

// Steps back where a name says so. The host would do that itself, but would not stop at the device's root.
bool StepBack(Names& names) {
    Names kept;
    for (std::u16string& name : names)
        if (name != u"..")
            kept.push_back(std::move(name));
        else if (kept.empty())
            return false;
        else
            kept.pop_back();
    names = std::move(kept);
    return true;
}

// Finds the spelling of a name that a folder holds with other case only.
bool FindOtherCase(const std::string& folder, const std::u16string& name, std::string& found) {
    DIR* listing = opendir(folder.empty() ? "." : folder.c_str());
    if (!listing)
        return false;
    bool matched = false;
    while (const dirent* entry = readdir(listing)) {
        if (lstrcmpiW(FromUtf8(entry->d_name).c_str(), name.c_str()) == 0) {
            // Of several such names always the same one, in whatever order the host lists them.
            if (!matched || found > entry->d_name)
                found = entry->d_name;
            matched = true;
        }
    }
    closedir(listing);
    return matched;
}

// `folder` ends with a slash, or is empty for the working folder.
std::string MatchNames(std::string folder, const Names& names) {
    bool exists = true;
    for (const std::u16string& name : names) {
        std::string hostName = ToUtf8(name);
        struct stat status;
        if (exists && lstat((folder + hostName).c_str(), &status) != 0)
            exists = FindOtherCase(folder, name, hostName);
        folder += hostName + '/';
    }
    if (!names.empty())
        folder.pop_back();
    return folder;
}

bool TakePrefix(std::string_view& path, const std::string& folder) {
    if (!path.starts_with(folder) || (path.size() > folder.size() && path[folder.size()] != '/'))
        return false;
    path.remove_prefix(folder.size());
    return true;
}

} // namespace

std::string RealPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.c_str(), nullptr), std::free);
    return real ? real.get() : std::string();
}

bool HostPath(const WCHAR* devicePath, std::string& host) {
    const std::u16string_view path = devicePath ? devicePath : u"";
    if (path.empty() || path.starts_with(u"\\\\") ||
        !QStringView(path.data(), static_cast<qsizetype>(path.size())).isValidUtf16())
        return false;
    Names names = SplitPath(path);
    std::string folder;
    if (path.front() == u'/') {
        folder = "/";
    } else if (path.front() == u'\\') {
        if (!StepBack(names))
            return false;
        folder = DeviceRootFolder() + '/';
        if (!names.empty() && lstrcmpiW(names.front().c_str(), kHostFolder) == 0) {
            names.erase(names.begin());
            folder = "/";
        }
    }
    host = MatchNames(std::move(folder), names);
    host = host.empty() ? "." : host;
    return true;
}

std::u16string DevicePath(const std::string& host) {
    std::string_view rest = host;
    std::u16string path;
    const std::string realRoot = RealPath(DeviceRootFolder());
    if (!TakePrefix(rest, DeviceRootFolder()) && (realRoot.empty() || !TakePrefix(rest, realRoot))) {
        path += u'\\';
        path += kHostFolder;
    }
    for (const std::u16string& name : SplitPath(FromUtf8(rest))) {
        path += u'\\';
        path += name;
    }
    if (path.empty())
        path += u'\\';
    return path;
}
