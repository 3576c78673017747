// SPDX-License-Identifier: MIT
#include "GtkSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <array>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// What a person or a theme tool writes is a few lines.
constexpr qint64 longestFile = 65536;

bool isTrue(const QString &value)
{
    return value == "1"_L1 || value.compare("true"_L1, Qt::CaseInsensitive) == 0;
}

/// A key file as GLib writes them: "key=value" below "[Settings]".
ToolkitSettings reading(const QString &text)
{
    ToolkitSettings settings;
    bool isInside = false;
    for (const QString &line : text.split(u'\n')) {
        if (line.startsWith(u'['))
            isInside = line.trimmed() == "[Settings]"_L1;
        const qsizetype sign = line.indexOf(u'=');
        if (!isInside || sign < 0)
            continue;
        const QString key = line.first(sign).trimmed();
        const QString value = line.sliced(sign + 1).trimmed();
        if (key == "gtk-theme-name"_L1)
            settings.theme = value;
        else if (key == "gtk-application-prefer-dark-theme"_L1)
            settings.prefersDark = isTrue(value);
        else if (key == "gtk-enable-animations"_L1)
            settings.animates = isTrue(value);
    }
    return settings;
}

/// A pipe in the place of the file would be waited for.
ToolkitSettings readingFile(const QString &path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    return reading(QString::fromUtf8(file.read(longestFile)));
}

/// In the order in which they count.
constexpr std::array folders{"gtk-4.0"_L1, "gtk-3.0"_L1};

} // namespace

GtkSettings::GtkSettings(QObject *parent)
    : QObject(parent)
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &GtkSettings::follow);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &GtkSettings::follow);
    follow();
}

void GtkSettings::follow()
{
    const QDir all(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    QStringList files;
    QStringList watched;
    for (const QLatin1StringView folder : folders) {
        files << all.filePath(folder + "/settings.ini"_L1);
        // A folder tells of files that come and go, a file of what is written into it.
        watched << (all.exists(folder) ? all.filePath(folder) : all.path());
        if (QFileInfo(files.constLast()).isFile())
            watched << files.constLast();
    }
    watched.removeDuplicates();
    // Before they are read: what is written from here on is heard of.
    m_watcher.addPaths(watched);

    ToolkitSettings settings;
    for (const QString &file : std::as_const(files))
        settings = settings.completedBy(readingFile(file));
    if (settings != std::exchange(m_settings, settings))
        Q_EMIT changed();
}
