// SPDX-License-Identifier: MIT
#include "FileNames.h"

#include "NoteId.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace {

const QByteArray idText = "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F";

QUuid noteId()
{
    return *parseId(idText.toStdString());
}

} // namespace

class FileNamesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void areThoseOfTheFormat();
    void nameANoteAfterItsIdentifier();
    void tellWhoseTextAFileHolds_data();
    void tellWhoseTextAFileHolds();
    void knowMarkdownByItsExtension_data();
    void knowMarkdownByItsExtension();
    void areNewEachTime();
    void fitWhenTheyAreNoLongerThanThatOfANote();
    void areOrderedByteForByte();
};

void FileNamesTest::areThoseOfTheFormat()
{
    // docs/FORMAT.md promises them to other programs: written again here, so that no change of the
    // one place goes unseen.
    QCOMPARE(FileNames::dataFolder, "Penwick");
    QCOMPARE(FileNames::olderNotes, "notes.json");
    QCOMPARE(FileNames::markdownFolder, "Markdown");
    QCOMPARE(FileNames::marker, ".format");
    QCOMPARE(FileNames::markerContent, "Quillmark Markdown 1\n");
    QCOMPARE(FileNames::ofSection(Section::marker), "");
    QCOMPARE(FileNames::ofSection(Section::notes), "Notes");
    QCOMPARE(FileNames::ofSection(Section::drafts), "Drafts");
    QCOMPARE(FileNames::capture, "capture.md");
    QCOMPARE(FileNames::stagePrefix, ".quillmark-stage-");
    QCOMPARE(FileNames::recoveryPrefix, ".quillmark-recovery-");
    QCOMPARE(FileNames::olderTypedPrefix, ".quillmark-typed-");
    QCOMPARE(FileNames::journalPrefix, "typed-");
}

void FileNamesTest::nameANoteAfterItsIdentifier()
{
    QCOMPARE(NoteFileName::ofNote(noteId()).c_str(), "8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F.md");
}

void FileNamesTest::tellWhoseTextAFileHolds_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isCapture");
    QTest::addColumn<bool>("isNote");

    QTest::newRow("the capture screen's") << QByteArray("capture.md") << true << false;
    QTest::newRow("its extension in capitals") << QByteArray("capture.MD") << true << false;
    QTest::newRow("itself in capitals") << QByteArray("Capture.md") << false << false;
    QTest::newRow("a note's") << idText + ".md" << false << true;
    QTest::newRow("in lower case") << idText.toLower() + ".mD" << false << true;
    QTest::newRow("no extension") << idText << false << false;
    QTest::newRow("another extension") << idText + ".txt" << false << false;
    QTest::newRow("two extensions") << idText + ".md.md" << false << false;
    QTest::newRow("a copy") << idText + " 2.md" << false << false;
    QTest::newRow("hidden") << "." + idText + ".md" << false << false;
    QTest::newRow("the capture screen's without extension")
        << QByteArray("capture") << false << false;
    QTest::newRow("no name") << QByteArray() << false << false;
    QTest::newRow("not UTF-8") << QByteArray("\xff.md") << false << false;
}

void FileNamesTest::tellWhoseTextAFileHolds()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, isCapture);
    QFETCH(const bool, isNote);

    const FileNames::Owner owner = FileNames::parse(name.toStdString());

    QCOMPARE(owner.isCapture, isCapture);
    QCOMPARE(owner.note, isNote ? std::optional(noteId()) : std::nullopt);
}

void FileNamesTest::knowMarkdownByItsExtension_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("isMarkdown");

    QTest::newRow("md") << QByteArray("idea.md") << true;
    QTest::newRow("MD") << QByteArray("idea.MD") << true;
    QTest::newRow("hidden") << QByteArray(".idea.md") << true;
    QTest::newRow("one letter before it") << QByteArray("a.md") << true;
    QTest::newRow("nothing before it") << QByteArray(".md") << false;
    QTest::newRow("no point") << QByteArray("ideamd") << false;
    QTest::newRow("more behind it") << QByteArray("idea.md~") << false;
    QTest::newRow("empty") << QByteArray() << false;
}

void FileNamesTest::knowMarkdownByItsExtension()
{
    QFETCH(const QByteArray, name);
    QFETCH(const bool, isMarkdown);

    QCOMPARE(FileNames::isMarkdown(name.toStdString()), isMarkdown);
}

void FileNamesTest::areNewEachTime()
{
    const std::string name = FileNames::fresh(FileNames::stagePrefix);

    QVERIFY(name.starts_with(FileNames::stagePrefix));
    QVERIFY(parseId(std::string_view(name).substr(FileNames::stagePrefix.size())));
    QVERIFY(name != FileNames::fresh(FileNames::stagePrefix));
}

void FileNamesTest::fitWhenTheyAreNoLongerThanThatOfANote()
{
    QVERIFY(NoteFileName::fits(idText.toStdString() + ".md"));
    QVERIFY(!NoteFileName::fits(idText.toStdString() + "2.md"));
}

void FileNamesTest::areOrderedByteForByte()
{
    QVERIFY(NoteFileName("8C.md") < NoteFileName("8D.md"));
    QVERIFY(NoteFileName("8C.MD") < NoteFileName("8C.md"));
    QVERIFY(NoteFileName("8C") < NoteFileName("8C.md"));
    QVERIFY(NoteFileName("8C.md") == NoteFileName("8C.md"));
    QVERIFY((NoteFilePlace{Section::notes, NoteFileName("b")} <
             NoteFilePlace{Section::drafts, NoteFileName("a")}));
}

QTEST_GUILESS_MAIN(FileNamesTest)
#include "FileNamesTest.moc"
