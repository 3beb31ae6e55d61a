// A file that is written while the one that it will replace still stands under its name.
#pragma once

#include <string>
#include <sys/stat.h>

#include "platform/base/descriptor.h"

// A complete file stands under that path: takes away the older one that was kept while there was none, and
// nobody else's file of that name.
void ForgetKept(const std::string& path);

// Whether an older file was kept beside that path.
bool HasKept(const std::string& path);

class Replacement {
public:
    Replacement() = default;
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement(); // one that was not put in place leaves nothing behind

    // Begins an empty file in the folder of `path`, a real path, with the owner and the mode of the one that
    // is there. Returns 0 or the host's error.
    int Begin(const std::string& path, const struct stat& old);
    // Closes the file and gives it its path. Unless it is complete, the older one is kept as `path~`, where
    // the last complete one stays. Returns 0, or the host's error: the older one then stands as before.
    int PutInPlace(bool complete);

    int Number() const { return file.Number(); }

private:
    int Name();
    int TakeName(bool complete);
    int ExchangeAndKeep(const std::string& kept);

    Descriptor file;
    std::string target;
    std::string temporary; // its name until it is in place; empty while it has none
};
