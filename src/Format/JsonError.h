// SPDX-License-Identifier: MIT
#pragma once

#include "StorageError.h"

/// The older notes file is not what it must be: not JSON, or without a key, or with a wrong value.
///
/// A way leads to a value, for example "notes[3].id"; that to the file's one object is empty.
class JsonError final : public StorageError {
public:
    [[nodiscard]] static JsonError notUtf8();

    /// The place from which on the file is no JSON. Lines and their characters are counted from 1.
    [[nodiscard]] static JsonError syntax(qint64 line, qint64 column);

    /// For a value that is missing, comes twice, is wrong, or lies too deep.
    [[nodiscard]] static JsonError atWay(Reason reason, const QString &way);

    /// For a value that is missing or wrong, in a file of another version.
    [[nodiscard]] static JsonError otherShape(qint64 version, const QString &way);

    /// The same, with the file that was read.
    [[nodiscard]] JsonError about(std::filesystem::path file) const;

    [[nodiscard]] Message message() const override { return {sentence(), m_arguments}; }

private:
    JsonError(Reason reason, QList<FormatArgument> arguments);

    QList<FormatArgument> m_arguments;
};
