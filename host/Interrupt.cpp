#include "Interrupt.h"

#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

const int handledSignals[] = {SIGINT, SIGTERM, SIGHUP};

Interrupt *theInterrupt = nullptr;
volatile std::sig_atomic_t receivedSignal = 0;
int wakeDescriptor = -1;

void endAtOnce(int)
{
    _exit(128 + receivedSignal);
}

void endSoon(int signal)
{
    if (receivedSignal != 0)
        _exit(128 + receivedSignal);
    receivedSignal = signal;
    const itimerval lastWord = {{0, 0}, {0, 700000}};
    setitimer(ITIMER_REAL, &lastWord, nullptr);
    const char byte = 0;
    // A full pipe has woken the loop already.
    static_cast<void>(!write(wakeDescriptor, &byte, 1));
}

void handle(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
}

} // namespace

Interrupt::Interrupt(QObject *parent)
    : QObject(parent)
{
    if (pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return; // without descriptors the default action of the signals remains
    theInterrupt = this;
    wakeDescriptor = m_pipe[1];
    auto *notifier = new QSocketNotifier(m_pipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this, notifier] {
        notifier->setEnabled(false);
        emit requested();
    });
    handle(SIGALRM, endAtOnce);
    for (const int signal : handledSignals)
        handle(signal, endSoon);
}

Interrupt::~Interrupt()
{
    for (const int signal : handledSignals)
        handle(signal, SIG_DFL);
    theInterrupt = nullptr;
    delete findChild<QSocketNotifier *>(); // before its descriptor
    close(m_pipe[0]);
    close(m_pipe[1]);
}

Interrupt *Interrupt::instance()
{
    return theInterrupt;
}

int Interrupt::received()
{
    return receivedSignal;
}
