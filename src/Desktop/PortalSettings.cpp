// SPDX-License-Identifier: MIT
#include "PortalSettings.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto settingGroupsSignature = "a{sa{sv}}"_L1;

constexpr auto portalService = "org.freedesktop.portal.Desktop"_L1;
constexpr auto portalPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto portalInterface = "org.freedesktop.portal.Settings"_L1;

constexpr auto common = "org.freedesktop.appearance"_L1;
constexpr auto gnome = "org.gnome.desktop.interface"_L1;
constexpr auto gnomeAccess = "org.gnome.desktop.a11y.interface"_L1;
constexpr auto kde = "org.kde.kdeglobals.KDE"_L1;

/// org.freedesktop.appearance: 0, and what is not known yet, is no preference.
constexpr uint preferDark = 1;
constexpr uint preferLight = 2;
constexpr uint preferHighContrast = 1;
constexpr uint preferReducedMotion = 1;

std::optional<ColorScheme> colorScheme(uint preference)
{
    switch (preference) {
    case preferDark:
        return ColorScheme::dark;
    case preferLight:
        return ColorScheme::light;
    default:
        return std::nullopt;
    }
}

/// A factor that all durations are multiplied with.
bool isZero(const QVariant &factor)
{
    bool isNumber = false;
    const double number = factor.toDouble(&isNumber);
    return isNumber && number <= 0;
}

} // namespace

PortalSettings::PortalSettings(QObject *parent)
    : QObject(parent)
{
    ask();
}

AppearanceWishes PortalSettings::wishes(const Groups &groups)
{
    const QVariantMap ofAll = groups.value(common);
    const QVariant gnomeAnimates = groups.value(gnome).value(u"enable-animations"_s);
    AppearanceWishes wishes;
    wishes.colorScheme = ::colorScheme(ofAll.value(u"color-scheme"_s).toUInt());
    wishes.highContrast = ofAll.value(u"contrast"_s).toUInt() == preferHighContrast ||
                          groups.value(gnomeAccess).value(u"high-contrast"_s).toBool();
    wishes.reduceMotion = ofAll.value(u"reduced-motion"_s).toUInt() == preferReducedMotion ||
                          (gnomeAnimates.isValid() && !gnomeAnimates.toBool()) ||
                          isZero(groups.value(kde).value(u"AnimationDurationFactor"_s));
    return wishes;
}

ToolkitSettings PortalSettings::toolkit() const
{
    return {.theme = m_groups.value(gnome).value(u"gtk-theme"_s).toString(),
            .prefersDark = {},
            .animates = {}};
}

PortalSettings::Groups PortalSettings::reading(const QDBusMessage &answer)
{
    // To read another type than the one that was sent would be to read beside the message. Errors
    // carry at most a text.
    if (answer.signature() != settingGroupsSignature)
        return {};
    return qdbus_cast<Groups>(answer.arguments().constFirst().value<QDBusArgument>());
}

void PortalSettings::takeSetting(const QString &group, const QString &key,
                                 const QDBusVariant &value)
{
    // Portals tell of every setting of the desktop.
    if (group != common && group != gnome && group != gnomeAccess && group != kde)
        return;
    m_groups[group][key] = value.variant();
    Q_EMIT changed();
}

void PortalSettings::ask()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    // A slot is connected by the names of its types, which must be known by then.
    qRegisterMetaType<QDBusVariant>();
    bus.connect(portalService, portalPath, portalInterface, u"SettingChanged"_s, this,
                SLOT(takeSetting(QString, QString, QDBusVariant)));

    // Where there is no portal and none can be started, the bus itself answers so.
    QDBusMessage question =
        QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, u"ReadAll"_s);
    question << QStringList{common, gnome, gnomeAccess, kde};
    auto *const answer = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const Groups groups = reading(answer->reply());
        for (auto group = groups.cbegin(); group != groups.cend(); ++group)
            m_groups[group.key()].insert(group.value());
        Q_EMIT changed();
    });
}
