// SPDX-License-Identifier: MIT
#pragma once

#include "SystemAppearance.h"

#include <QVariant>
#include <memory>

class CompositorWatch;
class QDBusMessage;
class QDBusVariant;

/// The appearance of the running desktop: the settings portal says light or dark, contrast and
/// motion, the X server says whether windows are composited.
///
/// The portal is never waited for: what it answers arrives later as changed().
class DesktopAppearance final : public SystemAppearance {
    Q_OBJECT

public:
    /// Without a portal the colour scheme stays the given one, and the rest has plain values.
    explicit DesktopAppearance(ColorScheme withoutPortal, QObject *parent = nullptr);
    ~DesktopAppearance() override;

    /// The values after one setting of the portal changed; unknown settings change nothing.
    [[nodiscard]] static Values applying(Values values, const QString &group, const QString &key,
                                         const QVariant &value);

    /// The values after the portal's answer to ReadAll; an error, or an answer of another type,
    /// changes nothing.
    [[nodiscard]] static Values reading(Values values, const QDBusMessage &answer);

private Q_SLOTS:
    void takeSetting(const QString &group, const QString &key, const QDBusVariant &value);

private:
    void askPortal();

    std::unique_ptr<CompositorWatch> m_compositor;
};
