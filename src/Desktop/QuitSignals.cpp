// SPDX-License-Identifier: MIT
#include "QuitSignals.h"

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr int quitSignals[] = {SIGTERM, SIGINT, SIGHUP};

/// The only way from a signal handler, which is a plain function, to the object.
std::atomic<int> eventDescriptor = -1;

void passOn(int /*signal*/)
{
    const int errorOfTheInterrupted = errno;
    eventfd_write(eventDescriptor, 1);
    errno = errorOfTheInterrupted;
}

void handleWith(void (*handler)(int))
{
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : quitSignals)
        sigaction(signal, &action, nullptr);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    QMetaObject::invokeMethod(this, &QuitSignals::listen, Qt::QueuedConnection);
}

QuitSignals::~QuitSignals()
{
    if (m_descriptor == -1)
        return;
    handleWith(SIG_DFL);
    eventDescriptor = -1;
    close(m_descriptor);
}

void QuitSignals::listen()
{
    m_descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_descriptor == -1)
        return; // They end the process as ever, and the drafts are those of the last write.
    eventDescriptor = m_descriptor;
    auto *const notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &QuitSignals::readSignals);
    handleWith(&passOn);
}

void QuitSignals::readSignals()
{
    eventfd_t count = 0;
    if (eventfd_read(m_descriptor, &count) == 0)
        Q_EMIT quitRequested();
}
