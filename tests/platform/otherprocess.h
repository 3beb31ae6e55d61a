// A second process on the device of a test.
#pragma once

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// A child that runs errands, one for each byte that it is sent, and answers each with a byte. It must be
// started before this process opens the store.
class OtherProcess {
public:
    using Errand = std::function<bool()>;

    explicit OtherProcess(const std::vector<Errand>& errands) {
        int toChild[2];
        int fromChild[2];
        EXPECT_EQ(pipe(toChild) + pipe(fromChild), 0);
        child = fork();
        if (child == 0) {
            close(toChild[1]);
            for (char errand; read(toChild[0], &errand, 1) == 1;) {
                const char answer = errands[static_cast<std::size_t>(errand)]() ? 1 : 0;
                if (write(fromChild[1], &answer, 1) != 1)
                    break;
            }
            _exit(0); // without closing anything: the kernel is to clean up
        }
        close(toChild[0]);
        close(fromChild[1]);
        orders = toChild[1];
        answers = fromChild[0];
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;
    ~OtherProcess() {
        End();
        close(answers);
    }
    void Start(char errand) { EXPECT_EQ(write(orders, &errand, 1), 1); }
    bool Await() {
        char answer = 0;
        return read(answers, &answer, 1) == 1 && answer == 1;
    }
    bool Run(char errand) {
        Start(errand);
        return Await();
    }
    void Kill() {
        kill(child, SIGKILL);
        End();
    }

private:
    // Waits for the child's end.
    void End() {
        if (child > 0) {
            close(orders);
            waitpid(child, nullptr, 0);
            child = 0;
        }
    }

    pid_t child = 0;
    int orders = -1;
    int answers = -1;
};
