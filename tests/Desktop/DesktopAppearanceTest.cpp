// SPDX-License-Identifier: MIT
#include "DesktopAppearance.h"

#include "PortalSettings.h"
#include "PrivateBus.h"
#include "ToolkitFiles.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <optional>

using namespace Qt::Literals::StringLiterals;

using SettingGroups = PortalSettings::Groups;
using Texts = QMap<QString, QString>;
using TextGroups = QMap<QString, Texts>;
Q_DECLARE_METATYPE(SettingGroups)
Q_DECLARE_METATYPE(Texts)
Q_DECLARE_METATYPE(TextGroups)

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
    void init() { m_files.emplace(); }

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

private:
    const PrivateBus &m_bus;
    std::optional<ToolkitFiles> m_files;
};

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
    m_files->write("[Settings]\ngtk-theme-name=Adwaita-dark\n");
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
    m_files->write("[Settings]\ngtk-enable-animations=0\ngtk-theme-name=HighContrast\n");
    FakePortal portal(m_bus);
    portal.settings[common] = {{u"reduced-motion"_s, 1U}, {u"contrast"_s, 1U}};
    portal.settings[gnome][u"enable-animations"_s] = true;
    QVERIFY(portal.start());
    DesktopAppearance appearance(ColorScheme::light);
    QVERIFY(appearance.reduceMotion());
    QVERIFY(appearance.highContrast());

    m_files->write("");
    // By the portal's wish.
    QVERIFY(portal.announce(common, u"color-scheme"_s, dark));
    QTRY_COMPARE(appearance.colorScheme(), ColorScheme::dark);
    QTRY_VERIFY(appearance.reduceMotion());
    QTRY_VERIFY(appearance.highContrast());

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
