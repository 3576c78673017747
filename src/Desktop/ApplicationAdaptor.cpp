// SPDX-License-Identifier: MIT
#include "ApplicationAdaptor.h"

#include "SingleInstance.h"

using namespace Qt::Literals::StringLiterals;

ApplicationAdaptor::ApplicationAdaptor(SingleInstance &instance)
    : QDBusAbstractAdaptor(&instance)
    , m_instance(instance)
{
}

void ApplicationAdaptor::Activate(const QVariantMap & /*startupData*/)
{
    Q_EMIT m_instance.activated();
}

void ApplicationAdaptor::Open(const QStringList & /*files*/, const QVariantMap & /*startupData*/)
{
    Q_EMIT m_instance.activated();
}

void ApplicationAdaptor::ActivateAction(const QString &action, const QVariantList & /*parameters*/,
                                        const QVariantMap & /*startupData*/)
{
    if (action == "new-note"_L1)
        Q_EMIT m_instance.newNoteRequested();
    else if (action == QLatin1StringView(SingleInstance::showNotes))
        Q_EMIT m_instance.notesRequested();
    else
        Q_EMIT m_instance.activated();
}
