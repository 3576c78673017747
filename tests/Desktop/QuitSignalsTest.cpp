// SPDX-License-Identifier: MIT
#include "QuitSignals.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <csignal>
#include <cstdio>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

class QuitSignalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void turnsEachSignalIntoARequest_data();
    void turnsEachSignalIntoARequest();
    void letsSignalsEndAStartThatWaits_data();
    void letsSignalsEndAStartThatWaits();
};

namespace {

/// In its environment: this process is a start that waits, and tells when it does.
constexpr auto waitsForEver = "QUILLMARK_TEST_WAITS";

void addSignals()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

} // namespace

void QuitSignalsTest::turnsEachSignalIntoARequest_data()
{
    addSignals();
}

void QuitSignalsTest::turnsEachSignalIntoARequest()
{
    QFETCH(const int, signal);
    const QuitSignals signals;
    QSignalSpy requested(&signals, &QuitSignals::quitRequested);
    QCoreApplication::processEvents();

    QCOMPARE(kill(getpid(), signal), 0);

    QVERIFY(requested.wait());
    QCOMPARE(requested.count(), 1);
}

void QuitSignalsTest::letsSignalsEndAStartThatWaits_data()
{
    addSignals();
}

void QuitSignalsTest::letsSignalsEndAStartThatWaits()
{
    QFETCH(const int, signal);
    QProcess start;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1StringView(waitsForEver), u"1"_s);
    start.setProcessEnvironment(environment);
    start.start(QCoreApplication::applicationFilePath());
    QVERIFY(start.waitForReadyRead());

    QCOMPARE(kill(static_cast<pid_t>(start.processId()), signal), 0);

    const bool hasEnded = start.waitForFinished(10'000);
    start.kill();
    QVERIFY(hasEnded);
    QCOMPARE(start.exitStatus(), QProcess::CrashExit);
    QCOMPARE(start.exitCode(), signal);
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet(waitsForEver)) {
        const QuitSignals signals;
        const QCoreApplication application(argc, argv);
        std::puts("waiting");
        std::fflush(stdout);
        for (;;)
            pause();
    }
    const QCoreApplication application(argc, argv);
    QuitSignalsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "QuitSignalsTest.moc"
