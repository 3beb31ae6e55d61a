#include "platform/process.h"

namespace {

bool noted = false;

} // namespace

void NoteFailure() {
    noted = true;
}

bool FailureNoted() {
    return noted;
}
