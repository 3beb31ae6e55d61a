#include "tests/infrared/otherdevice.h"

#include <csignal>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "app/application.h"
#include "platform/device.h"
#include "tests/support/session.h"

namespace {

constexpr const char* kFolder = "OTHER_DEVICE_FOLDER";
constexpr const char* kSends = "OTHER_DEVICE_SENDS";

class Errand : public Session {
    void TestBody() override {
        UseDevice(std::getenv(kFolder));
        const std::string sends = std::getenv(kSends);
        RunProgram([&] {
            if (!sends.empty())
                SelectRow(10001, std::u16string(sends.begin(), sends.end()));
            ExpectMessage(u"Database transfer successfully completed!");
            Press(sends.empty() ? Qt::Key_G : Qt::Key_S, Qt::ControlModifier);
            WaitFor([] { return App().idle != 0; }, "the transfer to end");
            InMainWindow();
        });
    }
};

// There for the other process only, and not in a list of tests.
[[maybe_unused]] const bool registered = [] {
    if (std::getenv(kFolder))
        testing::RegisterTest("OtherDevice", "Errand", nullptr, nullptr, __FILE__, __LINE__,
                              []() -> Session* { return new Errand; });
    return true;
}();

} // namespace

OtherDevice::OtherDevice(const std::string& folder, const std::string& air, const std::string& sends) {
    std::vector<std::string> texts = {
        kFolder + ('=' + folder), kSends + ('=' + sends), "STRANDVIEW_AIR=" + air,
        "TMPDIR=" + folder}; // what a killed process leaves goes with the device
    std::vector<char*> environment;
    for (std::string& text : texts)
        environment.push_back(text.data());
    for (char** text = environ; *text; ++text)
        environment.push_back(*text);
    environment.push_back(nullptr);
    std::string arguments[] = {"test", "--gtest_filter=OtherDevice.*", "--gtest_brief=1"};
    char* pointers[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    const int error = posix_spawn(&process, "/proc/self/exe", nullptr, nullptr, pointers, environment.data());
    EXPECT_EQ(error, 0);
}

bool OtherDevice::Await() {
    int status = -1;
    waitpid(process, &status, 0);
    process = 0;
    return status == 0;
}

void OtherDevice::Kill() {
    if (process <= 0)
        return;
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    process = 0;
}
