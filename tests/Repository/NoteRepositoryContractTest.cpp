// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"
#include "MemoryNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"

#include <QTest>
#include <memory>

using namespace Qt::Literals::StringLiterals;

/// What every repository promises, asked of each.
class NoteRepositoryContractTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_data = std::make_unique<DataFolder>(); }

    void isEmptyAtFirst_data() { repositories(); }
    void isEmptyAtFirst();
    void givesBackWhatWasSaved_data() { repositories(); }
    void givesBackWhatWasSaved();
    void canSaveBeforeItLoads_data() { repositories(); }
    void canSaveBeforeItLoads();
    void replacesTheWholeState_data() { repositories(); }
    void replacesTheWholeState();
    void doesNotChangeByLoading_data() { repositories(); }
    void doesNotChangeByLoading();

private:
    static void repositories()
    {
        QTest::addColumn<bool>("isLocal");
        QTest::newRow("local") << true;
        QTest::newRow("memory") << false;
    }

    [[nodiscard]] std::unique_ptr<NoteRepository> repository() const
    {
        QFETCH(bool, isLocal);
        if (isLocal)
            return std::make_unique<LocalNoteRepository>(m_data->fileURL());
        return std::make_unique<MemoryNoteRepository>();
    }

    std::unique_ptr<DataFolder> m_data;
};

namespace {

NoteSnapshot someNotes()
{
    return snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two\r\n羽毛"_s)},
                      u"\uFEFFcapture"_s, {{canonicalText(numberedId(2)), u""_s}});
}

} // namespace

void NoteRepositoryContractTest::isEmptyAtFirst()
{
    QCOMPARE(repository()->load(), NoteSnapshot());
}

void NoteRepositoryContractTest::givesBackWhatWasSaved()
{
    const auto notes = repository();
    QCOMPARE(notes->load(), NoteSnapshot());

    notes->save(someNotes());

    QCOMPARE(notes->load(), someNotes());
}

void NoteRepositoryContractTest::canSaveBeforeItLoads()
{
    const auto notes = repository();

    notes->save(someNotes());

    QCOMPARE(notes->load(), someNotes());
}

void NoteRepositoryContractTest::replacesTheWholeState()
{
    const auto notes = repository();
    notes->save(someNotes());
    const NoteSnapshot fewer = snapshotOf({numberedNote(3, u"three"_s)});

    notes->save(fewer);

    QCOMPARE(notes->load(), fewer);
}

void NoteRepositoryContractTest::doesNotChangeByLoading()
{
    const auto notes = repository();
    notes->save(someNotes());

    QCOMPARE(notes->load(), notes->load());
}

QTEST_GUILESS_MAIN(NoteRepositoryContractTest)
#include "NoteRepositoryContractTest.moc"
