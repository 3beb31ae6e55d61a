// What two devices say to each other, written by hand (docs/formats.md), and a peer's steps made of it.
#pragma once

#include <string>
#include <vector>

#include "tests/infrared/peer.h"

using namespace std::string_literals;
using Steps = std::vector<PeerStep>;

inline const std::string kAck = "\x02\x11\0\0"s;
inline const std::string kRecord = "\x04\x11\0\0"s;
inline const std::string kEnd = "\x07\x11\0\0"s;
inline const std::string kStop = "\x08\x11\0\0"s;

// The database "Notes" of type 7 with one record and no sort orders; sizes and time do not matter.
inline std::string Header(const std::string& name, char sortOrders = 0) {
    return "\x0F\0\0\0"s + name + std::string(64 - name.size(), '\0') + "\x07\0\0\0\x01\0"s + sortOrders +
           std::string(45, '\0');
}
inline const std::string kNotes = "N\0o\0t\0e\0s\0"s;
// One property, 1 of type 31, with its text "Hi" behind it.
inline const std::string kHi = "\x1F\0\x01\0\0\0\0\0\x10\0\0\0\0\0\0\0H\0i\0\0\0"s;
inline const std::string kHiDescriptor = "\x01\0\0\0\0\0\0\0\x16\0\0\0\0\0\0\0"s;

inline PeerStep Says(const std::string& bytes) {
    return {PeerStep::Send, bytes};
}
inline PeerStep Hears(const std::string& bytes) {
    return {PeerStep::Expect, bytes};
}
inline const PeerStep kCloses = {PeerStep::Close};
inline const PeerStep kHearsEnd = {PeerStep::AwaitEnd};
// Nothing more is said until the link ends, however it does.
inline const PeerStep kIsSilent = {PeerStep::Silence};

inline Steps operator+(Steps steps, const Steps& more) {
    steps.insert(steps.end(), more.begin(), more.end());
    return steps;
}

inline const Steps kToHeader = {Says(Header(kNotes)), Hears(kAck)};
inline const Steps kToDescriptor = kToHeader + Steps{Says(kRecord), Hears(kAck)};
inline const Steps kToData = kToDescriptor + Steps{Says(kHiDescriptor), Hears(kAck)};
inline const Steps kToStored = kToData + Steps{Says(kHi), Hears(kAck), Hears(kAck)};
