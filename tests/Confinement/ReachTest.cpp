// SPDX-License-Identifier: MIT
#include "Reach.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>

/// Which places the environment may open to a confined process.
class ReachTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void everyPathOfAVariableIsOpened();
    void nothingInOrAboveWhichTheHomeFolderLiesIsOpened();
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

} // namespace

void ReachTest::init()
{
    m_home = qgetenv("HOME");
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("home/plugins")));
    QVERIFY(QDir(m_folder.path()).mkpath(QStringLiteral("other")));
    QFile::link(m_folder.path() + QStringLiteral("/home"),
                m_folder.path() + QStringLiteral("/link"));
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

    QCOMPARE(reach.readable, (Reach::Places{in("/other"), in("/home/plugins")}));
}

void ReachTest::nothingInOrAboveWhichTheHomeFolderLiesIsOpened()
{
    for (const std::filesystem::path &place :
         {std::filesystem::path("/"), in(""), in("/"), in("/home"), in("/home/"), in("/link"),
          in("/link/"), in("/other/../home"), in("/home/plugins/..")}) {
        qputenv(variable, QByteArray::fromStdString(place.native()));
        Reach reach;

        reach.addReadableFrom(variable);

        QVERIFY2(reach.readable.empty(), place.c_str());
    }
}

void ReachTest::aNamedPartOfSuchAPathIsOpened()
{
    qputenv(variable, QByteArray::fromStdString(in("/home").native()));
    Reach reach;

    reach.addReadableFrom(variable, "plugins");

    QCOMPARE(reach.readable, Reach::Places{in("/home/plugins")});
}

QTEST_GUILESS_MAIN(ReachTest)
#include "ReachTest.moc"
