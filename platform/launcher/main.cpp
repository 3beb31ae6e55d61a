// The host's entry: takes the options that are the launcher's own, opens the device, and hands everything
// else to the program as its one command line.
#include <QFileInfo>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/base/instance.h"
#include "platform/base/libraryremarks.h"
#include "platform/device.h"
#include "platform/errors.h"
#include "platform/irda/air.h"
#include "platform/launcher/arguments.h"
#include "platform/launcher/firstdevice.h"
#include "platform/process.h"
#include "platform/ui/core/display.h"
#include "platform/window.h"

namespace {

constexpr int kNoDisplay = 1;
constexpr int kJobFailed = 1;
constexpr int kBadOption = 2;
constexpr int kBadDevice = 3;

void PrintHelp() {
    std::puts("Usage: pocket-strandview [options] [FILE | switches]\n"
              "\n"
              "Without switches, opens the window on the device's databases, and there FILE: an archive\n"
              "(.bkp) to restore from, an Autobackup script (.abk) to run, or a saved registry (.rbk) to\n"
              "restore. With switches, does one job and ends:\n"
              "  -B ARCHIVE  back up all databases into ARCHIVE\n"
              "  -R ARCHIVE  restore the databases of ARCHIVE\n"
              "  -A SCRIPT   run the Autobackup script SCRIPT\n"
              "  -D          show no dialogs\n"
              "  -I          do not report failures of single databases\n"
              "  -P          show no progress\n"
              "  -S          take system databases too\n"
              "A path that begins with \\ is the device's; any other is this computer's, as usual. Switches\n"
              "may begin with / too: /B is one, /home/all.bkp is a path.\n"
              "\n"
              "  --device DIR  use the device in the folder DIR; the window and -R make it when it is\n"
              "                missing. Otherwise $STRANDVIEW_DEVICE, else pocket-strandview/device in\n"
              "                $XDG_DATA_HOME (~/.local/share)\n"
              "  --air DIR     send to and receive from the devices whose air is the folder DIR. Otherwise\n"
              "                $STRANDVIEW_AIR, else pocket-strandview/air in $XDG_RUNTIME_DIR\n"
              "  --samples     when the usual device is missing, make it with sample databases, without\n"
              "                asking\n"
              "  --check       exit with 0 when nothing failed, and with 1 when something did\n"
              "  --version, -v print the version and end\n"
              "  --help, -h    print this and end\n"
              "\n"
              "On a display, a job shows its progress unless -P is given, and what it asks and tells in\n"
              "boxes that wait for an answer. Without a display, or where QT_QPA_PLATFORM names one that\n"
              "shows nothing, it opens none of them and writes to standard error.\n"
              "\n"
              "Exit codes: 255 after every job, whatever became of it, unless --check is given; 0 after\n"
              "the window; 1 no display for the window; 2 wrong arguments; 3 the device cannot be used.");
}

const char* Reason(DWORD error) {
    switch (error) {
    case ERROR_PATH_NOT_FOUND:
        return "there is no such folder";
    case ERROR_FILE_NOT_FOUND:
        return "it holds no device; the window or a restore makes one";
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return "access is denied";
    case ERROR_NOT_ENOUGH_MEMORY:
        return "there is no memory, or too many files are open";
    case ERROR_DISK_FULL:
        return "the disk is full";
    case ERROR_FILE_CORRUPT:
        return "its store is damaged, or is none";
    case ERROR_REVISION_MISMATCH:
        return "its store was made by another version";
    case ERROR_SHARING_VIOLATION:
        return "another program holds it";
    case ERROR_INVALID_PARAMETER:
        return "$HOME, where it would lie, names no folder; name a device with --device";
    default:
        return "it cannot be read";
    }
}

int ReportDevice(const std::string& named) {
    const DWORD error = GetLastError();
    const char* variable = std::getenv("STRANDVIEW_DEVICE");
    std::fprintf(stderr, "pocket-strandview: cannot use %s as a device%s: %s (error %u)\n",
                 DeviceFolder().c_str(),
                 named.empty() && variable && *variable ? " ($STRANDVIEW_DEVICE)" : "", Reason(error), error);
    return kBadDevice;
}

FirstStart PrepareFirstDevice(const Options& options) {
    if (!options.device.empty())
        return FirstStart::GoOn;
    const QString maker =
        QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath() + QStringLiteral("/sample-device");
    if (options.samples)
        return MakeFirstDevice(maker);
    return options.commandLine.empty() ? OfferFirstDevice(maker) : FirstStart::GoOn;
}

} // namespace

int main(int argc, char** argv) {
    // A full disk or a closed pipe is an error to report, not a reason to be killed.
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGPIPE, SIG_IGN);
    SilenceLibraries("pocket-strandview");
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
    if (options.commandLine.empty() && ui::NoDisplay()) {
        std::fputs("pocket-strandview: there is no display to open the window on; start it from a desktop "
                   "session, or set DISPLAY or WAYLAND_DISPLAY\n",
                   stderr);
        return kNoDisplay;
    }
    if (const FirstStart start = PrepareFirstDevice(options); start != FirstStart::GoOn)
        return start == FirstStart::Cancelled ? 0 : kBadDevice;
    if (!UseDevice(options.device, options.makesDevice) || !OpenDeviceStore())
        return ReportDevice(options.device);
    UseAir(options.air);
    SetStartDocument(options.document);
    // The module needs a value of its own only; its resources are linked into this very file.
    static char module;
    const int code =
        WinMain(reinterpret_cast<HINSTANCE>(&module), nullptr, options.commandLine.data(), SW_SHOWNORMAL);
    return options.check ? FailureNoted() * kJobFailed : code;
}
