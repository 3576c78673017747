// SPDX-License-Identifier: MIT
// What programs hear that watch the folders, as those do that keep two computers equal. They watch
// each folder by itself, and many go on watching an old one after another took its place: of the
// folders that they surely still watch, the data folder is the innermost.
#include "LocalNoteRepository.h"
#include "NoteAddition.h"

#include "DataFolder.h"
#include "Notes.h"
#include "SystemDisk.h"
#include "Tidy.h"

#include <QTest>
#include <array>
#include <cstring>
#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

/// Hears what happens to the entries of one folder.
class FolderWatch {
public:
    explicit FolderWatch(const std::filesystem::path &folder)
        : m_handle(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        m_watch = ::inotify_add_watch(m_handle, folder.c_str(),
                                      IN_MOVED_FROM | IN_MOVED_TO | IN_CREATE | IN_ATTRIB);
    }
    FolderWatch(const FolderWatch &) = delete;
    FolderWatch &operator=(const FolderWatch &) = delete;
    ~FolderWatch() { ::close(m_handle); }

    [[nodiscard]] bool isWatching() const { return m_handle >= 0 && m_watch >= 0; }

    /// The kinds of what happened to the entry since it was last asked, in order.
    [[nodiscard]] QList<std::uint32_t> eventsOf(const char *name) const
    {
        QList<std::uint32_t> events;
        alignas(inotify_event) std::array<char, 65536> bytes;
        ssize_t size = 0;
        while ((size = ::read(m_handle, bytes.data(), bytes.size())) > 0) {
            for (const char *at = bytes.data(); at < bytes.data() + size;) {
                inotify_event event{};
                std::memcpy(&event, at, sizeof event);
                if (event.len > 0 && std::strcmp(at + sizeof event, name) == 0)
                    events.append(event.mask & IN_ALL_EVENTS);
                at += sizeof event + event.len;
            }
        }
        return events;
    }

private:
    int m_handle;
    int m_watch = -1;
};

constexpr auto markdown = "Markdown";

} // namespace

class WatchedFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aFolderThatIsExchangedIsHeardToComeLast();
    void aSingleNoteIsHeard();
    void aNoteThatIsAddedWithoutTheOthersIsHeard();
    void aPauseInTypingIsNot();

private:
    SystemDisk m_disk;
    std::unique_ptr<DataFolder> m_data;
    std::unique_ptr<LocalNoteRepository> m_repository;
    const NoteSnapshot m_old = snapshotOf({numberedNote(1, u"one"_s)}, u"draft"_s);
};

void WatchedFolderTest::init()
{
    m_repository.reset();
    m_data = std::make_unique<DataFolder>();
    m_repository = std::make_unique<LocalNoteRepository>(m_data->fileURL(), m_disk);
    m_repository->save(m_old);
    tidyUp(*m_repository);
}

void WatchedFolderTest::aFolderThatIsExchangedIsHeardToComeLast()
{
    const FolderWatch watch(m_data->path());
    QVERIFY(watch.isWatching());

    m_repository->save(snapshotOf({numberedNote(1, u"one"_s), numberedNote(2, u"two"_s)}));
    tidyUp(*m_repository);

    const QList<std::uint32_t> events = watch.eventsOf(markdown);
    QVERIFY(events.contains(IN_MOVED_FROM));
    QCOMPARE(events.last(), std::uint32_t(IN_MOVED_TO));
}

void WatchedFolderTest::aSingleNoteIsHeard()
{
    const FolderWatch watch(m_data->path());
    NoteSnapshot next = m_old;
    next.notes.append(numberedNote(2, u"two"_s));

    m_repository->save(next);

    QCOMPARE(watch.eventsOf(markdown), QList<std::uint32_t>{IN_ATTRIB});
}

void WatchedFolderTest::aNoteThatIsAddedWithoutTheOthersIsHeard()
{
    const FolderWatch watch(m_data->path());
    const Directory folder = Directory::openOrMake(m_disk, m_data->path());

    QVERIFY(addNote(folder, numberedNote(2, u"two"_s)));

    QCOMPARE(watch.eventsOf(markdown), QList<std::uint32_t>{IN_ATTRIB});
}

void WatchedFolderTest::aPauseInTypingIsNot()
{
    const FolderWatch watch(m_data->path());
    NoteSnapshot next = m_old;
    next.captureDraft = u"draft and more"_s;

    m_repository->save(next);

    QCOMPARE(watch.eventsOf(markdown), QList<std::uint32_t>{});
}

QTEST_GUILESS_MAIN(WatchedFolderTest)
#include "WatchedFolderTest.moc"
