// SPDX-License-Identifier: MIT
#include "RepositoryError.h"

using namespace Qt::Literals::StringLiterals;

RepositoryError RepositoryError::unsupportedVersion(qint64 found) noexcept
{
    return {Kind::unsupportedVersion, found};
}

RepositoryError RepositoryError::invalidMarkdown() noexcept
{
    return {Kind::invalidMarkdown, 0};
}

RepositoryError RepositoryError::externalChange() noexcept
{
    return {Kind::externalChange, 0};
}

RepositoryError RepositoryError::recoveryRequired() noexcept
{
    return {Kind::recoveryRequired, 0};
}

Message RepositoryError::message() const
{
    switch (m_kind) {
    case Kind::unsupportedVersion:
        return {u"Unsupported note version: %d. Original files were left untouched."_s,
                {m_version}};
    case Kind::invalidMarkdown:
        return {u"A Markdown file has invalid metadata. Original files were left untouched."_s, {}};
    case Kind::externalChange:
        return {u"Notes changed outside Quillmark. Copy your pending text and reopen the app to "
                u"reload the files."_s,
                {}};
    case Kind::recoveryRequired:
        return {u"A recovery copy needs attention. Original files were preserved in the data "
                u"folder."_s,
                {}};
    }
    Q_UNREACHABLE();
}
