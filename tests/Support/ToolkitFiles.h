// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

/// A folder for settings of the test's own, with the settings files of the GTK toolkit in it.
class ToolkitFiles {
public:
    ToolkitFiles() { qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config.path())); }

    [[nodiscard]] QString path(const QString &folder = QStringLiteral("gtk-3.0")) const
    {
        return m_config.filePath(folder + QStringLiteral("/settings.ini"));
    }

    /// Into the file, which keeps its place on the disk where it is there.
    void write(const QByteArray &content, const QString &folder = QStringLiteral("gtk-3.0")) const
    {
        QDir(m_config.path()).mkdir(folder);
        QFile file(path(folder));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

private:
    QTemporaryDir m_config;
};
