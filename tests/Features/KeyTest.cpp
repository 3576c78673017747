// SPDX-License-Identifier: MIT
// What one key sets going in the whole editor: what it touches, and nothing else.
#include "AppPreferences.h"
#include "CountedCalls.h"
#include "FailingRepository.h"
#include "NoteListModel.h"
#include "NoteStore.h"
#include "NoteTextEditor.h"
#include "NoteWorkspaceView.h"
#include "Views.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

NoteSnapshot withNotes(int count)
{
    NoteSnapshot snapshot;
    for (int i = 0; i < count; ++i)
        snapshot.notes.append(
            {QUuid::createUuid(), u"note %1\nmore"_s.arg(i), {}, Timestamp{100.0 - i}});
    return snapshot;
}

struct Workspace {
    Workspace()
        : store(std::make_unique<FailingRepository>(withNotes(20)))
        , view(store, preferences)
    {
    }

    NoteTextEditor *editor() { return Views::find<NoteTextEditor>(view, "noteEditor"); }

    /// Presses the keys one after the other; gives what the last one set going.
    CountedCalls::Counts press(QWidget *field, const QString &keys)
    {
        for (const QChar key : keys) {
            CountedCalls::take();
            QTest::keyClick(field, key.toLatin1());
        }
        return CountedCalls::take();
    }

    AppPreferences preferences{nullptr, AppLanguage::system, AppAppearance::light};
    NoteStore store;
    NoteWorkspaceView view;
};

} // namespace

class KeyTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void inANewThoughtCountsItsCharacters()
    {
        Workspace workspace;
        QVERIFY(Views::show(workspace.view));

        const auto counts = workspace.press(workspace.editor(), u"milk"_s);

        QCOMPARE(counts.texts, QStringList(u"%d characters"_s));
        QCOMPARE(counts.dates, 0);
        QCOMPARE(counts.systemLanguages, 0);
    }

    void inANoteTouchesNoTextOfTheProgram()
    {
        Workspace workspace;
        QVERIFY(Views::show(workspace.view));
        Views::click(workspace.view, "libraryTab");
        QTest::keyClick(workspace.view.focusWidget(), Qt::Key_Down);
        QTest::keyClick(workspace.view.focusWidget(), Qt::Key_Return);
        QVERIFY(workspace.editor());

        const auto counts = workspace.press(workspace.editor(), u"milk"_s);

        QCOMPARE(counts.texts, QStringList());
        QCOMPARE(counts.dates, 0);
    }

    void thatIsTheFirstTellsThatSomethingIsToBeSaved()
    {
        Workspace workspace;
        QVERIFY(Views::show(workspace.view));

        const auto counts = workspace.press(workspace.editor(), u"m"_s);

        QCOMPARE(counts.texts, (QStringList{u"Saving draft…"_s, u"1 character"_s}));
        QCOMPARE(counts.dates, 0);
    }

    void inTheSearchThatFindsTheSameChangesNoRow()
    {
        Workspace workspace;
        QVERIFY(Views::show(workspace.view));
        Views::click(workspace.view, "libraryTab");
        auto *const field = Views::find<QLineEdit>(workspace.view, "searchNotes");

        const auto *const rows =
            Views::find<QAbstractItemView>(workspace.view, "noteList")->model();
        const QSignalSpy resets(rows, &QAbstractItemModel::modelReset);
        const QSignalSpy removals(rows, &QAbstractItemModel::rowsRemoved);
        const QSignalSpy insertions(rows, &QAbstractItemModel::rowsInserted);
        const QSignalSpy changes(rows, &QAbstractItemModel::dataChanged);

        const auto counts = workspace.press(field, u"not"_s);

        // What is said of what was found; the rows need no text of the program.
        QCOMPARE(counts.texts, QStringList(u"%d notes"_s));
        QCOMPARE(counts.dates, 0);
        for (const QSignalSpy *const change : {&resets, &removals, &insertions})
            QCOMPARE(change->count(), 0);
        const QList<int> marks{NoteListModel::titleMatchesRole, NoteListModel::excerptMatchesRole};
        for (const QList<QVariant> &change : changes)
            QCOMPARE(change.at(2).value<QList<int>>(), marks);
    }
};

QTEST_MAIN(KeyTest)

#include "KeyTest.moc"
