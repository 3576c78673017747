// SPDX-License-Identifier: MIT
#pragma once

#include "Result.h"

#include <filesystem>

/// A failure that the platform reported for one file or folder.
class FileError final : public StorageError {
public:
    FileError(std::filesystem::path path, int systemError);
    FileError(std::filesystem::path path, Reason reason);
    FileError(std::filesystem::path path, Failure failure);

    [[nodiscard]] const std::filesystem::path &path() const noexcept { return m_path; }

    [[nodiscard]] int systemError() const noexcept override { return m_systemError; }

    [[nodiscard]] Message message() const override;
    [[nodiscard]] const std::filesystem::path *place() const noexcept override;

private:
    std::filesystem::path m_path;
    int m_systemError = 0;
};
