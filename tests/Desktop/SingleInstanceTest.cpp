// SPDX-License-Identifier: MIT
#include "SingleInstance.h"

#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QMutex>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

using namespace Qt::Literals::StringLiterals;

using Claim = SingleInstance::Claim;

/// What the desktop wants of the program.
enum class Wish { toBeShown, newNote, notes };
Q_DECLARE_METATYPE(Wish)

/// Stands for the program that was started first. Lives on a thread of its own, since a second
/// start waits until it has answered.
class FirstInstance : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    [[nodiscard]] QList<QVariantMap> activations() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_activations;
    }
    [[nodiscard]] QStringList actions() const
    {
        const QMutexLocker lock(&m_mutex);
        return m_actions;
    }

public Q_SLOTS:
    void Activate(const QVariantMap &startupData)
    {
        const QMutexLocker lock(&m_mutex);
        m_activations << startupData;
    }
    void ActivateAction(const QString &action, const QVariantList & /*parameters*/,
                        const QVariantMap & /*startupData*/)
    {
        const QMutexLocker lock(&m_mutex);
        m_actions << action;
    }

private:
    mutable QMutex m_mutex;
    QList<QVariantMap> m_activations;
    QStringList m_actions;
};

class SingleInstanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void ownsTheNameWhenItIsTheOnlyOne();
    void isActivatedByEveryCallOfTheInterface_data();
    void isActivatedByEveryCallOfTheInterface();
    void opensAddresses();
    void refusesAnActionThatItDoesNotKnow();
    void refusesAStartOnAnotherDisplay();
    void hearsOnlyWhatCameBeforeItsNameAsTheReasonOfItsStart();
    void asksTheFirstInstanceWithTheStartupData();
    void asksNothingOfTheFirstInstanceWhenNothingIsWished();
    void doesNotWaitLongForAnInstanceThatIsSilent();
    void tellsAnotherProgramWithItsName();
    void takesTheNameOfAnInstanceThatEnds();
    void runsAloneWithoutABus();

private:
    PrivateBus m_bus;
};

namespace {

const QString busName = QLatin1StringView(SingleInstance::busName);
const QString objectPath = QLatin1StringView(SingleInstance::objectPath);

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(busName, objectPath, u"org.freedesktop.Application"_s,
                                          method);
}

} // namespace

void SingleInstanceTest::initTestCase()
{
    qunsetenv("DISPLAY");
    if (qEnvironmentVariableIsSet("QUILLMARK_TEST_WITHOUT_BUS"))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    else
        QVERIFY(m_bus.isRunning());
}

void SingleInstanceTest::ownsTheNameWhenItIsTheOnlyOne()
{
    SingleInstance instance;

    QCOMPARE(instance.claim(), Claim::granted);

    const QDBusConnection session = QDBusConnection::sessionBus();
    QCOMPARE(session.interface()->serviceOwner(busName).value(), session.baseService());
    QVERIFY(session.interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::isActivatedByEveryCallOfTheInterface_data()
{
    QTest::addColumn<QDBusMessage>("message");
    QTest::addColumn<Wish>("wish");

    QTest::newRow("Activate") << (call(u"Activate"_s) << QVariantMap()) << Wish::toBeShown;
    QTest::newRow("Open nothing") << (call(u"Open"_s) << QStringList() << QVariantMap())
                                  << Wish::toBeShown;
    const auto action = [](const QString &name) {
        return call(u"ActivateAction"_s) << name << QVariantList() << QVariantMap();
    };
    QTest::newRow("new note") << action(u"new-note"_s) << Wish::newNote;
    QTest::newRow("show notes") << action(u"show-notes"_s) << Wish::notes;
}

void SingleInstanceTest::isActivatedByEveryCallOfTheInterface()
{
    QFETCH(const QDBusMessage, message);
    QFETCH(const Wish, wish);
    SingleInstance instance;
    QCOMPARE(instance.claim(), Claim::granted);
    QSignalSpy activated(&instance, &SingleInstance::activated);
    QSignalSpy newNoteRequested(&instance, &SingleInstance::newNoteRequested);
    QSignalSpy notesRequested(&instance, &SingleInstance::notesRequested);
    const QDBusConnection desktop = m_bus.connectAs(u"desktop"_s);

    const QDBusPendingCall answer = desktop.asyncCall(message);

    QTRY_VERIFY(answer.isFinished());
    QCOMPARE(newNoteRequested.count(), wish == Wish::newNote ? 1 : 0);
    QCOMPARE(notesRequested.count(), wish == Wish::notes ? 1 : 0);
    QCOMPARE(activated.count(), wish == Wish::toBeShown ? 1 : 0);
    QVERIFY2(!answer.isError(), qUtf8Printable(answer.error().message()));
    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::opensAddresses()
{
    SingleInstance instance;
    QCOMPARE(instance.claim(), Claim::granted);
    QSignalSpy opened(&instance, &SingleInstance::addressesOpened);
    const QDBusConnection desktop = m_bus.connectAs(u"desktop"_s);
    const QStringList addresses{u"file:///tmp/a"_s, u"https://example.org"_s};

    const QDBusPendingCall answer =
        desktop.asyncCall(call(u"Open"_s) << addresses << QVariantMap());

    QTRY_VERIFY(answer.isFinished());
    QCOMPARE(opened.count(), 1);
    QCOMPARE(opened.first().first().toStringList(), addresses);
    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::refusesAnActionThatItDoesNotKnow()
{
    SingleInstance instance;
    QCOMPARE(instance.claim(), Claim::granted);
    QSignalSpy activated(&instance, &SingleInstance::activated);
    const QDBusConnection desktop = m_bus.connectAs(u"desktop"_s);

    const QDBusPendingCall answer = desktop.asyncCall(
        call(u"ActivateAction"_s) << u"dance"_s << QVariantList() << QVariantMap());

    QTRY_VERIFY(answer.isFinished());
    QVERIFY(answer.isError());
    QCOMPARE(activated.count(), 0);
    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::refusesAStartOnAnotherDisplay()
{
    qputenv("DISPLAY", ":4711.0");
    SingleInstance instance;
    qunsetenv("DISPLAY");
    QCOMPARE(instance.claim(), Claim::granted);
    QSignalSpy activated(&instance, &SingleInstance::activated);
    const QDBusConnection desktop = m_bus.connectAs(u"desktop"_s);
    const auto startOn = [&desktop](const QString &display) {
        return desktop.asyncCall(call(u"Activate"_s)
                                 << QVariantMap{{u"org.quillmark.display"_s, display}});
    };

    const QDBusPendingCall elsewhere = startOn(u":4712"_s);
    const QDBusPendingCall here = startOn(u":4711"_s);

    QTRY_VERIFY(elsewhere.isFinished() && here.isFinished());
    QCOMPARE(elsewhere.error().name(), QLatin1StringView(SingleInstance::otherDisplayError));
    QVERIFY2(!here.isError(), qUtf8Printable(here.error().message()));
    QCOMPARE(activated.count(), 1);
    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::hearsOnlyWhatCameBeforeItsNameAsTheReasonOfItsStart()
{
    SingleInstance instance;
    QCOMPARE(instance.claim(), Claim::granted);
    QVERIFY(instance.isHearingWhoStartedIt());

    QTRY_VERIFY(!instance.isHearingWhoStartedIt());

    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::asksTheFirstInstanceWithTheStartupData()
{
    QThread thread;
    FirstInstance first;
    first.moveToThread(&thread);
    thread.start();
    QDBusConnection other = m_bus.connectAs(u"first"_s);
    QVERIFY(other.registerObject(objectPath, &first, QDBusConnection::ExportAllSlots));
    QVERIFY(other.registerService(busName));
    qputenv("DESKTOP_STARTUP_ID", "start_TIME17");
    qputenv("XDG_ACTIVATION_TOKEN", "token");
    SingleInstance second;
    qunsetenv("DESKTOP_STARTUP_ID");
    qunsetenv("XDG_ACTIVATION_TOKEN");

    const Claim claim = second.claim();
    const Claim actionsClaim = second.claim(SingleInstance::Wish::showNotes);

    QCOMPARE(claim, Claim::passedOn);
    QCOMPARE(actionsClaim, Claim::passedOn);
    QCOMPARE(first.actions(), QStringList{u"show-notes"_s});
    QCOMPARE(first.activations(), QList<QVariantMap>({{{u"desktop-startup-id"_s, u"start_TIME17"_s},
                                                       {u"activation-token"_s, u"token"_s}}}));
    other.unregisterService(busName);
    thread.quit();
    thread.wait();
}

void SingleInstanceTest::asksNothingOfTheFirstInstanceWhenNothingIsWished()
{
    QThread thread;
    FirstInstance first;
    first.moveToThread(&thread);
    thread.start();
    QDBusConnection other = m_bus.connectAs(u"first"_s);
    QVERIFY(other.registerObject(objectPath, &first, QDBusConnection::ExportAllSlots));
    QVERIFY(other.registerService(busName));

    QCOMPARE(SingleInstance().claim(SingleInstance::Wish::none), Claim::passedOn);

    QVERIFY(first.activations().isEmpty());
    other.unregisterService(busName);
    thread.quit();
    thread.wait();
}

void SingleInstanceTest::doesNotWaitLongForAnInstanceThatIsSilent()
{
    // On this very thread, which waits for the answer.
    FirstInstance stopped;
    QDBusConnection other = m_bus.connectAs(u"stopped"_s);
    QVERIFY(other.registerObject(objectPath, &stopped, QDBusConnection::ExportAllSlots));
    QVERIFY(other.registerService(busName));
    QElapsedTimer sinceTheStart;
    sinceTheStart.start();

    QCOMPARE(SingleInstance().claim(), Claim::unanswered);

    // The bus itself would go on waiting for 25.
    QVERIFY(sinceTheStart.elapsed() < 10'000);
    other.unregisterService(busName);
    QDBusConnection::disconnectFromBus(u"stopped"_s);
}

void SingleInstanceTest::tellsAnotherProgramWithItsName()
{
    QDBusConnection other = m_bus.connectAs(u"foreign"_s);
    QVERIFY(other.registerService(busName));

    QCOMPARE(SingleInstance().claim(), Claim::taken);

    other.unregisterService(busName);
    QDBusConnection::disconnectFromBus(u"foreign"_s);
}

void SingleInstanceTest::takesTheNameOfAnInstanceThatEnds()
{
    // Ends instead of answering, as one does that was just told to quit.
    class Ending final : public QDBusVirtualObject {
    public:
        [[nodiscard]] QString introspect(const QString & /*path*/) const override { return {}; }
        bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
        {
            message.setDelayedReply(true);
            return bus.interface()->unregisterService(busName).isValid();
        }
    };
    QThread thread;
    Ending ending;
    ending.moveToThread(&thread);
    thread.start();
    QDBusConnection other = m_bus.connectAs(u"ending"_s);
    QVERIFY(other.registerVirtualObject(objectPath, &ending));
    QVERIFY(other.registerService(busName));

    QCOMPARE(SingleInstance().claim(), Claim::granted);

    thread.quit();
    thread.wait();
    QDBusConnection::disconnectFromBus(u"ending"_s);
    QVERIFY(QDBusConnection::sessionBus().interface()->unregisterService(busName).isValid());
}

void SingleInstanceTest::runsAloneWithoutABus()
{
    // The connection to the bus is made once in a process, so this needs one of its own.
    if (qEnvironmentVariableIsSet("QUILLMARK_TEST_WITHOUT_BUS")) {
        QCOMPARE(SingleInstance().claim(), Claim::granted);
        QVERIFY(!QDBusConnection::sessionBus().isConnected());
        return;
    }
    QProcess alone;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QUILLMARK_TEST_WITHOUT_BUS"_s, u"1"_s);
    alone.setProcessEnvironment(environment);
    alone.start(QCoreApplication::applicationFilePath(), {u"runsAloneWithoutABus"_s});

    QVERIFY(alone.waitForFinished());
    QCOMPARE(alone.exitStatus(), QProcess::NormalExit);
    QVERIFY2(alone.exitCode() == 0, alone.readAllStandardOutput().constData());
}

QTEST_GUILESS_MAIN(SingleInstanceTest)
#include "SingleInstanceTest.moc"
