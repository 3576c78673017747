// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

/// Why the notes folder was refused. Whatever the kind, the files on disk were not touched.
class RepositoryError final : public StorageError {
public:
    enum class Kind { unsupportedVersion, invalidMarkdown, externalChange, recoveryRequired };

    [[nodiscard]] static RepositoryError unsupportedVersion(qint64 found) noexcept;
    [[nodiscard]] static RepositoryError invalidMarkdown() noexcept;
    [[nodiscard]] static RepositoryError externalChange() noexcept;
    [[nodiscard]] static RepositoryError recoveryRequired() noexcept;

    [[nodiscard]] Kind kind() const noexcept { return m_kind; }

    /// The version found; 0 for every kind but unsupportedVersion.
    [[nodiscard]] qint64 version() const noexcept { return m_version; }

    [[nodiscard]] Message message() const override;

    friend bool operator==(const RepositoryError &a, const RepositoryError &b) noexcept
    {
        return a.m_kind == b.m_kind && a.m_version == b.m_version;
    }

private:
    RepositoryError(Kind kind, qint64 version) noexcept
        : m_kind(kind)
        , m_version(version)
    {
    }

    Kind m_kind;
    qint64 m_version;
};
