// A test's steps that run beside the program's own message loops: each on a stack of its own, within the one
// thread, going on whenever the loop that runs at the moment has nothing left to do. So every message goes
// through the loop that the program wrote for it.
#pragma once

#include <functional>

// Starts the steps once a message loop runs.
void StartScript(std::function<void()> steps);
// Whether the caller is a script.
bool InScript();
// For scripts only: lets the program's loops run until nothing is due any more, and at least that long.
void YieldScript(int milliseconds = 0);
// Scripts that have not come to their end.
int RunningScripts();
