// SPDX-License-Identifier: MIT
#include "QuitSignals.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>
#include <csignal>
#include <unistd.h>

class QuitSignalsTest : public QObject {
    Q_OBJECT

public:
    QuitSignalsTest(QuitSignals &signals, int argc, char **argv)
        : m_signals(signals)
        , m_application(argc, argv)
    {
    }

private Q_SLOTS:
    void keepsASignalThatArrivedBeforeTheEventLoop();
    void turnsEachSignalIntoARequest_data();
    void turnsEachSignalIntoARequest();

private:
    QuitSignals &m_signals;
    QCoreApplication m_application;
};

void QuitSignalsTest::keepsASignalThatArrivedBeforeTheEventLoop()
{
    // Sent by main(), before there was an application.
    QSignalSpy requested(&m_signals, &QuitSignals::quitRequested);

    QVERIFY(requested.wait());

    QCOMPARE(requested.count(), 1);
}

void QuitSignalsTest::turnsEachSignalIntoARequest_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void QuitSignalsTest::turnsEachSignalIntoARequest()
{
    QFETCH(const int, signal);
    QSignalSpy requested(&m_signals, &QuitSignals::quitRequested);

    QCOMPARE(kill(getpid(), signal), 0);

    QVERIFY(requested.wait());
    QCOMPARE(requested.count(), 1);
}

int main(int argc, char **argv)
{
    QuitSignals signals;
    kill(getpid(), SIGTERM);
    QuitSignalsTest test(signals, argc, argv);
    return QTest::qExec(&test, argc, argv);
}
#include "QuitSignalsTest.moc"
