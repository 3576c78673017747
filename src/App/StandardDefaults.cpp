// SPDX-License-Identifier: MIT
#include "StandardDefaults.h"

#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

std::unique_ptr<QSettings> standardDefaults()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QString path = folder + "/Penwick/Penwick.conf"_L1;
    // Below what is no folder there is never a file.
    if (const QFileInfo file(path); file.exists() && !file.isFile())
        path = "/dev/null/Penwick.conf"_L1;
    auto settings = std::make_unique<QSettings>(path, QSettings::IniFormat);
    // Beside the target of a link the program may make no file that would take its place.
    settings->setAtomicSyncRequired(!QFileInfo(path).isSymLink());
    return settings;
}
