// SPDX-License-Identifier: MIT
#include "ApplicationAdaptor.h"

#include "SingleInstance.h"

#include <QDBusConnection>

using namespace Qt::Literals::StringLiterals;

ApplicationAdaptor::ApplicationAdaptor(SingleInstance &instance)
    : QDBusAbstractAdaptor(&instance)
    , m_instance(instance)
{
}

void ApplicationAdaptor::Activate(const QVariantMap &startupData, const QDBusMessage &call)
{
    if (m_instance.isForOtherDisplay(startupData))
        refuse(call, QLatin1StringView(SingleInstance::otherDisplayError), u"other-display"_s);
    else
        Q_EMIT m_instance.activated();
}

void ApplicationAdaptor::Open(const QStringList &files, const QVariantMap & /*startupData*/)
{
    if (files.isEmpty())
        Q_EMIT m_instance.activated();
    else
        Q_EMIT m_instance.addressesOpened(files);
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList & /*parameters*/,
                                        const QVariantMap &startupData, const QDBusMessage &call)
{
    if (m_instance.isForOtherDisplay(startupData))
        refuse(call, QLatin1StringView(SingleInstance::otherDisplayError), u"other-display"_s);
    else if (action == "new-note"_L1)
        Q_EMIT m_instance.newNoteRequested();
    else if (action == QLatin1StringView(SingleInstance::showNotes))
        Q_EMIT m_instance.notesRequested();
    else
        refuse(call, u"org.freedesktop.DBus.Error.InvalidArgs"_s, action);
}

void ApplicationAdaptor::refuse(const QDBusMessage &call, const QString &error,
                                const QString &reason)
{
    call.setDelayedReply(true);
    QDBusConnection::sessionBus().send(call.createErrorReply(error, reason));
}
