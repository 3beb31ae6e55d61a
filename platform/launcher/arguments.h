// What was typed for the launcher, told apart from what was typed for the program.
#pragma once

#include <string>

struct Options {
    std::string device; // host path; empty: the usual one
    bool help = false;
    bool version = false;
    bool makesDevice = true;    // opens the window, or restores: what else there is needs a device
    std::u16string commandLine; // for the program
};

// Arguments that begin with "--" are the launcher's, all others the program's. Returns what is wrong with
// them, empty when nothing is.
std::string ParseArguments(int count, const char* const* arguments, Options& options);
