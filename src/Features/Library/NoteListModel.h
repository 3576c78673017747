// SPDX-License-Identifier: MIT
#pragma once

#include "Note.h"
#include "TextRange.h"
#include "TextSearch.h"

#include <QAbstractListModel>
#include <QHash>
#include <optional>

class AppPreferences;
class NoteStore;

/// The notes of the list, one row each, as the texts that a row shows.
///
/// Made for many notes: a row's texts are worked out when it is first shown, and kept while its
/// note stays as it is.
class NoteListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    /// Beside Qt::DisplayRole, the title, and Qt::AccessibleTextRole and
    /// Qt::AccessibleDescriptionRole, what a reader hears: of title and excerpt the first 1,000
    /// characters, since a note can be a book.
    enum Role {
        excerptRole = Qt::UserRole, ///< the start of the excerpt; empty when there is none
        hasExcerptRole,             ///< whether the row has a line for it
        metaRole,                   ///< the date, and that there is an unsaved edit
        titleMatchesRole,           ///< where the search found the title, a QList<TextRange>
        excerptMatchesRole,         ///< and the excerpt
    };

    NoteListModel(const NoteStore &store, const AppPreferences &preferences,
                  QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;

    [[nodiscard]] const Note &note(const QModelIndex &index) const;
    [[nodiscard]] QModelIndex indexOf(const QUuid &id) const;

    /// The note's row, or the one that took its place; invalid when there are no rows.
    [[nodiscard]] QModelIndex indexNear(const Note &note) const;

    /// Shows these notes in place of the earlier ones, as what a search for the query found. The
    /// model is reset unless they are the same ones in the same order.
    void show(const QList<Note> &notes, const QString &query = {});

private:
    struct Preview {
        /// Shared with the note, so that the same characters are at the same address.
        QString body;
        QString title;
        QString excerpt; ///< With the ends of its lines, over which nothing is found.
    };

    [[nodiscard]] const Preview &preview(const Note &note) const;
    [[nodiscard]] QString meta(const Note &note) const;
    [[nodiscard]] QList<TextRange> matches(const QString &text) const;

    const NoteStore &m_store;
    const AppPreferences &m_preferences;
    QList<Note> m_notes;
    std::optional<TextSearch> m_search;
    mutable QHash<QUuid, Preview> m_previews;
};
