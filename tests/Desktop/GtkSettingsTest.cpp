// SPDX-License-Identifier: MIT
#include "AppearanceWishes.h"
#include "DesktopAppearance.h"

#include "ToolkitFiles.h"

#include <QFile>
#include <QGuiApplication>
#include <QSaveFile>
#include <QTest>
#include <optional>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(AppearanceWishes)

/// What the toolkit's files say reaches the appearance, where nobody else says anything.
class GtkSettingsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_files.emplace(); }

    void readsTheToolkitsThemes_data();
    void readsTheToolkitsThemes();
    void followsTheFilesOfTheToolkit();
    void followsAFileThatIsReplaced();
    void passesOverAPipeInTheFilesPlace();

private:
    std::optional<ToolkitFiles> m_files;
};

void GtkSettingsTest::readsTheToolkitsThemes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<AppearanceWishes>("wishes");
    constexpr auto lightOne = ColorScheme::light;
    constexpr auto darkOne = ColorScheme::dark;
    const AppearanceWishes nothing;

    QTest::newRow("empty") << QByteArray() << nothing;
    QTest::newRow("no section") << QByteArray("gtk-theme-name=Adwaita-dark") << nothing;
    QTest::newRow("another section")
        << QByteArray("[Other]\ngtk-theme-name=Adwaita-dark") << nothing;
    QTest::newRow("light") << QByteArray("[Settings]\ngtk-theme-name=Adwaita")
                           << AppearanceWishes{lightOne, false, false};
    QTest::newRow("dark") << QByteArray("[Settings]\n# why\n gtk-theme-name = Yaru-Dark \r\n")
                          << AppearanceWishes{darkOne, false, false};
    QTest::newRow("dark variant")
        << QByteArray("[Settings]\ngtk-theme-name=Breeze\ngtk-application-prefer-dark-theme=true")
        << AppearanceWishes{darkOne, false, false};
    QTest::newRow("light variant") << QByteArray("[Settings]\ngtk-application-prefer-dark-theme=0")
                                   << AppearanceWishes{lightOne, false, false};
    QTest::newRow("high contrast") << QByteArray("[Settings]\ngtk-theme-name=HighContrast")
                                   << AppearanceWishes{lightOne, false, true};
    QTest::newRow("MATE’s") << QByteArray("[Settings]\ngtk-theme-name=ContrastHighInverse")
                            << AppearanceWishes{darkOne, false, true};
    QTest::newRow("still") << QByteArray("[Settings]\ngtk-enable-animations=False")
                           << AppearanceWishes{{}, true, false};
    QTest::newRow("moving") << QByteArray("[Settings]\ngtk-enable-animations=1") << nothing;
    QTest::newRow("no text") << QByteArray("[Settings]\ngtk-theme-name\n=\n\xff\0\xfe", 32)
                             << nothing;
}

void GtkSettingsTest::readsTheToolkitsThemes()
{
    QFETCH(const QByteArray, file);
    QFETCH(const AppearanceWishes, wishes);
    m_files->write(file);

    for (const ColorScheme platform : {ColorScheme::light, ColorScheme::dark}) {
        const DesktopAppearance appearance(platform);

        const AppearanceWishes seen{wishes.colorScheme ? appearance.colorScheme()
                                                       : wishes.colorScheme,
                                    appearance.reduceMotion(), appearance.highContrast()};
        QCOMPARE(seen, wishes);
        if (!wishes.colorScheme)
            QCOMPARE(appearance.colorScheme(), platform);
    }
}

void GtkSettingsTest::followsTheFilesOfTheToolkit()
{
    DesktopAppearance appearance(ColorScheme::light);

    // In a folder that was not there at the start, then in the file that counts before it.
    m_files->write("[Settings]\ngtk-theme-name=Adwaita-dark\n");
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    m_files->write("[Settings]\ngtk-theme-name=Adwaita\n", u"gtk-4.0"_s);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    m_files->write("[Settings]\ngtk-theme-name=Default-dark\n", u"gtk-4.0"_s);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    m_files->write("[Settings]\ngtk-theme-name=Adwaita\n");
    QVERIFY(QFile::remove(m_files->path(u"gtk-4.0"_s)));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
}

void GtkSettingsTest::followsAFileThatIsReplaced()
{
    m_files->write("[Settings]\ngtk-theme-name=Adwaita\n");
    DesktopAppearance appearance(ColorScheme::light);

    for (const bool isDark : {true, false, true}) {
        QSaveFile file(m_files->path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(isDark ? "[Settings]\ngtk-theme-name=Adwaita-dark\n"
                          : "[Settings]\ngtk-theme-name=Adwaita\n");
        QVERIFY(file.commit());
        QTRY_COMPARE(appearance.colorScheme(), isDark ? ColorScheme::dark : ColorScheme::light);
    }
    m_files->write("[Settings]\ngtk-theme-name=Adwaita\n");
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
}

void GtkSettingsTest::passesOverAPipeInTheFilesPlace()
{
    m_files->write({});
    QVERIFY(QFile::remove(m_files->path()));
    QCOMPARE(mkfifo(m_files->path().toUtf8().constData(), 0600), 0);

    const DesktopAppearance appearance(ColorScheme::dark);

    QCOMPARE(appearance.values(), SystemAppearance::Values{.colorScheme = ColorScheme::dark});
}

QTEST_MAIN(GtkSettingsTest)
#include "GtkSettingsTest.moc"
