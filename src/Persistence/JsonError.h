// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

/// The older notes file is not what it must be: not JSON, a missing key, or a wrong value.
class JsonError final : public StorageError {
public:
    /// What is wrong and where, in English, for example "notes[3].id is not an identifier".
    explicit JsonError(QString detail);

    [[nodiscard]] const QString &detail() const noexcept { return m_detail; }
    [[nodiscard]] Message message() const override;

private:
    QString m_detail;
};
