// SPDX-License-Identifier: MIT
#include "FileUrl.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

class FileUrlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void leadsBackToThePath_data();
    void leadsBackToThePath();
    void isTheUsualAddressOfAText();
    void keepsBytesThatAreNoText();
};

void FileUrlTest::leadsBackToThePath_data()
{
    QTest::addColumn<QByteArray>("path");

    for (const char *path :
         {"/", "/home/me/notes", "/with a blank", "/für später", "/a#b?c%20d%", "/[x]{y};=&+",
          "/\xff/\xc3\x28/x", "/half \xe2\x82", "/line\nbreak", "/%FF and \xff"})
        QTest::addRow("%s", QByteArray(path).toPercentEncoding("/").constData())
            << QByteArray(path);
}

void FileUrlTest::leadsBackToThePath()
{
    QFETCH(const QByteArray, path);

    const QUrl url = fileUrl(path.toStdString());

    QVERIFY(url.isLocalFile());
    QCOMPARE(QByteArray::fromStdString(localPath(url).native()), path);
    // As another program is told.
    QCOMPARE(QByteArray::fromPercentEncoding(url.toEncoded()), "file://" + path);
}

void FileUrlTest::isTheUsualAddressOfAText()
{
    QCOMPARE(fileUrl("/home/me/für später #1"), QUrl::fromLocalFile(u"/home/me/für später #1"_s));
}

void FileUrlTest::keepsBytesThatAreNoText()
{
    QCOMPARE(fileUrl("/a \xff.md").toString(QUrl::FullyEncoded), u"file:///a%20%FF.md"_s);
}

QTEST_GUILESS_MAIN(FileUrlTest)
#include "FileUrlTest.moc"
