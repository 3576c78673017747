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

/// Views and readers hear of each stretch of rows by itself. Of more than so many it is less to do
/// to show all rows anew.
constexpr size_t mostStretches = 16;

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
    const Note &note = m_notes[index.row()];
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
        return hasExcerpt(index.row());
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
    return m_notes[index.row()];
}

QModelIndex NoteListModel::indexOf(const QUuid &id) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (m_notes[row].id == id)
            return index(row);
    }
    return {};
}

QModelIndex NoteListModel::indexNear(const Note &note) const
{
    const QModelIndex exact = indexOf(note.id);
    if (exact.isValid() || m_notes.isEmpty())
        return exact;
    int row = 0;
    while (row < rowCount() - 1 && m_notes[row].updatedAt > note.updatedAt)
        ++row;
    return index(row);
}

bool NoteListModel::hasExcerpt(int row) const
{
    std::optional<bool> &known = m_hasExcerpt[m_notes.place(row)];
    if (!known)
        known = m_notes[row].hasExcerpt();
    return *known;
}

void NoteListModel::show(const FoundNotes &notes, const QString &query)
{
    const bool isOtherSearch = search(query.trimmed());
    if (notes == m_notes) {
        if (isOtherSearch)
            refreshMatches();
        return;
    }
    const bool areOfOthers = !notes.isOfTheSame(m_notes);
    const auto going = rowsMissing(notes, m_notes);
    const auto coming = going ? std::nullopt : rowsMissing(m_notes, notes);
    Q_EMIT rowsAboutToChange();
    if (going) {
        removeStretches(*going);
        setNotes(notes);
    } else if (coming) {
        insertStretches(*coming, notes);
    } else {
        beginResetModel();
        setNotes(notes);
        endResetModel();
    }
    Q_EMIT rowsChanged();
    if (areOfOthers)
        refresh();
    else if (isOtherSearch)
        refreshMatches();
}

/// Whether it is another one than before.
bool NoteListModel::search(const QString &query)
{
    if (query == m_query)
        return false;
    m_query = query;
    m_search.reset();
    if (!query.isEmpty())
        m_search.emplace(query);
    return true;
}

void NoteListModel::setNotes(const FoundNotes &notes)
{
    if (!notes.isOfTheSame(m_notes))
        m_hasExcerpt.assign(static_cast<size_t>(notes.among().size()), std::nullopt);
    m_notes = notes;
}

/// The last ones first, so that those before them keep their numbers.
void NoteListModel::removeStretches(const std::vector<Rows> &stretches)
{
    for (auto rows = stretches.rbegin(); rows != stretches.rend(); ++rows) {
        beginRemoveRows({}, rows->first, rows->first + rows->count - 1);
        m_notes.remove(rows->first, rows->count);
        endRemoveRows();
    }
}

void NoteListModel::insertStretches(const std::vector<Rows> &stretches, const FoundNotes &notes)
{
    FoundNotes there = notes;
    for (auto rows = stretches.rbegin(); rows != stretches.rend(); ++rows)
        there.remove(rows->first, rows->count);
    setNotes(there);
    for (const Rows &rows : stretches) {
        beginInsertRows({}, rows.first, rows.first + rows.count - 1);
        m_notes.insert(rows.first, rows.count, notes);
        endInsertRows();
    }
}

void NoteListModel::refresh()
{
    if (m_notes.isEmpty())
        return;
    Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    Q_EMIT textsChanged();
}

void NoteListModel::refreshMatches()
{
    if (!m_notes.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {titleMatchesRole, excerptMatchesRole});
}

bool NoteListModel::areTheSame(const FoundNotes &some, qsizetype i, const FoundNotes &others,
                               qsizetype k)
{
    return some.isOfTheSame(others) ? some.place(i) == others.place(k) : some[i].id == others[k].id;
}

/// What the longer list has and the shorter has not, when that is all that they differ in, and not
/// more than mostStretches.
std::optional<std::vector<NoteListModel::Rows>>
NoteListModel::rowsMissing(const FoundNotes &shorter, const FoundNotes &longer)
{
    std::vector<Rows> missing;
    qsizetype next = 0;
    bool isMissing = false;
    for (qsizetype row = 0; row < longer.size(); ++row) {
        const bool wasMissing = isMissing;
        isMissing = next == shorter.size() || !areTheSame(longer, row, shorter, next);
        if (!isMissing)
            ++next;
        else if (wasMissing)
            ++missing.back().count;
        else if (missing.size() < mostStretches)
            missing.push_back({static_cast<int>(row), 1});
        else
            return std::nullopt;
    }
    return next == shorter.size() ? std::optional(std::move(missing)) : std::nullopt;
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
