#include "platform/process.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/base/hosterror.h"
#include "platform/base/outofmemory.h"
#include "platform/base/utf8.h"

namespace {

std::string ProgramFolder() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof(path));
    const std::string program(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    return program.substr(0, program.rfind('/') + 1);
}

// In a child of a child: nothing but calls that are safe there, whatever other threads were doing.
[[noreturn]] void Become(const char* program, char* const* arguments) {
    setsid();
    // Whoever reads this program's output must not wait for the other one's end.
    const int nowhere = open("/dev/null", O_RDWR);
    if (nowhere >= 0) {
        dup2(nowhere, STDIN_FILENO);
        dup2(nowhere, STDOUT_FILENO);
    }
    close_range(STDERR_FILENO + 1, ~0U, 0);
    // Ignored signals would stay ignored.
    std::signal(SIGPIPE, SIG_DFL);
    std::signal(SIGXFSZ, SIG_DFL);
    execv(program, arguments);
    _exit(127);
}

BOOL StartProcess(const WCHAR* application, const WCHAR* commandLine) {
    std::string program = ProgramFolder() + ToUtf8(application);
    std::string argument = ToUtf8(commandLine);
    if (access(program.c_str(), X_OK) != 0) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    // The child ends at once and is waited for; its own child then belongs to the host, which cleans up after
    // it.
    const pid_t child = fork();
    if (child == 0) {
        const pid_t grandchild = fork();
        if (grandchild == 0)
            Become(program.c_str(), arguments);
        _exit(grandchild < 0);
    }
    int status = -1;
    if (child > 0) {
        while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
    }
    if (child < 0 || status != 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return FALSE;
    }
    return TRUE;
}

} // namespace

BOOL CreateProcessW(const WCHAR* application, const WCHAR* commandLine) {
    return UnlessOutOfMemory(
        BOOL{FALSE}, [=] { return StartProcess(application, commandLine); });
}
