// SPDX-License-Identifier: MIT
#include "LocalNoteRepository.h"

#include "DataFolder.h"
#include "Notes.h"
#include "Thrown.h"
#include "Tidy.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
namespace fs = std::filesystem;

namespace {

const Note first = numberedNote(1, u"first"_s);
const Note second = numberedNote(2, u"second"_s);

/// The place beside an error, below the data folder.
template <typename ErrorPointer>
std::string placeOf(const DataFolder &data, const ErrorPointer &error)
{
    return error && error->place() ? error->place()->lexically_relative(data.path()).native()
                                   : "nowhere";
}

} // namespace

/// What is refused is named: a person must find the file.
class RefusedPlaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void namesTheFileWithInvalidMetadata_data();
    void namesTheFileWithInvalidMetadata();
    void namesTheOlderNotes_data();
    void namesTheOlderNotes();
    void namesTheRecoveryCopy();
    void namesTheRecoveryCopyThatASaveLeaves();
    void namesNoPlaceForTheFolderAsAWhole();
    void tellsTheLockOfAnEditor();
};

void RefusedPlaceTest::namesTheFileWithInvalidMetadata_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("bytes");

    const auto row = [](const char *name, const std::string &path, const QByteArray &bytes) {
        QTest::newRow(name) << QByteArray::fromStdString(path) << bytes;
    };
    row("another format", "Markdown/.format", "Quillmark Markdown 2\n");
    row("no header", noteFile(numberedId(3)), "text");
    row("no colon", noteFile(numberedId(3)), "---\nquillmark\n---\n");
    row("a key twice", noteFile(numberedId(3)), "---\nid: 1\nid: 1\n---\n");
    row("another version", noteFile(second.id),
        noteBytes(second).replace("quillmark: 1", "quillmark: 2"));
    row("another identifier", noteFile(numberedId(3)), noteBytes(second));
    row("a name that is no identifier", "Markdown/Notes/plan.md", noteBytes(second));
    row("a name that is too long", "Markdown/Notes/" + std::string(60, 'x') + ".md",
        noteBytes(second));
    row("an identifier twice",
        "Markdown/Notes/" + canonicalText(second.id).toLower().toStdString() + ".MD",
        noteBytes(second));
    row("a draft without a note", draftFile(numberedId(3)), "text");
    row("a draft of nothing", "Markdown/Drafts/plan.md", "text");
}

void RefusedPlaceTest::namesTheFileWithInvalidMetadata()
{
    QFETCH(const QByteArray, path);
    QFETCH(const QByteArray, bytes);
    const DataFolder data;
    LocalNoteRepository(data.fileURL()).save(snapshotOf({first, second}));
    data.write(path.toStdString(), bytes);

    const auto error =
        refusal([&] { static_cast<void>(LocalNoteRepository(data.fileURL()).load()); });

    QCOMPARE(error, RepositoryError::invalidMarkdown());
    QCOMPARE(error->description(), RepositoryError::invalidMarkdown().description());
    QCOMPARE(placeOf(data, error), path.toStdString());
}

void RefusedPlaceTest::namesTheOlderNotes_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("not UTF-8") << QByteArray("\xFF");
    QTest::newRow("not JSON") << QByteArray("{");
    QTest::newRow("without a key") << QByteArray("{}");
    QTest::newRow("another shape") << QByteArray(R"({"version": 2})");
    QTest::newRow("another version")
        << QByteArray(R"({"version": 2, "captureDraft": "", "editingDrafts": {}, "notes": []})");
}

void RefusedPlaceTest::namesTheOlderNotes()
{
    QFETCH(const QByteArray, bytes);
    const DataFolder data;
    data.write("notes.json", bytes);
    LocalNoteRepository repository(data.fileURL());

    std::string place;
    try {
        static_cast<void>(repository.load());
    } catch (const StorageError &error) {
        place = placeOf(data, &error);
    }

    QCOMPARE(place, "notes.json");
}

void RefusedPlaceTest::namesTheRecoveryCopy()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({first}));
    for (const char *name : {".quillmark-recovery-B", ".quillmark-recovery-A", ".quillmark-other"})
        fs::create_directory(data.path(name));

    const auto ofLoad = refusal([&] { static_cast<void>(repository.load()); });
    const auto ofSave = refusal([&] { repository.save(snapshotOf({second})); });

    QCOMPARE(ofLoad, RepositoryError::recoveryRequired());
    QCOMPARE(placeOf(data, ofLoad), ".quillmark-recovery-A");
    QCOMPARE(placeOf(data, ofSave), ".quillmark-recovery-A");
}

void RefusedPlaceTest::namesTheRecoveryCopyThatASaveLeaves()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({first}, u"old"_s));
    repository.save(snapshotOf({second}, u"new"_s));
    for (const auto &entry : fs::directory_iterator(data.path())) {
        const std::string name = entry.path().filename();
        if (name.starts_with(".quillmark-stage-"))
            data.write(name + "/Notes/late.md", "theirs");
    }

    const auto error = refusal([&] { tidyUp(repository); });

    QCOMPARE(error, RepositoryError::recoveryRequired());
    QVERIFY(placeOf(data, error).starts_with(".quillmark-recovery-"));
    QVERIFY(data.holds(placeOf(data, error) + "/Notes/late.md"));
}

void RefusedPlaceTest::namesNoPlaceForTheFolderAsAWhole()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({first}));
    data.write(noteFile(second.id), noteBytes(second));

    const auto error = refusal([&] { repository.save(snapshotOf({first}, u"new"_s)); });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(placeOf(data, error), "nowhere");
}

void RefusedPlaceTest::tellsTheLockOfAnEditor()
{
    const DataFolder data;
    LocalNoteRepository repository(data.fileURL());
    repository.save(snapshotOf({first}));
    const std::string lock = "Markdown/Notes/.#" + canonicalText(first.id).toStdString() + ".md";
    fs::create_symlink("me@here.4711:1700000000", data.path(lock));

    const auto ofSave = thrown<FileError>([&] { repository.save(snapshotOf({second})); });
    const auto ofLoad = thrown<FileError>([&] { static_cast<void>(repository.load()); });

    for (const auto &error : {ofSave, ofLoad}) {
        QVERIFY(error.has_value());
        QCOMPARE(error->reason(), Reason::editorLock);
        QCOMPARE(placeOf(data, error), lock);
        QVERIFY(error->description().contains(u"is the lock of an editor"_s));
    }
    fs::remove(data.path(lock));
    repository.save(snapshotOf({second}));
}

QTEST_GUILESS_MAIN(RefusedPlaceTest)
#include "RefusedPlaceTest.moc"
