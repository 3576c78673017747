// SPDX-License-Identifier: MIT
#include "FileBrowser.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QUrl>
#include <QVariantMap>
#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Sandboxed programs, and desktops whose file browser is not on the bus, have the portal. It takes
/// an open folder instead of a path, which may mean something else on its side.
void openThroughPortal(const QUrl &folder)
{
    QDBusUnixFileDescriptor folderHandle;
    folderHandle.giveFileDescriptor(open(QFile::encodeName(folder.toLocalFile()).constData(),
                                         O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folderHandle.isValid())
        return;
    auto call = QDBusMessage::createMethodCall(
        "org.freedesktop.portal.Desktop"_L1, "/org/freedesktop/portal/desktop"_L1,
        "org.freedesktop.portal.OpenURI"_L1, "OpenDirectory"_L1);
    call << QString() << QVariant::fromValue(folderHandle) << QVariantMap();
    QDBusConnection::sessionBus().asyncCall(call);
}

} // namespace

void openInFileBrowser(const QUrl &folder)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    auto call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1"_L1,
                                               "/org/freedesktop/FileManager1"_L1,
                                               "org.freedesktop.FileManager1"_L1, "ShowFolders"_L1);
    call << QStringList{folder.toString(QUrl::FullyEncoded)} << QString();

    auto *const answer = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, folder] {
        answer->deleteLater();
        if (answer->isError())
            openThroughPortal(folder);
    });
}
