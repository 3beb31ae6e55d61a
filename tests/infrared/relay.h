// A device of one air as it stands in another, as when its socket is forwarded between two computers.
#pragma once

#include <string>
#include <thread>

// Carries one link from the socket `there` to the socket `here`, both ways, until it ends.
class Relay {
public:
    Relay(const std::string& there, const std::string& here);
    ~Relay() { thread.join(); }
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

private:
    std::thread thread;
};
