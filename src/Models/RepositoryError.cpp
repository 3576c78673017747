// SPDX-License-Identifier: MIT
#include "RepositoryError.h"

#include <utility>

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

RepositoryError RepositoryError::about(std::filesystem::path place) const
{
    RepositoryError error = *this;
    error.setPlace(std::move(place));
    return error;
}

Message RepositoryError::message() const
{
    if (reason() == Reason::unsupportedVersion)
        return {sentence(), {m_version}};
    return {sentence(), {}};
}
