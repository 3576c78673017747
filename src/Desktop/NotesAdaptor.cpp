// SPDX-License-Identifier: MIT
#include "NotesAdaptor.h"

#include "NotesInterface.h"
#include "NotesService.h"

#include <QDBusConnection>

using namespace Qt::Literals::StringLiterals;

NotesAdaptor::NotesAdaptor(NotesService &service)
    : QDBusAbstractAdaptor(&service)
    , m_service(service)
{
}

QString NotesAdaptor::AddNotes(const QByteArray &folder, const QStringList &identifiers,
                               const QStringList &times, const QList<qulonglong> &sizes,
                               const QDBusUnixFileDescriptor &texts, const QDBusMessage &message,
                               QString &key, QVariantList &arguments)
{
    if (!m_service.isFor(folder.toStdString()))
        return QLatin1StringView(NotesInterface::otherFolder);
    const auto notes = NotesInterface::notesFrom(identifiers, times, sizes, texts.fileDescriptor());
    if (!notes) {
        message.setDelayedReply(true);
        QDBusConnection::sessionBus().send(
            message.createErrorReply(QDBusError::InvalidArgs, "These are no notes."_L1));
        return {};
    }
    const QVariantList answer = NotesInterface::answerFor(m_service.add(*notes));
    key = answer[1].toString();
    arguments = answer[2].toList();
    return answer[0].toString();
}
