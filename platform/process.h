// The program as a process, and the processes that it starts.
#pragma once

#include "platform/types.h"

// The program's entry. `commandLine` is everything that was typed for it, arguments that hold blanks in
// double quotes; `previous` is always null. Returns the exit code.
int WinMain(HINSTANCE instance, HINSTANCE previous, WCHAR* commandLine, int show);

// Counts a failure that nobody is told of. What a message box tells of, with the sign of a failure, is
// counted by itself, and so is every question that nobody could be asked.
void NoteFailure();
// Whether a failure was counted since the process began. The program's own exit code does not tell.
bool FailureNoted();

// Starts the program of that name, which lies beside this one, with `commandLine` as its one argument, and
// does not wait for it. Of what this process has open it inherits standard error only. FALSE when it cannot
// be started: ERROR_FILE_NOT_FOUND, ERROR_NOT_ENOUGH_MEMORY.
BOOL CreateProcessW(const WCHAR* application, const WCHAR* commandLine);
