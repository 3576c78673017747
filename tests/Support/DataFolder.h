// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/stat.h>
#include <vector>

/// A data folder of its own for one test, empty at first and gone with this. It is reached with
/// plain calls of the platform and not with the code under test.
class DataFolder {
public:
    /// What stands at each path below the folder: a letter for its kind and its content.
    using Content = QMap<QByteArray, QByteArray>;

    DataFolder() = default;
    DataFolder(const DataFolder &) = delete;
    DataFolder &operator=(const DataFolder &) = delete;

    /// Unlike QTemporaryDir this also removes names that are not UTF-8.
    ~DataFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path(), ignored);
    }

    [[nodiscard]] std::filesystem::path path() const
    {
        return std::filesystem::path(QFile::encodeName(m_outer.path()).toStdString()) / "Penwick";
    }
    [[nodiscard]] std::filesystem::path path(std::string_view relative) const
    {
        return path() / relative;
    }
    [[nodiscard]] std::filesystem::path fileURL() const { return path("notes.json"); }

    /// For what is typed; a real one lies elsewhere, but so content() shows it.
    [[nodiscard]] std::vector<std::filesystem::path> journalFolders() const
    {
        return {path("journal")};
    }

    void write(std::string_view relative, const QByteArray &bytes) const
    {
        std::filesystem::create_directories(path(relative).parent_path());
        std::ofstream(path(relative), std::ios::binary).write(bytes.data(), bytes.size());
    }

    [[nodiscard]] QByteArray read(std::string_view relative) const
    {
        std::ifstream file(path(relative), std::ios::binary);
        return QByteArray::fromStdString(std::string(std::istreambuf_iterator<char>(file), {}));
    }

    /// Also true for a link that leads nowhere.
    [[nodiscard]] bool holds(std::string_view relative) const
    {
        return std::filesystem::exists(std::filesystem::symlink_status(path(relative)));
    }

    /// The number of entries directly below the folder whose names begin so.
    [[nodiscard]] int count(std::string_view prefix) const
    {
        int found = 0;
        if (!std::filesystem::exists(path()))
            return 0;
        for (const auto &entry : std::filesystem::directory_iterator(path()))
            found += entry.path().filename().native().starts_with(prefix) ? 1 : 0;
        return found;
    }

    [[nodiscard]] struct stat status(std::string_view relative) const
    {
        struct stat found {};
        ::lstat(path(relative).c_str(), &found);
        return found;
    }

    [[nodiscard]] Content content() const
    {
        Content content;
        if (!std::filesystem::exists(path()))
            return content;
        for (const auto &entry : std::filesystem::recursive_directory_iterator(path())) {
            const QByteArray name =
                QByteArray::fromStdString(entry.path().lexically_relative(path()).native());
            if (entry.is_symlink())
                content[name] =
                    "l" + QByteArray::fromStdString(read_symlink(entry.path()).native());
            else if (entry.is_regular_file())
                content[name] = "f" + read(name.toStdString());
            else
                content[name] = entry.is_directory() ? "d" : "o";
        }
        return content;
    }

private:
    QTemporaryDir m_outer;
};
