// What was typed for the launcher, told apart from what was typed for the program.
#pragma once

#include <string>

struct Options {
    std::string device; // host path; empty: the usual one
    std::string air;    // the same
    bool help = false;
    bool version = false;
    bool samples = false;       // a first device gets sample databases, without a question
    bool check = false;         // the exit code tells whether the job failed
    bool makesDevice = true;    // opens the window, or restores: what else there is needs a device
    std::u16string commandLine; // for the program
    std::u16string document;    // to open in the window: a device path, from its root on
};

// Arguments that begin with "--" are the launcher's, and so are -h and -v; all others are the program's. An
// absolute path of the host becomes the device's path for the same file: an argument that begins with a slash
// where the program wants a path, that holds another slash, or that names what exists. A file of the
// program's own that stands alone is the document. Returns what is wrong with the arguments, empty when
// nothing is.
std::string ParseArguments(int count, const char* const* arguments, Options& options);
