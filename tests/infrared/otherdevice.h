// Another device with a process of its own: this test program started once more, with a single test in which
// the user of that device sends or receives. A fork would not do, for the window system has threads.
#pragma once

#include <string>
#include <sys/types.h>

class OtherDevice {
public:
    // Sends the database of that name, or receives when it is empty, in the folder of a device.
    OtherDevice(const std::string& folder, const std::string& air, const std::string& sends);
    ~OtherDevice() { Kill(); }
    OtherDevice(const OtherDevice&) = delete;
    OtherDevice& operator=(const OtherDevice&) = delete;

    // Until it has ended: whether the transfer was told to be complete.
    bool Await();
    void Kill();

private:
    pid_t process = 0;
};
