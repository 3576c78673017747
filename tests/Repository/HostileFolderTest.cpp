// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"
#include "NoteMarkdownCodec.h"
#include "RepositoryError.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QScopeGuard>
#include <QTest>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

/// What stands where a Markdown file is expected.
enum class Thing { pipe, folder, socket, link, lostLink, hugeFile, notUtf8, cutOffUtf8, surrogate };

void put(const DataFolder &data, std::string_view name, Thing thing)
{
    const fs::path path = data.path(name);
    fs::remove(path);
    switch (thing) {
    case Thing::pipe:
        QCOMPARE(::mkfifo(path.c_str(), 0600), 0);
        return;
    case Thing::folder:
        fs::create_directory(path);
        return;
    case Thing::socket: {
        // Bound by a short relative path, since an address holds about a hundred bytes.
        const fs::path before = fs::current_path();
        fs::current_path(path.parent_path());
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.filename().native().copy(address.sun_path, sizeof(address.sun_path) - 1);
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        const int bound = ::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address));
        ::close(fd);
        fs::current_path(before);
        QCOMPARE(bound, 0);
        return;
    }
    case Thing::link:
        data.write("outside", "secret");
        fs::create_symlink(data.path("outside"), path);
        return;
    case Thing::lostLink:
        fs::create_symlink("/nowhere", path);
        return;
    case Thing::hugeFile:
        data.write(name, "x");
        fs::resize_file(path, 2UL * 1024 * 1024 * 1024);
        return;
    case Thing::notUtf8:
        data.write(name, "caf\xe9");
        return;
    case Thing::cutOffUtf8:
        data.write(name, "caf\xc3");
        return;
    case Thing::surrogate:
        data.write(name, "\xed\xa0\x80");
        return;
    }
}

/// The kinds and names of all that is there, without reading gigabytes.
QByteArray listing(const DataFolder &data)
{
    QByteArrayList lines;
    for (const auto &entry : fs::recursive_directory_iterator(data.path())) {
        struct stat found {};
        ::lstat(entry.path().c_str(), &found);
        lines.append(QByteArray::fromStdString(entry.path().native()) + ' ' +
                     QByteArray::number(qulonglong(found.st_ino)) + ' ' +
                     QByteArray::number(qulonglong(found.st_size)));
    }
    std::ranges::sort(lines);
    return lines.join('\n');
}

/// Folders in folders, also more than a path may name.
void makeDeepFolder(const fs::path &folder, int depth)
{
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    for (int i = 0; i < depth; ++i) {
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
}

} // namespace

/// A folder as nobody would wish it: each load and save ends at once, with an error that names the
/// entry, and changes nothing.
class HostileFolderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesWhatIsNoFile_data();
    void namesWhatIsNoFile();
    void namesItAlsoWhenItAppearsBeforeASave_data() { namesWhatIsNoFile_data(); }
    void namesItAlsoWhenItAppearsBeforeASave();
    void refusesNamesLongerThanAnIdentifier();
    void refusesNamesThatDifferInCaseOnly_data();
    void refusesNamesThatDifferInCaseOnly();
    void doesNotFollowALinkedFolder_data();
    void doesNotFollowALinkedFolder();
    void acceptsALinkToTheDataFolder();
    void doesNotFollowALinkToTheOlderFile();
    void carriesDeepFoldersOver();
    void refusesFoldersTooDeepToFollow();
    void refusesFoldersTooDeepToHoldOpen();
    void keepsManyOtherFiles();
};

void HostileFolderTest::namesWhatIsNoFile_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("thing");
    QTest::addColumn<int>("reason");

    const QByteArray note = QByteArray::fromStdString(noteFile(numberedId(7)));
    for (const QByteArray &name :
         {note, QByteArray("Markdown/Drafts/x.md"), QByteArray("Markdown/.format")}) {
        const auto row = [&](const char *title, Thing thing, Reason reason) {
            QTest::addRow("%s: %s", name.split('/').at(1).constData(), title)
                << name << int(thing) << int(reason);
        };
        row("pipe", Thing::pipe, Reason::notRegularFile);
        row("folder", Thing::folder, Reason::notRegularFile);
        row("socket", Thing::socket, Reason::notRegularFile);
        row("link", Thing::link, Reason::notRegularFile);
        row("link to nowhere", Thing::lostLink, Reason::notRegularFile);
        row("2 GB", Thing::hugeFile, Reason::tooLarge);
        row("not UTF-8", Thing::notUtf8, Reason::notUtf8);
        row("cut off UTF-8", Thing::cutOffUtf8, Reason::notUtf8);
        row("a surrogate in UTF-8", Thing::surrogate, Reason::notUtf8);
    }
}

void HostileFolderTest::namesWhatIsNoFile()
{
    QFETCH(QByteArray, name);
    QFETCH(int, thing);
    QFETCH(int, reason);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(snapshotOf({numberedNote(1, u"a"_s)}));
    put(data, name.toStdString(), Thing(thing));
    const QByteArray before = listing(data);

    const auto error =
        thrown<FileError>([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.path(name.toStdString()));
    QCOMPARE(error->reason(), Reason(reason));
    QCOMPARE(listing(data), before);
}

void HostileFolderTest::namesItAlsoWhenItAppearsBeforeASave()
{
    QFETCH(QByteArray, name);
    QFETCH(int, thing);
    QFETCH(int, reason);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({numberedNote(1, u"a"_s)}));
    put(data, name.toStdString(), Thing(thing));
    const QByteArray before = listing(data);

    // What is a readable file is another program's change, whatever its text.
    std::optional<FileError> error;
    const auto refused = refusal([&] {
        error = thrown<FileError>([&] { repository.save(snapshotOf({numberedNote(1, u"b"_s)})); });
    });

    const bool isFile = thing == int(Thing::hugeFile) && !name.endsWith(".format");
    if (Reason(reason) == Reason::notUtf8 || isFile) {
        QCOMPARE(refused, RepositoryError::externalChange());
    } else {
        QVERIFY(error.has_value());
        QCOMPARE(error->path(), data.path(name.toStdString()));
        QCOMPARE(error->reason(), Reason(reason));
    }
    QCOMPARE(listing(data), before);
}

void HostileFolderTest::refusesNamesLongerThanAnIdentifier()
{
    for (const char *folder : {"Markdown/Notes/", "Markdown/Drafts/"}) {
        const DataFolder data;
        const Note note = numberedNote(1, u"a"_s);
        LocalNoteRepository(data.fileURL()).save(snapshotOf({note}));
        const std::string name = folder + std::string(252, 'x') + ".md";
        data.write(name, NoteMarkdownCodec::encode(note).toUtf8());
        const QByteArray before = listing(data);

        const auto error = thrown<RepositoryError>(
            [&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

        QVERIFY(error.has_value());
        QCOMPARE(error->reason(), Reason::invalidMarkdown);
        QCOMPARE(listing(data), before);
    }
}

void HostileFolderTest::refusesNamesThatDifferInCaseOnly_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isDraft");

    const std::string id = canonicalText(numberedId(1)).toStdString();
    const std::string lower = canonicalText(numberedId(1)).toLower().toStdString();
    const auto row = [](const std::string &name, bool isDraft) {
        QTest::addRow("%s", name.c_str()) << QByteArray::fromStdString(name) << isDraft;
    };
    row("Markdown/Notes/" + id + ".MD", false);
    row("Markdown/Notes/" + id + ".mD", false);
    row("Markdown/Notes/" + lower + ".md", false);
    row("Markdown/Drafts/" + id + ".Md", true);
    row("Markdown/Drafts/" + lower + ".md", true);
    row("Markdown/Drafts/capture.MD", true);
}

void HostileFolderTest::refusesNamesThatDifferInCaseOnly()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, isDraft);
    const DataFolder data;
    const Note note = numberedNote(1, u"a"_s);
    LocalNoteRepository(data.fileURL())
        .save(snapshotOf({note}, u"typed"_s, {{canonicalText(note.id), u"edited"_s}}));
    data.write(name.toStdString(), isDraft ? "another text" : noteBytes(note));
    const QByteArray before = listing(data);

    // One of the two texts would be lost with the next save.
    std::optional<FileError> error;
    const auto refused = refusal([&] {
        error = thrown<FileError>(
            [&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });
    });

    if (isDraft) {
        QVERIFY(error.has_value());
        QCOMPARE(error->reason(), Reason::secondDraft);
    } else {
        QCOMPARE(refused, RepositoryError::invalidMarkdown());
    }
    QCOMPARE(listing(data), before);
}

void HostileFolderTest::doesNotFollowALinkedFolder_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("Markdown") << QByteArray("Markdown");
    QTest::newRow("Notes") << QByteArray("Markdown/Notes");
    QTest::newRow("Drafts") << QByteArray("Markdown/Drafts");
}

void HostileFolderTest::doesNotFollowALinkedFolder()
{
    QFETCH(QByteArray, name);
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({numberedNote(1, u"a"_s)}));
    fs::rename(data.path(name.toStdString()), data.path("elsewhere"));
    fs::create_directory_symlink(data.path("elsewhere"), data.path(name.toStdString()));
    const QByteArray before = listing(data);

    const auto onSave =
        thrown<FileError>([&] { repository.save(snapshotOf({numberedNote(1, u"b"_s)})); });
    const auto onLoad =
        thrown<FileError>([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QVERIFY(onSave && onLoad);
    QCOMPARE(onSave->reason(), Reason::notFolder);
    QCOMPARE(onSave->path(), data.path(name.toStdString()));
    QCOMPARE(onLoad->reason(), Reason::notFolder);
    QCOMPARE(onLoad->path(), data.path(name.toStdString()));
    QCOMPARE(listing(data), before);
}

void HostileFolderTest::acceptsALinkToTheDataFolder()
{
    const DataFolder data;
    fs::create_directories(data.path("real"));
    fs::create_directory_symlink("real", data.path("linked"));
    LocalNoteRepository repository(data.path("linked/notes.json"));

    repository.save(snapshotOf({}, u"first"_s));
    repository.save(snapshotOf({}, u"second"_s));

    QCOMPARE(data.read("real/Markdown/Drafts/capture.md"), "second");
    QVERIFY(fs::is_symlink(data.path("linked")));
}

void HostileFolderTest::doesNotFollowALinkToTheOlderFile()
{
    const DataFolder data;
    data.write("elsewhere", "{}");
    fs::create_symlink(data.path("elsewhere"), data.fileURL());

    const auto error =
        thrown<FileError>([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.fileURL());
    QCOMPARE(error->reason(), Reason::notRegularFile);
}

void HostileFolderTest::carriesDeepFoldersOver()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save({});
    std::string deep = "Markdown";
    for (int i = 0; i < 100; ++i)
        deep += "/d";
    data.write(deep + "/file", "1");

    repository.save(snapshotOf({numberedNote(1, u"a"_s)}, u"new"_s));
    tidyUp(repository);

    QCOMPARE(data.read(deep + "/file"), "1");
}

void HostileFolderTest::refusesFoldersTooDeepToFollow()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save({});
    makeDeepFolder(data.path("Markdown"), 1000);

    const auto error = thrown<FileError>(
        [&] { repository.save(snapshotOf({numberedNote(1, u"a"_s)}, u"new"_s)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::tooDeep);
    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "");
}

void HostileFolderTest::refusesFoldersTooDeepToHoldOpen()
{
    // Every folder on the way is held open, and a process may not hold so many.
    rlimit limit{};
    QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit lower{64, limit.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_NOFILE, &lower), 0);
    const auto restore = qScopeGuard([&] { ::setrlimit(RLIMIT_NOFILE, &limit); });
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save({});
    makeDeepFolder(data.path("Markdown"), 100);

    const auto error = thrown<FileError>(
        [&] { repository.save(snapshotOf({numberedNote(1, u"a"_s)}, u"new"_s)); });

    QVERIFY(error.has_value());
    QCOMPARE(error->systemError(), EMFILE);
    QCOMPARE(data.count(".quillmark-"), 0);
    QCOMPARE(data.read("Markdown/Drafts/capture.md"), "");
}

void HostileFolderTest::keepsManyOtherFiles()
{
    constexpr int count = 1000;
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save({});
    for (int i = 0; i < count; ++i)
        data.write("Markdown/Notes/file" + std::to_string(i), "");

    repository.save(snapshotOf({numberedNote(1, u"a"_s)}, u"new"_s));
    tidyUp(repository);

    QCOMPARE(std::distance(fs::directory_iterator(data.path("Markdown/Notes")), {}), count + 1);
    QCOMPARE(data.count(".quillmark-"), 0);
}

QTEST_GUILESS_MAIN(HostileFolderTest)
#include "HostileFolderTest.moc"
