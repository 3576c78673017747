// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

/// A session bus of the test's own, on which nothing is started by itself. Construct it before the
/// first use of QDBusConnection::sessionBus().
class PrivateBus {
public:
    PrivateBus()
    {
        using namespace Qt::Literals::StringLiterals;
        QFile configuration(m_dir.filePath(u"bus.conf"_s));
        if (!configuration.open(QIODevice::WriteOnly))
            return;
        configuration.write(
            "<busconfig><type>session</type><listen>unix:dir=" + QFile::encodeName(m_dir.path()) +
            "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
            "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
            "</busconfig>");
        configuration.close();
        m_daemon.start(u"dbus-daemon"_s, {u"--nofork"_s, u"--print-address"_s,
                                          u"--config-file="_s + configuration.fileName()});
        if (!m_daemon.waitForReadyRead())
            return;
        m_address = QString::fromUtf8(m_daemon.readLine()).trimmed();
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
    }

    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    ~PrivateBus()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

    [[nodiscard]] bool isRunning() const { return !m_address.isEmpty(); }

    /// A connection apart from sessionBus(), as another program has.
    [[nodiscard]] QDBusConnection connectAs(const QString &name) const
    {
        return QDBusConnection::connectToBus(m_address, name);
    }

private:
    QTemporaryDir m_dir;
    QProcess m_daemon;
    QString m_address;
};
