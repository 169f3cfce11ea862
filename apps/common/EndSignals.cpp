#include "common/EndSignals.h"

#include <csignal>

namespace {

constexpr int endSignals[] = {SIGINT, SIGTERM};

volatile std::sig_atomic_t noted = 0; // a handler can reach nothing but globals

void setAll(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : endSignals)
        sigaction(signal, &action, nullptr);
}

void note(int)
{
    noted = 1;
    setAll(SIG_DFL); // the loop may hang: in a stream that sends nothing, in a damaged file
}

} // namespace

EndSignals::EndSignals()
{
    noted = 0;
    setAll(note);
}

EndSignals::~EndSignals() { setAll(SIG_DFL); }

bool EndSignals::caught() const { return noted != 0; }
