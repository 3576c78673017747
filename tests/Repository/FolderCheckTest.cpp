// SPDX-License-Identifier: MIT
#include "FolderCheck.h"

#include "DataFolder.h"
#include "LocalNoteRepository.h"
#include "NoteId.h"
#include "NoteMarkdownCodec.h"
#include "Notes.h"
#include "SystemDisk.h"

#include <QTest>
#include <map>

using namespace Qt::Literals::StringLiterals;
using Kind = FolderCheck::Finding::Kind;

namespace {

/// Of one note and the text of the capture screen.
NoteSnapshot notes()
{
    return snapshotOf({numberedNote(1, u"one"_s)}, u"draft"_s);
}

QByteArray bytesOf(int number, const QString &body)
{
    return NoteMarkdownCodec::encode(numberedNote(number, body)).toUtf8();
}

std::string canonical(int number)
{
    return canonicalText(numberedId(number)).toStdString();
}

} // namespace

class FolderCheckTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void findsNothingAmongTheNotesAlone();
    void tellsWhatLiesAmongTheNotes();
    void namesWhatIsRefused();
    void tellsAnotherFormat();
    void comparesAWholeCopy();
    void comparesACopyOfTheDrafts();
    void comparesACopyOfOneFile();
    void tellsOfWhatCannotBeRead();
    void saysWhatAPersonHasToDoSomethingAbout();

private:
    using Findings = std::vector<FolderCheck::Finding>;

    [[nodiscard]] FolderCheck check() const { return FolderCheck(*m_directory); }
    [[nodiscard]] Findings hidden() const { return check().hidden(check().hiddenNames()); }

    /// Paths below the data folder, each with what is said of it.
    [[nodiscard]] QStringList described(const Findings &findings) const;

    std::optional<DataFolder> m_data;
    SystemDisk m_disk;
    std::optional<Directory> m_directory;
};

void FolderCheckTest::init()
{
    m_directory.reset();
    m_data.emplace();
    LocalNoteRepository(m_data->fileURL()).save(notes());
    m_directory.emplace(Directory::openOrMake(m_disk, m_data->path()));
}

QStringList FolderCheckTest::described(const Findings &findings) const
{
    QStringList lines;
    for (const FolderCheck::Finding &finding : findings) {
        const std::string path = finding.path.lexically_relative(m_data->path()).native();
        lines << QString::fromStdString(path) + u": "_s + finding.message.english();
    }
    return lines;
}

void FolderCheckTest::findsNothingAmongTheNotesAlone()
{
    QCOMPARE(described(check().neighbours()), QStringList());
    QCOMPARE(described(check().refused()), QStringList());
    QVERIFY(check().hiddenNames().empty());
}

void FolderCheckTest::tellsWhatLiesAmongTheNotes()
{
    const std::string note = canonical(1);
    const std::string conflict = note + ".sync-conflict-20250301-081530-ABCDEFG.md";
    const std::string swap = '.' + note + ".md.swp";
    m_data->write("Markdown/list.txt", "");
    m_data->write("Markdown/Notes/" + note + ".md~", "");
    m_data->write("Markdown/Notes/.~lock.list.odt#", "");
    m_data->write("Markdown/Notes/" + conflict, "");
    m_data->write("Markdown/Notes/.stfolder/x", "");
    m_data->write("Markdown/Notes/todo.md", "refused, and told as such");
    m_data->write("Markdown/Drafts/" + swap, "");

    const Findings findings = check().neighbours();

    const std::string folder = "Markdown/Notes/";
    const std::map<std::string, Kind> expected{{"Markdown/list.txt", Kind::other},
                                               {folder + note + ".md~", Kind::backup},
                                               {folder + ".~lock.list.odt#", Kind::editorLock},
                                               {folder + conflict, Kind::conflictCopy},
                                               {folder + ".stfolder", Kind::syncMarker},
                                               {"Markdown/Drafts/" + swap, Kind::editorLock}};
    QCOMPARE(findings.size(), expected.size());
    for (const FolderCheck::Finding &finding : findings) {
        const std::string path = finding.path.lexically_relative(m_data->path()).native();
        QVERIFY2(expected.contains(path), path.c_str());
        QCOMPARE(finding.kind, expected.at(path));
        const bool isSwap = path.ends_with(".swp");
        QCOMPARE(finding.message.english().startsWith(u"The swap file of an editor"), isSwap);
    }
}

void FolderCheckTest::namesWhatIsRefused()
{
    m_data->write("Markdown/Notes/todo.md", "no header");

    const Findings findings = check().refused();

    QCOMPARE(findings.size(), std::size_t{1});
    QCOMPARE(findings[0].kind, Kind::refused);
    QCOMPARE(findings[0].path, m_data->path("Markdown/Notes/todo.md"));
}

void FolderCheckTest::tellsAnotherFormat()
{
    m_data->write("Markdown/.format", "Quillmark Markdown 2\n");

    QCOMPARE(described(check().refused()),
             QStringList{u"Markdown/.format: It names another format."_s});
}

void FolderCheckTest::comparesAWholeCopy()
{
    const std::string note = "/Notes/" + canonical(1) + ".md";
    m_data->write(".quillmark-recovery-1" + note, bytesOf(1, u"another"_s));
    m_data->write(".quillmark-recovery-1/Notes/00.txt", "only here");
    m_data->write(".quillmark-recovery-1/Notes/Folder/x", "not compared");
    m_data->write(".quillmark-recovery-1/Drafts/capture.md", "draft");

    const QString copy = u".quillmark-recovery-1"_s;
    QCOMPARE(described(hidden()), QStringList({copy + u": A copy of the folder “Markdown”."_s,
                                               u"Markdown/.format: Not in the copy."_s,
                                               copy + u"/Notes/00.txt: Only in the copy."_s,
                                               copy + QString::fromStdString(note) +
                                                   u": Different from that in the notes."_s}));
    QCOMPARE(hidden().front().kind, Kind::recoveryCopy);
    QCOMPARE(hidden().back().kind, Kind::difference);
}

void FolderCheckTest::comparesACopyOfTheDrafts()
{
    m_data->write(".quillmark-stage-1/capture.md", "later");

    QCOMPARE(described(hidden()),
             QStringList({u".quillmark-stage-1: A copy of the folder “Drafts”."_s,
                          u".quillmark-stage-1/capture.md: Different from that in the notes."_s}));
    QCOMPARE(hidden().front().kind, Kind::stage);
}

void FolderCheckTest::comparesACopyOfOneFile()
{
    m_data->write(".quillmark-recovery-1", bytesOf(1, u"one"_s));
    m_data->write(".quillmark-recovery-2", bytesOf(2, u"two"_s));
    m_data->write(".quillmark-recovery-3", "another draft");

    const auto fileOf = [](int number) {
        return u"Markdown/Notes/"_s + QString::fromStdString(canonical(number)) + u".md: "_s;
    };
    const QString draft = u"A copy of a draft, most often “capture.md”."_s;
    QCOMPARE(described(hidden()),
             QStringList({u".quillmark-recovery-1: A copy of one note."_s,
                          fileOf(1) + u"The same as the copy."_s,
                          u".quillmark-recovery-2: A copy of one note."_s,
                          fileOf(2) + u"Not in the notes."_s, u".quillmark-recovery-3: "_s + draft,
                          u"Markdown/Drafts/capture.md: Different from the copy."_s}));
}

void FolderCheckTest::tellsOfWhatCannotBeRead()
{
    std::filesystem::create_symlink("/nowhere", m_data->path(".quillmark-recovery-1"));

    QCOMPARE(described(hidden()), QStringList{u".quillmark-recovery-1: It cannot be read."_s});
}

void FolderCheckTest::saysWhatAPersonHasToDoSomethingAbout()
{
    for (const Kind kind :
         {Kind::refused, Kind::recoveryCopy, Kind::conflictCopy, Kind::syncMarker})
        QVERIFY(FolderCheck::isWrong(kind));
    for (const Kind kind :
         {Kind::stage, Kind::difference, Kind::editorLock, Kind::backup, Kind::other})
        QVERIFY(!FolderCheck::isWrong(kind));
}

QTEST_GUILESS_MAIN(FolderCheckTest)
#include "FolderCheckTest.moc"
