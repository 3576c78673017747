// SPDX-License-Identifier: MIT
#include "QuitSignals.h"

#include <QSocketNotifier>
#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

sigset_t quitSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    return signals;
}

} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    const sigset_t signals = quitSignals();
    m_descriptor = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor == -1)
        return; // They end the process as ever, and the drafts are those of the last write.
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    // A notifier needs the event loop, which is not there yet.
    QMetaObject::invokeMethod(this, &QuitSignals::listen, Qt::QueuedConnection);
}

QuitSignals::~QuitSignals()
{
    if (m_descriptor != -1)
        close(m_descriptor);
}

void QuitSignals::listen()
{
    auto *const notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &QuitSignals::readSignal);
}

void QuitSignals::readSignal()
{
    signalfd_siginfo signal{};
    while (read(m_descriptor, &signal, sizeof signal) == sizeof signal)
        Q_EMIT quitRequested();
}
