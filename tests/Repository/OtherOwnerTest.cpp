// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "RefusedCall.h"
#include "Tidy.h"

#include <QTest>
#include <cerrno>
#include <grp.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

constexpr uid_t user = 12345;

const Note ours = numberedNote(1, u"ours"_s);
const Note theirs = numberedNote(2, u"theirs"_s);

NoteSnapshot withDraft(const QString &draft)
{
    return snapshotOf({ours, theirs}, draft);
}

/// Exchanges the whole folder, and leaves that note alone.
NoteSnapshot captured()
{
    return snapshotOf({ours, theirs, numberedNote(3, u"new"_s)}, u"new"_s);
}

enum Outcome { saved = 1, refusedByName, failedOtherwise };

/// Saves as a user who is not root, and may be refused some calls. The named entry is the one that
/// the error must name.
int saveAsUser(const DataFolder &data, const NoteSnapshot &snapshot, const std::string &named,
               const std::vector<RefusedCall> &calls = {})
{
    return withRefusedCalls(calls, [&]() -> int {
        if (::setgroups(0, nullptr) != 0 || ::setresgid(user, user, user) != 0 ||
            ::setresuid(user, user, user) != 0)
            return failedOtherwise;
        try {
            LocalNoteRepository repository(data.fileURL());
            static_cast<void>(repository.load());
            repository.save(snapshot);
            tidyUp(repository);
            return saved;
        } catch (const FileError &error) {
            return error.systemError() == EPERM && error.path() == data.path(named)
                       ? refusedByName
                       : failedOtherwise;
        } catch (const std::exception &) {
            return failedOtherwise;
        }
    });
}

} // namespace

/// Files in the folder that belong to somebody else: they stay theirs, or the save says which one
/// it was not to take over.
class OtherOwnerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_data.reset(); }

    void keepsAFileThatDoesNotChange();
    void refusesToTakeOverAFileThatItCannotLink();
    void refusesToTakeOverAFileThatItCannotLink_data();
    void refusesToTakeOverANoteThatChanges_data();
    void refusesToTakeOverANoteThatChanges();
    void refusesToTakeOverAFolder_data();
    void refusesToTakeOverAFolder();
    void savesTheDraftBesideThem();

private:
    void giveToUser(const fs::path &path) const;

    /// All of it is the user's but that one entry, which is root's, and may be read by all.
    void giveAllButOne(const std::string &path) const;

    std::optional<DataFolder> m_data;
};

void OtherOwnerTest::init()
{
    if (::geteuid() != 0)
        QSKIP("Only root may give files to somebody else.");
    m_data.emplace();
    LocalNoteRepository repository(m_data->fileURL());
    repository.save(withDraft(u"old"_s));
    m_data->write("Markdown/Notes/photo.jpg", "theirs");
    m_data->write("Markdown/shared/list.txt", "theirs");
}

void OtherOwnerTest::giveToUser(const fs::path &path) const
{
    QCOMPARE(::lchown(path.c_str(), user, user), 0);
}

void OtherOwnerTest::giveAllButOne(const std::string &path) const
{
    giveToUser(m_data->path().parent_path());
    giveToUser(m_data->path());
    for (const auto &entry : fs::recursive_directory_iterator(m_data->path()))
        giveToUser(entry.path());
    QCOMPARE(::lchown(m_data->path(path).c_str(), 0, 0), 0);
    const bool isFolder = fs::is_directory(m_data->path(path));
    fs::permissions(m_data->path(path), fs::perms(isFolder ? 0777 : 0644));
}

void OtherOwnerTest::keepsAFileThatDoesNotChange()
{
    giveAllButOne("Markdown/Notes/photo.jpg");
    // What may be written may be linked.
    fs::permissions(m_data->path("Markdown/Notes/photo.jpg"), fs::perms(0666));

    QCOMPARE(saveAsUser(*m_data, captured(), {}), int(saved));

    QCOMPARE(m_data->status("Markdown/Notes/photo.jpg").st_uid, 0U);
    QCOMPARE(LocalNoteRepository(m_data->fileURL()).load(), captured());
}

void OtherOwnerTest::refusesToTakeOverAFileThatItCannotLink_data()
{
    QTest::addColumn<QByteArray>("path");

    QTest::newRow("a note") << QByteArray::fromStdString(noteFile(theirs.id));
    QTest::newRow("a file") << QByteArray("Markdown/Notes/photo.jpg");
    QTest::newRow("a file further below") << QByteArray("Markdown/shared/list.txt");
}

void OtherOwnerTest::refusesToTakeOverAFileThatItCannotLink()
{
    QFETCH(const QByteArray, path);
    giveAllButOne(path.toStdString());
    const auto before = m_data->content();

    // As a kernel answers that protects hard links.
    QCOMPARE(saveAsUser(*m_data, captured(), path.toStdString(), {{SYS_linkat, EPERM}}),
             int(refusedByName));

    QCOMPARE(m_data->content(), before);
    QCOMPARE(m_data->status(path.toStdString()).st_uid, 0U);
}

void OtherOwnerTest::refusesToTakeOverANoteThatChanges_data()
{
    QTest::addColumn<NoteSnapshot>("next");

    NoteSnapshot one = withDraft(u"old"_s);
    one.notes[1].body = u"changed"_s;
    NoteSnapshot more = one;
    more.captureDraft = u"new"_s;
    QTest::newRow("alone") << one;
    QTest::newRow("with others") << more;
}

void OtherOwnerTest::refusesToTakeOverANoteThatChanges()
{
    QFETCH(const NoteSnapshot, next);
    giveAllButOne(noteFile(theirs.id));
    fs::permissions(m_data->path(noteFile(theirs.id)), fs::perms(0666));
    const auto before = m_data->content();

    QCOMPARE(saveAsUser(*m_data, next, noteFile(theirs.id)), int(refusedByName));

    QCOMPARE(m_data->content(), before);
    QCOMPARE(m_data->status(noteFile(theirs.id)).st_uid, 0U);
}

void OtherOwnerTest::refusesToTakeOverAFolder_data()
{
    QTest::addColumn<QByteArray>("path");

    QTest::newRow("of the notes") << QByteArray("Markdown/Notes");
    QTest::newRow("of another program") << QByteArray("Markdown/shared");
}

void OtherOwnerTest::refusesToTakeOverAFolder()
{
    QFETCH(const QByteArray, path);
    giveAllButOne(path.toStdString());
    const auto before = m_data->content();

    QCOMPARE(saveAsUser(*m_data, captured(), path.toStdString()), int(refusedByName));

    QCOMPARE(m_data->content(), before);
    QCOMPARE(m_data->status(path.toStdString()).st_uid, 0U);
}

void OtherOwnerTest::savesTheDraftBesideThem()
{
    giveAllButOne(noteFile(theirs.id));

    QCOMPARE(saveAsUser(*m_data, withDraft(u"new"_s), {}), int(saved));

    QCOMPARE(m_data->status(noteFile(theirs.id)).st_uid, 0U);
    QCOMPARE(LocalNoteRepository(m_data->fileURL()).load(), withDraft(u"new"_s));
}

QTEST_GUILESS_MAIN(OtherOwnerTest)
#include "OtherOwnerTest.moc"
