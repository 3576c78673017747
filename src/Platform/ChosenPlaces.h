// SPDX-License-Identifier: MIT
#pragma once

#include "Geometry.h"

#include <QSettings>
#include <QString>
#include <optional>

/// Where the user has dragged the launcher to, for each arrangement of screens, below the folder
/// for the state of programs. What a screen that went or came did to it is not kept here.
class ChosenPlaces final {
public:
    /// The file may be missing; it is written when there is something to keep.
    explicit ChosenPlaces(const QString &path);

    /// "$XDG_STATE_HOME/Penwick/places".
    [[nodiscard]] static QString defaultPath();

    /// The launcher's bottom left corner in y-up points.
    [[nodiscard]] std::optional<Point> in(const QString &arrangement) const;
    void choose(const QString &arrangement, Point place);

    /// The place that was stored last among the settings. When another one is found there, another
    /// hand has written it.
    [[nodiscard]] std::optional<Point> lastStored() const;
    void noteStored(Point place);

private:
    [[nodiscard]] std::optional<Point> read(const QString &key) const;
    void write(const QString &key, Point place);

    QSettings m_file;
};
