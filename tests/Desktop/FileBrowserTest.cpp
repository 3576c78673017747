// SPDX-License-Identifier: MIT
#include "FileBrowser.h"

#include "FileUrl.h"
#include "PrivateBus.h"

#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

using namespace Qt::Literals::StringLiterals;

/// Stands for the user's file browser.
class FileManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public Q_SLOTS:
    void ShowFolders(const QStringList &folders, const QString & /*startupId*/)
    {
        Q_EMIT shown(folders);
    }

    void ShowItems(const QStringList &items, const QString & /*startupId*/)
    {
        Q_EMIT chosen(items);
    }

Q_SIGNALS:
    void shown(const QStringList &folders);
    void chosen(const QStringList &items);
};

/// Stands for the portal. Tells the inode of the folder that it is given.
class Portal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.OpenURI")

public Q_SLOTS:
    void OpenDirectory(const QString & /*parent*/, const QDBusUnixFileDescriptor &folder,
                       const QVariantMap & /*options*/)
    {
        struct stat status {};
        const int failed = fstat(folder.fileDescriptor(), &status);
        Q_EMIT opened(failed != 0 ? 0 : quint64(status.st_ino));
    }

Q_SIGNALS:
    void opened(quint64 inode);
};

class FileBrowserTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_bus.isRunning()); }

    void asksTheFileManagerFirst();
    void asksThePortalWithoutAFileManager();
    void asksNobodyForAFolderThatIsGone();
    void choosesAFile();
    void givesThePortalTheFile();

private:
    PrivateBus m_bus;
};

void FileBrowserTest::asksTheFileManagerFirst()
{
    FileManager manager;
    Portal portal;
    QDBusConnection bus = m_bus.connectAs(u"file manager"_s);
    QVERIFY(bus.registerObject(u"/org/freedesktop/FileManager1"_s, &manager,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.FileManager1"_s));
    QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    QSignalSpy shown(&manager, &FileManager::shown);
    const QSignalSpy opened(&portal, &Portal::opened);

    openInFileBrowser(QUrl::fromLocalFile(u"/home/me/Notizen für später/Markdown #1"_s));

    QVERIFY(shown.wait());
    QCOMPARE(shown.first().first().toStringList(),
             QStringList{u"file:///home/me/Notizen%20f%C3%BCr%20sp%C3%A4ter/Markdown%20%231"_s});
    QCOMPARE(opened.count(), 0);
    bus.unregisterService(u"org.freedesktop.FileManager1"_s);
    bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
}

void FileBrowserTest::asksThePortalWithoutAFileManager()
{
    const QTemporaryDir folder;
    struct stat status {};
    QCOMPARE(stat(QFile::encodeName(folder.path()).constData(), &status), 0);
    Portal portal;
    QDBusConnection bus = m_bus.connectAs(u"portal"_s);
    QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    QSignalSpy opened(&portal, &Portal::opened);

    openInFileBrowser(QUrl::fromLocalFile(folder.path()));

    QVERIFY(opened.wait());
    QCOMPARE(opened.first().first().toULongLong(), quint64(status.st_ino));
    bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
}

void FileBrowserTest::asksNobodyForAFolderThatIsGone()
{
    const QTemporaryDir present;
    Portal portal;
    QDBusConnection bus = m_bus.connectAs(u"portal again"_s);
    QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    QSignalSpy opened(&portal, &Portal::opened);

    openInFileBrowser(QUrl::fromLocalFile(present.path() + u"/gone"_s));
    openInFileBrowser(QUrl::fromLocalFile(present.path()));

    // The second request is answered after the first, so the first has asked nobody.
    QVERIFY(opened.wait());
    QCOMPARE(opened.count(), 1);
    QVERIFY(opened.first().first().toULongLong() != 0);
    bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
}

void FileBrowserTest::choosesAFile()
{
    FileManager manager;
    QDBusConnection bus = m_bus.connectAs(u"choosing file manager"_s);
    QVERIFY(bus.registerObject(u"/org/freedesktop/FileManager1"_s, &manager,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.FileManager1"_s));
    const QSignalSpy shown(&manager, &FileManager::shown);
    QSignalSpy chosen(&manager, &FileManager::chosen);

    showInFileBrowser(fileUrl("/home/me/\xff/note #1.md"));

    QVERIFY(chosen.wait());
    QCOMPARE(chosen.first().first().toStringList(),
             QStringList{u"file:///home/me/%FF/note%20%231.md"_s});
    QCOMPARE(shown.count(), 0);
    bus.unregisterService(u"org.freedesktop.FileManager1"_s);
}

void FileBrowserTest::givesThePortalTheFile()
{
    const QTemporaryDir folder;
    const std::filesystem::path path =
        std::filesystem::path(QFile::encodeName(folder.path()).toStdString()) / "\xff.md";
    std::ofstream(path) << "text";
    struct stat status {};
    QCOMPARE(stat(path.c_str(), &status), 0);
    Portal portal;
    QDBusConnection bus = m_bus.connectAs(u"portal for a file"_s);
    QVERIFY(bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                               QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.freedesktop.portal.Desktop"_s));
    QSignalSpy opened(&portal, &Portal::opened);

    showInFileBrowser(fileUrl(path));

    QVERIFY(opened.wait());
    QCOMPARE(opened.first().first().toULongLong(), quint64(status.st_ino));
    bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
    std::filesystem::remove(path);
}

QTEST_GUILESS_MAIN(FileBrowserTest)
#include "FileBrowserTest.moc"
