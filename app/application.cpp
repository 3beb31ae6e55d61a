#include "app/application.h"

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

bool RunsInteractively() {
    return App().settings && App().settings->interactive;
}
