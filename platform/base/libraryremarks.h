// What the host's libraries print by themselves.
#pragma once

// Keeps the libraries' remarks, for instance on a plugin that is not installed, from standard error: they are
// of no use to a user. What ends the program is still told, behind the program's name. Whoever looks for a
// fault has set one of the libraries' own variables for that, and reads everything.
void SilenceLibraries(const char* program);
