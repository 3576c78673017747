// SPDX-License-Identifier: MIT
#include "ChosenPlaces.h"

#include "SettingsLock.h"

#include <QDir>
#include <QPointF>
#include <cmath>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto lastStoredKey = "lastStored"_L1;

/// A key of the file, whatever an output is called.
QString keyOf(const QString &arrangement)
{
    return "chosen/"_L1 + QString::fromLatin1(arrangement.toUtf8().toHex());
}

} // namespace

ChosenPlaces::ChosenPlaces(const QString &path)
    : m_file(path, QSettings::IniFormat)
{
}

QString ChosenPlaces::defaultPath()
{
    const QString set = qEnvironmentVariable("XDG_STATE_HOME");
    const QString folder = QDir::isAbsolutePath(set) ? set : QDir::homePath() + "/.local/state"_L1;
    return folder + "/Penwick/places"_L1;
}

std::optional<Point> ChosenPlaces::in(const QString &arrangement) const
{
    return read(keyOf(arrangement));
}

void ChosenPlaces::choose(const QString &arrangement, Point place)
{
    write(keyOf(arrangement), place);
}

std::optional<Point> ChosenPlaces::lastStored() const
{
    return read(lastStoredKey);
}

void ChosenPlaces::noteStored(Point place)
{
    if (lastStored() != place)
        write(lastStoredKey, place);
}

std::optional<Point> ChosenPlaces::read(const QString &key) const
{
    const QPointF place = m_file.value(key).toPointF();
    if (!m_file.contains(key) || !std::isfinite(place.x()) || !std::isfinite(place.y()))
        return std::nullopt;
    return Point{place.x(), place.y()};
}

void ChosenPlaces::write(const QString &key, Point place)
{
    if (!isLockFree(m_file))
        return;
    m_file.setValue(key, QPointF(place.x, place.y));
    m_file.sync();
}
