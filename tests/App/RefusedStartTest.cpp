// SPDX-License-Identifier: MIT
#include "RefusedStart.h"

#include "AppPreferences.h"
#include "FileError.h"

#include <QAbstractButton>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

class RefusedStartTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void saysWhyInTheChosenLanguage();
    void goesWithItsButton();
    void goesByItself();
    void knowsWhereSomebodyReads();
};

namespace {

Message reason()
{
    return FileError("/home/me/notes", Reason::inUse).message();
}

} // namespace

void RefusedStartTest::saysWhyInTheChosenLanguage()
{
    const AppPreferences chinese(nullptr, AppLanguage::chinese);

    QCOMPARE(RefusedStart(reason(), nullptr).text(), reason().english());
    QCOMPARE(RefusedStart(reason(), &chinese).text(),
             u"另一个 Quillmark 正在使用“/home/me/notes”：请在那里继续，或先退出它。"_s);
    QCOMPARE(RefusedStart(reason(), &chinese).buttons().at(0)->text(), u"好"_s);
}

void RefusedStartTest::goesWithItsButton()
{
    RefusedStart alert(reason(), nullptr);
    alert.show();

    QTest::mouseClick(alert.buttons().at(0), Qt::LeftButton);

    QVERIFY(!alert.isVisible());
}

void RefusedStartTest::goesByItself()
{
    RefusedStart alert(reason(), nullptr);
    alert.show();

    QTRY_VERIFY_WITH_TIMEOUT(!alert.isVisible(), 4 * int(RefusedStart::longestTime.count()) * 1000);
}

void RefusedStartTest::knowsWhereSomebodyReads()
{
    const QTemporaryDir folder;
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    const int file = ::open(QFile::encodeName(folder.filePath(u"log"_s)), O_CREAT | O_RDWR, 0600);
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);

    // Not every machine that builds has terminals.
    if (terminal >= 0)
        QVERIFY(RefusedStart::isRead(terminal));
    QVERIFY(RefusedStart::isRead(pipe[1]));
    QVERIFY(!RefusedStart::isRead(file));
    QVERIFY(!RefusedStart::isRead(-1));

    for (const int descriptor : {terminal, file, pipe[0], pipe[1]})
        ::close(descriptor);
}

QTEST_MAIN(RefusedStartTest)
#include "RefusedStartTest.moc"
