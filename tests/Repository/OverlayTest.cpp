// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>
#include <sched.h>
#include <sys/mount.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// In a lower layer there are the notes as they were saved once; what changes lies in an upper one.
/// As in an image from which a system is started.
class Overlay {
public:
    explicit Overlay(const NoteSnapshot &notes)
        : m_below(m_lower.path().parent_path())
        , m_live(m_mounted.path().parent_path())
    {
        LocalNoteRepository repository(m_lower.fileURL());
        repository.save(notes);
        m_lower.write("Markdown/Notes/photo.jpg", "theirs");
        const fs::path upper = m_upper.path() / "upper";
        const fs::path work = m_upper.path() / "work";
        fs::create_directories(upper);
        fs::create_directories(work);
        const std::string options = "lowerdir=" + m_below.native() + ",upperdir=" + upper.native() +
                                    ",workdir=" + work.native();
        m_isMounted = ::mount("overlay", m_live.c_str(), "overlay", 0, options.c_str()) == 0;
    }
    Overlay(const Overlay &) = delete;
    Overlay &operator=(const Overlay &) = delete;
    ~Overlay()
    {
        if (m_isMounted)
            ::umount2(m_live.c_str(), MNT_DETACH);
    }

    [[nodiscard]] bool isMounted() const { return m_isMounted; }
    [[nodiscard]] const DataFolder &data() const { return m_mounted; }

private:
    // An overlay over an overlay needs a file system with extended attributes below it.
    DataFolder m_lower;
    DataFolder m_upper;
    DataFolder m_mounted;
    const fs::path m_below;
    const fs::path m_live;
    bool m_isMounted = false;
};

const Note note = numberedNote(1, u"old"_s);

NoteSnapshot oldNotes()
{
    return snapshotOf({note}, u"old"_s);
}

NoteSnapshot captured()
{
    return snapshotOf({note, numberedNote(2, u"new"_s)});
}

} // namespace

/// A folder that lies in the lower layer of an overlay file system, which cannot rename it.
class OverlayTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void refusesToReplaceALowerFolder();
    void savesADraftInALowerFolder();
    void savesOnceTheFolderIsACopy();
};

void OverlayTest::initTestCase()
{
    // Mounts are nobody else's business.
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        QSKIP("Only root may mount.");
    if (!Overlay(oldNotes()).isMounted())
        QSKIP("There are no overlay file systems here.");
}

void OverlayTest::refusesToReplaceALowerFolder()
{
    const Overlay overlay(oldNotes());
    const DataFolder &data = overlay.data();
    LocalNoteRepository repository(data.fileURL());
    QCOMPARE(repository.load(), oldNotes());
    const auto before = data.content();

    const auto error = thrown<FileError>([&] { repository.save(captured()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::lowerLayer);
    QCOMPARE(error->path(), data.path("Markdown"));
    QCOMPARE(data.content(), before);
}

void OverlayTest::savesADraftInALowerFolder()
{
    const Overlay overlay(oldNotes());
    LocalNoteRepository repository(overlay.data().fileURL());
    static_cast<void>(repository.load());
    const NoteSnapshot next = snapshotOf({note}, u"new"_s);

    repository.save(next);
    tidyUp(repository);

    QCOMPARE(LocalNoteRepository(overlay.data().fileURL()).load(), next);
    QCOMPARE(overlay.data().count(".quillmark-"), 0);
}

void OverlayTest::savesOnceTheFolderIsACopy()
{
    // As the sentence says.
    const Overlay overlay(oldNotes());
    const DataFolder &data = overlay.data();
    fs::copy(data.path("Markdown"), data.path("copy"), fs::copy_options::recursive);
    fs::remove_all(data.path("Markdown"));
    fs::rename(data.path("copy"), data.path("Markdown"));
    LocalNoteRepository repository(data.fileURL());
    static_cast<void>(repository.load());

    repository.save(captured());
    tidyUp(repository);

    QCOMPARE(LocalNoteRepository(data.fileURL()).load(), captured());
    QCOMPARE(data.read("Markdown/Notes/photo.jpg"), "theirs");
    QCOMPARE(data.count(".quillmark-"), 0);
}

QTEST_GUILESS_MAIN(OverlayTest)
#include "OverlayTest.moc"
