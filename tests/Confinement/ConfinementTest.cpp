// SPDX-License-Identifier: MIT
#include "Confinement.h"

#include "BreakOut.h"
#include "FileError.h"
#include "LandlockRules.h"
#include "LocalNoteRepository.h"
#include "Notes.h"
#include "Thrown.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::size_t mostAttempts = 64;
using Results = std::array<int, mostAttempts>;

/// What a process of its own answers, which may confine itself; -1 when it did not come to its end.
template <typename Action>
int inProcess(Action action)
{
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(action());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

int listening(int family, const sockaddr *address, socklen_t size)
{
    const int socket = ::socket(family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(socket, address, size) != 0 || ::listen(socket, 128) != 0)
        qFatal("Nothing can listen here.");
    return socket;
}

/// A home folder with an own folder and everything beside it that could be reached for.
class World {
public:
    World()
    {
        for (const char *folder : {"/.ssh", "/data/Penwick"})
            QDir().mkpath(m_folder.path() + QLatin1StringView(folder));
        for (const char *file : {"/.ssh/id", "/movable", "/data/Penwick/mine"}) {
            QFile made(m_folder.path() + QLatin1StringView(file));
            if (!made.open(QIODevice::WriteOnly) || made.write("text") != 4)
                qFatal("There is no room for the bait.");
        }
        sockaddr_in port{};
        port.sin_family = AF_INET;
        port.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        m_tcp = listening(AF_INET, reinterpret_cast<const sockaddr *>(&port), sizeof port);
        socklen_t size = sizeof port;
        ::getsockname(m_tcp, reinterpret_cast<sockaddr *>(&port), &size);
        m_port = ntohs(port.sin_port);

        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::memcpy(name.sun_path + 1, m_abstract.constData(), std::size_t(m_abstract.size()));
        m_local = listening(AF_UNIX, reinterpret_cast<const sockaddr *>(&name),
                            socklen_t(offsetof(sockaddr_un, sun_path) + 1) +
                                socklen_t(m_abstract.size()));
        m_other = ::fork();
        if (m_other == 0)
            for (;;)
                ::pause();
    }
    World(const World &) = delete;
    World &operator=(const World &) = delete;
    ~World()
    {
        ::kill(m_other, SIGKILL);
        ::waitpid(m_other, nullptr, 0);
        ::close(m_tcp);
        ::close(m_local);
    }

    [[nodiscard]] Reach reach() const
    {
        Reach reach;
        reach.addSystem();
        reach.writable.emplace_back(m_own.constData());
        return reach;
    }

    [[nodiscard]] Bait bait() const
    {
        return {m_home.constData(),    m_beside.constData(), m_own.constData(), m_other, m_port,
                m_abstract.constData()};
    }

    /// What each attempt brings after the preparation, in a process of its own.
    template <typename Prepare>
    [[nodiscard]] Results results(Prepare prepare) const
    {
        void *const shared = ::mmap(nullptr, sizeof(Results), PROT_READ | PROT_WRITE,
                                    MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        auto *const results = new (shared) Results;
        results->fill(-1);
        inProcess([&] {
            prepare();
            std::size_t at = 0;
            for (const Attempt &attempt : breakOutAttempts())
                (*results)[at++] = attempt.run(bait());
            return 0;
        });
        const Results copy = *results;
        ::munmap(shared, sizeof(Results));
        return copy;
    }

private:
    QTemporaryDir m_folder;
    const QByteArray m_home = QFile::encodeName(m_folder.path());
    const QByteArray m_beside = m_home + "/data";
    const QByteArray m_own = m_beside + "/Penwick";
    const QByteArray m_abstract = "quillmark-test-" + QByteArray::number(::getpid());
    int m_tcp = -1;
    int m_local = -1;
    std::uint16_t m_port = 0;
    pid_t m_other = -1;
};

bool isRefusal(int result)
{
    return result == EPERM || result == EACCES || result == ENOSYS || result == EXDEV;
}

void printTable(const char *title, const Results &results)
{
    std::printf("  %s\n", title);
    std::size_t at = 0;
    for (const Attempt &attempt : breakOutAttempts()) {
        const int result = results[at++];
        std::printf("    %-34s %s\n", attempt.name,
                    result == 0 ? "worked" : ::strerrorname_np(result));
    }
}

} // namespace

/// What a process gets that has confined itself, with each version of Landlock that there is.
class ConfinementTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everythingWorksWithoutIt();
    void nothingWorksInsideButWhatMust_data();
    void nothingWorksInsideButWhatMust();
    void programsAndNetworkAreRefusedWithoutLandlock();
    void theOwnFolderIsUsedAsEver_data();
    void theOwnFolderIsUsedAsEver();
    void aReplacedFolderAsksForARestart();
    void aRemovedFolderAsksForARestart();
    void onlyThePortOfTheDisplayIsReached();
    void otherProcessesAreAskedAfterByNobody();
    void theKernelKnowsOfIt();
    void itCanBeSwitchedOff();
};

void ConfinementTest::everythingWorksWithoutIt()
{
    const World world;

    const Results results = world.results([] {});

    printTable("unconfined", results);
    std::size_t at = 0;
    for (const Attempt &attempt : breakOutAttempts()) {
        const int result = results[at++];
        // Not every machine gives a test all of that without any confinement; of the rest the
        // refusals below would tell nothing.
        const bool isGranted = attempt.kind != Attempt::Kind::calls || result == 0;
        if (!isGranted)
            qWarning("%s: %s here without any confinement", attempt.name,
                     ::strerrorname_np(result));
        QVERIFY2(attempt.kind == Attempt::Kind::calls || result == 0, attempt.name);
    }
}

void ConfinementTest::nothingWorksInsideButWhatMust_data()
{
    QTest::addColumn<int>("abi");
    for (int abi = LandlockRules::firstAbi; abi <= LandlockRules::lastAbi; ++abi)
        QTest::addRow("Landlock %d", abi) << abi;
}

void ConfinementTest::nothingWorksInsideButWhatMust()
{
    QFETCH(const int, abi);
    if (LandlockRules::usableAbi() < abi)
        QSKIP("This kernel does not have it.");
    const World world;
    Confinement confinement;

    const Results results = world.results([&] { confinement = confine(world.reach(), abi); });

    printTable(QTest::currentDataTag(), results);
    std::size_t at = 0;
    for (const Attempt &attempt : breakOutAttempts()) {
        const int result = results[at++];
        if (attempt.kind == Attempt::Kind::allowed)
            QVERIFY2(result == 0, attempt.name);
        else
            QVERIFY2(isRefusal(result), attempt.name);
    }
}

void ConfinementTest::programsAndNetworkAreRefusedWithoutLandlock()
{
    const World world;

    const Results results = world.results([&] { confine(world.reach(), 0); });

    printTable("no Landlock", results);
    std::size_t at = 0;
    for (const Attempt &attempt : breakOutAttempts()) {
        const int result = results[at++];
        if (attempt.kind == Attempt::Kind::calls)
            QVERIFY2(isRefusal(result), attempt.name);
    }
}

void ConfinementTest::theOwnFolderIsUsedAsEver_data()
{
    nothingWorksInsideButWhatMust_data();
}

void ConfinementTest::theOwnFolderIsUsedAsEver()
{
    QFETCH(const int, abi);
    if (LandlockRules::usableAbi() < abi)
        QSKIP("This kernel does not have it.");
    const World world;
    const std::filesystem::path own(world.bait().own);

    const int failed = inProcess([&] {
        confine(world.reach(), abi);
        LocalNoteRepository repository(own / "notes.json", LocalNoteRepository::Folders{own});
        NoteSnapshot snapshot = repository.load();
        for (const QString &body : {u"one"_s, u"two"_s, u"three"_s}) {
            snapshot.notes.append(numberedNote(int(snapshot.notes.size()) + 1, body));
            repository.save(snapshot);
            while (repository.tidy(std::chrono::milliseconds(100)))
                continue;
        }
        return repository.read().notes.size() == 3 ? 0 : 1;
    });

    QCOMPARE(failed, 0);
}

/// What a save says in a confined process whose data folder becomes another one.
template <typename Change>
std::optional<Reason> reasonAfter(Change change)
{
    const World world;
    const std::filesystem::path own(world.bait().own);
    const int reason = inProcess([&] {
        // From a process that nobody confines.
        std::array<int, 2> start{};
        std::array<int, 2> done{};
        if (::pipe(start.data()) != 0 || ::pipe(done.data()) != 0)
            return 98;
        const pid_t other = ::fork();
        char byte = 0;
        if (other == 0) {
            if (::read(start[0], &byte, 1) == 1)
                change(own);
            ::_exit(::write(done[1], &byte, 1) == 1 ? 0 : 1);
        }
        confine(world.reach());
        LocalNoteRepository repository(own / "notes.json", LocalNoteRepository::Folders());
        NoteSnapshot snapshot = repository.load();
        snapshot.captureDraft = u"typed"_s;
        repository.save(snapshot);
        if (::write(start[1], &byte, 1) != 1 || ::read(done[0], &byte, 1) != 1)
            return 98;
        snapshot.captureDraft = u"typed further"_s;
        const auto error = thrown<FileError>([&] { repository.save(snapshot); });
        ::waitpid(other, nullptr, 0);
        return error && error->path() == own ? static_cast<int>(error->reason()) : 99;
    });
    return reason >= 0 ? std::optional(static_cast<Reason>(reason)) : std::nullopt;
}

void ConfinementTest::aReplacedFolderAsksForARestart()
{
    if (LandlockRules::usableAbi() == 0)
        QSKIP("This kernel has no Landlock.");

    const auto reason = reasonAfter([](const std::filesystem::path &folder) {
        std::filesystem::rename(folder, folder.parent_path() / "put aside");
        std::filesystem::create_directory(folder);
    });

    QCOMPARE(reason, Reason::outOfReach);
}

void ConfinementTest::aRemovedFolderAsksForARestart()
{
    if (LandlockRules::usableAbi() == 0)
        QSKIP("This kernel has no Landlock.");

    const auto reason = reasonAfter(
        [](const std::filesystem::path &folder) { std::filesystem::remove_all(folder); });

    QCOMPARE(reason, Reason::outOfReach);
}

void ConfinementTest::onlyThePortOfTheDisplayIsReached()
{
    if (LandlockRules::usableAbi() < LandlockRules::abiOfPorts)
        QSKIP("This kernel does not tell ports apart.");
    const World world;
    const auto connected = [&](std::uint16_t port) {
        return inProcess([&] {
            Reach reach = world.reach();
            reach.ports = {port};
            confine(reach);
            for (const Attempt &attempt : breakOutAttempts())
                if (std::string_view(attempt.name) == "connect by TCP")
                    return attempt.run(world.bait());
            return -1;
        });
    };

    QCOMPARE(connected(world.bait().port), 0);
    QCOMPARE(connected(static_cast<std::uint16_t>(world.bait().port ^ 1)), EACCES);
}

void ConfinementTest::otherProcessesAreAskedAfterByNobody()
{
    const World world;
    const auto asked = [&](bool assumes, int signal) {
        return inProcess([&] {
            Reach reach = world.reach();
            reach.assumesProcesses = assumes;
            confine(reach);
            return ::kill(world.bait().otherProcess, signal) == 0 ? 0 : errno;
        });
    };

    QCOMPARE(asked(false, 0), EPERM);
    QCOMPARE(asked(true, 0), 0);
    QCOMPARE(asked(true, SIGTERM), EPERM);
}

void ConfinementTest::theKernelKnowsOfIt()
{
    const World world;

    const int answer = inProcess([&] {
        confine(world.reach());
        QFile status(u"/proc/self/status"_s);
        if (!status.open(QIODevice::ReadOnly))
            return 1;
        const QByteArray text = status.readAll();
        return text.contains("\nNoNewPrivs:\t1\n") && text.contains("\nSeccomp:\t2\n") ? 0 : 2;
    });

    QCOMPARE(answer, 0);
}

void ConfinementTest::itCanBeSwitchedOff()
{
    const World world;

    const int answer = inProcess([&] {
        ::setenv("QUILLMARK_UNCONFINED", "1", 1);
        const bool isWaived = confine(world.reach()).isWaived;
        const bool isHomeOpen = !QDir(QFile::decodeName(world.bait().home)).isEmpty();
        return isWaived && isHomeOpen ? 0 : 1;
    });

    QCOMPARE(answer, 0);
}

QTEST_GUILESS_MAIN(ConfinementTest)
#include "ConfinementTest.moc"
