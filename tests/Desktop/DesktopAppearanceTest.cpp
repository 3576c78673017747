// SPDX-License-Identifier: MIT
#include "DesktopAppearance.h"

#include "PortalSettings.h"
#include "PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QSaveFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <optional>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

using SettingGroups = PortalSettings::Groups;
using Texts = QMap<QString, QString>;
using TextGroups = QMap<QString, Texts>;
Q_DECLARE_METATYPE(SettingGroups)
Q_DECLARE_METATYPE(Texts)
Q_DECLARE_METATYPE(TextGroups)
Q_DECLARE_METATYPE(AppearanceWishes)

namespace {

const QString common = u"org.freedesktop.appearance"_s;
const QString gnome = u"org.gnome.desktop.interface"_s;
const QString gnomeAccess = u"org.gnome.desktop.a11y.interface"_s;
const QString kde = u"org.kde.kdeglobals.KDE"_s;

constexpr uint noPreference = 0;
constexpr uint dark = 1;
constexpr uint light = 2;

/// The settings portal, with the settings of a test.
class FakePortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakePortal(const PrivateBus &bus)
        : m_bus(bus.connectAs(u"portal"_s))
    {
        m_bus.registerObject(u"/org/freedesktop/portal/desktop"_s, this,
                             QDBusConnection::ExportAllSlots);
    }
    ~FakePortal() override
    {
        m_bus = QDBusConnection(QString());
        QDBusConnection::disconnectFromBus(u"portal"_s);
    }

    [[nodiscard]] bool start()
    {
        return m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }

    [[nodiscard]] bool announce(const QString &group, const QString &key, const QVariant &value)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << group << key << QVariant::fromValue(QDBusVariant(value));
        return m_bus.send(signal);
    }

    SettingGroups settings;
    /// Keeps every question without an answer.
    bool isSilent = false;
    /// Given instead of the settings.
    std::optional<QVariantList> otherAnswer;
    int answers = 0;

public Q_SLOTS:
    SettingGroups ReadAll(const QStringList & /*groups*/)
    {
        if (isSilent || otherAnswer)
            setDelayedReply(true);
        if (otherAnswer && m_bus.send(message().createReply(*otherAnswer)))
            ++answers;
        return settings;
    }

private:
    QDBusConnection m_bus;
};

} // namespace

class DesktopAppearanceTest final : public QObject {
    Q_OBJECT

public:
    explicit DesktopAppearanceTest(const PrivateBus &bus)
        : m_bus(bus)
    {
    }

private Q_SLOTS:
    void init();

    void hasPlainValuesWhereNothingIsSet();
    void readsLightAndDarkFromTheCommonSettings();
    void readsReducedMotionFromEachDesktop();
    void readsHighContrastAndMakesSurfacesOpaque();
    void ignoresSettingsItDoesNotKnow();
    void makesSurfacesOpaqueWithoutACompositingManager();
    void announcesOnlyWhatDiffers();

    void staysAsGivenWithoutAPortal();
    void asksThePortalAndFollowsIt();
    void leavesTheChoiceToTheToolkitWithoutAPreference();
    void followsGnomesThemeWithoutAPreference();
    void takesAnyWishForLessMotionOrMoreContrast();
    void doesNotWaitForAPortalThatIsSilent();
    void passesOverAnAnswerOfAnotherKind_data();
    void passesOverAnAnswerOfAnotherKind();

    void readsTheToolkitsThemes_data();
    void readsTheToolkitsThemes();
    void followsTheFilesOfTheToolkit();
    void followsAFileThatIsReplaced();
    void passesOverAPipeInTheFilesPlace();

private:
    void writeToolkitFile(const QByteArray &content, const QString &folder = u"gtk-3.0"_s) const;

    const PrivateBus &m_bus;
    std::optional<QTemporaryDir> m_config;
};

void DesktopAppearanceTest::init()
{
    m_config.emplace();
    qputenv("XDG_CONFIG_HOME", m_config->path().toUtf8());
}

void DesktopAppearanceTest::writeToolkitFile(const QByteArray &content, const QString &folder) const
{
    QDir(m_config->path()).mkdir(folder);
    QFile file(m_config->filePath(folder + u"/settings.ini"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void DesktopAppearanceTest::hasPlainValuesWhereNothingIsSet()
{
    const SystemAppearance appearance;

    QCOMPARE(appearance.colorScheme(), ColorScheme::light);
    QVERIFY(!appearance.reduceMotion());
    QVERIFY(!appearance.reduceTransparency());
    QVERIFY(appearance.isComposited());
}

void DesktopAppearanceTest::readsLightAndDarkFromTheCommonSettings()
{
    const auto scheme = [](uint value) {
        return PortalSettings::wishes({{common, {{u"color-scheme"_s, value}}}}).colorScheme;
    };

    QCOMPARE(scheme(dark), ColorScheme::dark);
    QCOMPARE(scheme(light), ColorScheme::light);
    QCOMPARE(scheme(noPreference), std::nullopt);
    QCOMPARE(scheme(4711), std::nullopt);
}

void DesktopAppearanceTest::readsReducedMotionFromEachDesktop()
{
    const auto reduced = [](const QString &group, const QString &key, const QVariant &value) {
        return PortalSettings::wishes({{group, {{key, value}}}}).reduceMotion;
    };

    QVERIFY(reduced(common, u"reduced-motion"_s, 1U));
    QVERIFY(!reduced(common, u"reduced-motion"_s, 0U));
    QVERIFY(reduced(gnome, u"enable-animations"_s, false));
    QVERIFY(!reduced(gnome, u"enable-animations"_s, true));
    QVERIFY(reduced(kde, u"AnimationDurationFactor"_s, u"0"_s));
    QVERIFY(!reduced(kde, u"AnimationDurationFactor"_s, u"0.5"_s));
    QVERIFY(!reduced(kde, u"AnimationDurationFactor"_s, u"fast"_s));
}

void DesktopAppearanceTest::readsHighContrastAndMakesSurfacesOpaque()
{
    QVERIFY(PortalSettings::wishes({{common, {{u"contrast"_s, 1U}}}}).highContrast);
    QVERIFY(!PortalSettings::wishes({{common, {{u"contrast"_s, 0U}}}}).highContrast);
    QVERIFY(PortalSettings::wishes({{gnomeAccess, {{u"high-contrast"_s, true}}}}).highContrast);
    SystemAppearance appearance;

    appearance.setValues({.highContrast = true, .offersBlur = true});
    QVERIFY(appearance.reduceTransparency());
    QVERIFY(!appearance.blursBehind());

    appearance.setValues({.offersBlur = true});
    QVERIFY(!appearance.reduceTransparency());
    QVERIFY(appearance.blursBehind());
}

void DesktopAppearanceTest::ignoresSettingsItDoesNotKnow()
{
    QCOMPARE(PortalSettings::wishes({{common, {{u"accent-color"_s, 1U}}}}), AppearanceWishes{});
    QCOMPARE(PortalSettings::wishes({{gnome, {{u"color-scheme"_s, u"prefer-dark"_s}}}}),
             AppearanceWishes{});
}

void DesktopAppearanceTest::makesSurfacesOpaqueWithoutACompositingManager()
{
    SystemAppearance appearance;
    appearance.setValues({.isComposited = false});

    QVERIFY(appearance.reduceTransparency());
}

void DesktopAppearanceTest::announcesOnlyWhatDiffers()
{
    SystemAppearance appearance;
    const QSignalSpy changed(&appearance, &SystemAppearance::changed);

    appearance.setValues({});
    QCOMPARE(changed.size(), 0);

    appearance.setValues({.reduceMotion = true});
    QCOMPARE(changed.size(), 1);
}

void DesktopAppearanceTest::staysAsGivenWithoutAPortal()
{
    FakePortal portal(m_bus);
    portal.settings[common][u"color-scheme"_s] = light;
    DesktopAppearance appearance(ColorScheme::dark);
    const QSignalSpy changed(&appearance, &SystemAppearance::changed);

    // The bus answers in the order it is asked: by then it has answered the appearance too.
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY(bus.isConnected());
    const QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"GetId"_s);
    QCOMPARE(bus.call(question, QDBus::BlockWithGui).type(), QDBusMessage::ReplyMessage);
    QCoreApplication::processEvents();

    QCOMPARE(changed.size(), 0);
    QCOMPARE(appearance.values(), SystemAppearance::Values{.colorScheme = ColorScheme::dark});
}

void DesktopAppearanceTest::asksThePortalAndFollowsIt()
{
    FakePortal portal(m_bus);
    portal.settings[common][u"color-scheme"_s] = dark;
    portal.settings[gnome][u"enable-animations"_s] = false;
    QVERIFY(portal.start());

    DesktopAppearance appearance(ColorScheme::light);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    QVERIFY(appearance.reduceMotion());

    QVERIFY(portal.announce(common, u"color-scheme"_s, light));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    QVERIFY(appearance.reduceMotion());
}

void DesktopAppearanceTest::leavesTheChoiceToTheToolkitWithoutAPreference()
{
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita-dark\n");
    FakePortal portal(m_bus);
    portal.settings[common][u"color-scheme"_s] = light;
    QVERIFY(portal.start());
    DesktopAppearance appearance(ColorScheme::light);
    QCOMPARE(appearance.colorScheme(), ColorScheme::dark);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);

    QVERIFY(portal.announce(common, u"color-scheme"_s, noPreference));

    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    QVERIFY(portal.announce(common, u"color-scheme"_s, light));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
}

void DesktopAppearanceTest::followsGnomesThemeWithoutAPreference()
{
    FakePortal portal(m_bus);
    portal.settings[common][u"color-scheme"_s] = noPreference;
    portal.settings[gnome][u"gtk-theme"_s] = u"Adwaita-dark"_s;
    QVERIFY(portal.start());

    DesktopAppearance appearance(ColorScheme::light);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);

    QVERIFY(portal.announce(gnome, u"gtk-theme"_s, u"Adwaita"_s));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    QVERIFY(portal.announce(gnome, u"gtk-theme"_s, u"HighContrastInverse"_s));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    QVERIFY(appearance.highContrast());
}

void DesktopAppearanceTest::takesAnyWishForLessMotionOrMoreContrast()
{
    writeToolkitFile("[Settings]\ngtk-enable-animations=0\ngtk-theme-name=HighContrast\n");
    FakePortal portal(m_bus);
    portal.settings[common] = {{u"reduced-motion"_s, 1U}, {u"contrast"_s, 1U}};
    portal.settings[gnome][u"enable-animations"_s] = true;
    QVERIFY(portal.start());
    DesktopAppearance appearance(ColorScheme::light);
    QVERIFY(appearance.reduceMotion());
    QVERIFY(appearance.highContrast());

    writeToolkitFile("");
    // By the portal's wish, which has arrived by the time of the next one.
    QVERIFY(portal.announce(common, u"color-scheme"_s, dark));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    QVERIFY(appearance.reduceMotion());
    QVERIFY(appearance.highContrast());

    QVERIFY(portal.announce(common, u"reduced-motion"_s, 0U));
    QTRY_VERIFY(!appearance.reduceMotion());
    QVERIFY(portal.announce(common, u"contrast"_s, 0U));
    QTRY_VERIFY(!appearance.highContrast());
}

void DesktopAppearanceTest::doesNotWaitForAPortalThatIsSilent()
{
    FakePortal portal(m_bus);
    portal.isSilent = true;
    QVERIFY(portal.start());

    DesktopAppearance appearance(ColorScheme::light);
    QCOMPARE(appearance.values(), SystemAppearance::Values{});

    QVERIFY(portal.announce(common, u"contrast"_s, 1U));
    QTRY_VERIFY(appearance.reduceTransparency());
}

void DesktopAppearanceTest::passesOverAnAnswerOfAnotherKind_data()
{
    QTest::addColumn<QVariantList>("answer");

    const QVariantMap settings{{u"contrast"_s, 1U}};
    const Texts texts{{u"contrast"_s, u"1"_s}};
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a number") << QVariantList{1U};
    QTest::newRow("a text") << QVariantList{u"contrast"_s};
    QTest::newRow("a{sv}") << QVariantList{settings};
    QTest::newRow("a{ss}") << QVariantList{QVariant::fromValue(texts)};
    QTest::newRow("a{sa{ss}}") << QVariantList{QVariant::fromValue(TextGroups{{common, texts}})};
    QTest::newRow("one more") << QVariantList{
        QVariant::fromValue(SettingGroups{{common, settings}}), 1U};
    QTest::newRow("in a variant") << QVariantList{
        QVariant::fromValue(QDBusVariant(QVariant::fromValue(SettingGroups{{common, settings}})))};
}

void DesktopAppearanceTest::passesOverAnAnswerOfAnotherKind()
{
    QFETCH(const QVariantList, answer);
    FakePortal portal(m_bus);
    portal.otherAnswer = answer;
    QVERIFY(portal.start());

    DesktopAppearance appearance(ColorScheme::dark);
    QTRY_COMPARE(portal.answers, 1);

    // What comes from one program arrives in its order: the answer has been read by then.
    QVERIFY(portal.announce(common, u"reduced-motion"_s, 1U));
    QTRY_VERIFY(appearance.reduceMotion());
    const SystemAppearance::Values unchanged{.colorScheme = ColorScheme::dark,
                                             .reduceMotion = true};
    QCOMPARE(appearance.values(), unchanged);
}

void DesktopAppearanceTest::readsTheToolkitsThemes_data()
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

void DesktopAppearanceTest::readsTheToolkitsThemes()
{
    QFETCH(const QByteArray, file);
    QFETCH(const AppearanceWishes, wishes);
    writeToolkitFile(file);

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

void DesktopAppearanceTest::followsTheFilesOfTheToolkit()
{
    DesktopAppearance appearance(ColorScheme::light);

    // In a folder that was not there at the start, then in the file that counts before it.
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita-dark\n");
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita\n", u"gtk-4.0"_s);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
    writeToolkitFile("[Settings]\ngtk-theme-name=Default-dark\n", u"gtk-4.0"_s);
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita\n");
    QVERIFY(QFile::remove(m_config->filePath(u"gtk-4.0/settings.ini"_s)));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
}

void DesktopAppearanceTest::followsAFileThatIsReplaced()
{
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita\n");
    DesktopAppearance appearance(ColorScheme::light);

    for (const bool isDark : {true, false, true}) {
        QSaveFile file(m_config->filePath(u"gtk-3.0/settings.ini"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(isDark ? "[Settings]\ngtk-theme-name=Adwaita-dark\n"
                          : "[Settings]\ngtk-theme-name=Adwaita\n");
        QVERIFY(file.commit());
        QTRY_COMPARE(appearance.colorScheme(), isDark ? ColorScheme::dark : ColorScheme::light);
    }
    writeToolkitFile("[Settings]\ngtk-theme-name=Adwaita\n");
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::light);
}

void DesktopAppearanceTest::passesOverAPipeInTheFilesPlace()
{
    QVERIFY(QDir(m_config->path()).mkdir(u"gtk-3.0"_s));
    QCOMPARE(mkfifo(m_config->filePath(u"gtk-3.0/settings.ini"_s).toUtf8().constData(), 0600), 0);

    const DesktopAppearance appearance(ColorScheme::dark);

    QCOMPARE(appearance.values(), SystemAppearance::Values{.colorScheme = ColorScheme::dark});
}

int main(int argc, char *argv[])
{
    const PrivateBus bus;
    if (!bus.isRunning())
        qFatal("No private session bus could be started");
    qDBusRegisterMetaType<SettingGroups>();
    qDBusRegisterMetaType<Texts>();
    qDBusRegisterMetaType<TextGroups>();
    const QGuiApplication application(argc, argv);
    DesktopAppearanceTest test(bus);
    return QTest::qExec(&test, argc, argv);
}

#include "DesktopAppearanceTest.moc"
