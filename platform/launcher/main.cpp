// The host's entry: takes the options that are the launcher's own, chooses the device and the display, and
// hands everything else to the program as its one command line.
#include <csignal>
#include <cstdio>
#include <string>

#include "platform/base/display.h"
#include "platform/device.h"
#include "platform/errors.h"
#include "platform/launcher/arguments.h"
#include "platform/process.h"
#include "platform/window.h"

namespace {

constexpr int kNoDisplay = 1;
constexpr int kBadOption = 2;
constexpr int kBadDevice = 3;

void PrintHelp() {
    std::puts("Usage: pocket-strandview [--device DIR] [switches]\n"
              "\n"
              "Without switches, opens the window on the device's databases. With switches, does one\n"
              "job without a window and ends with exit code 255:\n"
              "  -B ARCHIVE  back up all databases into ARCHIVE\n"
              "  -R ARCHIVE  restore the databases of ARCHIVE\n"
              "  -A SCRIPT   run the Autobackup script SCRIPT\n"
              "  -D          show no dialogs\n"
              "  -I          do not report failures of single databases\n"
              "  -P          show no progress\n"
              "  -S          take system databases too\n"
              "A path that begins with \\ is the device's, \\Storage Card\\ is this computer's file system,\n"
              "any other is relative to the working folder. What begins with / is a switch.\n"
              "\n"
              "  --device DIR  use the device in the folder DIR; it is made when missing. Otherwise\n"
              "                $STRANDVIEW_DEVICE, else pocket-strandview/device in $XDG_DATA_HOME\n"
              "                (~/.local/share)\n"
              "  --version     print the version and end\n"
              "  --help        print this and end");
}

int ReportDevice(const std::string& folder) {
    const DWORD error = GetLastError();
    std::fprintf(stderr, "pocket-strandview: cannot use %s as a device: %s\n",
                 folder.empty() ? "the usual folder" : folder.c_str(),
                 error == ERROR_DISK_FULL        ? "the disk is full"
                 : error == ERROR_PATH_NOT_FOUND ? "there is no such place"
                                                 : "access is denied");
    return kBadDevice;
}

} // namespace

int main(int argc, char** argv) {
    // A full disk or a closed pipe is an error to report, not a reason to be killed.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    Options options;
    if (const std::string complaint = ParseArguments(argc, argv, options); !complaint.empty()) {
        std::fprintf(stderr, "pocket-strandview: %s\n", complaint.c_str());
        return kBadOption;
    }
    if (options.help) {
        PrintHelp();
        return 0;
    }
    if (options.version) {
        std::puts("Pocket Strandview " PROGRAM_VERSION);
        return 0;
    }
    ChooseDisplay();
    if (NoDisplay() && options.commandLine.empty()) {
        std::fputs(
            "pocket-strandview: there is no display to open the window on. Start it from a desktop session,\n"
            "or set DISPLAY or WAYLAND_DISPLAY (\"ssh -X\" brings a display along, \"xvfb-run\" makes one).\n"
            "Backups and restores need none; see --help.\n",
            stderr);
        return kNoDisplay;
    }
    if (!UseDevice(options.device))
        return ReportDevice(options.device);
    // The module needs a value of its own only; its resources are linked into this very file.
    static char module;
    return WinMain(reinterpret_cast<HINSTANCE>(&module), nullptr, options.commandLine.data(), SW_SHOWNORMAL);
}
