// SPDX-License-Identifier: MIT
#include "FileBrowser.h"

#include "FileUrl.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QUrl>
#include <QVariantMap>
#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Sandboxed programs, and desktops whose file browser is not on the bus, have the portal. It takes
/// an open file or folder instead of a path, which may mean something else on its side.
void openThroughPortal(const QUrl &place, int flags)
{
    QDBusUnixFileDescriptor handle;
    handle.giveFileDescriptor(open(localPath(place).c_str(), O_PATH | O_CLOEXEC | flags));
    if (!handle.isValid())
        return;
    auto call = QDBusMessage::createMethodCall(
        "org.freedesktop.portal.Desktop"_L1, "/org/freedesktop/portal/desktop"_L1,
        "org.freedesktop.portal.OpenURI"_L1, "OpenDirectory"_L1);
    call << QString() << QVariant::fromValue(handle) << QVariantMap();
    QDBusConnection::sessionBus().asyncCall(call);
}

void ask(const QString &method, const QUrl &place, int flags)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    auto call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1"_L1,
                                               "/org/freedesktop/FileManager1"_L1,
                                               "org.freedesktop.FileManager1"_L1, method);
    call << QStringList{place.toString(QUrl::FullyEncoded)} << QString();

    auto *const answer = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(answer, &QDBusPendingCallWatcher::finished, answer, [answer, place, flags] {
        answer->deleteLater();
        if (answer->isError())
            openThroughPortal(place, flags);
    });
}

} // namespace

void openInFileBrowser(const QUrl &folder)
{
    ask("ShowFolders"_L1, folder, O_DIRECTORY);
}

void showInFileBrowser(const QUrl &file)
{
    ask("ShowItems"_L1, file, O_NOFOLLOW);
}
