// SPDX-License-Identifier: MIT
#pragma once

#include "FileError.h"
#include "JsonError.h"
#include "RepositoryError.h"

#include <QString>
#include <optional>

/// The error of one type that an action throws; nothing when it succeeds. Any other error passes on
/// and fails the test.
template <typename Error, typename Action>
std::optional<Error> thrown(Action action)
{
    try {
        action();
    } catch (const Error &error) {
        return error;
    }
    return std::nullopt;
}

template <typename Action>
std::optional<RepositoryError> refusal(Action action)
{
    return thrown<RepositoryError>(action);
}

/// What a failed comparison shows.
inline char *toString(const std::optional<RepositoryError> &error)
{
    return qstrdup(error ? qPrintable(error->description()) : "no RepositoryError");
}
