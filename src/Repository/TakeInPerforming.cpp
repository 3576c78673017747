// SPDX-License-Identifier: MIT
#include "NoteBatch.h"
#include "RepositoryError.h"
#include "SafeKeeping.h"
#include "TakeIn.h"

#include <QDateTime>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;

namespace {

/// A new folder, named after the minute.
Directory makeTarget(Disk &disk, const std::filesystem::path &stateFolder)
{
    constexpr std::int64_t nanoseconds = 1'000'000;
    const Directory state = Directory::openOrMake(disk, stateFolder);
    const QDateTime now =
        QDateTime::fromMSecsSinceEpoch(disk.now() / nanoseconds, QTimeZone::utc());
    const std::string base = std::string(FileNames::takenInPrefix) +
                             now.toString(u"yyyy-MM-dd'T'HHmm'Z'"_s).toStdString();
    std::string name = base;
    Result<Directory> made = state.makeFolder(name.c_str());
    for (int i = 2; !made && made.failure().is(EEXIST); ++i) {
        name = base + '-' + std::to_string(i);
        made = state.makeFolder(name.c_str());
    }
    Directory target = state.orThrow(std::move(made), name);
    target.syncPath();
    return target;
}

} // namespace

std::filesystem::path TakeIn::perform(const std::filesystem::path &stateFolder)
{
    SafeKeeping keeping(makeTarget(m_data.disk(), stateFolder));
    if (!m_onlyCopy.empty()) {
        const char *const name = FileNames::markdownFolder;
        m_data.orThrow(m_data.rename(m_onlyCopy.c_str(), m_data, name, Disk::Rename::noReplace),
                       name);
        m_data.orThrow(m_data.sync());
    }
    if (m_folder) {
        NoteBatch batch(m_data, *m_folder, m_made);
        batch.commit();
        if (!m_folder->isIn(m_data) || !m_folder->holds(Section::notes))
            throw RepositoryError::externalChange().about(m_folder->directory().path());
    }
    for (const Original &original : m_originals)
        keeping.take(*original.folder, original.name.c_str(), original.status, original.subFolder);
    if (m_folder)
        m_folder->announceChange();
    return keeping.target().path();
}
