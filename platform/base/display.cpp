#include "platform/base/display.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

bool noDisplay = false;

std::string Variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// A leading NUL in the name stands for the kernel's own name space.
bool Answers(const std::string& socketName) {
    sockaddr_un address{};
    if (socketName.size() >= sizeof address.sun_path)
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, socketName.data(), socketName.size());
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0)
        return false;
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + socketName.size());
    const bool answers = connect(descriptor, reinterpret_cast<const sockaddr*>(&address), length) == 0;
    close(descriptor);
    return answers;
}

bool X11Answers() {
    const std::string display = Variable("DISPLAY");
    const std::size_t colon = display.rfind(':');
    if (colon == std::string::npos)
        return false;
    const std::string host = display.substr(0, colon);
    if (!host.empty() && host != "unix")
        return true; // on another machine: not worth the wait of asking
    const std::string name =
        "/tmp/.X11-unix/X" + display.substr(colon + 1, display.find('.', colon) - colon - 1);
    return Answers(name) || Answers(std::string(1, '\0') + name);
}

bool WaylandAnswers() {
    const std::string display = Variable("WAYLAND_DISPLAY");
    if (display.empty())
        return false;
    return Answers(display.front() == '/' ? display : Variable("XDG_RUNTIME_DIR") + '/' + display);
}

} // namespace

bool NoDisplay() {
    return noDisplay;
}

void SetNoDisplay(bool none) {
    noDisplay = none;
}

void ChooseDisplay() {
    if (!Variable("QT_QPA_PLATFORM").empty() || X11Answers())
        return;
    // Left alone, Qt would first ask for an X11 display that does not answer, and give up.
    const bool wayland = WaylandAnswers();
    setenv("QT_QPA_PLATFORM", wayland ? "wayland" : "offscreen", 1);
    SetNoDisplay(!wayland);
}
