// SPDX-License-Identifier: MIT
#include "RepositoryError.h"

using namespace Qt::Literals::StringLiterals;

RepositoryError RepositoryError::unsupportedVersion(qint64 found) noexcept
{
    return {Reason::unsupportedVersion, found};
}

RepositoryError RepositoryError::invalidMarkdown() noexcept
{
    return {Reason::invalidMarkdown, 0};
}

RepositoryError RepositoryError::externalChange() noexcept
{
    return {Reason::externalChange, 0};
}

RepositoryError RepositoryError::recoveryRequired() noexcept
{
    return {Reason::recoveryRequired, 0};
}

Message RepositoryError::message() const
{
    switch (reason()) {
    case Reason::unsupportedVersion:
        return {u"Unsupported note version: %d. Original files were left untouched."_s,
                {m_version}};
    case Reason::invalidMarkdown:
        return {u"A Markdown file has invalid metadata. Original files were left untouched."_s, {}};
    case Reason::externalChange:
        return {u"Notes changed outside Quillmark. Copy your pending text and reopen the app to "
                u"reload the files."_s,
                {}};
    case Reason::recoveryRequired:
        return {u"A recovery copy needs attention. Original files were preserved in the data "
                u"folder."_s,
                {}};
    default:
        Q_UNREACHABLE();
    }
}
