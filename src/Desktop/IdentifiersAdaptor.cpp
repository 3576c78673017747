// SPDX-License-Identifier: MIT
#include "IdentifiersAdaptor.h"

#include "AccessibleIdentifiers.h"

IdentifiersAdaptor::IdentifiersAdaptor(AccessibleIdentifiers &identifiers)
    : QDBusAbstractAdaptor(&identifiers)
    , m_identifiers(identifiers)
{
}

QString IdentifiersAdaptor::IdentifierOf(const QDBusObjectPath &accessible) const
{
    return m_identifiers.identifierOf(accessible.path());
}
