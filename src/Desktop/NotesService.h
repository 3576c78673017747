// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "Refusal.h"

#include <QObject>
#include <filesystem>
#include <functional>
#include <optional>

/// Takes notes from other programs of the session, by org.quillmark.Quillmark.Notes1 on the session
/// bus, as long as it lives. Where there is no bus it does nothing.
class NotesService final : public QObject {
    Q_OBJECT

public:
    /// Adds the notes, all or none, and answers once they are on the disk or why they are not.
    using Adding = std::function<std::optional<Refusal>(const QList<Note> &)>;

    /// Notes that are for another folder than this one are not taken.
    NotesService(std::filesystem::path dataFolder, Adding adding, QObject *parent = nullptr);
    ~NotesService() override;

    [[nodiscard]] bool isFor(const std::filesystem::path &folder) const;
    [[nodiscard]] std::optional<Refusal> add(const QList<Note> &notes) const
    {
        return m_adding(notes);
    }

private:
    const std::filesystem::path m_dataFolder;
    const Adding m_adding;
};
