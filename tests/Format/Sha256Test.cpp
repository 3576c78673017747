// SPDX-License-Identifier: MIT
#include "Sha256.h"

#include <QByteArray>
#include <QTest>
#include <string>

class Sha256Test : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void givesTheKnownDigests_data();
    void givesTheKnownDigests();
};

/// The examples of NIST, "Cryptographic Standards and Guidelines: Example Values", SHA-256, and of
/// FIPS 180-2, appendix B. That of the empty message is from NIST's SHA test vectors
/// (SHA256ShortMsg.rsp, Len = 0).
void Sha256Test::givesTheKnownDigests_data()
{
    QTest::addColumn<QByteArray>("message");
    QTest::addColumn<QByteArray>("digest");

    QTest::newRow("empty")
        << QByteArray("")
        << QByteArray("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    QTest::newRow("one block")
        << QByteArray("abc")
        << QByteArray("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    QTest::newRow("two blocks")
        << QByteArray("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq")
        << QByteArray("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    QTest::newRow("a million letters")
        << QByteArray(1'000'000, 'a')
        << QByteArray("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

void Sha256Test::givesTheKnownDigests()
{
    QFETCH(const QByteArray, message);
    QFETCH(const QByteArray, digest);

    QCOMPARE(QByteArrayView(sha256(message.toStdString())).toByteArray().toHex(), digest);
}

QTEST_GUILESS_MAIN(Sha256Test)
#include "Sha256Test.moc"
