// SPDX-License-Identifier: MIT
#include "NoteListModel.h"

#include "AppPreferences.h"
#include "DateText.h"
#include "NoteStore.h"
#include "UserText.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

/// More than the width of a row can show. Measuring a text to cut it costs by its length, and a
/// note can be a book.
constexpr qsizetype longestPreview = 300;

constexpr qsizetype mostSpoken = 1000;

QString startOf(const QString &text)
{
    QString start = text.left(longestPreview);
    if (!start.isEmpty() && start.back().isHighSurrogate())
        start.chop(1);
    return start;
}

/// The text in one line, each character at the same place.
QString asLine(QString text)
{
    return text.replace(u'\t', u' ').replace(u'\n', u' ');
}

bool areTheSameNotes(const QList<Note> &some, const QList<Note> &others)
{
    return std::ranges::equal(some, others, {}, &Note::id, &Note::id);
}

} // namespace

NoteListModel::NoteListModel(const NoteStore &store, const AppPreferences &preferences,
                             QObject *parent)
    : QAbstractListModel(parent)
    , m_store(store)
    , m_preferences(preferences)
{
}

int NoteListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_notes.size());
}

QVariant NoteListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Note &note = m_notes.at(index.row());
    switch (role) {
    case Qt::DisplayRole: {
        const QString &title = preview(note).title;
        return title.isEmpty() ? m_preferences.text(u"Untitled idea"_s) : asLine(title);
    }
    case Qt::AccessibleTextRole:
        return m_preferences.format(u"Open note: %@"_s, {beginning(note.title(), mostSpoken)});
    case Qt::AccessibleDescriptionRole: {
        const QString excerpt = beginning(note.excerpt(), mostSpoken);
        return excerpt.isEmpty() ? meta(note) : excerpt + u'\n' + meta(note);
    }
    case excerptRole:
        return asLine(preview(note).excerpt);
    case hasExcerptRole:
        return note.hasExcerpt();
    case metaRole:
        return meta(note);
    case titleMatchesRole:
        return QVariant::fromValue(matches(preview(note).title));
    case excerptMatchesRole:
        return QVariant::fromValue(matches(preview(note).excerpt));
    default:
        return {};
    }
}

const Note &NoteListModel::note(const QModelIndex &index) const
{
    return m_notes.at(index.row());
}

QModelIndex NoteListModel::indexOf(const QUuid &id) const
{
    const auto found = std::ranges::find(m_notes, id, &Note::id);
    return found == m_notes.end() ? QModelIndex()
                                  : index(static_cast<int>(found - m_notes.begin()));
}

void NoteListModel::show(const QList<Note> &notes, const QString &query)
{
    m_search.reset();
    if (const QString sought = query.trimmed(); !sought.isEmpty())
        m_search.emplace(sought);
    if (areTheSameNotes(m_notes, notes)) {
        m_notes = notes;
        if (!m_notes.isEmpty())
            Q_EMIT dataChanged(index(0), index(rowCount() - 1));
        return;
    }
    beginResetModel();
    m_notes = notes;
    endResetModel();
}

QModelIndex NoteListModel::indexNear(const Note &note) const
{
    const QModelIndex exact = indexOf(note.id);
    if (exact.isValid() || m_notes.isEmpty())
        return exact;
    const auto after = std::ranges::find_if(
        m_notes, [&note](const Note &other) { return other.updatedAt <= note.updatedAt; });
    const auto row = static_cast<int>(after - m_notes.begin());
    return index(std::min(row, rowCount() - 1));
}

const NoteListModel::Preview &NoteListModel::preview(const Note &note) const
{
    Preview &known = m_previews[note.id];
    const bool isCurrent =
        known.body.constData() == note.body.constData() && known.body.size() == note.body.size();
    if (!isCurrent)
        known = {note.body, startOf(note.title()), startOf(note.excerpt(u'\n'))};
    return known;
}

QString NoteListModel::meta(const Note &note) const
{
    QString meta =
        dateText(note.updatedAt, DateStyle::monthDayAndTime, m_preferences.resolvedLanguage());
    if (m_store.hasDraft(note))
        meta += u' ' + m_preferences.text(u"· Editing draft"_s);
    return meta;
}

QList<TextRange> NoteListModel::matches(const QString &text) const
{
    return m_search ? m_search->placesIn(text) : QList<TextRange>();
}
