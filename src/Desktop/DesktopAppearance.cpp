// SPDX-License-Identifier: MIT
#include "DesktopAppearance.h"

#include "CompositorWatch.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QMap>

using namespace Qt::Literals::StringLiterals;

namespace {

using SettingGroups = QMap<QString, QVariantMap>;
constexpr auto settingGroupsSignature = "a{sa{sv}}"_L1;

constexpr auto portalService = "org.freedesktop.portal.Desktop"_L1;
constexpr auto portalPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto portalInterface = "org.freedesktop.portal.Settings"_L1;

constexpr auto common = "org.freedesktop.appearance"_L1;
constexpr auto gnome = "org.gnome.desktop.interface"_L1;
constexpr auto gnomeAccess = "org.gnome.desktop.a11y.interface"_L1;
constexpr auto kde = "org.kde.kdeglobals.KDE"_L1;

/// org.freedesktop.appearance: 0 is no preference.
constexpr uint preferDark = 1;
constexpr uint preferHighContrast = 1;
constexpr uint preferReducedMotion = 1;

} // namespace

DesktopAppearance::DesktopAppearance(ColorScheme withoutPortal, QObject *parent)
    : SystemAppearance(parent)
    , m_compositor(std::make_unique<CompositorWatch>())
{
    Values values;
    values.colorScheme = withoutPortal;
    values.isComposited = m_compositor->isComposited();
    setValues(values);

    connect(m_compositor.get(), &CompositorWatch::changed, this, [this] {
        Values now = this->values();
        now.isComposited = m_compositor->isComposited();
        setValues(now);
    });
    askPortal();
}

DesktopAppearance::~DesktopAppearance() = default;

SystemAppearance::Values DesktopAppearance::applying(Values values, const QString &group,
                                                     const QString &key, const QVariant &value)
{
    if (group == common && key == "color-scheme"_L1) {
        values.colorScheme = value.toUInt() == preferDark ? ColorScheme::dark : ColorScheme::light;
    } else if (group == common && key == "contrast"_L1) {
        values.highContrast = value.toUInt() == preferHighContrast;
    } else if (group == gnomeAccess && key == "high-contrast"_L1) {
        values.highContrast = value.toBool();
    } else if (group == common && key == "reduced-motion"_L1) {
        values.reduceMotion = value.toUInt() == preferReducedMotion;
    } else if (group == gnome && key == "enable-animations"_L1) {
        values.reduceMotion = !value.toBool();
    } else if (group == kde && key == "AnimationDurationFactor"_L1) {
        bool isNumber = false;
        const double factor = value.toDouble(&isNumber);
        values.reduceMotion = isNumber && factor <= 0;
    }
    return values;
}

SystemAppearance::Values DesktopAppearance::reading(Values values, const QDBusMessage &answer)
{
    // To read another type than the one that was sent would be to read beside the message. Errors
    // carry at most a text.
    if (answer.signature() != settingGroupsSignature)
        return values;
    const auto groups =
        qdbus_cast<SettingGroups>(answer.arguments().constFirst().value<QDBusArgument>());
    // The desktops' own groups first: what the common group says is what counts.
    for (const QString &group :
         {QString(kde), QString(gnomeAccess), QString(gnome), QString(common)}) {
        const QVariantMap settings = groups.value(group);
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
            values = applying(values, group, setting.key(), setting.value());
    }
    return values;
}

void DesktopAppearance::takeSetting(const QString &group, const QString &key,
                                    const QDBusVariant &value)
{
    setValues(applying(values(), group, key, value.variant()));
}

void DesktopAppearance::askPortal()
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
        setValues(reading(values(), answer->reply()));
    });
}
