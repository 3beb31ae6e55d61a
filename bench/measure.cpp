// Runs a command several times and prints the median of what it took: measure RUNS cpu|elapsed|memory
// COMMAND... Processor and elapsed time are in seconds, memory is the largest resident size in KiB. The
// command's output goes nowhere, and its exit code is not looked at, but it must not be killed.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

[[noreturn]] void Become(char** command) {
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDOUT_FILENO);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(127);
}

// Negative when the command could not be run to its end.
double MeasureOnce(std::string_view what, char** command) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t child = fork();
    if (child == 0)
        Become(command);
    int status = 0;
    rusage usage = {};
    if (child < 0 || wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) ||
        WEXITSTATUS(status) == 127)
        return -1;
    if (what == "memory")
        return static_cast<double>(usage.ru_maxrss);
    if (what == "cpu")
        return Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    const int runs = argc > 3 ? std::atoi(argv[1]) : 0;
    if (runs < 1) {
        std::fputs("usage: measure RUNS cpu|elapsed|memory COMMAND...\n", stderr);
        return 2;
    }
    std::vector<double> results;
    for (int run = 0; run < runs; ++run) {
        results.push_back(MeasureOnce(argv[2], argv + 3));
        if (results.back() < 0) {
            std::fprintf(stderr, "measure: %s failed\n", argv[3]);
            return 1;
        }
    }
    const auto middle = results.begin() + runs / 2;
    std::nth_element(results.begin(), middle, results.end());
    std::printf("%.4f\n", *middle);
    return 0;
}
