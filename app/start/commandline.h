// Unattended jobs: what a non-empty command line asks for.
#pragma once

#include "platform/types.h"

// Runs the one job that the command line names; the exit code is always -1.
int RunCommandLine(const WCHAR* commandLine);
