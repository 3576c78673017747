// SPDX-License-Identifier: MIT
#include "NotesService.h"

#include "NotesInterface.h"

#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QTest>
#include <QThread>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

using Answer = NotesInterface::Answer;

/// The two ends of org.quillmark.Quillmark.Notes1.
class NotesServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void findsNobodyWhenNoProgramRuns();
    void handsNotesOver();
    void passesARefusalOnAsItStands();
    void takesNoNotesForAnotherFolder();
    void waitsNoLongerThanItWasTold();
    void takesNothingThatIsNotSealed();
    void takesNothingThatDoesNotFit_data();
    void takesNothingThatDoesNotFit();

private:
    /// Asks from another thread, as another process would, while this one answers.
    Answer ask(const std::filesystem::path &folder, const QList<Note> &notes,
               std::chrono::milliseconds most = 20s);

    /// A connection of another program's; that of this one would not go over the bus.
    [[nodiscard]] QDBusConnection client() const { return m_bus.connectAs(u"client"_s); }

    PrivateBus m_bus;
};

namespace {

const QList<Note> notes{{QUuid::createUuid(), u"Grüße, 世界 👋\n"_s, {1.25}, {2.5}},
                        {QUuid::createUuid(), QString(), {3}, {3}}};

struct Named {
    Named()
    {
        QDBusConnection::sessionBus().registerService(QLatin1StringView(NotesInterface::busName));
    }
    Named(const Named &) = delete;
    Named &operator=(const Named &) = delete;
    ~Named()
    {
        QDBusConnection::sessionBus().unregisterService(QLatin1StringView(NotesInterface::busName));
    }
};

} // namespace

void NotesServiceTest::initTestCase()
{
    QVERIFY(m_bus.isRunning());
}

Answer NotesServiceTest::ask(const std::filesystem::path &folder, const QList<Note> &asked,
                             std::chrono::milliseconds most)
{
    Answer answer;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { answer = NotesInterface::addThere(client(), folder, asked, most); }));
    thread->start();
    while (!thread->wait(1))
        QCoreApplication::processEvents();
    return answer;
}

void NotesServiceTest::findsNobodyWhenNoProgramRuns()
{
    QCOMPARE(ask("/data", notes).kind, Answer::Kind::absent);
    const Named named;
    QCOMPARE(ask("/data", notes).kind, Answer::Kind::notOffered);
}

void NotesServiceTest::handsNotesOver()
{
    const Named named;
    QList<Note> taken;
    const NotesService service("/data", [&](const QList<Note> &given) {
        taken = given;
        return std::optional<Refusal>();
    });

    QCOMPARE(ask("/data", notes).kind, Answer::Kind::saved);

    QCOMPARE(taken, notes);
}

void NotesServiceTest::passesARefusalOnAsItStands()
{
    const Named named;
    const Refusal refusal{Refusal::Kind::diskFull,
                          {u"“%@” has version %d."_s, {u"a name"_s, qint64{7}}}};
    const NotesService service("/data",
                               [&](const QList<Note> &) { return std::optional(refusal); });

    const Answer answer = ask("/data", notes);

    QCOMPARE(answer.kind, Answer::Kind::refused);
    QVERIFY(answer.refusal == refusal);
}

void NotesServiceTest::takesNoNotesForAnotherFolder()
{
    const Named named;
    bool isAsked = false;
    const NotesService service("/data", [&](const QList<Note> &) {
        isAsked = true;
        return std::optional<Refusal>();
    });

    QCOMPARE(ask("/other", notes).kind, Answer::Kind::elsewhere);

    QVERIFY(!isAsked);
}

void NotesServiceTest::waitsNoLongerThanItWasTold()
{
    const Named named;
    const NotesService service("/data",
                               [](const QList<Note> &) { return std::optional<Refusal>(); });
    QVERIFY(client().isConnected());

    // Nobody answers while this thread waits for itself.
    Answer answer;
    const std::unique_ptr<QThread> thread(QThread::create(
        [&] { answer = NotesInterface::addThere(client(), "/data", notes, 50ms); }));
    thread->start();
    QVERIFY(thread->wait(20000));

    QCOMPARE(answer.kind, Answer::Kind::silent);
    QCoreApplication::processEvents();
}

void NotesServiceTest::takesNothingThatIsNotSealed()
{
    const int open = ::memfd_create("open", MFD_CLOEXEC);
    QVERIFY(open != -1);
    QCOMPARE(::write(open, "text", 4), ssize_t{4});
    std::array<int, 2> pipe{};
    QCOMPARE(::pipe(pipe.data()), 0);
    const QStringList id{u"8C5B6F0E-3C1D-4E0A-9C55-000000000001"_s};
    const QStringList times{u"2025-03-01T08:15:30.250Z"_s, u"2025-03-01T08:15:30.250Z"_s};

    for (const int file : {open, pipe[0], -1})
        QVERIFY(!NotesInterface::notesFrom(id, times, {4}, file));

    for (const int file : {open, pipe[0], pipe[1]})
        ::close(file);
}

void NotesServiceTest::takesNothingThatDoesNotFit_data()
{
    QTest::addColumn<QStringList>("ids");
    QTest::addColumn<QStringList>("times");
    QTest::addColumn<QList<qulonglong>>("sizes");
    QTest::addColumn<bool>("fits");

    const QString id = u"8C5B6F0E-3C1D-4E0A-9C55-000000000001"_s;
    const QString time = u"2025-03-01T08:15:30.250Z"_s;
    const QStringList both{time, time};
    using Sizes = QList<qulonglong>;
    QTest::newRow("all right") << QStringList{id} << both << Sizes{5} << true;
    QTest::newRow("too short") << QStringList{id} << both << Sizes{4} << false;
    QTest::newRow("too long") << QStringList{id} << both << Sizes{6} << false;
    QTest::newRow("enormous") << QStringList{id} << both << Sizes{~0ULL} << false;
    QTest::newRow("a character in two")
        << QStringList{id, id} << (both + both) << Sizes{4, 1} << false;
    QTest::newRow("no identifier") << QStringList{u"x"_s} << both << Sizes{5} << false;
    QTest::newRow("no time") << QStringList{id} << QStringList{time, u"x"_s} << Sizes{5} << false;
    QTest::newRow("times missing") << QStringList{id} << QStringList{time} << Sizes{5} << false;
    QTest::newRow("sizes missing") << QStringList{id} << both << Sizes{} << false;
}

void NotesServiceTest::takesNothingThatDoesNotFit()
{
    QFETCH(QStringList, ids);
    QFETCH(QStringList, times);
    QFETCH(QList<qulonglong>, sizes);
    QFETCH(bool, fits);
    const auto texts = NotesInterface::SealedTexts::of({Note{QUuid(), u"caf\u00E9"_s, {}, {}}});
    QVERIFY(texts.has_value());

    QCOMPARE(NotesInterface::notesFrom(ids, times, sizes, texts->descriptor()).has_value(), fits);
}

QTEST_GUILESS_MAIN(NotesServiceTest)
#include "NotesServiceTest.moc"
