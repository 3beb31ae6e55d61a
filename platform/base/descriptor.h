// An open file of the host, with one owner.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number(number) {}
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number, other.number);
        return *this;
    }
    ~Descriptor() { Close(); }

    bool Valid() const { return number >= 0; }
    int Number() const { return number; }
    // Also drops its locks. 0, or the host's error: what was written may then be lost.
    int Close() {
        const int closing = std::exchange(number, -1);
        return closing < 0 || close(closing) == 0 || errno == EINTR ? 0 : errno;
    }

private:
    int number = -1;
};
