// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

/// The notes folder as a whole was refused: for one of the first four reasons. The files on disk
/// were not touched.
class RepositoryError final : public StorageError {
public:
    [[nodiscard]] static RepositoryError unsupportedVersion(qint64 found) noexcept;
    [[nodiscard]] static RepositoryError invalidMarkdown() noexcept;
    [[nodiscard]] static RepositoryError externalChange() noexcept;
    [[nodiscard]] static RepositoryError recoveryRequired() noexcept;

    /// The version found; 0 for every reason but unsupportedVersion.
    [[nodiscard]] qint64 version() const noexcept { return m_version; }

    [[nodiscard]] Message message() const override;

    /// The same, with the file or folder for which it was refused.
    [[nodiscard]] RepositoryError about(std::filesystem::path place) const;

    friend bool operator==(const RepositoryError &a, const RepositoryError &b) noexcept
    {
        return a.reason() == b.reason() && a.m_version == b.m_version;
    }

private:
    RepositoryError(Reason reason, qint64 version) noexcept
        : StorageError(reason)
        , m_version(version)
    {
    }

    qint64 m_version;
};
