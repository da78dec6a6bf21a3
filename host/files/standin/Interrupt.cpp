#include "host/files/Interrupt.h"

#include <array>
#include <csignal>
#include <cstdlib>

namespace host {

namespace {

constexpr std::array Signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
// What they tell of, the failing write tells too.
constexpr std::array OfWrites{SIGPIPE, SIGXFSZ};

volatile std::sig_atomic_t pending = 0;

void Note(int signal) { pending = signal; }

void Handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigaction(signal, &action, nullptr);
}

bool IsIgnored(int signal)
{
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

InterruptGuard::InterruptGuard()
{
    pending = 0;
    for (const int signal : Signals)
        if (!IsIgnored(signal))
            Handle(signal, Note);
    for (const int signal : OfWrites)
        Handle(signal, SIG_IGN);
}

InterruptGuard::~InterruptGuard()
{
    for (const int signal : Signals)
        if (!IsIgnored(signal))
            Handle(signal, SIG_DFL);
    for (const int signal : OfWrites)
        Handle(signal, SIG_DFL);
}

void ThrowIfInterrupted()
{
    if (pending != 0)
        throw Interrupted{pending, {}};
}

void EndAs(const Interrupted& interruption)
{
    Handle(interruption.signal, SIG_DFL);
    ::raise(interruption.signal);
    std::_Exit(128 + interruption.signal);
}

}  // namespace host
