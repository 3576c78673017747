// SPDX-License-Identifier: MIT
#include "ProcessStart.h"

#include <QTest>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Which of the numbers from 0 to 3 are open, as bits, in a process that was started with these
/// ones.
int openAfterStart(int open)
{
    const pid_t child = ::fork();
    if (child == 0) {
        for (int number = 0; number <= 3; ++number) {
            if ((open & (1 << number)) == 0)
                ::close(number);
        }
        occupyStandardFiles();
        int found = 0;
        for (int number = 0; number <= 3; ++number)
            found |= ::fcntl(number, F_GETFD) >= 0 ? 1 << number : 0;
        ::_exit(found);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

} // namespace

class ProcessStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void occupiesTheStandardFilesAndNoMore_data();
    void occupiesTheStandardFilesAndNoMore();
    void leavesNoCoreFile();
};

void ProcessStartTest::occupiesTheStandardFilesAndNoMore_data()
{
    QTest::addColumn<int>("open");

    for (int open = 0; open < 8; ++open)
        QTest::addRow("%d", open) << open;
}

void ProcessStartTest::occupiesTheStandardFilesAndNoMore()
{
    QFETCH(const int, open);

    QCOMPARE(openAfterStart(open), 7);
}

void ProcessStartTest::leavesNoCoreFile()
{
    leaveNoCoreFile();

    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_CORE, &limit), 0);
    QVERIFY(limit.rlim_cur <= 1);
}

QTEST_GUILESS_MAIN(ProcessStartTest)
#include "ProcessStartTest.moc"
