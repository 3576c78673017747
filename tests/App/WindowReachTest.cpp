// SPDX-License-Identifier: MIT
#include "WindowReach.h"

#include "Confinement.h"
#include "LandlockRules.h"
#include "OwnFolders.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

/// What the program with the windows asks for when it confines itself.
class WindowReachTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void findsThePortOfADisplay_data();
    void findsThePortOfADisplay();
    void takesTheDisplayFromTheArguments();
    void hasNoNetworkOnThisComputer();
    void writesNothingOfTheUsersWithoutFolders();
    void readsItsAuthorityWhenAnotherHasTakenItsPlace();

private:
    QTemporaryDir m_folder;
    QByteArray m_home;
    QByteArray m_display;
};

namespace {

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

} // namespace

void WindowReachTest::init()
{
    m_home = qgetenv("HOME");
    m_display = qgetenv("DISPLAY");
    qputenv("HOME", QFile::encodeName(m_folder.path()));
    qputenv("DISPLAY", ":0");
    qunsetenv("XAUTHORITY");
}

void WindowReachTest::cleanup()
{
    qputenv("HOME", m_home);
    qputenv("DISPLAY", m_display);
    qunsetenv("XAUTHORITY");
}

void WindowReachTest::findsThePortOfADisplay_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("port");
    for (const char *local : {"", ":0", ":1.2", "unix:0", "unix/:0", "local/here:0", "nonsense",
                              "/tmp/.X11-unix/X0", "/private/tmp/launch:0"})
        QTest::addRow("local: %s", local) << QByteArray(local) << 0;
    QTest::newRow("forwarded") << QByteArray("localhost:10.0") << 6010;
    QTest::newRow("far") << QByteArray("far.example:1") << 6001;
    QTest::newRow("protocol") << QByteArray("tcp/far:0.1") << 6000;
    QTest::newRow("IPv6") << QByteArray("[::1]:2") << 6002;
    QTest::newRow("no port") << QByteArray("far:70000") << 0;
}

void WindowReachTest::findsThePortOfADisplay()
{
    QFETCH(const QByteArray, name);
    QFETCH(const int, port);

    QCOMPARE(int(portOfDisplay(name.toStdString())), port);
}

void WindowReachTest::takesTheDisplayFromTheArguments()
{
    char program[] = "quillmark";
    char option[] = "-display";
    char display[] = "far:3";
    char *const arguments[] = {program, option, display};

    const Reach reach = windowReach(arguments, false);

    QVERIFY(std::ranges::count(reach.ports, 6003) == 1);
}

void WindowReachTest::hasNoNetworkOnThisComputer()
{
    QVERIFY(windowReach({}, true).ports.empty());
}

void WindowReachTest::writesNothingOfTheUsersWithoutFolders()
{
    const Reach all = windowReach({}, true);
    const Reach none = windowReach({}, false);

    for (const std::filesystem::path &own : ownFolders()) {
        QVERIFY2(std::ranges::count(all.writable, own) == 1, own.c_str());
        QVERIFY2(std::ranges::count(none.writable, own) == 0, own.c_str());
    }
}

void WindowReachTest::readsItsAuthorityWhenAnotherHasTakenItsPlace()
{
    if (LandlockRules::usableAbi() == 0)
        QSKIP("This kernel has no Landlock.");
    const QString path = m_folder.filePath(u".Xauthority"_s);
    write(path, "cookie");
    write(m_folder.filePath(u"new"_s), "another");
    const QByteArray from = QFile::encodeName(m_folder.filePath(u"new"_s));
    const QByteArray to = QFile::encodeName(path);

    // Confined processes stay so: one of its own.
    const pid_t child = ::fork();
    if (child == 0) {
        keepDisplayAuthority();
        const Reach reach = windowReach({}, false);
        if (::rename(from.constData(), to.constData()) != 0)
            ::_exit(1);
        confine(reach, LandlockRules::usableAbi());
        QFile authority(QFile::decodeName(qgetenv("XAUTHORITY")));
        ::_exit(authority.open(QIODevice::ReadOnly) && authority.readAll() == "cookie" ? 0 : 2);
    }
    int status = 0;
    QCOMPARE(::waitpid(child, &status, 0), child);

    QCOMPARE(status, 0);
}

QTEST_GUILESS_MAIN(WindowReachTest)
#include "WindowReachTest.moc"
