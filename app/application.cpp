#include "app/application.h"

#include "platform/process.h"

Application& App() {
    static Application application;
    return application;
}

HINSTANCE AppInstance() {
    return App().instance;
}

bool RunsUnattended() {
    return App().settings && App().settings->unattended;
}

bool MayShowFailure() {
    if (RunsUnattended())
        NoteFailure();
    return !RunsUnattended();
}

bool RunsInteractively() {
    return App().settings && App().settings->interactive;
}
