// What the fuzz targets share: an input taken piece by piece, and a device to spoil. No windows open here:
// message boxes and dialogs answer by themselves, and nothing sleeps.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "app/settings.h"
#include "platform/window.h"
#include "tests/support/testdevice.h"

// Behind its end an input has zeros, and empty strings.
class Input {
public:
    Input(const BYTE* data, std::size_t size) : rest(reinterpret_cast<const char*>(data), size) {}

    bool Ended() const { return rest.empty(); }
    std::string_view Bytes(std::size_t count);
    std::string_view Rest() { return Bytes(rest.size()); }
    BYTE Byte() { return static_cast<BYTE>(Number(1)); }
    std::int64_t Number(std::size_t bytes);      // little-endian
    std::u16string Text(std::size_t characters); // may hold zeros

private:
    std::string_view rest;
};

// Ends the process unless it holds.
void Require(bool holds, const char* what);

// The process's one device, below which everything happens that a target does.
class Scratch {
public:
    // As at the start: with the same few databases, no files, and settings of a run by itself.
    static Scratch& Fresh();

    // A file below the device's root.
    void Write(const char* name, std::string_view bytes) const;
    // Whether the program may be given this path: it leads to a file of this device.
    bool Holds(const std::u16string& path) const;

    TestDevice device;
    Settings settings;
    LONG_PTR dialogAnswer = IDOK;
    std::function<void()> sleeping; // called in place of each sleep

private:
    Scratch();
    void Reset();

    std::string store; // the bytes of a fresh one
};

// Walks every database both ways, in each of its orders, and takes all values as texts.
void ReadEverything();
