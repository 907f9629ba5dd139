#include "system/interrupt.h"

#include <ctime>
#include <initializer_list>

namespace tervoxal {

Interrupt::Interrupt() {
    sigemptyset(&requests);
    for (const int request : {SIGINT, SIGTERM}) {
        struct sigaction action {};
        sigaction(request, nullptr, &action);
        if (action.sa_handler != SIG_IGN) sigaddset(&requests, request);
    }
    sigprocmask(SIG_BLOCK, &requests, &before);
}

Interrupt::~Interrupt() {
    if (!seen) sigprocmask(SIG_SETMASK, &before, nullptr);
}

bool Interrupt::came() {
    const timespec now{};
    if (seen || sigtimedwait(&requests, nullptr, &now) < 0) return seen;
    seen = true;
    sigprocmask(SIG_SETMASK, &before, nullptr);
    return true;
}

} // namespace tervoxal
