// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "MemoryDisk.h"
#include "Notes.h"
#include "OtherProgram.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

using Kind = DiskCall::Kind;

constexpr auto dataFolder = "/data/Penwick";
constexpr auto noteOfTwo = "/data/Penwick/Markdown/Notes/8C5B6F0E-3C1D-4E0A-9C55-000000000002.md";

/// Does what a test says before a call, or makes it fail.
class Script final : public DiskWatcher {
public:
    /// 0 where the call is to happen.
    using Decision = std::function<int(MemoryDisk &, const DiskCall &)>;

    explicit Script(MemoryDisk &disk)
        : m_disk(disk)
    {
        disk.setWatcher(this);
    }
    Script(const Script &) = delete;
    Script &operator=(const Script &) = delete;
    ~Script() { m_disk.setWatcher(nullptr); }

    void decide(Decision decision) { m_decision = std::move(decision); }

    Fate before(MemoryDisk &disk, const DiskCall &call) noexcept override
    {
        const int error = m_decision ? m_decision(disk, call) : 0;
        return {error == 0 ? Fate::Kind::happens : Fate::Kind::fails, error};
    }
    void after(MemoryDisk & /*disk*/, const DiskCall & /*call*/) noexcept override {}

private:
    MemoryDisk &m_disk;
    Decision m_decision;
};

NoteSnapshot twoNotes(const QString &capture = {})
{
    return snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s)}, capture);
}

NoteSnapshot withDraftOfTwo()
{
    NoteSnapshot snapshot = twoNotes();
    snapshot.editingDrafts[canonicalText(numberedId(2))] = u"two and more"_s;
    return snapshot;
}

/// A note more, and the draft that it came from gone: the whole folder is exchanged.
NoteSnapshot captured()
{
    NoteSnapshot snapshot = twoNotes();
    snapshot.notes.append(numberedNote(3, u"draft"_s));
    return snapshot;
}

std::vector<std::string> hidden(const MemoryDisk &disk, std::string_view prefix)
{
    std::vector<std::string> names;
    for (const std::string &name : disk.namesAt(dataFolder)) {
        if (name.starts_with(prefix))
            names.push_back(name);
    }
    return names;
}

} // namespace

/// What random lives of a data folder once found, and what no other test would.
class FailingDiskTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void publishesNoDraftWhoseNoteIsGone();
    void findsTheOldStateOnADiskThatRefusesEverythingFromTheSyncOn();
    void takesNoFailureForAnotherProgramsWork_data();
    void takesNoFailureForAnotherProgramsWork();
    void removesOldFoldersInTheirOrder();

private:
    [[nodiscard]] LocalNoteRepository repository()
    {
        return LocalNoteRepository(std::filesystem::path(dataFolder) / "notes.json", *m_disk);
    }

    std::optional<MemoryDisk> m_disk;
};

void FailingDiskTest::init()
{
    m_disk.emplace();
    OtherProgram(*m_disk).makeFolder("/data");
    repository().save(twoNotes(u"draft"_s));
}

void FailingDiskTest::publishesNoDraftWhoseNoteIsGone()
{
    LocalNoteRepository notes = repository();
    static_cast<void>(notes.load());
    NoteSnapshot next = withDraftOfTwo();
    next.captureDraft = u"draft"_s;
    Script script(*m_disk);
    // The note is looked at first, and goes while the draft is made.
    script.decide([](MemoryDisk &disk, const DiskCall &call) {
        if (call.kind == Kind::makeFile)
            OtherProgram(disk).removeAll(noteOfTwo);
        return 0;
    });

    QCOMPARE(refusal([&] { notes.save(next); }), RepositoryError::externalChange());

    script.decide(nullptr);
    const NoteSnapshot rest = repository().load();
    QCOMPARE(rest, snapshotOf({numberedNote(1, u"one"_s)}, u"draft"_s));
    QVERIFY(hidden(*m_disk, ".quillmark-").empty());
}

void FailingDiskTest::findsTheOldStateOnADiskThatRefusesEverythingFromTheSyncOn()
{
    LocalNoteRepository notes = repository();
    static_cast<void>(notes.load());
    Script script(*m_disk);
    bool isSwapped = false;
    bool isBroken = false;
    script.decide([&](MemoryDisk &, const DiskCall &call) {
        isSwapped |= call.kind == Kind::rename && std::string_view(call.name) == "Markdown";
        isBroken |= isSwapped && call.kind == Kind::sync;
        return isBroken ? EIO : 0;
    });

    QCOMPARE(refusal([&] { notes.save(captured()); }), RepositoryError::recoveryRequired());

    QVERIFY(isBroken);
    script.decide(nullptr);
    const std::vector<std::string> copies = hidden(*m_disk, ".quillmark-recovery-");
    QCOMPARE(copies.size(), std::size_t(1));
    const std::string *draft =
        m_disk->contentAt((dataFolder + ("/" + copies[0]) + "/Drafts/capture.md").c_str());
    QVERIFY(draft && *draft == "draft");
}

void FailingDiskTest::takesNoFailureForAnotherProgramsWork_data()
{
    QTest::addColumn<int>("kind");

    QTest::newRow("status") << int(Kind::statusOfEntry);
    QTest::newRow("openFolder") << int(Kind::openFolder);
    QTest::newRow("list") << int(Kind::list);
    QTest::newRow("unlink") << int(Kind::unlink);
}

void FailingDiskTest::takesNoFailureForAnotherProgramsWork()
{
    QFETCH(int, kind);
    LocalNoteRepository notes = repository();
    static_cast<void>(notes.load());
    notes.save(captured());
    Script script(*m_disk);
    script.decide(
        [&](MemoryDisk &, const DiskCall &call) { return int(call.kind) == kind ? EIO : 0; });

    tidyUp(notes);

    script.decide(nullptr);
    QVERIFY(hidden(*m_disk, ".quillmark-recovery-").empty());
    QCOMPARE(repository().load(), captured());
}

void FailingDiskTest::removesOldFoldersInTheirOrder()
{
    // Where the numbers of a listing pass, a folder is told by the one that replaced it.
    MemoryDisk::Abilities abilities = m_disk->abilities();
    abilities.hasReliableTimes = false;
    m_disk->setAbilities(abilities);
    LocalNoteRepository notes = repository();
    NoteSnapshot snapshot = notes.load();
    for (int number = 3; number < 6; ++number) {
        snapshot.notes.prepend(numberedNote(number, u"more"_s));
        snapshot.captureDraft = QString::number(number);
        notes.save(snapshot);
    }
    QCOMPARE(hidden(*m_disk, ".quillmark-stage-").size(), std::size_t(3));

    tidyUp(notes);

    QVERIFY(hidden(*m_disk, ".quillmark-").empty());
    NoteSnapshot found = repository().load();
    std::ranges::sort(snapshot.notes, {}, &Note::id);
    QCOMPARE(found, snapshot);
}

QTEST_GUILESS_MAIN(FailingDiskTest)
#include "FailingDiskTest.moc"
