// Another device, as far as the air goes: what it sends, and what it is answered, byte by byte.
#pragma once

#include <atomic>
#include <string>
#include <thread>
#include <vector>

struct PeerStep {
    enum Kind { Send, Expect, Skip, Close, AwaitEnd, Silence } kind; // Skip takes as many bytes
    std::string bytes = {};
};

// Runs the steps beside the program.
class Peer {
public:
    enum Side { Calls, IsCalled };
    Peer(Side side, const std::string& air, std::vector<PeerStep> steps);
    ~Peer(); // hangs up
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    // What went otherwise than the steps say; empty when nothing did.
    std::string complaint;
    // What came during its silence, once it is done.
    std::string heard;
    std::atomic<bool> silent = false;
    std::atomic<bool> done = false;

private:
    void Run(Side side, const std::string& air);
    void Follow();

    std::vector<PeerStep> steps;
    std::atomic<int> link = -1;
    std::thread thread;
};
