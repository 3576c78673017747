// SPDX-License-Identifier: MIT
#include "FileError.h"

#include "FileUrl.h"
#include "SystemErrorText.h"

#include <QLatin1StringView>
#include <cerrno>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Names the file first and then says what to do, as the sentences of the other reasons do. Each is
/// a translation key. Empty for an errno that has no sentence of its own.
QString sentenceFor(int systemError)
{
    switch (systemError) {
    case ENOSPC:
        return u"“%@” was not written: the disk is full. Free some space, then try again."_s;
    case EDQUOT:
        return u"“%@” was not written: your disk quota is used up. Delete other files, then try again."_s;
    case EFBIG:
        return u"“%@” was not written: it would be larger than a file may be. Raise the limit, then try again."_s;
    case EACCES:
    case EPERM:
        return u"“%@” may not be used. Check its permissions and its owner, then try again."_s;
    case EROFS:
        return u"“%@” is on a read-only disk. Make the disk writable, then try again."_s;
    case EMFILE:
    case ENFILE:
        return u"“%@” was not opened: too many files are open. Close some programs, then try again."_s;
    case ENAMETOOLONG:
        return u"“%@” has too long a path. Move your data to a folder with a shorter one, then reopen the app."_s;
    case ENOENT:
        return u"“%@” is missing. Put it back, then reopen the app."_s;
    case EIO:
        return u"“%@” could not be used: the disk reports an error. Check the disk, then try again."_s;
    default:
        return {};
    }
}

} // namespace

FileError::FileError(std::filesystem::path path, int systemError)
    : StorageError(Reason::system)
    , m_path(std::move(path))
    , m_systemError(systemError)
{
}

FileError::FileError(std::filesystem::path path, Reason reason)
    : StorageError(reason)
    , m_path(std::move(path))
{
}

FileError::FileError(std::filesystem::path path, Failure failure)
    : StorageError(failure.reason)
    , m_path(std::move(path))
    , m_systemError(failure.systemError)
{
}

const std::filesystem::path *FileError::place() const noexcept
{
    // What the system refuses is for the most part not the file's fault, or there is none.
    const bool isOfFile = reason() != Reason::system && reason() != Reason::notUnicode &&
                          reason() != Reason::inUse && reason() != Reason::busy &&
                          reason() != Reason::outOfReach;
    return isOfFile ? &m_path : nullptr;
}

Message FileError::message() const
{
    const QString file = shownPath(m_path);
    if (reason() != Reason::system)
        return {sentence(), {file}};
    if (const QString known = sentenceFor(m_systemError); !known.isEmpty())
        return {known, {file}};
    if (const QString words = systemErrorText(m_systemError); !words.isEmpty())
        return {u"“%@” could not be used: %@. Mend that, then try again."_s, {file, Phrase{words}}};
    return {u"“%@” could not be used: the system reports error %d. Mend that, then try again."_s,
            {file, qint64(m_systemError)}};
}
