// SPDX-License-Identifier: MIT
#include "MarkdownTransaction.h"

#include "DataFolder.h"
#include "Thrown.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <array>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// Stands for whatever a callback may throw.
struct Refusal {};

constexpr auto nothing = [](const fs::path &) {};
constexpr auto agree = [] {};

void putFile(const fs::path &path, const QByteArray &bytes)
{
    fs::remove(path);
    std::ofstream(path, std::ios::binary).write(bytes.data(), bytes.size());
}

/// False where it cannot be set.
bool setImmutable(const fs::path &path, bool isImmutable)
{
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const int flags = isImmutable ? FS_IMMUTABLE_FL : 0;
    const bool isSet = ::ioctl(fd, FS_IOC_SETFLAGS, &flags) == 0;
    ::close(fd);
    return isSet;
}

} // namespace

class MarkdownTransactionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void passesWhenTheFolderDoesNotExist();
    void refusesAFolderWithARecoveryCopy_data();
    void refusesAFolderWithARecoveryCopy();
    void makesTheFirstFolderWithoutARecoveryCopy();
    void makesFoldersForTheUserAlone();
    void replacesWhatPrepareReplaces();
    void carriesOverWhatPrepareDoesNotTouch();
    void keepsTheFilesThemselves();
    void keepsPermissionsAndTimesOfFolders();
    void keepsTheGroupOfFolders();
    void keepsAttributesOfFolders();
    void leavesWhatIsImmutableInItsPlace();
    void asksOnceAndInOrder();
    void givesTheOldContentToTheLastCheck();
    void namesTheStageWithAFreshIdentifier();
    void givesStageAndRecoveryCopyDifferentIdentifiers();
    void leavesEverythingWhenPrepareFails();
    void leavesEverythingWhenTheCheckFails();
    void takesBackTheExchangeWhenTheLastCheckFails();
    void takesBackTheExchangeWhenAnotherProgramAddedAFile();
    void takesBackTheExchangeWhenAnotherProgramReplacedAFile();
    void takesBackAFirstFolderThatAnotherProgramMade();
    void keepsWhatIsWrittenIntoAFileInBetween();
    void leavesAnOldStageWhereItIs();
    void refusesATargetThatIsNoFolder();
    void refusesADataFolderThatIsAFile();
    void doesNotFollowLinks();
};

void MarkdownTransactionTest::passesWhenTheFolderDoesNotExist()
{
    const DataFolder data;

    MarkdownTransaction::checkRecovery(data.path());

    QVERIFY(!fs::exists(data.path()));
}

void MarkdownTransactionTest::refusesAFolderWithARecoveryCopy_data()
{
    QTest::addColumn<QByteArray>("name");

    QTest::newRow("a file in a folder of that name")
        << QByteArray(".quillmark-recovery-8C5B6F0E-3C1D-4E0A-9C55-0A1B2C3D4E5F/x.md");
    QTest::newRow("a file of that name") << QByteArray(".quillmark-recovery-anything");
    QTest::newRow("nothing after the prefix") << QByteArray(".quillmark-recovery-");
}

void MarkdownTransactionTest::refusesAFolderWithARecoveryCopy()
{
    QFETCH(QByteArray, name);
    const DataFolder data;
    data.write("Markdown/old", "old");
    data.write(name.toStdString(), "x");
    const auto before = data.content();

    const auto check = refusal([&] { MarkdownTransaction::checkRecovery(data.path()); });
    const auto replace = refusal([&] {
        MarkdownTransaction::replace(
            data.path("Markdown"), [](const fs::path &) { QFAIL("prepared"); }, agree);
    });

    QCOMPARE(check, RepositoryError::recoveryRequired());
    QCOMPARE(replace, RepositoryError::recoveryRequired());
    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::makesTheFirstFolderWithoutARecoveryCopy()
{
    const DataFolder data;

    MarkdownTransaction::replace(
        data.path("Markdown"), [](const fs::path &stage) { putFile(stage / "new", "1"); },
        [&] { QCOMPARE(data.count(".quillmark-stage-"), 1); },
        [](const fs::path &) { QFAIL("There was no old content."); });

    QCOMPARE(data.content(), (DataFolder::Content{{"Markdown", "d"}, {"Markdown/new", "f1"}}));
}

void MarkdownTransactionTest::makesFoldersForTheUserAlone()
{
    const DataFolder data;

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    QCOMPARE(data.status("").st_mode & 0777, 0700U);
    QCOMPARE(data.status("Markdown").st_mode & 0777, 0700U);
}

void MarkdownTransactionTest::replacesWhatPrepareReplaces()
{
    const DataFolder data;
    data.write("Markdown/changed", "old");
    data.write("Markdown/removed", "old");

    MarkdownTransaction::replace(
        data.path("Markdown"),
        [](const fs::path &stage) {
            putFile(stage / "changed", "new");
            fs::remove(stage / "removed");
            putFile(stage / "added", "new");
        },
        agree);

    QCOMPARE(data.content(),
             (DataFolder::Content{
                 {"Markdown", "d"}, {"Markdown/added", "fnew"}, {"Markdown/changed", "fnew"}}));
}

void MarkdownTransactionTest::carriesOverWhatPrepareDoesNotTouch()
{
    const DataFolder data;
    data.write("Markdown/.hidden", "1");
    data.write("Markdown/photos/2025/a.jpg", QByteArray("a\0b", 3));
    data.write("Markdown/\xff\xfe not UTF-8", "2");
    fs::create_symlink("photos/2025", data.path("Markdown/link"));
    fs::create_symlink("/nowhere", data.path("Markdown/lost link"));
    QCOMPARE(::mkfifo(data.path("Markdown/pipe").c_str(), 0600), 0);
    const auto before = data.content();

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::keepsTheFilesThemselves()
{
    const DataFolder data;
    data.write("Markdown/a/kept", "1");
    const struct stat before = data.status("Markdown/a/kept");

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    const struct stat after = data.status("Markdown/a/kept");
    QCOMPARE(after.st_ino, before.st_ino);
    QCOMPARE(after.st_mtim.tv_sec, before.st_mtim.tv_sec);
    QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    QCOMPARE(after.st_nlink, 1U);
}

void MarkdownTransactionTest::keepsPermissionsAndTimesOfFolders()
{
    const DataFolder data;
    data.write("Markdown/shared/file", "1");
    fs::permissions(data.path("Markdown/shared"), fs::perms(0755));
    const std::array<timespec, 2> times{timespec{1'000, 1}, timespec{2'000, 2}};
    QCOMPARE(::utimensat(AT_FDCWD, data.path("Markdown/shared").c_str(), times.data(), 0), 0);

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    const struct stat after = data.status("Markdown/shared");
    QCOMPARE(after.st_mode & 07777, 0755U);
    QCOMPARE(after.st_mtim.tv_sec, 2'000);
    QCOMPARE(after.st_mtim.tv_nsec, 2);
}

void MarkdownTransactionTest::keepsTheGroupOfFolders()
{
    constexpr gid_t group = 12345;
    const DataFolder data;
    data.write("Markdown/shared/file", "1");
    if (::chown(data.path("Markdown/shared").c_str(), static_cast<uid_t>(-1), group) != 0)
        QSKIP("Only root may give a folder to any group.");
    QCOMPARE(::chmod(data.path("Markdown/shared").c_str(), 02770), 0);

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    QCOMPARE(data.status("Markdown/shared").st_gid, group);
    QCOMPARE(data.status("Markdown/shared").st_mode & 07777, 02770U);
}

void MarkdownTransactionTest::keepsAttributesOfFolders()
{
    const DataFolder data;
    data.write("Markdown/tagged/file", "1");
    const std::string path = data.path("Markdown/tagged");
    if (::setxattr(path.c_str(), "user.tag", "blue", 4, 0) != 0)
        QSKIP("The file system has no attributes for users.");

    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    std::array<char, 8> value{};
    QCOMPARE(::getxattr(path.c_str(), "user.tag", value.data(), value.size()), 4);
    QCOMPARE(QByteArray(value.data()), "blue");
}

void MarkdownTransactionTest::leavesWhatIsImmutableInItsPlace()
{
    for (const char *name : {"Markdown/file", "Markdown/folder"}) {
        const DataFolder data;
        data.write("Markdown/file", "1");
        data.write("Markdown/folder/file", "1");
        const fs::path path = data.path(name);
        if (!setImmutable(path, true))
            QSKIP("Only root may make a file immutable, and not on every file system.");
        const auto before = data.content();

        const auto error = thrown<FileError>(
            [&] { MarkdownTransaction::replace(data.path("Markdown"), nothing, agree); });

        QVERIFY(setImmutable(path, false));
        QVERIFY(error.has_value());
        QCOMPARE(error->systemError(), EPERM);
        QCOMPARE(error->path(), path);
        QCOMPARE(data.content(), before);
    }
}

void MarkdownTransactionTest::asksOnceAndInOrder()
{
    const DataFolder data;
    data.write("Markdown/old", "1");
    std::string order;

    MarkdownTransaction::replace(
        data.path("Markdown"), [&](const fs::path &) { order += "prepare "; },
        [&] { order += "original "; }, [&](const fs::path &) { order += "displaced"; });

    QCOMPARE(order, "prepare original displaced");
}

void MarkdownTransactionTest::givesTheOldContentToTheLastCheck()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    QByteArray seen;
    std::string name;

    MarkdownTransaction::replace(
        data.path("Markdown"), [](const fs::path &stage) { putFile(stage / "file", "new"); }, agree,
        [&](const fs::path &displaced) {
            name = displaced.filename().native();
            seen = data.read(name + "/file");
        });

    QCOMPARE(seen, "old");
    const QRegularExpression form(
        QStringLiteral("^\\.quillmark-recovery-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"));
    QVERIFY2(form.match(QString::fromStdString(name)).hasMatch(), name.c_str());
}

void MarkdownTransactionTest::givesStageAndRecoveryCopyDifferentIdentifiers()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    std::string stageName;
    std::string recoveryName;

    MarkdownTransaction::replace(
        data.path("Markdown"), [&](const fs::path &stage) { stageName = stage.filename(); }, agree,
        [&](const fs::path &displaced) { recoveryName = displaced.filename(); });

    constexpr std::size_t length = 36;
    QVERIFY(stageName.substr(stageName.size() - length) !=
            recoveryName.substr(recoveryName.size() - length));
}

void MarkdownTransactionTest::namesTheStageWithAFreshIdentifier()
{
    const DataFolder data;
    QSet<QString> names;
    for (int i = 0; i < 2; ++i) {
        MarkdownTransaction::replace(
            data.path("Markdown"),
            [&](const fs::path &stage) {
                QCOMPARE(stage.parent_path(), data.path());
                names.insert(QString::fromStdString(stage.filename().native()));
            },
            agree);
    }

    QCOMPARE(names.size(), 2);
    const QRegularExpression form(
        QStringLiteral("^\\.quillmark-stage-[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"));
    for (const QString &name : names)
        QVERIFY2(form.match(name).hasMatch(), qPrintable(name));
}

void MarkdownTransactionTest::leavesEverythingWhenPrepareFails()
{
    const DataFolder data;
    data.write("Markdown/a/file", "old");
    const auto before = data.content();

    QVERIFY_EXCEPTION_THROWN(MarkdownTransaction::replace(
                                 data.path("Markdown"),
                                 [](const fs::path &stage) {
                                     fs::remove(stage / "a/file");
                                     putFile(stage / "half", "new");
                                     throw Refusal();
                                 },
                                 [] { QFAIL("asked after a failure"); }),
                             Refusal);

    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::leavesEverythingWhenTheCheckFails()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    const auto before = data.content();

    QVERIFY_EXCEPTION_THROWN(MarkdownTransaction::replace(
                                 data.path("Markdown"),
                                 [](const fs::path &stage) { putFile(stage / "file", "new"); },
                                 [] { throw Refusal(); }),
                             Refusal);

    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::takesBackTheExchangeWhenTheLastCheckFails()
{
    const DataFolder data;
    data.write("Markdown/file", "old");
    const auto before = data.content();

    QVERIFY_EXCEPTION_THROWN(MarkdownTransaction::replace(
                                 data.path("Markdown"),
                                 [](const fs::path &stage) { putFile(stage / "file", "new"); },
                                 agree, [](const fs::path &) { throw Refusal(); }),
                             Refusal);

    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::takesBackTheExchangeWhenAnotherProgramAddedAFile()
{
    const DataFolder data;
    data.write("Markdown/a/file", "old");

    const auto error = refusal([&] {
        MarkdownTransaction::replace(data.path("Markdown"), nothing,
                                     [&] { data.write("Markdown/a/added", "theirs"); });
    });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.read("Markdown/a/added"), "theirs");
    QCOMPARE(data.content().size(), 4);
}

void MarkdownTransactionTest::takesBackTheExchangeWhenAnotherProgramReplacedAFile()
{
    const DataFolder data;
    data.write("Markdown/file", "old");

    const auto error = refusal([&] {
        MarkdownTransaction::replace(data.path("Markdown"), nothing, [&] {
            data.write("Markdown/.temporary", "theirs");
            fs::rename(data.path("Markdown/.temporary"), data.path("Markdown/file"));
        });
    });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(),
             (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "ftheirs"}}));
}

void MarkdownTransactionTest::takesBackAFirstFolderThatAnotherProgramMade()
{
    const DataFolder data;

    const auto error = refusal([&] {
        MarkdownTransaction::replace(
            data.path("Markdown"), [](const fs::path &stage) { putFile(stage / "file", "ours"); },
            [&] { data.write("Markdown/file", "theirs"); });
    });

    QCOMPARE(error, RepositoryError::externalChange());
    QCOMPARE(data.content(),
             (DataFolder::Content{{"Markdown", "d"}, {"Markdown/file", "ftheirs"}}));
}

void MarkdownTransactionTest::keepsWhatIsWrittenIntoAFileInBetween()
{
    const DataFolder data;
    data.write("Markdown/file", "old");

    MarkdownTransaction::replace(data.path("Markdown"), nothing,
                                 [&] { data.write("Markdown/file", "theirs"); });

    QCOMPARE(data.read("Markdown/file"), "theirs");
}

void MarkdownTransactionTest::leavesAnOldStageWhereItIs()
{
    const DataFolder data;
    data.write(".quillmark-stage-old/file", "1");

    MarkdownTransaction::checkRecovery(data.path());
    MarkdownTransaction::replace(data.path("Markdown"), nothing, agree);

    QCOMPARE(data.read(".quillmark-stage-old/file"), "1");
    QCOMPARE(data.count(".quillmark-stage-"), 1);
}

void MarkdownTransactionTest::refusesATargetThatIsNoFolder()
{
    const DataFolder data;
    data.write("Markdown", "a file");
    const auto before = data.content();

    const auto error = thrown<FileError>(
        [&] { MarkdownTransaction::replace(data.path("Markdown"), nothing, agree); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.path("Markdown"));
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(data.content(), before);
}

void MarkdownTransactionTest::refusesADataFolderThatIsAFile()
{
    const DataFolder data;
    data.write("file", "x");

    const auto error = thrown<FileError>(
        [&] { MarkdownTransaction::replace(data.path("file/Markdown"), nothing, agree); });

    QVERIFY(error.has_value());
    QCOMPARE(error->path(), data.path("file"));
    QCOMPARE(data.read("file"), "x");
}

void MarkdownTransactionTest::doesNotFollowLinks()
{
    const DataFolder data;
    data.write("elsewhere/file", "1");
    fs::create_directory_symlink("elsewhere", data.path("Markdown"));
    const auto before = data.content();

    const auto error = thrown<FileError>([&] {
        MarkdownTransaction::replace(
            data.path("Markdown"), [](const fs::path &stage) { putFile(stage / "file", "2"); },
            agree);
    });

    QVERIFY(error.has_value());
    QCOMPARE(error->reason(), Reason::notFolder);
    QCOMPARE(data.content(), before);
}

QTEST_GUILESS_MAIN(MarkdownTransactionTest)
#include "MarkdownTransactionTest.moc"
