// SPDX-License-Identifier: MIT
#include "Confinement.h"
#include "LandlockRules.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

/// Which places the environment may open to a confined process.
class ReachTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyPathOfAVariableIsOpened();
    void nothingInWhichTheHomeFolderLiesIsOpened();
    void aNamedPartOfSuchAPathIsOpened();

private:
    [[nodiscard]] std::filesystem::path in(const char *name) const
    {
        return QFile::encodeName(m_folder.path()).toStdString() + name;
    }

    QTemporaryDir m_folder;
    QByteArray m_home;
};

namespace {

constexpr auto variable = "QUILLMARK_TEST_PATHS";

bool isReadableWithin(const Reach &reach, const std::filesystem::path &place)
{
    const pid_t child = ::fork();
    if (child == 0) {
        confine(reach, LandlockRules::usableAbi());
        ::_exit(::open(place.c_str(), O_RDONLY | O_DIRECTORY) >= 0 ? 0 : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

void ReachTest::init()
{
    if (LandlockRules::usableAbi() == 0)
        QSKIP("This kernel has no Landlock.");
    m_home = qgetenv("HOME");
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("home/plugins")));
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("other")));
    QFile::link(m_folder.path() + QStringLiteral("/home"),
                m_folder.path() + QStringLiteral("/link"));
    QFile::link(m_folder.path() + QStringLiteral("/link"),
                m_folder.path() + QStringLiteral("/other/link"));
    qputenv("HOME", QByteArray::fromStdString(in("/home").native()));
}

void ReachTest::cleanup()
{
    qputenv("HOME", m_home);
    qunsetenv(variable);
}

void ReachTest::everyPathOfAVariableIsOpened()
{
    qputenv(variable, QByteArray::fromStdString(in("/other").native() + "::relative:" +
                                                in("/home/plugins").native() + ':'));
    Reach reach;

    reach.addReadableFrom(variable);

    QCOMPARE(reach.readableOutsideHome, (Reach::Places{in("/other"), in("/home/plugins")}));
    QVERIFY(isReadableWithin(reach, in("/other")));
    QVERIFY(isReadableWithin(reach, in("/home/plugins")));
}

void ReachTest::nothingInWhichTheHomeFolderLiesIsOpened()
{
    for (const std::filesystem::path &place :
         {std::filesystem::path("/"), in(""), in("/"), in("/home"), in("/home/"), in("/link"),
          in("/link/"), in("/other/../home"), in("/home/plugins/.."), in("/other/link")}) {
        qputenv(variable, QByteArray::fromStdString(place.native()));
        Reach reach;
        reach.addSystem();

        reach.addReadableFrom(variable);

        QVERIFY2(!isReadableWithin(reach, in("/home")), place.c_str());
    }
}

void ReachTest::aNamedPartOfSuchAPathIsOpened()
{
    qputenv(variable, QByteArray::fromStdString(in("/home").native()));
    Reach reach;

    reach.addReadableFrom(variable, "plugins");

    QVERIFY(isReadableWithin(reach, in("/home/plugins")));
    QVERIFY(!isReadableWithin(reach, in("/home")));
}

QTEST_GUILESS_MAIN(ReachTest)
#include "ReachTest.moc"
