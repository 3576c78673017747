// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

/// One running program per session, found by its name on the session bus, where it offers
/// org.freedesktop.Application.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    static constexpr auto busName = "org.quillmark.Quillmark";
    static constexpr auto objectPath = "/org/quillmark/Quillmark";

    /// Construct it before the application object, which takes from the environment what the
    /// desktop says about this start.
    explicit SingleInstance(QObject *parent = nullptr);

    /// True when this process is the one: it owns the name from here on. False when another runs;
    /// that one has then been asked to show its editor. True as well when there is no session bus.
    [[nodiscard]] bool claim();

Q_SIGNALS:
    /// A second start, or the desktop, asks for the editor.
    void activated();

private:
    const QVariantMap m_startupData;
};
