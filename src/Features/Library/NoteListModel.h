// SPDX-License-Identifier: MIT
#pragma once

#include "FoundNotes.h"
#include "TextRange.h"
#include "TextSearch.h"

#include <QAbstractListModel>
#include <QHash>
#include <optional>
#include <vector>

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

    /// Whether a row has a line for an excerpt: what its height depends on. Cheap enough to be
    /// asked of every row.
    [[nodiscard]] bool hasExcerpt(int row) const;

    /// Shows these notes in place of the earlier ones, as what a search for the query found: some
    /// rows go or come, or the model is reset where that is less to do.
    void show(const FoundNotes &notes, const QString &query = {});

    /// The rows read differently: in another language, or with other drafts.
    void refresh();

Q_SIGNALS:
    /// Around all changes of rows that one call of show() makes.
    void rowsAboutToChange();
    void rowsChanged();

    /// The same rows have other texts, and perhaps other heights. Not for other matches alone.
    void textsChanged();

private:
    /// Rows of the longer of two lists that the other one has not.
    struct Rows {
        int first = 0;
        int count = 0;
    };

    [[nodiscard]] static bool areTheSame(const FoundNotes &some, qsizetype i,
                                         const FoundNotes &others, qsizetype k);
    [[nodiscard]] static std::optional<std::vector<Rows>> rowsMissing(const FoundNotes &shorter,
                                                                      const FoundNotes &longer);
    [[nodiscard]] bool search(const QString &query);
    void refreshMatches();
    void setNotes(const FoundNotes &notes);
    void removeStretches(const std::vector<Rows> &stretches);
    void insertStretches(const std::vector<Rows> &stretches, const FoundNotes &notes);

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
    FoundNotes m_notes;
    QString m_query;
    std::optional<TextSearch> m_search;

    /// Whether there is an excerpt, by the place of a note, as far as that was asked.
    mutable std::vector<std::optional<bool>> m_hasExcerpt;
    mutable QHash<QUuid, Preview> m_previews;
};
