// SPDX-License-Identifier: MIT
#include "NotesService.h"

#include "NotesAdaptor.h"
#include "NotesInterface.h"

#include <QDBusConnection>

NotesService::NotesService(std::filesystem::path dataFolder, Adding adding, QObject *parent)
    : QObject(parent)
    , m_dataFolder(std::move(dataFolder))
    , m_adding(std::move(adding))
{
    new NotesAdaptor(*this); // Found by its parent when the object is registered.
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected())
        bus.registerObject(QLatin1StringView(NotesInterface::objectPath), this,
                           QDBusConnection::ExportAdaptors);
}

NotesService::~NotesService()
{
    QDBusConnection::sessionBus().unregisterObject(QLatin1StringView(NotesInterface::objectPath));
}

bool NotesService::isFor(const std::filesystem::path &folder) const
{
    // One of the two names may lead through links. A folder that is not there yet is its name.
    std::error_code ignored;
    return folder == m_dataFolder || std::filesystem::equivalent(folder, m_dataFolder, ignored);
}
